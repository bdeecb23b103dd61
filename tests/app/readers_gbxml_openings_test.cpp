#include "app/readers/qv_gbxml_openings.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;
using point = qv_gbxml_text::point;
using opening_type = qv::qvi_opening::opening_type;

// The wall that all tests pierce: 4 m by 3 m at x = 0, outside towards +x.
const std::vector<point> square = {{0, 0, 0}, {0, 4, 0}, {0, 4, 3}, {0, 0, 3}};

std::vector<point> pane(double y0, double y1, double z0, double z1, double x = 0) {
  return {{x, y0, z0}, {x, y1, z0}, {x, y1, z1}, {x, y0, z1}};
}

std::vector<point> reversed(std::vector<point> corners) {
  std::reverse(corners.begin(), corners.end());
  return corners;
}

std::string opening(const std::string& id, const std::string& content,
                    const std::string& type = "FixedWindow", const std::string& attributes = {}) {
  return "<Opening id=\"" + id + "\" openingType=\"" + type + "\" " + attributes + ">" + content +
         "</Opening>";
}

std::string opening(const std::string& id, const std::vector<point>& corners,
                    const std::string& type = "FixedWindow") {
  return opening(id, qv_gbxml_text::planar(corners), type);
}

// The wall with these openings, outside of space "a".
qv::qv_gbxml_model read_wall(const std::string& openings) {
  return qv_gbxml_text()
      .space("a")
      .surface("w", "ExteriorWall", {"a"}, qv_gbxml_text::planar(square) + openings)
      .read();
}

qv::qv_list<qv::qvi_opening*> openings_of(const qv::qv_gbxml_model& model) {
  return qv::qv_collect<qv::qvi_opening>(model.root, "opening");
}

qv::qvi_wall* wall_of(const qv::qv_gbxml_model& model, int index = 0) {
  return qv::qv_collect<qv::qvi_wall>(model.root, "wall")[index];
}

double area_of(const qv::qvi_opening* opening) {
  double sum = 0;
  for (qv::qvi_polygon* outline : qv::qv_collect<qv::qvi_polygon>(opening, "polygon"))
    sum += outline->get_area();
  return sum;
}

qv::qv_import_ledger::entry entry_of(const qv::qv_gbxml_model& model, const std::string& id) {
  return qv_find_entry(model.ledger, kind::opening, id);
}

void expect_dropped(const std::string& content, const std::string& reason, double area) {
  SCOPED_TRACE(reason);
  const auto model = read_wall(content);
  const auto entry = entry_of(model, "o");
  EXPECT_EQ(entry.result, outcome::dropped);
  EXPECT_NE(entry.reason.find(reason), std::string::npos) << entry.reason;
  EXPECT_NEAR(entry.area, area, 1e-9);
  EXPECT_EQ(openings_of(model).get_count(), 0);
  EXPECT_EQ(wall_of(model)->get_pierced_face_0(), nullptr);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

}  // namespace

TEST(qv_gbxml_openings, every_type_becomes_the_opening_it_names) {
  const std::pair<const char*, opening_type> types[] = {
      {"FixedWindow", opening_type::window},
      {"OperableWindow", opening_type::window},
      {"FixedSkylight", opening_type::skylight},
      {"OperableSkylight", opening_type::skylight},
      {"SlidingDoor", opening_type::door},
      {"NonSlidingDoor", opening_type::door},
      {"Air", opening_type::door},
      {"operablewindow", opening_type::window}};
  for (const auto& [type, expected] : types) {
    SCOPED_TRACE(type);
    const auto model = read_wall(opening("o", pane(1, 2, 1, 2), type));
    ASSERT_EQ(openings_of(model).get_count(), 1);
    const qv::qvi_opening* item = openings_of(model)[0];
    EXPECT_EQ(item->get_opening_type(), expected);
    EXPECT_EQ(item->get_unique_id(), "o");
    EXPECT_EQ(item->get_source_ids(), (qv::qv_list<std::string>{"o"}));
    EXPECT_EQ(item->get_wall(), wall_of(model));
    EXPECT_NEAR(item->get_normal().x, 1, 1e-6);
    EXPECT_NEAR(area_of(item), 1, 1e-6);
    EXPECT_EQ(entry_of(model, "o").result, outcome::kept);
  }
}

TEST(qv_gbxml_openings, a_type_that_is_none_is_guessed_from_its_words) {
  const std::pair<const char*, opening_type> types[] = {{"OpeningWindow", opening_type::window},
                                                        {"RoofSkylight", opening_type::skylight},
                                                        {"Door", opening_type::door},
                                                        {"", opening_type::window},
                                                        {"Gate", opening_type::window}};
  for (const auto& [type, expected] : types) {
    SCOPED_TRACE(type);
    const auto model = read_wall(opening("o", pane(1, 2, 1, 2), type));
    EXPECT_EQ(openings_of(model)[0]->get_opening_type(), expected);
    EXPECT_EQ(entry_of(model, "o").result, outcome::repaired);
  }
}

TEST(qv_gbxml_openings, several_in_one_wall_pierce_it_and_hide_its_face) {
  const auto model =
      read_wall(opening("o1", pane(0.5, 1.5, 1, 2)) + opening("o2", reversed(pane(2, 3, 1, 2.5))) +
                opening("o3", pane(3.2, 3.8, 0, 2), "NonSlidingDoor"));
  ASSERT_EQ(openings_of(model).get_count(), 3);
  auto* wall = wall_of(model);
  EXPECT_NEAR(wall->get_face_0()->get_area(), 12, 1e-5);
  ASSERT_NE(wall->get_pierced_face_0(), nullptr);
  EXPECT_EQ(wall->get_pierced_face_0(), wall->get_pierced_face_1());
  EXPECT_NEAR(wall->get_pierced_face_0()->get_area(), 12 - 1 - 1.5 - 1.2, 1e-5);
  EXPECT_NEAR(wall->get_pierced_face_0()->get_normal().x, 1, 1e-6);
  EXPECT_FALSE(wall->get_face_0()->get_rendering_visibility());
  EXPECT_TRUE(wall->get_face_0()->get_raytracing_layers().is_empty());
  const qv::qv_list<std::string> visible = {"simulation", "picking", "bim"};
  EXPECT_EQ(wall->get_pierced_face_0()->get_raytracing_layers(), visible);
  for (const qv::qvi_opening* item : openings_of(model))
    for (qv::qvi_polygon* outline : qv::qv_collect<qv::qvi_polygon>(item, "polygon"))
      EXPECT_EQ(outline->get_raytracing_layers(), visible);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, the_wall_knows_them_and_loses_their_area_in_the_scene) {
  const auto model = read_wall(opening("o1", pane(1, 2, 1, 2)) + opening("o2", pane(2, 4, 0, 2)));
  model.scene->precompute();
  EXPECT_EQ(wall_of(model)->get_openings().get_count(), 2);
  EXPECT_NEAR(wall_of(model)->get_loss_area(), 7, 1e-5);
  EXPECT_NEAR(openings_of(model)[1]->get_full_area(), 4, 1e-5);
}

TEST(qv_gbxml_openings, one_that_covers_its_wall_leaves_nothing_of_it) {
  const auto model = read_wall(opening("o", square));
  EXPECT_EQ(entry_of(model, "o").result, outcome::kept);
  EXPECT_NEAR(wall_of(model)->get_pierced_face_0()->get_area(), 0, 1e-6);
  model.scene->precompute();
  EXPECT_EQ(wall_of(model)->get_loss_area(), 0);
  EXPECT_NEAR(openings_of(model)[0]->get_full_area(), 12, 1e-5);
}

TEST(qv_gbxml_openings, one_larger_than_its_wall_is_cut_to_it) {
  const auto model = read_wall(opening("o", pane(-1, 5, -1, 4)));
  const auto entry = entry_of(model, "o");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_NEAR(entry.area, 30, 1e-9);
  EXPECT_NEAR(entry.cut, 18, 1e-4);
  EXPECT_NEAR(area_of(openings_of(model)[0]), 12, 1e-5);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, one_partly_outside_loses_that_part) {
  const auto model = read_wall(opening("o", pane(3, 5, 1, 2)));
  EXPECT_EQ(entry_of(model, "o").result, outcome::repaired);
  EXPECT_NE(entry_of(model, "o").reason.find("what lay outside its Surface was cut off"),
            std::string::npos);
  EXPECT_NEAR(entry_of(model, "o").cut, 1, 1e-5);
  EXPECT_NEAR(area_of(openings_of(model)[0]), 1, 1e-5);
}

TEST(qv_gbxml_openings, drops_those_that_pierce_nothing_with_reason_and_area) {
  expect_dropped(opening("o", pane(5, 6, 1, 2)), "it lies outside its Surface", 1);
  expect_dropped(opening("o", pane(1, 2, 1, 2, 1.5)), "it does not lie in the plane of its Surface",
                 1);
  expect_dropped(opening("o", {{0, 1, 1}, {1, 1, 1}, {1, 1, 2}, {0, 1, 2}}),
                 "it does not lie in the plane of its Surface", 1);
  expect_dropped(opening("o", {{0, 1, 1}, {0, 2, 1}}), "it has fewer than three distinct points",
                 0);
  expect_dropped(opening("o", {{0, 1, 1}, {0, 2, 1}, {0, 3, 1}}), "it has no area", 0);
  expect_dropped(opening("o", ""), "it has no geometry", 0);
}

TEST(qv_gbxml_openings, one_whose_surface_bounds_nothing_is_dropped_with_it) {
  const auto model =
      qv_gbxml_text()
          .space("a")
          .surface("w", "ExteriorWall", {"a"},
                   qv_gbxml_text::planar({{0, 0, 0}, {0, 1, 0}}) + opening("o", pane(1, 2, 1, 2)))
          .read();
  EXPECT_EQ(entry_of(model, "o").result, outcome::dropped);
  EXPECT_NEAR(model.ledger.get_opening_balance().dropped, 1, 1e-9);
}

TEST(qv_gbxml_openings, one_a_hair_off_the_wall_is_moved_onto_it) {
  for (const double x : {0.0005, 0.2, -0.2}) {
    SCOPED_TRACE(x);
    const auto model = read_wall(opening("o", pane(1, 2, 1, 2, x)));
    EXPECT_EQ(entry_of(model, "o").result, std::abs(x) > 0.001 ? outcome::repaired : outcome::kept);
    for (qv::qvi_polygon* outline :
         qv::qv_collect<qv::qvi_polygon>(openings_of(model)[0], "polygon"))
      for (const qv::qv_3dvector& corner : outline->get_vertices()) EXPECT_NEAR(corner.x, 0, 1e-6);
    EXPECT_NEAR(wall_of(model)->get_pierced_face_0()->get_area(), 11, 1e-5);
  }
}

TEST(qv_gbxml_openings, of_two_that_overlap_the_larger_one_gives_way) {
  const auto model = read_wall(opening("door", pane(1, 3, 0, 2), "NonSlidingDoor") +
                               opening("glass", pane(1.5, 2.5, 1, 1.5)));
  EXPECT_EQ(entry_of(model, "glass").result, outcome::kept);
  EXPECT_EQ(entry_of(model, "door").result, outcome::repaired);
  EXPECT_NE(entry_of(model, "door").reason.find("what lay in Opening \"glass\" was cut off"),
            std::string::npos);
  EXPECT_NEAR(entry_of(model, "door").cut, 0.5, 1e-5);
  EXPECT_NEAR(area_of(openings_of(model)[0]), 3.5, 1e-5);
  EXPECT_NEAR(area_of(openings_of(model)[1]), 0.5, 1e-5);
  EXPECT_NEAR(wall_of(model)->get_pierced_face_0()->get_area(), 8, 1e-5);
  model.scene->precompute();
  EXPECT_NEAR(openings_of(model)[0]->get_opaque_area(), 3.5, 1e-5);
}

TEST(qv_gbxml_openings, one_that_others_cover_is_dropped) {
  const auto model =
      read_wall(opening("big", pane(1, 3, 1, 2)) + opening("left", pane(1, 2, 1, 2)) +
                opening("right", pane(2, 3, 1, 2)));
  EXPECT_EQ(entry_of(model, "big").result, outcome::dropped);
  EXPECT_NE(entry_of(model, "big").reason.find("it lies within Opening \"left\", \"right\""),
            std::string::npos)
      << entry_of(model, "big").reason;
  EXPECT_EQ(openings_of(model).get_count(), 2);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, one_said_twice_is_made_once) {
  const auto model = read_wall(opening("o1", pane(1, 2, 1, 2)) +
                               opening("o2", reversed(pane(1, 2, 1, 2)), "OperableWindow"));
  ASSERT_EQ(openings_of(model).get_count(), 1);
  EXPECT_EQ(openings_of(model)[0]->get_source_ids(), (qv::qv_list<std::string>{"o1", "o2"}));
  EXPECT_EQ(entry_of(model, "o2").result, outcome::merged);
  EXPECT_NEAR(model.ledger.get_opening_balance().merged, 1, 1e-9);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, a_surface_listed_from_each_side_has_the_openings_of_both_sides) {
  const auto read_sides = [](const std::string& first, const std::string& second) {
    return qv_gbxml_text()
        .space("a")
        .space("b")
        .surface("w1", "InteriorWall", {"a", "b"}, qv_gbxml_text::planar(square) + first)
        .surface("w2", "InteriorWall", {"b", "a"}, qv_gbxml_text::planar(reversed(square)) + second)
        .read();
  };
  const std::string door = opening("d1", pane(1, 2, 0, 2), "NonSlidingDoor");
  const std::string door_again = opening("d2", reversed(pane(1, 2, 0, 2)), "NonSlidingDoor");
  const auto both = read_sides(door, door_again);
  ASSERT_EQ(openings_of(both).get_count(), 1);
  EXPECT_EQ(entry_of(both, "d2").result, outcome::merged);
  for (const auto& model : {read_sides(door, ""), read_sides("", door_again)}) {
    ASSERT_EQ(openings_of(model).get_count(), 1);
    EXPECT_EQ(openings_of(model)[0]->get_wall(), wall_of(model));
    EXPECT_NEAR(wall_of(model)->get_pierced_face_0()->get_area(), 10, 1e-5);
    EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
  }
}

TEST(qv_gbxml_openings, two_of_one_id_get_ids_of_their_own) {
  const auto model = read_wall(opening("o", pane(1, 2, 1, 2)) + opening("o", pane(3, 4, 1, 2)));
  ASSERT_EQ(openings_of(model).get_count(), 2);
  EXPECT_EQ(openings_of(model)[0]->get_unique_id(), "o");
  EXPECT_EQ(openings_of(model)[1]->get_unique_id(), "o-2");
}

TEST(qv_gbxml_openings, nothing_stops_the_light_where_nothing_fills_it) {
  const auto model = read_wall(opening("o", pane(1, 2, 1, 2), "Air"));
  const auto outlines = qv::qv_collect<qv::qvi_polygon>(openings_of(model)[0], "polygon");
  EXPECT_FALSE(outlines[0]->get_raytracing_layers().contains("simulation"));
  EXPECT_TRUE(outlines[0]->get_raytracing_layers().contains("bim"));
}

TEST(qv_gbxml_openings, on_a_surface_cut_into_triangles_it_becomes_several) {
  // A warped roof of 10 m by 10 m whose corner is 40 cm off.
  const auto model =
      qv_gbxml_text()
          .space("a")
          .surface("w", "Roof", {"a"},
                   qv_gbxml_text::planar({{0, 0, 3}, {10, 0, 3}, {10, 10, 3.4}, {0, 10, 3}}) +
                       opening("o", {{4, 4, 3.1}, {6, 4, 3.1}, {6, 6, 3.1}, {4, 6, 3.1}},
                               "FixedSkylight"))
          .read();
  ASSERT_EQ(openings_of(model).get_count(), 2);
  EXPECT_NE(openings_of(model)[0]->get_wall(), openings_of(model)[1]->get_wall());
  EXPECT_EQ(openings_of(model)[1]->get_name(), "o (2)");
  EXPECT_NEAR(area_of(openings_of(model)[0]) + area_of(openings_of(model)[1]), 4, 0.02);
  EXPECT_EQ(entry_of(model, "o").result, outcome::repaired);
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, they_move_with_their_campus) {
  const auto model = read_wall(opening("o", pane(1, 2, 1, 2)));
  model.scene->precompute();
  qv::qv_collect<qv::qvi_campus>(model.root, "campus")[0]->transform({10, 0, 0}, 90);
  model.scene->precompute();
  const qv::qvi_opening* item = openings_of(model)[0];
  EXPECT_NEAR(item->get_normal().y, 1, 1e-6);
  EXPECT_NEAR(item->get_full_area(), 1, 1e-5);
  EXPECT_NEAR(wall_of(model)->get_loss_area(), 11, 1e-5);
  for (const qv::qv_3dvector& corner :
       qv::qv_collect<qv::qvi_polygon>(item, "polygon")[0]->get_vertices())
    EXPECT_NEAR(corner.y, 0, 1e-5);
}

TEST(qv_gbxml_openings, in_a_shade_they_let_the_light_through) {
  const auto model =
      qv_gbxml_text()
          .space("a")
          .surface("s", "Shade", {}, qv_gbxml_text::planar(square) + opening("o", pane(1, 2, 1, 2)))
          .read();
  EXPECT_NEAR(wall_of(model)->get_pierced_face_0()->get_area(), 11, 1e-5);
  EXPECT_FALSE(wall_of(model)->get_pierced_face_0()->get_raytracing_layers().contains("bim"));
  // The object's own face, which the wall shows, has handed its shadow over to the pierced one.
  const auto objects = qv::qv_collect<qv::qvi_bim_object>(model.root, "bim_object");
  ASSERT_EQ(objects.get_count(), 1);
  EXPECT_EQ(qv::qvi_bim_object::root_ascendant(wall_of(model)->get_face_0()), objects[0]);
  EXPECT_EQ(objects[0]->get_layer_meshes("simulation").get_count(), 0);
  EXPECT_NEAR(model.ledger.get_balance().objects, 12, 1e-5);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
  EXPECT_TRUE(model.ledger.get_opening_balance().is_balanced());
}

TEST(qv_gbxml_openings, keeps_them_in_a_model_brought_to_the_origin) {
  const auto far = [](std::vector<point> corners) {
    for (point& p : corners) {
      p[0] += 651200;
      p[1] += 6862000;
    }
    return corners;
  };
  const auto model =
      qv_gbxml_text()
          .space("a")
          .surface("w", "ExteriorWall", {"a"},
                   qv_gbxml_text::planar(far(square)) + opening("o", far(pane(1, 2, 1, 2))))
          .read();
  ASSERT_EQ(openings_of(model).get_count(), 1);
  EXPECT_EQ(entry_of(model, "o").result, outcome::kept);
  EXPECT_NEAR(area_of(openings_of(model)[0]), 1, 1e-5);
}

// --- rectangles ---

namespace {

std::string rectangle(const std::string& coordinates, const std::string& more = {}) {
  return "<RectangularGeometry><CartesianPoint>" + coordinates + "</CartesianPoint>" + more +
         "<Width>1</Width><Height>2</Height></RectangularGeometry>";
}

std::string coordinates(const std::vector<double>& values) {
  std::string text;
  for (const double value : values)
    text += "<Coordinate>" + std::to_string(value) + "</Coordinate>";
  return text;
}

// Of the one opening's outline.
std::pair<point, point> extent_of(const qv::qv_gbxml_model& model) {
  point low = {1e9, 1e9, 1e9};
  point high = {-1e9, -1e9, -1e9};
  for (qv::qvi_polygon* outline : qv::qv_collect<qv::qvi_polygon>(openings_of(model)[0], "polygon"))
    for (const qv::qv_3dvector& corner : outline->get_vertices()) {
      const point p = {corner.x, corner.y, corner.z};
      for (std::size_t i = 0; i < 3; ++i) {
        low[i] = std::min(low[i], p[i]);
        high[i] = std::max(high[i], p[i]);
      }
    }
  return {low, high};
}

void expect_pane(const qv::qv_gbxml_model& model, double y, double z, const char* words) {
  SCOPED_TRACE(words);
  ASSERT_EQ(openings_of(model).get_count(), 1);
  const auto [low, high] = extent_of(model);
  EXPECT_NEAR(low[1], y, 1e-5);
  EXPECT_NEAR(high[1], y + 1, 1e-5);
  EXPECT_NEAR(low[2], z, 1e-5);
  EXPECT_NEAR(high[2], z + 2, 1e-5);
  EXPECT_EQ(entry_of(model, "o").result, outcome::repaired);
  EXPECT_NE(entry_of(model, "o").reason.find(words), std::string::npos)
      << entry_of(model, "o").reason;
  EXPECT_NEAR(entry_of(model, "o").area, 2, 1e-9);
}

const std::string facing_east = "<Azimuth>90</Azimuth><Tilt>90</Tilt>";

}  // namespace

TEST(qv_gbxml_openings, a_rectangle_is_measured_from_its_surfaces_lower_left_corner) {
  // From the east, south is on the left: y grows to the right.
  for (const auto& place : {std::vector<double>{1, 0.5}, std::vector<double>{1, 0.5, 0}})
    expect_pane(read_wall(opening("o", rectangle(coordinates(place)))), 1, 0.5,
                "its point is measured from its Surface's lower left corner");
}

TEST(qv_gbxml_openings, a_rectangle_with_a_direction_may_be_placed_in_the_model) {
  expect_pane(read_wall(opening("o", rectangle(coordinates({0, 2.5, 0.5}), facing_east))), 2.5, 0.5,
              "its point is its lower left corner in the model");
  expect_pane(read_wall(opening("o", rectangle(coordinates({0, 3.5, 2}), facing_east))), 3, 1,
              "its point is its middle in the model");
}

TEST(qv_gbxml_openings, a_rectangle_of_a_wall_that_faces_west_runs_the_other_way) {
  const auto model = qv_gbxml_text()
                         .space("a")
                         .surface("w", "ExteriorWall", {"a"},
                                  qv_gbxml_text::planar(reversed(square)) +
                                      opening("o", rectangle(coordinates({1, 0.5}))))
                         .read();
  expect_pane(model, 2, 0.5, "lower left corner");
}

TEST(qv_gbxml_openings, a_rectangle_takes_its_own_units) {
  const std::string feet =
      "<RectangularGeometry unit=\"Feet\"><CartesianPoint>" + coordinates({2, 1}) +
      "</CartesianPoint><Width unit=\"Meters\">1</Width><Height unit=\"Meters\">2</Height>"
      "</RectangularGeometry>";
  expect_pane(read_wall(opening("o", feet)), 0.6096, 0.3048, "lower left corner");
}

TEST(qv_gbxml_openings, a_rectangle_that_lacks_a_value_is_dropped) {
  const std::string reason = "it has no PlanarGeometry, and its RectangularGeometry lacks a value";
  expect_dropped(opening("o", rectangle(coordinates({1}))), reason, 0);
  expect_dropped(opening("o", rectangle("<Coordinate>x</Coordinate><Coordinate>1</Coordinate>")),
                 reason, 0);
  expect_dropped(opening("o", "<RectangularGeometry><Width>1</Width></RectangularGeometry>"),
                 reason, 0);
}

TEST(qv_gbxml_openings, a_rectangle_beside_the_wall_is_dropped_with_its_area) {
  expect_dropped(opening("o", rectangle(coordinates({7, 0.5}))), "it lies outside its Surface", 2);
}

TEST(qv_gbxml_openings, an_empty_planar_geometry_falls_back_on_the_rectangle) {
  expect_pane(read_wall(opening("o", "<PlanarGeometry><PolyLoop/></PlanarGeometry>" +
                                         rectangle(coordinates({1, 0.5})))),
              1, 0.5, "lower left corner");
}
