#include "bim/materials/qvi_composition.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>

#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_material.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using insulation = qvi_composition::composition_insulation;
using typology = qvi_composition::composition_typology;
using qv_test::recording_scene;

namespace {

// 20 cm of concrete (a matter) and an insulant, as a matter or as a product of its own thickness.
class qvi_composition_test : public ::testing::Test {
 protected:
  qvi_composition_test() {
    concrete_->set_conductivity(2.0f);
    insulant_->set_conductivity(0.04f);
    board_->set_thickness(0.2f);
    board_->set_resistance(5.0f);
    for (qv_item* item :
         std::initializer_list<qv_item*>{concrete_, insulant_, board_, composition_})
      scene_.add_child(item, -1);
    scene_.forget();
  }
  recording_scene scene_;
  qvi_matter* concrete_ = new qvi_matter;
  qvi_matter* insulant_ = new qvi_matter;
  qvi_material* board_ = new qvi_material;
  qvi_composition* composition_ = new qvi_composition;
};

TEST_F(qvi_composition_test, a_new_one_resists_nothing) {
  composition_->precompute();
  EXPECT_EQ(composition_->get_typology(), typology::wall);
  EXPECT_EQ(composition_->get_insulation(), insulation::none);
  EXPECT_EQ(composition_->get_thickness(), 0.0f);
  EXPECT_EQ(composition_->get_resistance(), 0.0f);
  EXPECT_EQ(composition_->get_U(), 999.0f);
}

TEST_F(qvi_composition_test, sums_the_layers_without_surface_resistances) {
  composition_->set_layers({concrete_, insulant_});
  composition_->set_layer_thicknesses({0.2f, 0.1f});
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 2.6f);  // 0.2 / 2 + 0.1 / 0.04
  EXPECT_FLOAT_EQ(composition_->get_U(), 1 / 2.6f);
  EXPECT_FLOAT_EQ(composition_->get_thickness(), 0.3f);
}

TEST_F(qvi_composition_test, takes_thickness_and_resistance_from_a_material) {
  board_->set_conductivity(99);  // does not count
  composition_->set_layers({concrete_, board_});
  composition_->set_layer_thicknesses({0.2f, 0.2f});
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 5.1f);
  EXPECT_FLOAT_EQ(composition_->get_thickness(), 0.4f);
}

TEST_F(qvi_composition_test, rewrites_the_listed_thickness_of_a_material) {
  composition_->set_layers({concrete_, board_});
  composition_->set_layer_thicknesses({0.2f, 0.15f});
  composition_->precompute();
  EXPECT_EQ(composition_->get_layer_thicknesses(), (qv_list<float>{0.2f, 0.2f}));
}

TEST_F(qvi_composition_test, gives_a_layer_without_thickness_ten_centimetres) {
  composition_->set_layers({concrete_, insulant_});
  composition_->set_layer_thicknesses({0.2f});
  scene_.forget();
  composition_->precompute();
  EXPECT_EQ(composition_->get_layer_thicknesses(), (qv_list<float>{0.2f, 0.1f}));
  EXPECT_EQ(scene_.count_changes(composition_, "layer_thicknesses"), 1);
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 2.6f);
}

TEST_F(qvi_composition_test, drops_surplus_thicknesses) {
  composition_->set_layers({concrete_});
  composition_->set_layer_thicknesses({0.2f, 0.1f, 0.3f});
  composition_->precompute();
  EXPECT_EQ(composition_->get_layer_thicknesses(), qv_list<float>{0.2f});
  composition_->set_layers({});
  composition_->precompute();
  EXPECT_EQ(composition_->get_layer_thicknesses().get_count(), 0);
}

TEST_F(qvi_composition_test, leaves_the_other_layers_their_thicknesses_where_one_is_destroyed) {
  composition_->set_layers({concrete_, insulant_});
  composition_->set_layer_thicknesses({0.2f, 0.12f});
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 3.1f);
  qv_item::destroy(concrete_);
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_thickness(), 0.12f);
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 3.0f);
}

TEST_F(qvi_composition_test, leaves_fitting_thicknesses_and_their_date_alone) {
  composition_->set_layers({concrete_, board_});
  composition_->set_layer_thicknesses({0.3f, 0.2f});
  const unsigned int date = composition_->get_layer_thicknesses_date();
  scene_.forget();
  composition_->precompute();
  EXPECT_EQ(composition_->get_layer_thicknesses_date(), date);
  EXPECT_TRUE(scene_.changed.empty());
}

TEST_F(qvi_composition_test, computes_again_only_after_a_change_of_the_scene) {
  composition_->set_layers({concrete_});
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 0.05f);  // 0.1 / 2
  concrete_->find_param("conductivity")->store_float(1);   // a change that nobody is told of
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 0.05f);
  scene_.add_child(new qv_test::probe_item, -1);
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_resistance(), 0.1f);
}

TEST_F(qvi_composition_test, computes_every_time_without_a_scene) {
  qvi_composition loose;
  loose.set_layers({concrete_});
  loose.precompute();
  EXPECT_FLOAT_EQ(loose.get_resistance(), 0.05f);
  concrete_->find_param("conductivity")->store_float(1);
  loose.precompute();
  EXPECT_FLOAT_EQ(loose.get_resistance(), 0.1f);
}

TEST_F(qvi_composition_test, a_conductivity_of_zero_makes_U_zero) {
  concrete_->set_conductivity(0);
  composition_->set_layers({concrete_});
  composition_->precompute();
  EXPECT_TRUE(std::isinf(composition_->get_resistance()));
  EXPECT_EQ(composition_->get_U(), 0.0f);
}

TEST_F(qvi_composition_test, next_to_no_resistance_counts_as_none) {
  composition_->set_layers({board_});
  board_->set_resistance(0.0009f);
  composition_->precompute();
  EXPECT_EQ(composition_->get_U(), 999.0f);
  board_->set_resistance(0.001f);  // not more than that
  composition_->precompute();
  EXPECT_EQ(composition_->get_U(), 999.0f);
  board_->set_resistance(0.0011f);
  composition_->precompute();
  EXPECT_FLOAT_EQ(composition_->get_U(), 1 / 0.0011f);
}

TEST_F(qvi_composition_test, tells_the_thickness_of_each_layer) {
  composition_->set_layers({concrete_, board_, insulant_});
  composition_->set_layer_thicknesses({0.2f, 0.7f});
  EXPECT_EQ(composition_->get_layer_thickness(0), 0.2f);
  EXPECT_EQ(composition_->get_layer_thickness(1), 0.2f);  // the board's own
  EXPECT_EQ(composition_->get_layer_thickness(2), 0.0f);  // the list is shorter
  EXPECT_EQ(composition_->get_layer_thickness(-1), 0.0f);
  EXPECT_EQ(composition_->get_layer_thickness(3), 0.0f);
}

TEST_F(qvi_composition_test, counts_the_walls_that_name_it) {
  EXPECT_EQ(composition_->get_wall_count(), 0);
  for (int i = 0; i < 3; ++i) {
    auto* wall = new qvi_wall;
    scene_.add_child(wall, -1);
    if (i < 2) wall->set_composition(composition_);
  }
  EXPECT_EQ(composition_->get_wall_count(), 2);
  composition_->remove();
  EXPECT_EQ(composition_->get_wall_count(), 0);
  qv_item::destroy(composition_);
}

TEST_F(qvi_composition_test, knows_whether_a_layer_is_selected) {
  EXPECT_FALSE(composition_->has_selected_layer());
  composition_->set_layers({concrete_, insulant_});
  EXPECT_FALSE(composition_->has_selected_layer());
  insulant_->set_selected(true);
  EXPECT_TRUE(composition_->has_selected_layer());
  insulant_->set_selected(false);
  composition_->set_selected(true);
  EXPECT_FALSE(composition_->has_selected_layer());
}

TEST_F(qvi_composition_test, a_copy_constructed_one_shares_its_results) {
  composition_->set_layers({concrete_});
  auto* copy = new qvi_composition(*composition_);
  composition_->precompute();
  EXPECT_FLOAT_EQ(copy->get_resistance(), 0.05f);
  qv_item::destroy(composition_);
  EXPECT_FLOAT_EQ(copy->get_resistance(), 0.05f);
  qv_item::destroy(copy);
}

// --- similarity ---

TEST_F(qvi_composition_test, compares_typology_insulation_and_name) {
  qvi_composition a;
  qvi_composition b;
  EXPECT_TRUE(a.is_similar_to(&a, true));
  EXPECT_FALSE(a.is_similar_to(nullptr, true));
  EXPECT_FALSE(a.is_similar_to(concrete_, false));
  EXPECT_TRUE(a.is_similar_to(&b, true));
  b.set_name("b");
  EXPECT_TRUE(a.is_similar_to(&b, false));
  EXPECT_FALSE(a.is_similar_to(&b, true));
  b.set_typology(typology::roof);
  EXPECT_FALSE(a.is_similar_to(&b, false));
  b.set_typology(typology::wall);
  b.set_insulation(insulation::exterior);
  EXPECT_FALSE(a.is_similar_to(&b, false));
}

TEST_F(qvi_composition_test, compares_the_layers_by_their_own_similarity) {
  qvi_matter twin;
  twin.set_conductivity(2.0005f);
  twin.set_name("twin");
  qvi_composition a;
  qvi_composition b;
  a.set_layers({concrete_, board_});
  b.set_layers({&twin, board_});
  EXPECT_TRUE(a.is_similar_to(&b, false));
  EXPECT_FALSE(a.is_similar_to(&b, true));  // the layers' names differ
  b.set_layers({board_, &twin});
  EXPECT_FALSE(a.is_similar_to(&b, false));
  b.set_layers({&twin});
  EXPECT_FALSE(a.is_similar_to(&b, false));
  b.set_layers({});
}

TEST_F(qvi_composition_test, deliberately_does_not_compare_the_thicknesses) {
  qvi_composition a;
  qvi_composition b;
  a.set_layers({concrete_});
  b.set_layers({concrete_});
  a.set_layer_thicknesses({0.1f});
  b.set_layer_thicknesses({0.5f});
  EXPECT_TRUE(a.is_similar_to(&b, true));
  // A product's thickness is compared with the product.
  qvi_material thicker;
  thicker.set_thickness(0.3f);
  thicker.set_resistance(5.0f);
  a.set_layers({board_});
  b.set_layers({&thicker});
  EXPECT_FALSE(a.is_similar_to(&b, false));
  b.set_layers({});
}

TEST_F(qvi_composition_test, agrees_with_a_plain_sum_on_random_layers) {
  constexpr unsigned int seed = 99;
  RecordProperty("seed", static_cast<int>(seed));
  std::mt19937 random(seed);
  const auto dice = [&](float low, float high) {
    return low + (high - low) * static_cast<float>(random() % 1000) / 999.0f;
  };
  for (int run = 0; run < 200; ++run) {
    qv_list<qvi_matter*> layers;
    qv_list<float> thicknesses;
    for (int i = static_cast<int>(random() % 6); i > 0; --i) {
      if (random() % 2 == 0) {
        auto* material = new qvi_material;
        material->set_thickness(dice(0.01f, 0.3f));
        material->set_resistance(dice(0.01f, 4));
        layers.append(material);
      } else {
        layers.append(new qvi_matter);
      }
      layers[layers.get_count() - 1]->set_conductivity(dice(0.02f, 2));
    }
    for (int i = static_cast<int>(random() % 8); i > 0; --i) thicknesses.append(dice(0.01f, 0.3f));

    double thickness = 0;
    double resistance = 0;
    qv_list<float> expected;
    for (int i = 0; i < layers.get_count(); ++i) {
      float t = i < thicknesses.get_count() ? thicknesses[i] : 0.1f;
      double r = static_cast<double>(t) / layers[i]->get_conductivity();
      if (auto* material = dynamic_cast<qvi_material*>(layers[i])) {
        t = material->get_thickness();
        r = material->get_resistance();
      }
      expected.append(t);
      thickness += t;
      resistance += r;
    }
    qvi_composition composition;
    composition.set_layers(layers);
    composition.set_layer_thicknesses(thicknesses);
    composition.precompute();
    constexpr double rounding = 1e-5;  // of a few single-precision sums below 100
    EXPECT_NEAR(composition.get_thickness(), thickness, rounding);
    EXPECT_NEAR(composition.get_resistance(), resistance, resistance * rounding);
    EXPECT_EQ(composition.get_layer_thicknesses(), expected);
    for (qvi_matter* layer : layers) qv_item::destroy(layer);
  }
}

}  // namespace
