#include <gtest/gtest.h>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_covering.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/imported/qvi_bim_custom_object.h"
#include "bim/imported/qvi_bim_piercing.h"
#include "bim/imported/qvi_bim_polygon.h"
#include "bim/imported/qvi_bim_property.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material_mix.h"
#include "bim/materials/qvi_opaque.h"
#include "bim/project/qvi_bim_configuration.h"
#include "bim/project/qvi_bim_root.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/items/qv_scene.h"

using namespace qv;

namespace {

// Every class of the module, made and copied by its copy constructor.
template <class T>
class copying : public ::testing::Test {
 protected:
  // In a scene, computed once, so that it holds whatever it keeps beside its parameters.
  T* make_source() {
    auto* source = new T;
    scene_.add_child(source, -1);
    source->precompute();
    return source;
  }
  static void expect_shared(const T& a, const T& b) {
    EXPECT_EQ(a.get_item_type(), b.get_item_type());
    ASSERT_EQ(a.get_param_count(), b.get_param_count());
    for (int i = 0; i < a.get_param_count(); ++i) EXPECT_EQ(a.get_param(i), b.get_param(i));
  }
  // Runs what the class can do, which touches its record.
  static void use(T& item) {
    item.precompute();
    item.get_html_information();
    item.get_local_bounding_box();
    item.is_similar_to(&item, true);
  }
  qv_scene scene_;
};

using classes = ::testing::Types<
    qvi_bim_configuration, qvi_bim_root, qvi_bim_property, qvi_bim_object, qvi_bim_custom_object,
    qvi_bim_polygon, qvi_bim_piercing, qvi_usage, qvi_usage_heating_cooling,
    qvi_usage_internal_gains, qvi_usage_lighting, qvi_usage_ventilation, qvi_campus, qvi_building,
    qvi_zone, qvi_xspace, qvi_space, qvi_wall, qvi_opening, qvi_opening_composition, qvi_connexion,
    qvi_covering, qvi_matter, qvi_material, qvi_material_mix, qvi_composition, qvi_glazing_layer,
    qvi_glazing_gaz, qvi_glazing_glass, qvi_glazing_interlayer, qvi_glazing_pv, qvi_opening_shader,
    qvi_glazing, qvi_opaque, qvi_limit_condition>;
TYPED_TEST_SUITE(copying, classes);

TYPED_TEST(copying, by_the_constructor_shares_the_parameters) {
  auto* source = this->make_source();
  auto* copy = new TypeParam(*source);
  this->expect_shared(*source, *copy);
  EXPECT_EQ(copy->get_scene(), nullptr);
  qv_item::destroy(copy);
}

TYPED_TEST(copying, lets_either_be_destroyed_first) {
  for (bool source_first : {true, false}) {
    auto* source = this->make_source();
    auto* copy = new TypeParam(*source);
    TypeParam* survivor = source_first ? copy : source;
    qv_item::destroy(source_first ? source : copy);
    this->use(*survivor);
    qv_item::destroy(survivor);
  }
}

TYPED_TEST(copying, by_assignment_shares_the_parameters_too) {
  auto* source = this->make_source();
  auto* target = this->make_source();
  *target = *source;
  this->expect_shared(*source, *target);
  qv_item::destroy(source);
  this->use(*target);
  qv_item::destroy(target);
}

TYPED_TEST(copying, virtually_gives_a_new_item_of_the_class) {
  auto* source = this->make_source();
  qv_item* copy = source->copy();
  ASSERT_NE(dynamic_cast<TypeParam*>(copy), nullptr);
  EXPECT_EQ(copy->get_item_type(), source->get_item_type());
  for (int i = 0; i < copy->get_param_count(); ++i)
    EXPECT_NE(copy->get_param(i), source->get_param(i));
  qv_item::destroy(copy);
}

// A copy in the scene says what its source says, and so does it when the source is gone.
TEST(copying_in_a_scene, counts_where_the_source_counts) {
  qv_scene scene;
  auto* kind = new qvi_opening_composition;
  auto* concrete = new qvi_matter;
  auto* composition = new qvi_composition;
  auto* wall = new qvi_wall;
  auto* opening = new qvi_opening;
  for (qv_item* item : std::initializer_list<qv_item*>{kind, concrete, composition, wall, opening})
    scene.add_child(item, -1);
  composition->set_layers({concrete});
  wall->set_composition(composition);
  opening->set_composition(kind);
  opening->set_wall(wall);

  auto* opening_copy = new qvi_opening(*opening);
  EXPECT_EQ(kind->get_opening_count(), 1);
  for (qv_item* copy : std::initializer_list<qv_item*>{opening_copy, new qvi_wall(*wall),
                                                       new qvi_composition(*composition)})
    scene.add_child(copy, -1);
  EXPECT_EQ(kind->get_opening_count(), 2);
  EXPECT_EQ(composition->get_wall_count(), 2);
  EXPECT_EQ(concrete->get_composition_count(), 2);
  wall->precompute();
  EXPECT_EQ(wall->get_openings(), (qv_list<qvi_opening*>{opening, opening_copy}));

  qv_item::destroy(opening);
  EXPECT_EQ(kind->get_opening_count(), 1);
  wall->precompute();
  EXPECT_EQ(wall->get_openings(), qv_list<qvi_opening*>{opening_copy});
}

}  // namespace
