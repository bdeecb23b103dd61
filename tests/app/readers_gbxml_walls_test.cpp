#include "app/readers/qv_gbxml_walls.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <map>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;
using point = qv_gbxml_text::point;
using wall_type = qv::qvi_wall::wall_type;

std::map<std::string, qv::qvi_wall*> walls_of(const qv::qv_gbxml_model& model) {
  std::map<std::string, qv::qvi_wall*> walls;
  for (qv::qvi_wall* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall"))
    walls[wall->get_unique_id()] = wall;
  return walls;
}

// Turns over every PolyLoop of the text whose index has its bit in `mask`, −1 for all.
std::string turn_loops(const std::string& text, unsigned mask) {
  std::string result;
  std::size_t at = 0;
  for (unsigned index = 0;; ++index) {
    const std::size_t open = text.find("<PolyLoop>", at);
    if (open == std::string::npos) break;
    const std::size_t begin = open + 10;
    const std::size_t end = text.find("</PolyLoop>", begin);
    result += text.substr(at, begin - at);
    const std::string loop = text.substr(begin, end - begin);
    std::string turned;
    for (std::size_t p = 0; p < loop.size();) {
      const std::size_t next = loop.find("</CartesianPoint>", p) + 17;
      turned.insert(0, loop, p, next - p);
      p = next;
    }
    result += (mask >> index & 1U) != 0 ? turned : loop;
    at = end;
  }
  return result + text.substr(at);
}

}  // namespace

TEST(qv_gbxml_walls, normals_point_away_from_the_first_space) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  const auto model = text.read();
  auto walls = walls_of(model);
  ASSERT_EQ(walls.size(), 6U);
  EXPECT_EQ(walls["a-floor"]->get_normal(), qv::qv_3dvector(0, 0, -1));
  EXPECT_EQ(walls["a-roof"]->get_normal(), qv::qv_3dvector(0, 0, 1));
  EXPECT_EQ(walls["a-south"]->get_normal(), qv::qv_3dvector(0, -1, 0));
  EXPECT_EQ(walls["a-east"]->get_normal(), qv::qv_3dvector(1, 0, 0));
  EXPECT_EQ(walls["a-floor"]->get_wall_type(), wall_type::floor);
  EXPECT_EQ(walls["a-roof"]->get_wall_type(), wall_type::roof);
  EXPECT_EQ(walls["a-east"]->get_wall_type(), wall_type::wall);
  EXPECT_TRUE(model.spaces[0].closed);
  EXPECT_NEAR(model.spaces[0].enclosed_volume, 30, 1e-9);
  EXPECT_NEAR(model.spaces[0].floor_area, 12, 1e-9);
  EXPECT_EQ(model.spaces[0].surface_count, 6);
}

TEST(qv_gbxml_walls, normals_come_out_the_same_however_the_polygons_run) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  for (const unsigned mask : {1U, 2U, 5U, 21U, 42U, 62U, 63U}) {
    const auto model = qv::qv_read_gbxml_bytes("t.xml", turn_loops(text.text(), mask));
    auto walls = walls_of(model);
    EXPECT_EQ(walls["a-floor"]->get_normal(), qv::qv_3dvector(0, 0, -1)) << mask;
    EXPECT_EQ(walls["a-roof"]->get_normal(), qv::qv_3dvector(0, 0, 1)) << mask;
    EXPECT_EQ(walls["a-west"]->get_normal(), qv::qv_3dvector(-1, 0, 0)) << mask;
    EXPECT_NEAR(model.spaces[0].enclosed_volume, 30, 1e-9);
    EXPECT_TRUE(model.spaces[0].closed);
    const auto count = static_cast<std::size_t>(__builtin_popcount(mask));
    EXPECT_EQ(model.ledger.get_count(kind::surface, outcome::repaired), count);
    EXPECT_TRUE(model.ledger.get_balance().is_balanced());
    for (const auto& [id, wall] : walls)
      EXPECT_EQ(wall->get_face_0()->get_normal(), wall->get_normal()) << id;
  }
}

TEST(qv_gbxml_walls, one_face_serves_both_sides_and_lies_under_its_wall) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  const auto model = text.read();
  for (const auto& [id, wall] : walls_of(model)) {
    EXPECT_EQ(wall->get_face_0(), wall->get_face_1());
    EXPECT_EQ(wall->get_face_0()->get_parent(), wall);
    EXPECT_EQ(wall->get_face(), nullptr);
    EXPECT_EQ(wall->get_face_0()->get_raytracing_layers(),
              (qv::qv_list<std::string>{"simulation", "picking", "bim"}));
    EXPECT_EQ(wall->get_face_0()->get_rendering_layers(), (qv::qv_list<std::string>{"main"}));
    EXPECT_EQ(wall->get_name(), id);
    EXPECT_EQ(wall->get_source_ids()[0], id);
  }
}

TEST(qv_gbxml_walls, the_normal_of_an_inner_floor_tells_which_space_is_above) {
  // The same slab between "low" and "high", listed with either space first and drawn either way:
  // its normal always points from its first space to its second.
  for (const bool low_first : {true, false})
    for (const bool turned : {true, false}) {
      std::vector<point> slab = {{0, 0, 3}, {4, 0, 3}, {4, 3, 3}, {0, 3, 3}};
      if (turned) std::reverse(slab.begin(), slab.end());
      qv_gbxml_text text;
      text.box("low", {0, 0, 0}, {4, 3, 3}).box("high", {0, 0, 3}, {4, 3, 6});
      std::string bytes = text.text();
      // The two rooms' own lids make way for the slab.
      for (const char* lid : {"low-roof", "high-floor"}) {
        const auto begin = bytes.find("<Surface id=\"" + std::string(lid));
        bytes.erase(begin, bytes.find("</Surface>", begin) + 10 - begin);
      }
      const std::string first = low_first ? "low" : "high";
      const std::string second = low_first ? "high" : "low";
      std::string surface = "<Surface id=\"slab\" surfaceType=\"InteriorFloor\">";
      for (const std::string& space : {first, second})
        surface.append("<AdjacentSpaceId spaceIdRef=\"").append(space).append("\"/>");
      surface.append(qv_gbxml_text::planar(slab)).append("</Surface>");
      bytes.insert(bytes.find("</Campus>"), surface);
      const auto model = qv::qv_read_gbxml_bytes("t.xml", bytes);
      const auto* wall = walls_of(model)["slab"];
      EXPECT_EQ(wall->get_space_0()->get_name(), first);
      EXPECT_EQ(wall->get_space_1()->get_name(), second);
      EXPECT_EQ(wall->get_normal().z, low_first ? 1.0F : -1.0F);
      EXPECT_EQ(wall->get_wall_type(), wall_type::floor);
      for (const qv::qv_source_space& space : model.spaces) {
        EXPECT_TRUE(space.closed) << space.id;
        EXPECT_NEAR(space.enclosed_volume, 36, 1e-9);
        EXPECT_NEAR(space.floor_area, 12, 1e-9);
      }
    }
}

TEST(qv_gbxml_walls, types_tell_up_from_down_when_the_shell_does_not) {
  // A floor drawn upwards and a roof drawn downwards, with nothing between them.
  const std::vector<point> upwards = {{0, 0, 0}, {4, 0, 0}, {4, 3, 0}, {0, 3, 0}};
  const std::vector<point> downwards = {{0, 0, 3}, {0, 3, 3}, {4, 3, 3}, {4, 0, 3}};
  const auto model = qv_gbxml_text()
                         .space("a")
                         .polygon("floor", "RaisedFloor", {"a"}, upwards)
                         .polygon("roof", "Roof", {"a"}, downwards)
                         .read();
  auto walls = walls_of(model);
  EXPECT_EQ(walls["floor"]->get_normal().z, -1);
  EXPECT_EQ(walls["roof"]->get_normal().z, 1);
  EXPECT_FALSE(model.spaces[0].closed);
}

TEST(qv_gbxml_walls, a_lone_surface_keeps_the_direction_of_the_file) {
  const auto model =
      qv_gbxml_text()
          .space("a")
          .polygon("w", "ExteriorWall", {"a"}, {{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}})
          .read();
  EXPECT_EQ(walls_of(model)["w"]->get_normal(), qv::qv_3dvector(0, -1, 0));
}

TEST(qv_gbxml_walls, a_lone_surface_follows_an_inverted_file) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5}).box("b", {9, 0, 0}, {14, 3, 2.5}).space("c");
  text.polygon("w", "ExteriorWall", {"c"}, {{50, 0, 0}, {54, 0, 0}, {54, 0, 3}, {50, 0, 3}});
  const auto model = qv::qv_read_gbxml_bytes("t.xml", turn_loops(text.text(), 0xFFFU));
  EXPECT_EQ(walls_of(model)["w"]->get_normal(), qv::qv_3dvector(0, 1, 0));
  EXPECT_EQ(walls_of(model)["b-roof"]->get_normal(), qv::qv_3dvector(0, 0, 1));
}

TEST(qv_gbxml_walls, a_surface_cut_into_triangles_becomes_as_many_walls_and_stays_closed) {
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 3, 2.5});
  std::string bytes = text.text();
  // The roof's corner over (4, 3) goes up by 1 m, in the roof and in the walls that meet there.
  const std::string corner =
      "<Coordinate>4.000000</Coordinate><Coordinate>3.000000</Coordinate><Coordinate>";
  for (std::size_t at = bytes.find(corner + "2.5"); at != std::string::npos;
       at = bytes.find(corner + "2.5", at))
    bytes.replace(at + corner.size(), 8, "3.500000");
  const auto model = qv::qv_read_gbxml_bytes("t.xml", bytes);
  EXPECT_EQ(walls_of(model).size(), 7U);
  EXPECT_TRUE(walls_of(model).contains("a-roof-2"));
  EXPECT_EQ(walls_of(model)["a-roof"]->get_name(), "a-roof (1)");
  EXPECT_TRUE(model.spaces[0].closed);
  // 4 × 3 × 2.5, and over it a pyramid-like wedge: two triangles of 6 m² that meet along a diagonal
  // of the roof with mean heights (0 + 1 + 0) / 3 each, or one of them flat.
  EXPECT_GT(model.spaces[0].enclosed_volume, 31.9);
  EXPECT_LT(model.spaces[0].enclosed_volume, 34.1);
  EXPECT_TRUE(model.ledger.get_balance().is_balanced());
}

TEST(qv_gbxml_walls, an_air_boundary_measures_but_casts_no_shadow) {
  const auto model =
      qv_gbxml_text()
          .space("a")
          .space("b")
          .polygon("w", "Air", {"a", "b"}, {{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}})
          .read();
  EXPECT_EQ(walls_of(model)["w"]->get_face_0()->get_raytracing_layers(),
            (qv::qv_list<std::string>{"picking", "bim"}));
}

TEST(qv_gbxml_walls, a_sloped_roof_closes_and_encloses_its_exact_volume) {
  // A gable over 6 × 4 m, eaves at 2 m, ridge at 4 m along x: 6 · (4 · 2 + 4 · 2 / 2) = 72 m³.
  qv_gbxml_text text;
  text.space("a");
  text.polygon("floor", "SlabOnGrade", {"a"}, {{0, 0, 0}, {0, 4, 0}, {6, 4, 0}, {6, 0, 0}});
  text.polygon("south", "ExteriorWall", {"a"}, {{0, 0, 0}, {6, 0, 0}, {6, 0, 2}, {0, 0, 2}});
  text.polygon("north", "ExteriorWall", {"a"}, {{6, 4, 0}, {0, 4, 0}, {0, 4, 2}, {6, 4, 2}});
  text.polygon("east", "ExteriorWall", {"a"},
               {{6, 0, 0}, {6, 4, 0}, {6, 4, 2}, {6, 2, 4}, {6, 0, 2}});
  text.polygon("west", "ExteriorWall", {"a"},
               {{0, 4, 0}, {0, 0, 0}, {0, 0, 2}, {0, 2, 4}, {0, 4, 2}});
  text.polygon("rs", "Roof", {"a"}, {{0, 0, 2}, {6, 0, 2}, {6, 2, 4}, {0, 2, 4}});
  text.polygon("rn", "Roof", {"a"}, {{6, 4, 2}, {0, 4, 2}, {0, 2, 4}, {6, 2, 4}});
  const auto model = text.read();
  EXPECT_TRUE(model.spaces[0].closed);
  EXPECT_NEAR(model.spaces[0].enclosed_volume, 72, 1e-9);
}
