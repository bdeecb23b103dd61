#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <set>

#include "app/pictures/qv_coloring.h"
#include "app/pictures/qv_palette.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/materials/qvi_composition.h"
#include "bim/qv_load_bim_items.h"
#include "tests/support/qv_test_buildings.h"

namespace {

using qv::qv_picture_color;

// Relative luminance of sRGB (IEC 61966-2-1).
double luminance(const qv::qv_color& color) {
  const auto linear = [](double value) {
    return value <= 0.04045 ? value / 12.92 : std::pow((value + 0.055) / 1.055, 2.4);
  };
  return 0.2126 * linear(color.r) + 0.7152 * linear(color.g) + 0.0722 * linear(color.b);
}

TEST(qv_palette, has_values_whose_lightness_grows) {
  double last = -1;
  for (int i = 0; i <= 100; ++i) {
    const double found = luminance(qv::qv_value_color(i / 100.0));
    EXPECT_GT(found, last) << i;
    last = found;
  }
}

TEST(qv_palette, keeps_values_outside_at_the_ends) {
  EXPECT_EQ(qv::qv_value_color(-3), qv::qv_value_color(0));
  EXPECT_EQ(qv::qv_value_color(7), qv::qv_value_color(1));
  EXPECT_EQ(qv::qv_value_color(std::numeric_limits<double>::quiet_NaN()), qv::qv_value_color(0));
}

TEST(qv_palette, has_27_different_categories_and_goes_on) {
  std::set<std::tuple<float, float, float>> colors;
  for (std::size_t rank = 0; rank < 27; ++rank) {
    const qv::qv_color color = qv::qv_category_color(rank);
    colors.insert({color.r, color.g, color.b});
  }
  EXPECT_EQ(colors.size(), 27u);
  EXPECT_EQ(qv::qv_category_color(27), qv::qv_category_color(0));
}

// What red and green come to for a reader without the cones for long waves: Viénot, Brettel and
// Mollon, Digital video colourmaps for checking the legibility of displays by dichromats (1999),
// in linear light.
std::array<double, 3> seen_by_protanope(const qv::qv_color& color) {
  const auto linear = [](double value) { return std::pow(value, 2.2); };
  const double r = linear(color.r);
  const double g = linear(color.g);
  const double b = linear(color.b);
  return {0.11238 * r + 0.88762 * g, 0.11238 * r + 0.88762 * g, 0.00401 * r - 0.00401 * g + b};
}

TEST(qv_palette, has_categories_that_a_colour_blind_reader_tells_apart) {
  for (std::size_t i = 0; i < qv::qv_category_color_count; ++i) {
    for (std::size_t j = 0; j < i; ++j) {
      const auto a = seen_by_protanope(qv::qv_category_color(i));
      const auto b = seen_by_protanope(qv::qv_category_color(j));
      const double apart =
          std::hypot(std::cbrt(a[0]) - std::cbrt(b[0]), std::cbrt(a[2]) - std::cbrt(b[2]));
      EXPECT_GT(apart, 0.05) << i << " and " << j;
    }
  }
}

TEST(qv_coloring, rounds_up_to_figures_of_a_scale) {
  EXPECT_DOUBLE_EQ(qv::qv_round_up(0.9), 1);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(1), 1);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(1.01), 1.5);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(2.2), 2.5);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(26), 30);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(0.081), 0.1);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(0), 1);
  EXPECT_DOUBLE_EQ(qv::qv_round_up(std::numeric_limits<double>::infinity()), 1);
}

class qv_coloring_of_rooms : public testing::Test {
 protected:
  qv_coloring_of_rooms() {
    qv_load_bim_items();
    block_ = qv_test::add_block(scene_, {0, 0, 0}, 2, 1, 2);
    scene_.precompute();
    subject_.scene = &scene_;
  }
  qv::qv_coloring color(qv_picture_color what) {
    geometry_ = qv::qv_collect_surfaces(scene_, qv::qv_collect_export_groups(scene_), {});
    qv::qv_coloring found = qv::qv_color_parts(subject_, geometry_, what);
    EXPECT_EQ(found.colors.size(), geometry_.parts.size());
    return found;
  }
  static std::string text_of(const qv::qv_picture_key& key) {
    std::string text = key.title + ":";
    for (const auto& entry : key.entries) text += " " + entry.label + " " + entry.amount + ",";
    return text;
  }

  qv::qv_scene scene_;
  qv_test::block block_;
  qv::qv_picture_subject subject_;
  qv::qv_picture_geometry geometry_;
};

TEST_F(qv_coloring_of_rooms, counts_surfaces_by_contact_type) {
  // 2 × 1 × 2 rooms: 4 × 2 long and 2 × 2 short façades, 2 partitions, 2 floors of each kind.
  EXPECT_EQ(text_of(color(qv_picture_color::contact_type).key),
            "Contact type: outer wall 12, inner wall 2, lower floor 2, intermediate floor 2, "
            "roof 2,");
}

TEST_F(qv_coloring_of_rooms, counts_elements_by_type) {
  EXPECT_EQ(text_of(color(qv_picture_color::type).key), "Type: wall 14, floor 4, roof 2,");
}

TEST_F(qv_coloring_of_rooms, counts_rooms_once_by_zone_and_storey) {
  auto* const zone = new qv::qvi_zone;
  zone->set_name("Zone 1");
  scene_.add_child(zone, -1);
  for (std::size_t i = 0; i < 3; ++i) block_.spaces[i]->set_zone(zone);
  EXPECT_EQ(text_of(color(qv_picture_color::zone).key), "Zone (rooms): Zone 1 3, no zone 1,");
  for (std::size_t i = 0; i < 4; ++i) block_.spaces[i]->set_floor(i < 2 ? 0 : 1);
  EXPECT_EQ(text_of(color(qv_picture_color::storey).key), "Storey (rooms): 0 2, 1 2,");
}

TEST_F(qv_coloring_of_rooms, keeps_rooms_without_a_zone_apart_from_what_bounds_no_room) {
  qv_test::add_wall(scene_, qv::qvi_wall::wall_type::wall, nullptr, nullptr,
                    qv_test::rectangle({0, 90, 0}, {4, 90, 0}, {0, 90, 3}));
  scene_.precompute();
  EXPECT_EQ(text_of(color(qv_picture_color::zone).key), "Zone (rooms): no zone 4, no room ,");
}

TEST_F(qv_coloring_of_rooms, gives_a_composition_one_colour_wherever_it_is) {
  auto* const brick = new qv::qvi_composition;
  brick->set_name("brick");
  scene_.add_child(brick, -1);
  block_.walls[0]->set_composition(brick);
  block_.walls[5]->set_composition(brick);
  const qv::qv_coloring found = color(qv_picture_color::material);
  EXPECT_EQ(text_of(found.key), "Composition: brick 2, no composition 18,");
  for (std::size_t i = 0; i < geometry_.parts.size(); ++i) {
    const bool bricks =
        geometry_.parts[i].item == block_.walls[0] || geometry_.parts[i].item == block_.walls[5];
    EXPECT_EQ(found.colors[i], bricks ? qv::qv_category_color(0) : qv::qv_unknown_color());
  }
}

TEST_F(qv_coloring_of_rooms, spreads_u_values_over_a_round_scale) {
  subject_.u_values[block_.walls[0]] = 0.2;
  subject_.u_values[block_.walls[1]] = 1.1;
  const qv::qv_coloring found = color(qv_picture_color::u);
  ASSERT_TRUE(found.key.values.has_value());
  EXPECT_DOUBLE_EQ(found.key.values->low, 0);
  EXPECT_DOUBLE_EQ(found.key.values->high, 1.5);
  EXPECT_DOUBLE_EQ(found.key.values->step, 0.25);
  EXPECT_FALSE(found.key.values->exceeded);
  EXPECT_EQ(text_of(found.key), "U value, W/(m²·K): not known 18,");
  for (std::size_t i = 0; i < geometry_.parts.size(); ++i) {
    if (geometry_.parts[i].item != block_.walls[1]) continue;
    EXPECT_EQ(found.colors[i], qv::qv_loss_color(1.1 / 1.5));
  }
}

TEST_F(qv_coloring_of_rooms, does_not_let_one_wall_take_the_whole_scale) {
  for (qv::qvi_wall* wall : block_.walls) subject_.u_values[wall] = 0.4;
  auto* extra = qv_test::add_wall(scene_, qv::qvi_wall::wall_type::wall, nullptr, nullptr,
                                  qv_test::rectangle({0, 90, 0}, {4, 90, 0}, {0, 90, 3}));
  subject_.u_values[extra] = 50;
  for (int i = 0; i < 10; ++i) {
    auto* more = qv_test::add_wall(
        scene_, qv::qvi_wall::wall_type::wall, nullptr, nullptr,
        qv_test::rectangle({0, 90.0f + i, 0}, {4, 90.0f + i, 0}, {0, 90.0f + i, 3}));
    subject_.u_values[more] = 0.4;
  }
  scene_.precompute();
  const qv::qv_coloring found = color(qv_picture_color::u);
  ASSERT_TRUE(found.key.values.has_value());
  EXPECT_DOUBLE_EQ(found.key.values->high, 0.4);
  EXPECT_TRUE(found.key.values->exceeded);
}

TEST_F(qv_coloring_of_rooms, measures_thermal_bridges_by_type) {
  for (const float length : {3.0f, 4.5f}) {
    auto* const bridge = new qv::qvi_connexion;
    bridge->set_point_1({length, 0, 0});
    bridge->set_walls({block_.walls[0]});  // a façade alone: unknown, but it loses heat
    scene_.add_child(bridge, -1);
  }
  scene_.precompute();
  geometry_ = qv::qv_collect_bridges(scene_, qv::qv_collect_export_groups(scene_), {});
  const qv::qv_coloring found =
      qv::qv_color_parts(subject_, geometry_, qv_picture_color::thermal_bridges);
  EXPECT_EQ(text_of(found.key), "Thermal bridges: unknown 7.5 m,");
  EXPECT_TRUE(found.key.entries[0].line);
}

TEST_F(qv_coloring_of_rooms, shows_a_storey_without_what_lies_over_it) {
  for (std::size_t i = 0; i < 4; ++i) block_.spaces[i]->set_floor(i < 2 ? 0 : 1);
  for (const int storey : {0, 1}) {
    geometry_ = qv::qv_collect_surfaces(scene_, qv::qv_collect_export_groups(scene_), storey);
    const qv::qv_coloring found =
        qv::qv_color_parts(subject_, geometry_, qv_picture_color::contact_type);
    EXPECT_EQ(text_of(found.key), storey == 0
                                      ? "Contact type: outer wall 6, inner wall 1, lower floor 2,"
                                      : "Contact type: outer wall 6, inner wall 1, "
                                        "intermediate floor 2,");
  }
  EXPECT_THAT(qv::qv_list_storeys(scene_), testing::ElementsAre(0, 1));
}

TEST_F(qv_coloring_of_rooms, cuts_a_storey_at_walls_and_names_its_rooms) {
  for (std::size_t i = 0; i < 4; ++i) block_.spaces[i]->set_floor(i < 2 ? 0 : 1);
  block_.spaces[0]->set_name("Salon");
  geometry_ = qv::qv_collect_plan(scene_, qv::qv_collect_export_groups(scene_), 0);
  ASSERT_EQ(geometry_.labels.size(), 2u);
  EXPECT_EQ(geometry_.labels[0].name, "Salon");
  EXPECT_EQ(geometry_.labels[0].figure, "20.0 m²");  // 4 × 5 m
  std::size_t floors = 0;
  double low = 1e9;
  double high = -1e9;
  for (const qv::qv_picture_part& part : geometry_.parts) {
    if (part.lines.count == 0) ++floors;
    for (std::size_t i = 0; i < part.lines.count; ++i) {
      const double level =
          static_cast<double>(geometry_.line_ends[part.lines.first + i].z) + geometry_.origin.z;
      low = std::min(low, level);
      high = std::max(high, level);
    }
  }
  EXPECT_EQ(floors, 2u);
  EXPECT_NEAR(low, high, 1e-5);  // one level
  EXPECT_GT(low, 0.8);
  EXPECT_LT(high, 1.3);
}

TEST_F(qv_coloring_of_rooms, counts_each_wall_of_a_plan_once_and_no_floor) {
  for (std::size_t i = 0; i < 4; ++i) block_.spaces[i]->set_floor(i < 2 ? 0 : 1);
  for (const qv::qvi_wall* wall : block_.walls) subject_.u_values[wall] = 0.4;
  qv::qvi_wall* floor = block_.spaces[0]->get_floors()[0];
  subject_.u_values[floor] = 5;
  geometry_ = qv::qv_collect_plan(scene_, qv::qv_collect_export_groups(scene_), 0);
  const auto key_of = [&](qv_picture_color what) {
    return qv::qv_color_parts(subject_, geometry_, what).key;
  };
  // The inner wall is cut from either room.
  EXPECT_EQ(text_of(key_of(qv_picture_color::contact_type)),
            "Contact type: outer wall 6, inner wall 1,");
  EXPECT_EQ(text_of(key_of(qv_picture_color::type)), "Type: wall 7,");
  EXPECT_EQ(text_of(key_of(qv_picture_color::material)), "Composition: no composition 7,");
  EXPECT_EQ(text_of(key_of(qv_picture_color::zone)), "Zone (rooms): no zone 2,");
  EXPECT_DOUBLE_EQ(key_of(qv_picture_color::u).values->high, 0.4);
  subject_.u_values.clear();
  EXPECT_EQ(text_of(key_of(qv_picture_color::u)), "U value, W/(m²·K): not known 7,");
}

}  // namespace
