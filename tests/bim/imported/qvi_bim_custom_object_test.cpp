#include "bim/imported/qvi_bim_custom_object.h"

#include <gtest/gtest.h>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_shader.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;
using qv_test::rectangle;

namespace {

class qvi_bim_custom_object_test : public ::testing::Test {
 protected:
  qvi_bim_custom_object_test() {
    scene_.add_child(object_, -1);
    // 3 × 2 m at height 1, facing up.
    base_ = qv_test::add_face(scene_, rectangle({0, 0, 1}, {3, 0, 1}, {0, 2, 1}));
    object_->set_base_polygon(base_);
  }
  template <class T>
  T* add() {
    auto* item = new T;
    scene_.add_child(item, -1);
    return item;
  }
  qv_list<qvi_solid*> solids() const { return qv_collect<qvi_solid>(object_, "solid"); }
  qvi_solid* solid() const { return solids().get_count() == 1 ? solids()[0] : nullptr; }
  void expect_box(const qv_3dvector& min, const qv_3dvector& max) {
    ASSERT_NE(solid(), nullptr);
    const qv_box box = solid()->get_local_bounding_box();
    EXPECT_NEAR((box.get_min() - min).length(), 0, 1e-5f);
    EXPECT_NEAR((box.get_max() - max).length(), 0, 1e-5f);
  }
  // Whether `change` makes the next precompute build the solid anew.
  template <class Change>
  bool is_rebuilt_after(const Change& change) {
    object_->precompute();
    qv_solid nothing;
    solid()->load_from_solid(&nothing);
    object_->precompute();
    EXPECT_EQ(solid()->get_area(), 0.0f) << "rebuilt without any change";
    change();
    object_->precompute();
    return solid()->get_area() > 0;
  }

  qv_test::recording_scene scene_;
  qvi_bim_custom_object* object_ = new qvi_bim_custom_object;
  qvi_polygon* base_ = nullptr;
};

TEST_F(qvi_bim_custom_object_test, extrudes_its_base_along_the_normal) {
  object_->set_thickness(0.5f);
  object_->precompute();
  expect_box({0, 0, 1}, {3, 2, 1.5f});
  EXPECT_NEAR(solid()->get_area(), 2 * 6 + 10 * 0.5f, 1e-4f);
}

TEST_F(qvi_bim_custom_object_test, of_negative_thickness_extrudes_against_the_normal) {
  object_->set_thickness(-0.25f);
  object_->precompute();
  expect_box({0, 0, 0.75f}, {3, 2, 1});
}

TEST_F(qvi_bim_custom_object_test, is_a_tenth_of_a_metre_thick_at_first) {
  object_->precompute();
  expect_box({0, 0, 1}, {3, 2, 1.1f});
}

TEST_F(qvi_bim_custom_object_test, of_a_turned_base_extrudes_the_way_that_it_looks) {
  object_->set_thickness(0.5f);
  base_->reverse();
  object_->precompute();
  expect_box({0, 0, 0.5f}, {3, 2, 1});
}

TEST_F(qvi_bim_custom_object_test, stands_where_the_instance_of_its_base_stands) {
  auto* instance = add<qvi_mesh_instance>();
  instance->set_mesh(base_);
  instance->set_matrix(qv_matrix::translation({10, 0, 0}) * qv_matrix::rotation(0, 90));
  object_->set_base_polygon(instance);
  object_->set_thickness(0.5f);
  object_->precompute();
  // About the x axis y becomes z and z becomes −y.
  expect_box({10, -1.5f, 0}, {13, -1, 2});
  EXPECT_EQ(base_->get_normal(), qv_3dvector(0, 0, 1));  // the base itself stays
}

TEST_F(qvi_bim_custom_object_test, makes_one_solid_with_one_shader_as_its_last_children) {
  auto* first = new qvi_shader;
  object_->add_child(first, -1);
  object_->precompute();
  const auto& children = object_->get_children();
  ASSERT_EQ(children.get_count(), 3);
  EXPECT_EQ(children[0], first);
  ASSERT_TRUE(children[1]->has_type("solid"));
  ASSERT_TRUE(children[2]->has_exact_type("shader"));
  EXPECT_EQ(solid()->get_front_shader(), children[2]);
  EXPECT_EQ(solid()->get_back_shader(), children[2]);
  auto fresh = qv_test::make_item<qvi_shader>();
  EXPECT_TRUE(children[2]->is_similar_to(fresh.get(), true));
}

TEST_F(qvi_bim_custom_object_test, keeps_its_solid_and_its_shaders_when_it_changes) {
  object_->precompute();
  qvi_solid* const kept = solid();
  auto* paint = add<qvi_shader>();
  kept->set_front_shader(paint);
  object_->set_thickness(0.7f);
  object_->precompute();
  EXPECT_EQ(solid(), kept);
  EXPECT_EQ(kept->get_front_shader(), paint);
  EXPECT_EQ(object_->get_children().get_count(), 2);
  expect_box({0, 0, 1}, {3, 2, 1.7f});
}

TEST_F(qvi_bim_custom_object_test, destroys_every_other_solid_when_it_is_rebuilt) {
  object_->precompute();
  qvi_solid* const kept = solid();
  auto* folder = new qvi_bim_object;
  object_->add_child(folder, -1);
  folder->add_child(new qvi_solid, -1);
  object_->add_child(new qvi_solid, -1);
  object_->precompute();
  EXPECT_EQ(solids().get_count(), 3);  // nothing that it reads changed
  object_->set_thickness(0.2f);
  object_->precompute();
  EXPECT_EQ(solid(), kept);
}

TEST_F(qvi_bim_custom_object_test, destroys_a_solid_below_another_one_once) {
  object_->precompute();
  auto* second = new qvi_solid;
  object_->add_child(second, -1);
  second->add_child(new qvi_solid, -1);
  object_->set_thickness(0.2f);
  object_->precompute();
  ASSERT_NE(solid(), nullptr);
  expect_box({0, 0, 1}, {3, 2, 1.2f});
}

TEST_F(qvi_bim_custom_object_test, is_built_from_a_base_that_goes_with_another_solid) {
  object_->precompute();
  auto* second = new qvi_solid;
  object_->add_child(second, -1);
  second->add_child(base_, -1);
  object_->set_thickness(0.2f);
  object_->precompute();
  expect_box({0, 0, 1}, {3, 2, 1.2f});
  EXPECT_EQ(object_->get_base_polygon(), nullptr);
}

TEST_F(qvi_bim_custom_object_test, takes_over_a_solid_that_is_there_already) {
  auto* own = new qvi_solid;
  object_->add_child(own, -1);
  object_->precompute();
  EXPECT_EQ(solid(), own);
  EXPECT_EQ(own->get_front_shader(), nullptr);
  EXPECT_GT(own->get_area(), 0);
}

TEST_F(qvi_bim_custom_object_test, is_rebuilt_after_each_change_of_its_own_or_of_its_base) {
  EXPECT_TRUE(is_rebuilt_after([this] { object_->set_thickness(0.3f); }));
  EXPECT_TRUE(is_rebuilt_after([this] { object_->set_name("bench"); }));
  EXPECT_TRUE(is_rebuilt_after([this] { object_->set_visibility(false); }));
  EXPECT_TRUE(is_rebuilt_after([this] { base_->push_offset(0.5f); }));
  EXPECT_TRUE(is_rebuilt_after([this] { base_->reverse(); }));
  EXPECT_TRUE(is_rebuilt_after([this] { base_->set_name("seat"); }));
  auto* other = qv_test::add_face(scene_, rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0}));
  EXPECT_TRUE(is_rebuilt_after([this, other] { object_->set_base_polygon(other); }));
  auto* instance = add<qvi_mesh_instance>();
  instance->set_mesh(other);
  EXPECT_TRUE(is_rebuilt_after([this, instance] { object_->set_base_polygon(instance); }));
  EXPECT_TRUE(is_rebuilt_after([instance] {
    instance->set_matrix(qv_matrix::translation({1, 0, 0}));
  }));
}

TEST_F(qvi_bim_custom_object_test, is_not_rebuilt_after_other_changes) {
  EXPECT_FALSE(is_rebuilt_after([this] { object_->set_thickness(object_->get_thickness()); }));
  EXPECT_FALSE(is_rebuilt_after([this] { scene_.set_name("town"); }));
  EXPECT_FALSE(is_rebuilt_after([this] { object_->add_child(new qvi_shader, -1); }));
  EXPECT_FALSE(is_rebuilt_after([this] { base_->add_child(new qvi_shader, -1); }));
  auto* instance = add<qvi_mesh_instance>();
  instance->set_mesh(base_);
  object_->set_base_polygon(instance);
  // The polygon behind an instance is not looked at.
  EXPECT_FALSE(is_rebuilt_after([this] { base_->push_offset(0.5f); }));
}

TEST_F(qvi_bim_custom_object_test, leaves_its_solid_when_its_base_is_no_polygon) {
  object_->precompute();
  const float area = solid()->get_area();
  auto* mesh = add<qvi_mesh>();
  auto* of_mesh = add<qvi_mesh_instance>();
  of_mesh->set_mesh(mesh);
  auto* of_nothing = add<qvi_mesh_instance>();
  for (qvi_mesh* base : std::initializer_list<qvi_mesh*>{mesh, of_mesh, of_nothing, nullptr}) {
    object_->set_base_polygon(base);
    object_->set_thickness(object_->get_thickness() + 1);
    object_->precompute();
    EXPECT_EQ(solid()->get_area(), area);
  }
  object_->set_base_polygon(base_);
  object_->precompute();
  EXPECT_GT(solid()->get_area(), area);
}

TEST_F(qvi_bim_custom_object_test, without_a_base_makes_nothing) {
  auto* bare = add<qvi_bim_custom_object>();
  bare->precompute();
  EXPECT_EQ(bare->get_children().get_count(), 0);
}

TEST_F(qvi_bim_custom_object_test, a_copy_constructed_one_shares_its_date) {
  auto* copy = new qvi_bim_custom_object(*object_);
  object_->precompute();
  copy->precompute();  // the shared date says that it is done
  EXPECT_EQ(copy->get_children().get_count(), 0);
  qv_item::destroy(copy);
}

}  // namespace
