#include "app/readers/qv_gbxml_surfaces.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;
using point = qv_gbxml_text::point;

const std::vector<point> square = {{0, 0, 0}, {0, 4, 0}, {0, 4, 3}, {0, 0, 3}};  // normal +x

std::vector<point> reversed(std::vector<point> corners) {
  std::reverse(corners.begin(), corners.end());
  return corners;
}

std::string id_of(const qv::qvi_space* space) {
  return space == nullptr ? "-" : space->get_unique_id();
}

// "first second" for each wall, "-" for no space.
std::string spaces_of(const qv::qv_gbxml_model& model) {
  std::string text;
  for (const qv::qvi_wall* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall"))
    text += id_of(wall->get_space_0()) + " " + id_of(wall->get_space_1()) + ";";
  return text;
}

// One surface that names `spaces`, among the spaces a, b, c.
qv::qv_gbxml_model read_one(const std::string& type, const std::vector<std::string>& spaces) {
  return qv_gbxml_text().space("a").space("b").space("c").polygon("w", type, spaces, square).read();
}

qv::qv_import_ledger::entry entry_of(const qv::qv_gbxml_model& model, const std::string& id) {
  return qv_find_entry(model.ledger, kind::surface, id);
}

}  // namespace

TEST(qv_gbxml_surfaces, one_and_two_adjacent_spaces_become_the_walls_spaces_in_their_order) {
  EXPECT_EQ(spaces_of(read_one("ExteriorWall", {"b"})), "b -;");
  EXPECT_EQ(spaces_of(read_one("InteriorWall", {"b", "a"})), "b a;");
  EXPECT_EQ(spaces_of(read_one("ExteriorWall", {"a", "b"})), "a b;");
  EXPECT_EQ(spaces_of(read_one("Air", {"a", "b"})), "a b;");
}

TEST(qv_gbxml_surfaces, surfaces_of_no_space_become_walls_that_only_cast_shadows) {
  for (const char* type : {"Roof", "ExteriorWall", "InteriorWall"}) {
    const auto model = read_one(type, {});
    EXPECT_EQ(spaces_of(model), "- -;");
    const auto* wall = qv::qv_collect<qv::qvi_wall>(model.root, "wall")[0];
    const auto& layers = wall->get_face_0()->get_raytracing_layers();
    EXPECT_TRUE(layers.contains("simulation"));
    EXPECT_FALSE(layers.contains("bim"));
    EXPECT_NEAR(model.ledger.get_balance().shading, 12, 1e-6);
  }
}

TEST(qv_gbxml_surfaces, shades_and_columns_of_no_space_become_objects_that_cast_shadows) {
  for (const char* type : {"Shade", "FreestandingColumn", "EmbeddedColumn"}) {
    const auto model = read_one(type, {});
    EXPECT_EQ(spaces_of(model), "");
    const auto objects = qv::qv_collect<qv::qvi_bim_object>(model.root, "bim_object");
    ASSERT_EQ(objects.get_count(), 1);
    EXPECT_EQ(objects[0]->get_source_type(), type);
    EXPECT_EQ(objects[0]->get_source_id(), "w");
    EXPECT_EQ(objects[0]->get_unique_id(), "w");
    EXPECT_EQ(objects[0]->get_bim_type(), qv::qvi_bim_object::bim_type::other);
    const auto faces = objects[0]->get_layer_meshes("simulation");
    ASSERT_EQ(faces.get_count(), 1);
    EXPECT_FALSE(faces[0]->get_raytracing_layers().contains("bim"));
    EXPECT_NEAR(faces[0]->get_area(), 12, 1e-5);
    EXPECT_EQ(entry_of(model, "w").result, outcome::kept);
    EXPECT_EQ(model.ledger.get_balance().walls, 0);
    EXPECT_NEAR(model.ledger.get_balance().objects, 12, 1e-6);
    EXPECT_TRUE(model.ledger.get_balance().is_balanced());
  }
}

TEST(qv_gbxml_surfaces, a_column_that_bounds_a_space_is_a_wall_of_it) {
  EXPECT_EQ(spaces_of(read_one("FreestandingColumn", {"a"})), "a -;");
  EXPECT_EQ(spaces_of(read_one("EmbeddedColumn", {"a", "b"})), "a b;");
}

TEST(qv_gbxml_surfaces, a_shade_that_names_one_space_bounds_none) {
  const auto model = read_one("Shade", {"a"});
  EXPECT_EQ(spaces_of(model), "");
  EXPECT_EQ(qv::qv_collect<qv::qvi_bim_object>(model.root, "bim_object").get_count(), 1);
  EXPECT_EQ(entry_of(model, "w").result, outcome::kept);
}

// Its corners do not lie in a plane: two triangles.
TEST(qv_gbxml_surfaces, a_shade_of_several_parts_is_one_object) {
  const auto model = qv_gbxml_text()
                         .space("a")
                         .polygon("w", "Shade", {}, {{0, 0, 0}, {0, 4, 0}, {1, 4, 3}, {0, 0, 3}})
                         .read();
  const auto objects = qv::qv_collect<qv::qvi_bim_object>(model.root, "bim_object");
  ASSERT_EQ(objects.get_count(), 1);
  EXPECT_EQ(objects[0]->get_layer_meshes("simulation").get_count(), 2);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
}

TEST(qv_gbxml_surfaces, a_shade_between_two_spaces_keeps_both) {
  const auto model = read_one("Shade", {"a", "b"});
  EXPECT_EQ(spaces_of(model), "a b;");
  EXPECT_EQ(entry_of(model, "w").result, outcome::repaired);
}

TEST(qv_gbxml_surfaces, of_three_spaces_the_first_two_different_ones_are_taken) {
  const auto model = read_one("InteriorWall", {"a", "b", "c"});
  EXPECT_EQ(spaces_of(model), "a b;");
  EXPECT_EQ(entry_of(model, "w").result, outcome::repaired);
  EXPECT_EQ(spaces_of(read_one("InteriorWall", {"a", "a", "c"})), "a c;");
}

TEST(qv_gbxml_surfaces, the_same_space_twice_stays_on_both_sides) {
  const auto model = read_one("InteriorWall", {"a", "a"});
  EXPECT_EQ(spaces_of(model), "a a;");
  EXPECT_EQ(entry_of(model, "w").reason, "the same space on both sides");
}

TEST(qv_gbxml_surfaces, a_space_that_is_not_there_leaves_the_other) {
  const auto model = read_one("InteriorWall", {"ghost", "b"});
  EXPECT_EQ(spaces_of(model), "b -;");
  EXPECT_EQ(entry_of(model, "w").result, outcome::repaired);
  EXPECT_EQ(entry_of(model, "w").reason, "Space \"ghost\" is not in the file");
  EXPECT_EQ(spaces_of(read_one("InteriorWall", {"ghost", "spook"})), "- -;");
}

TEST(qv_gbxml_surfaces, one_listed_from_each_side_becomes_one_wall) {
  for (const auto& second :
       {square, reversed(square), std::vector<point>{square[2], square[3], square[0], square[1]}}) {
    const auto model = qv_gbxml_text()
                           .space("a")
                           .space("b")
                           .polygon("w1", "InteriorWall", {"a", "b"}, square)
                           .polygon("w2", "InteriorWall", {"b", "a"}, second)
                           .read();
    EXPECT_EQ(spaces_of(model), "a b;");
    EXPECT_EQ(entry_of(model, "w1").result, outcome::kept);
    EXPECT_EQ(entry_of(model, "w2").result, outcome::merged);
    EXPECT_TRUE(model.ledger.get_balance().is_balanced());
    const auto* wall = qv::qv_collect<qv::qvi_wall>(model.root, "wall")[0];
    EXPECT_EQ(wall->get_source_ids(), (qv::qv_list<std::string>{"w1", "w2"}));
  }
}

TEST(qv_gbxml_surfaces, one_listed_by_each_space_alone_joins_both) {
  const auto model = qv_gbxml_text()
                         .space("a")
                         .space("b")
                         .polygon("w1", "InteriorWall", {"a"}, square)
                         .polygon("w2", "InteriorWall", {"b"}, reversed(square))
                         .read();
  EXPECT_EQ(spaces_of(model), "a b;");
  EXPECT_EQ(entry_of(model, "w1").result, outcome::repaired);
  EXPECT_EQ(entry_of(model, "w2").result, outcome::merged);
  EXPECT_NEAR(model.ledger.get_balance().merged, 12, 1e-9);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
}

TEST(qv_gbxml_surfaces, three_spaces_on_one_polygon_stay_three_walls) {
  // Each surface of two spaces keeps both.
  const auto model = qv_gbxml_text()
                         .space("a")
                         .space("b")
                         .space("c")
                         .polygon("w1", "InteriorWall", {"a", "b"}, square)
                         .polygon("w2", "InteriorWall", {"a", "c"}, square)
                         .polygon("w3", "InteriorWall", {"b", "c"}, square)
                         .read();
  EXPECT_EQ(spaces_of(model), "a b;a c;b c;");
}

TEST(qv_gbxml_surfaces, a_shade_on_a_wall_is_not_merged_with_it) {
  const auto model = qv_gbxml_text()
                         .space("a")
                         .polygon("w1", "ExteriorWall", {"a"}, square)
                         .polygon("w2", "Shade", {}, square)
                         .polygon("w3", "Shade", {}, reversed(square))
                         .read();
  EXPECT_EQ(spaces_of(model), "a -;");
  EXPECT_EQ(qv::qv_collect<qv::qvi_bim_object>(model.root, "bim_object").get_count(), 1);
  EXPECT_EQ(entry_of(model, "w3").result, outcome::merged);
}

TEST(qv_gbxml_surfaces, the_same_id_is_an_error_unless_the_polygon_is_the_same_too) {
  EXPECT_NO_THROW(qv_gbxml_text()
                      .space("a")
                      .polygon("w", "ExteriorWall", {"a"}, square)
                      .polygon("w", "ExteriorWall", {"a"}, square)
                      .read());
  try {
    qv_gbxml_text()
        .space("a")
        .polygon("w", "ExteriorWall", {"a"}, square)
        .polygon("w", "ExteriorWall", {"a"}, {{9, 0, 0}, {9, 1, 0}, {9, 1, 1}})
        .read();
    FAIL() << "no error";
  } catch (const qv::qv_input_error& error) {
    EXPECT_STREQ(
        error.what(),
        "test.xml, line 7, Surface \"w\": a second Surface bears this id, the first one in "
        "line 6; give each Surface an id of its own");
  }
}

TEST(qv_gbxml_surfaces, drops_polygons_that_bound_nothing_with_the_reason) {
  const auto reason = [](const std::string& content) {
    const auto model = qv_gbxml_text().space("a").surface("w", "Roof", {"a"}, content).read();
    EXPECT_EQ(entry_of(model, "w").result, outcome::dropped);
    EXPECT_TRUE(model.ledger.get_balance().is_balanced());
    EXPECT_EQ(model.root->collect("wall").get_count(), 0);
    return entry_of(model, "w").reason;
  };
  EXPECT_EQ(reason(""), "it has no geometry");
  EXPECT_EQ(reason(qv_gbxml_text::planar({{0, 0, 0}, {1, 0, 0}})),
            "it has fewer than three distinct points");
  EXPECT_EQ(reason(qv_gbxml_text::planar({{0, 0, 0}, {1, 0, 0}, {2, 0, 0}})), "it has no area");
  EXPECT_EQ(reason(qv_gbxml_text::planar({{0, 0, 0}, {1e9, 0, 0}, {0, 1, 0}})),
            "a coordinate is not a number within reach");
  EXPECT_EQ(reason("<PlanarGeometry><PolyLoop><CartesianPoint><Coordinate>0</Coordinate>"
                   "</CartesianPoint></PolyLoop></PlanarGeometry>"),
            "a point has 1 coordinates instead of three");
  EXPECT_EQ(
      reason("<PlanarGeometry><PolyLoop><CartesianPoint><Coordinate>NaN</Coordinate>"
             "<Coordinate>0</Coordinate><Coordinate>0</Coordinate></CartesianPoint></PolyLoop>"
             "</PlanarGeometry>"),
      "a coordinate is \"NaN\", which is no number");
}

TEST(qv_gbxml_surfaces, builds_the_rectangle_when_there_is_no_polygon) {
  const std::string rectangle =
      "<RectangularGeometry><Azimuth>180</Azimuth><CartesianPoint><Coordinate>1</Coordinate>"
      "<Coordinate>2</Coordinate><Coordinate>3</Coordinate></CartesianPoint><Tilt>90</Tilt>"
      "<Width>5</Width><Height>2.5</Height></RectangularGeometry>";
  const auto model =
      qv_gbxml_text().space("a").surface("w", "ExteriorWall", {"a"}, rectangle).read();
  const auto* wall = qv::qv_collect<qv::qvi_wall>(model.root, "wall")[0];
  // Facing south: from the lower left corner seen from outside, east and up.
  EXPECT_NEAR(wall->get_normal().y, -1, 1e-6);
  const auto& corners = wall->get_face_0()->get_vertices();
  ASSERT_EQ(corners.get_count(), 4);
  const std::vector<point> expected = {{1, 2, 3}, {6, 2, 3}, {6, 2, 5.5}, {1, 2, 5.5}};
  for (int i = 0; i < 4; ++i) {
    EXPECT_NEAR(corners[i].x, expected[static_cast<std::size_t>(i)][0], 1e-5);
    EXPECT_NEAR(corners[i].y, expected[static_cast<std::size_t>(i)][1], 1e-5);
    EXPECT_NEAR(corners[i].z, expected[static_cast<std::size_t>(i)][2], 1e-5);
  }
  EXPECT_EQ(entry_of(model, "w").result, outcome::repaired);
  EXPECT_NEAR(entry_of(model, "w").area, 12.5, 1e-9);
}

TEST(qv_gbxml_surfaces, lays_a_level_rectangle_and_takes_its_own_unit) {
  const std::string rectangle =
      "<RectangularGeometry "
      "unit=\"Feet\"><Azimuth>180</Azimuth><CartesianPoint><Coordinate>0</Coordinate>"
      "<Coordinate>0</Coordinate><Coordinate>10</Coordinate></CartesianPoint><Tilt>0</Tilt>"
      "<Width unit=\"Meters\">5</Width><Height unit=\"Meters\">2</Height></RectangularGeometry>";
  const auto model = qv_gbxml_text().space("a").surface("w", "Roof", {"a"}, rectangle).read();
  const auto* wall = qv::qv_collect<qv::qvi_wall>(model.root, "wall")[0];
  EXPECT_NEAR(wall->get_normal().z, 1, 1e-6);
  EXPECT_NEAR(wall->get_face_0()->get_vertices()[0].z, 3.048, 1e-5);
  EXPECT_NEAR(entry_of(model, "w").area, 10, 1e-9);
}

TEST(qv_gbxml_surfaces, reads_a_misspelt_planar_geometry_and_feet) {
  const auto model =
      qv_gbxml_text()
          .root("lengthUnit=\"FEET\"")
          .space("a")
          .surface("w", "Roof", {"a"},
                   "<PlanarGeoemtry>" +
                       qv_gbxml_text::loop({{0, 0, 0}, {10, 0, 0}, {10, 10, 0}, {0, 10, 0}}) +
                       "</PlanarGeoemtry>")
          .read();
  EXPECT_NEAR(entry_of(model, "w").area, 9.290304, 1e-9);
}

TEST(qv_gbxml_surfaces, brings_a_model_far_from_the_origin_near_it) {
  qv_gbxml_text text;
  text.box("a", {651200.25, 6862000.5, 35}, {651204.25, 6862003.5, 38});
  const auto model = text.read();
  EXPECT_EQ(model.origin[0], 651200);
  EXPECT_NEAR(model.origin[1], 6862001, 1);
  EXPECT_EQ(model.origin[2], 0);
  EXPECT_TRUE(model.spaces[0].closed);
  EXPECT_NEAR(model.spaces[0].enclosed_volume, 36, 1e-6);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
  EXPECT_EQ(model.warnings.size(), 1U);
}

TEST(qv_gbxml_surfaces, notes_unknown_types_units_and_further_loops) {
  const auto model =
      qv_gbxml_text()
          .space("a")
          .surface("w", "Shad", {},
                   "<PlanarGeometry unit=\"UnitID\">" + qv_gbxml_text::loop(square) +
                       qv_gbxml_text::loop(square) + "</PlanarGeometry>")
          .polygon("v", "InsideFloor", {"a"}, {{0, 0, 0}, {0, 1, 0}, {1, 1, 0}, {1, 0, 0}})
          .read();
  EXPECT_EQ(entry_of(model, "w").result, outcome::repaired);
  EXPECT_EQ(entry_of(model, "w").reason,
            "surfaceType \"Shad\" is none; read as Shade; a loop was said twice");
  EXPECT_EQ(entry_of(model, "v").result, outcome::repaired);
  ASSERT_EQ(model.warnings.size(), 1U);
  EXPECT_NE(model.warnings[0].find("the unit \"UnitID\" of a PlanarGeometry is not known"),
            std::string::npos);
}
