#include <gtest/gtest.h>

#include <cmath>

#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_openings.h"

// What an opening is filled with, and its U, solar factor and light transmittance.

namespace {

using namespace qv;
using qv_test::add_new;
using qv_test::add_piece;
using qv_test::facade_rectangle;

class opening_physics : public testing::Test {
 protected:
  qvi_glazing* first_glazing() {
    for (qv_item* child : scene.get_children())
      if (child->has_type("glazing")) return static_cast<qvi_glazing*>(child);
    return nullptr;
  }
  qvi_opening_composition* compose(qvi_glazing* glazing) {
    auto* const composition = add_new<qvi_opening_composition>(scene);
    composition->set_glazing(glazing);
    opening->set_composition(composition);
    return composition;
  }

  qv_test::recording_scene scene;
  qvi_opening* opening = qv_test::add_opening(scene);
};

// --- the choice of the glazing ---

TEST_F(opening_physics, fills_pieces_without_shader_with_the_glazing_of_its_composition) {
  auto* const in_scene = qv_test::add_single_glazing(scene, 0.9f);
  auto* const catalogue = add_new<qv_item>(scene);
  auto* const chosen = qv_test::add_single_glazing(*catalogue, 0.5f);
  compose(chosen);
  auto* const bare = add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  auto* const glazed = add_piece(*opening, facade_rectangle(1, 0, 2, 1), in_scene);
  scene.precompute();
  for (auto* const piece : {bare, glazed}) {
    EXPECT_EQ(piece->get_front_shader(), chosen);
    EXPECT_EQ(piece->get_back_shader(), chosen);
  }
  EXPECT_NEAR(opening->get_glazing_area(), 2, 1e-5);
  EXPECT_NEAR(opening->get_solar_factor(), 0.5, 1e-5);
}

TEST_F(opening_physics, takes_the_first_glazing_among_the_scenes_children) {
  auto* const folder = add_new<qv_item>(scene);
  qv_test::add_single_glazing(*folder, 0.4f);  // not a child of the scene
  auto* const first = qv_test::add_single_glazing(scene, 0.5f);
  qv_test::add_single_glazing(scene, 0.6f);
  auto* const piece = add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  scene.precompute();
  EXPECT_EQ(piece->get_front_shader(), first);
  compose(nullptr);  // a composition without glazing decides nothing
  scene.precompute();
  EXPECT_EQ(piece->get_front_shader(), first);
  EXPECT_NEAR(opening->get_solar_factor(), 0.5, 1e-5);
}

TEST_F(opening_physics, makes_a_default_glazing_at_the_end_of_a_scene_without_one) {
  auto* const piece = add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  add_new<qv_item>(scene);
  scene.precompute();
  qvi_glazing* const made = first_glazing();
  ASSERT_NE(made, nullptr);
  EXPECT_EQ(scene.get_children()[scene.get_children().get_count() - 1], made);
  EXPECT_EQ(piece->get_front_shader(), made);
  EXPECT_EQ(piece->get_back_shader(), made);
  EXPECT_TRUE(made->get_layers().is_empty());
  EXPECT_EQ(scene.get_items("glazing").get_count(), 1);
  // Of no layer at all: the surface resistances alone, and everything passes.
  EXPECT_NEAR(opening->get_U(), 1 / (1 / 7.7 + 0.04), 1e-4);
  EXPECT_NEAR(opening->get_solar_factor(), 1, 1e-6);
  qv_test::add_opening(scene);
  scene.precompute();
  EXPECT_EQ(scene.get_items("glazing").get_count(), 1);
}

TEST_F(opening_physics, outside_a_scene_keeps_its_default_glazing_below_itself) {
  opening->remove();
  auto* const piece = add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  opening->precompute();
  opening->precompute();
  const auto glazings = opening->collect("glazing");
  ASSERT_EQ(glazings.get_count(), 1);
  EXPECT_EQ(glazings[0]->get_parent(), opening);
  EXPECT_EQ(opening->get_children()[opening->get_children().get_count() - 1], glazings[0]);
  EXPECT_EQ(piece->get_front_shader(), glazings[0]);
  EXPECT_NEAR(opening->get_solar_factor(), 1, 1e-6);
  qv_item::destroy(opening);
}

TEST_F(opening_physics, leaves_panels_frames_and_other_surfaces_alone) {
  auto* const glazing = qv_test::add_single_glazing(scene, 0.5f);
  qvi_shader* const others[] = {add_new<qvi_opaque>(scene), add_new<qvi_opening_shader>(scene),
                                add_new<qvi_shader>(scene)};
  compose(glazing);
  for (qvi_shader* const shader : others)
    add_piece(*opening, facade_rectangle(0, 0, 1, 1), shader)->set_back_shader(nullptr);
  scene.precompute();
  int i = 0;
  for (qv_item* const piece : opening->get_children()) {
    EXPECT_EQ(static_cast<qvi_mesh*>(piece)->get_front_shader(), others[i++]);
    EXPECT_EQ(static_cast<qvi_mesh*>(piece)->get_back_shader(), nullptr);
  }
}

// --- the figures ---

TEST_F(opening_physics, weighs_its_parts_by_their_visible_areas) {
  auto* const glazing = qv_test::add_single_glazing(scene, 0.6f, 0.05f);
  auto* const panel = add_new<qvi_opaque>(scene);          // U = 5
  auto* const frame = add_new<qvi_opening_shader>(scene);  // U = 0
  add_piece(*opening, facade_rectangle(0, 0, 2, 1), glazing);
  add_piece(*opening, facade_rectangle(2, 0, 3, 1), panel);
  add_piece(*opening, facade_rectangle(1.5f, 0, 2, 1), frame);
  scene.precompute();
  const double hi = 0.2 * 4.1 / 0.837 + 3.6;
  const double U_glazing = 1 / (1 / hi + 0.04 + 0.1);
  EXPECT_NEAR(opening->get_U(), (1.5 * U_glazing + 1 * 5.0 + 0.5 * 0) / 3, 1e-4);
  EXPECT_NEAR(opening->get_solar_factor(), 1.5 * 0.6 / 3, 1e-5);
  EXPECT_NEAR(opening->get_visible_transmittance(), 1.5 * 0.6 / 3, 1e-5);
}

TEST_F(opening_physics, takes_U_at_the_slope_of_its_normal) {
  auto* const glazing = qv_test::add_double_glazing(scene);
  qv_polygon flat({0, 0, 0}, {0, 0, 1});
  flat.add_contour({{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}});
  add_piece(*opening, flat, glazing);
  const auto U_towards = [&](const qv_3dvector& normal) {
    opening->set_normal(normal.normalized());
    scene.precompute();
    return opening->get_U();
  };
  const auto expect_slope = [&](const qv_3dvector& normal, float slope) {
    const float U = U_towards(normal);
    EXPECT_NEAR(U, glazing->get_U(slope), 1e-5);
  };
  expect_slope({0, 0, 1}, 0);
  expect_slope({0, 0.3f, 1}, 0);    // 16.7°
  expect_slope({0, 0.5f, 1}, 45);   // 26.6°
  expect_slope({0, -1, 0.5f}, 45);  // 63.4°
  expect_slope({0, -1, 0.3f}, 90);  // 73.3°
  expect_slope({0, 0.3f, -1}, 90);  // looks down: the tilt is above 67.5° too
  EXPECT_GT(glazing->get_U(0), glazing->get_U(45));
  EXPECT_GT(glazing->get_U(45), glazing->get_U(90));
}

TEST_F(opening_physics, asks_its_shaders_for_fresh_figures) {
  auto* const glazing = qv_test::add_single_glazing(scene, 0.6f);
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  scene.precompute();
  static_cast<qvi_glazing_glass*>(glazing->get_layers()[0])->set_solar_transmittance(0.3f);
  opening->precompute();  // before the glazing's own turn
  EXPECT_NEAR(opening->get_solar_factor(),
              0.3 + 0.3 * (0.2 * 4.1 / 0.837 + 3.6) / (0.2 * 4.1 / 0.837 + 3.6 + 25), 1e-5);
}

TEST_F(opening_physics, without_area_has_figures_that_are_no_numbers) {
  scene.precompute();
  EXPECT_FALSE(std::isfinite(opening->get_U()));
  EXPECT_FALSE(std::isfinite(opening->get_solar_factor()));
  EXPECT_FALSE(std::isfinite(opening->get_visible_transmittance()));
  opening->set_forced_U(2.0f);
  EXPECT_EQ(opening->get_U(), 2.0f);
}

TEST_F(opening_physics, has_figures_of_nothing_before_it_is_computed) {
  EXPECT_EQ(opening->get_U(), 0.0f);
  EXPECT_EQ(opening->get_solar_factor(), 0.0f);
  EXPECT_EQ(opening->get_visible_transmittance(), 0.0f);
}

struct forced_value {
  const char* name;
  void (*set_own)(qvi_opening&, float);
  void (*set_common)(qvi_opening_composition&, float);
  float (*get)(const qvi_opening&);
};
class forced_opening : public opening_physics, public testing::WithParamInterface<forced_value> {};

TEST_P(forced_opening, shows_its_own_value_then_its_compositions_then_the_computed_one) {
  auto* const glazing = qv_test::add_single_glazing(scene, 0.6f);
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  auto* const composition = compose(glazing);
  scene.precompute();
  const auto value = [&] { return GetParam().get(*opening); };
  const auto own = [&](float v) { GetParam().set_own(*opening, v); };
  const auto common = [&](float v) { GetParam().set_common(*composition, v); };
  const float computed = value();
  EXPECT_GT(computed, 0.1f);
  common(0.25f);
  EXPECT_EQ(value(), 0.25f);
  own(0.75f);
  EXPECT_EQ(value(), 0.75f);
  own(0.0f);  // counts as forced
  EXPECT_EQ(value(), 0.0f);
  own(-0.001f);
  EXPECT_EQ(value(), 0.25f);
  common(0.0f);
  EXPECT_EQ(value(), 0.0f);
  common(-5.0f);
  EXPECT_EQ(value(), computed);
  common(0.25f);
  opening->set_composition(nullptr);
  EXPECT_EQ(value(), computed);
}

INSTANTIATE_TEST_SUITE_P(
    values, forced_opening,
    testing::Values(
        forced_value{"U", [](qvi_opening& o, float v) { o.set_forced_U(v); },
                     [](qvi_opening_composition& c, float v) { c.set_forced_U(v); },
                     [](const qvi_opening& o) { return o.get_U(); }},
        forced_value{"solar_factor", [](qvi_opening& o, float v) { o.set_forced_solar_factor(v); },
                     [](qvi_opening_composition& c, float v) { c.set_forced_solar_factor(v); },
                     [](const qvi_opening& o) { return o.get_solar_factor(); }},
        forced_value{
            "visible_transmittance",
            [](qvi_opening& o, float v) { o.set_forced_visible_transmittance(v); },
            [](qvi_opening_composition& c, float v) { c.set_forced_visible_transmittance(v); },
            [](const qvi_opening& o) { return o.get_visible_transmittance(); }}),
    [](const auto& value) { return std::string(value.param.name); });

// --- when it is computed ---

TEST_F(opening_physics, is_right_after_the_pass_in_which_its_pieces_got_their_glazing) {
  auto* const glazing = qv_test::add_single_glazing(scene, 0.6f);
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  scene.precompute();
  EXPECT_NEAR(opening->get_glazing_area(), 1, 1e-5);
  EXPECT_NEAR(opening->get_U(), glazing->get_U(90), 1e-5);
}

TEST_F(opening_physics, does_nothing_in_a_scene_that_did_not_change) {
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  scene.precompute();
  scene.forget();
  scene.precompute();
  opening->precompute();
  EXPECT_TRUE(scene.changed.empty());
  EXPECT_TRUE(scene.added.empty());
}

TEST_F(opening_physics, gives_its_pieces_a_new_glazing_when_theirs_is_gone) {
  auto* const gone = qv_test::add_single_glazing(scene, 0.6f);
  auto* const composition = compose(gone);
  auto* const piece = add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  scene.precompute();
  ASSERT_EQ(piece->get_front_shader(), gone);
  qv_item::destroy(gone);
  EXPECT_EQ(composition->get_glazing(), nullptr);
  scene.precompute();
  ASSERT_NE(piece->get_front_shader(), nullptr);
  EXPECT_EQ(piece->get_front_shader(), first_glazing());
  EXPECT_NEAR(opening->get_solar_factor(), 1, 1e-6);
  EXPECT_NEAR(opening->get_glazing_area(), 1, 1e-5);
}

}  // namespace
