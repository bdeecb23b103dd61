#include <gtest/gtest.h>

#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using contact = qvi_wall::contact_type;
using type = qvi_wall::wall_type;
using qv_test::recording_scene;

namespace {

// A façade whose faces lie beside it in the scene, with a composition of two layers.
class qvi_wall_surface : public ::testing::Test {
 protected:
  qvi_wall_surface() {
    for (qv_item* item :
         std::initializer_list<qv_item*>{space_, outer_, inner_, composition_, wall_})
      scene_.add_child(item, -1);
    outer_->set_conductivity(2);
    inner_->set_conductivity(0.04f);
    composition_->set_layers({outer_, inner_});
    composition_->set_layer_thicknesses({0.2f, 0.1f});
    wall_->set_wall_type(type::wall);
    wall_->set_space_0(space_);
    wall_->set_composition(composition_);
    wall_->set_normal({0, -1, 0});
    wall_->set_face_0(face_0_);
    wall_->set_face_1(face_1_);
  }
  qvi_polygon* add_face(float y) {
    return qv_test::add_face(scene_, qv_test::rectangle({0, y, 0}, {4, y, 0}, {0, y, 3}));
  }
  void expect_shaders(qvi_shader* front, qvi_shader* back) {
    for (qvi_polygon* face : {face_0_, face_1_}) {
      EXPECT_EQ(face->get_front_shader(), front);
      EXPECT_EQ(face->get_back_shader(), back);
    }
  }
  recording_scene scene_;
  qvi_space* space_ = new qvi_space;
  qvi_matter* outer_ = new qvi_matter;
  qvi_matter* inner_ = new qvi_matter;
  qvi_composition* composition_ = new qvi_composition;
  qvi_wall* wall_ = new qvi_wall;
  qvi_polygon* face_0_ = add_face(0);
  qvi_polygon* face_1_ = add_face(-0.3f);
};

TEST_F(qvi_wall_surface, takes_its_first_layer_in_front_and_its_last_behind) {
  wall_->precompute();
  expect_shaders(outer_, inner_);
}

TEST_F(qvi_wall_surface, one_layer_serves_front_and_back) {
  composition_->set_layers({outer_});
  wall_->precompute();
  expect_shaders(outer_, outer_);
}

TEST_F(qvi_wall_surface, gives_shaders_to_the_pierced_faces_only) {
  qvi_polygon* pierced = add_face(0);
  qvi_polygon* single = add_face(0);
  wall_->set_pierced_face_0(pierced);
  wall_->set_pierced_face_1(pierced);  // one polygon for both sides
  wall_->set_face(single);
  wall_->set_pierced_face(single);
  wall_->precompute();
  EXPECT_EQ(pierced->get_front_shader(), outer_);
  EXPECT_EQ(pierced->get_back_shader(), inner_);
  expect_shaders(nullptr, nullptr);
  EXPECT_EQ(single->get_front_shader(), nullptr);
}

TEST_F(qvi_wall_surface, leaves_the_faces_alone_without_layers) {
  qvi_shader paint;
  for (qvi_polygon* face : {face_0_, face_1_}) {
    face->set_front_shader(&paint);
    face->set_back_shader(&paint);
  }
  composition_->set_layers({});
  wall_->precompute();
  expect_shaders(&paint, &paint);
  wall_->set_composition(nullptr);
  wall_->precompute();
  expect_shaders(&paint, &paint);
  composition_->set_layers({nullptr, inner_});
  wall_->set_composition(composition_);
  wall_->precompute();
  expect_shaders(&paint, &paint);
  for (qvi_polygon* face : {face_0_, face_1_}) {
    face->set_front_shader(nullptr);
    face->set_back_shader(nullptr);
  }
}

TEST_F(qvi_wall_surface, gives_shaders_anew_when_its_composition_changed) {
  wall_->precompute();
  composition_->set_layers({inner_, outer_});
  wall_->precompute();
  expect_shaders(inner_, outer_);
}

TEST_F(qvi_wall_surface, gives_shaders_anew_when_it_gets_another_composition) {
  wall_->precompute();
  auto* other = new qvi_composition;
  other->set_layers({inner_});
  scene_.add_child(other, -1);
  wall_->precompute();
  expect_shaders(outer_, inner_);
  wall_->set_composition(other);
  wall_->precompute();
  expect_shaders(inner_, inner_);
}

TEST_F(qvi_wall_surface, sees_a_face_painted_by_hand_only_when_some_shader_changes) {
  wall_->precompute();
  face_0_->set_front_shader(nullptr);
  wall_->precompute();
  EXPECT_EQ(face_0_->get_front_shader(), nullptr);
  scene_.add_child(new qv_test::probe_item, -1);
  wall_->precompute();
  EXPECT_EQ(face_0_->get_front_shader(), nullptr);
  inner_->set_diffuse_color({1, 0, 0, 1});
  wall_->precompute();
  expect_shaders(outer_, inner_);
}

// --- the solar factor ---

TEST_F(qvi_wall_surface, its_solar_factor_is_what_the_outer_surface_absorbs_times_U_over_25) {
  composition_->precompute();
  wall_->precompute();
  // a = 1 − 0.4 = 0.6; U = 1 / 2.6; 0.6 / 2.6 / 25 = 0.0092308
  EXPECT_FLOAT_EQ(wall_->get_solar_factor(), 0.6f / 2.6f / 25.0f);
  outer_->set_diffuse_reflexion(0.1f, qv_spectrum::solar);
  outer_->set_direct_reflexion(0.2f, qv_spectrum::solar);
  outer_->set_direct_transmission(0.05f, qv_spectrum::solar);
  outer_->set_diffuse_transmission(0.15f, qv_spectrum::solar);
  EXPECT_NEAR(wall_->get_solar_factor(), 0.5f / 2.6f / 25.0f, 1e-7);
  outer_->set_diffuse_reflexion(0.9f, qv_spectrum::visible);  // another spectrum does not count
  EXPECT_NEAR(wall_->get_solar_factor(), 0.5f / 2.6f / 25.0f, 1e-7);
}

TEST_F(qvi_wall_surface, a_surface_that_absorbs_nothing_gains_nothing) {
  composition_->precompute();
  wall_->precompute();
  outer_->set_diffuse_reflexion(0.5f, qv_spectrum::solar);
  outer_->set_direct_transmission(0.5f, qv_spectrum::solar);
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);
  outer_->set_direct_transmission(0.8f, qv_spectrum::solar);
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);
}

TEST_F(qvi_wall_surface, gains_nothing_without_composition_face_or_shader) {
  composition_->precompute();
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);  // the faces have no shader yet
  wall_->precompute();
  EXPECT_GT(wall_->get_solar_factor(), 0.0f);
  wall_->set_face_1(nullptr);
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);
  wall_->set_face_1(face_1_);
  wall_->set_composition(nullptr);
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);
}

TEST_F(qvi_wall_surface, its_outside_face_is_the_second_one_of_a_wall_with_a_first_space) {
  composition_->precompute();
  qvi_shader white;
  white.set_diffuse_reflexion(1, qv_spectrum::solar);
  face_0_->set_front_shader(&white);
  face_1_->set_front_shader(outer_);
  EXPECT_FLOAT_EQ(wall_->get_solar_factor(), 0.6f / 2.6f / 25.0f);
  wall_->set_space_0(nullptr);
  EXPECT_EQ(wall_->get_solar_factor(), 0.0f);  // white paint on the first face
  face_0_->set_front_shader(nullptr);
}

// --- orientation ---

TEST(qvi_wall_orientation, turns_floors_down_and_roofs_up) {
  for (int kind = 0; kind < 7; ++kind) {
    for (float z : {1.0f, -1.0f, 0.0f}) {
      recording_scene scene;
      auto* wall = new qvi_wall;
      scene.add_child(wall, -1);
      wall->precompute();
      wall->set_contact_type(static_cast<contact>(kind));
      wall->set_normal({1 - z * z, 0, z});
      scene.forget();
      wall->check_normal_orientation();
      const bool floor = kind == 2 || kind == 3;
      const bool roof = kind == 4 || kind == 6;
      const bool turned = (floor && z > 0) || (roof && z < 0);
      EXPECT_EQ(wall->get_normal().z, turned ? -z : z) << "contact type " << kind;
      EXPECT_EQ(scene.count_changes(wall, "normal"), turned ? 1 : 0);
    }
  }
}

TEST(qvi_wall_orientation, precomputes_first) {
  recording_scene scene;
  auto* wall = new qvi_wall;
  scene.add_child(wall, -1);
  wall->set_wall_type(type::roof);  // becomes an outside slab, which looks up
  wall->set_contact_type(contact::lower_floor);
  wall->set_normal({0, 0, -1});
  wall->check_normal_orientation();
  EXPECT_EQ(wall->get_contact_type(), contact::outside_slab);
  EXPECT_EQ(wall->get_normal(), qv_3dvector(0, 0, 1));
}

TEST(qvi_wall_orientation, turns_the_faces_that_look_against_the_wall) {
  recording_scene scene;
  auto* wall = new qvi_wall;
  scene.add_child(wall, -1);
  const auto up = qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 1, 0});
  const auto down = qv_test::rectangle({0, 0, 0}, {0, 1, 0}, {1, 0, 0});
  const auto upright = qv_test::rectangle({0, 0, 0}, {1, 0, 0}, {0, 0, 1});
  wall->set_face_0(qv_test::add_face(scene, up));
  wall->set_face_1(qv_test::add_face(scene, down));
  wall->set_pierced_face_0(qv_test::add_face(scene, down));
  wall->set_pierced_face_1(qv_test::add_face(scene, upright));
  const qv_3dvector sideways = wall->get_pierced_face_1()->get_normal();
  wall->set_face(qv_test::add_face(scene, down));
  wall->set_normal({0, 0, 1});
  wall->propagate_normal_orientation();
  EXPECT_EQ(wall->get_face_0()->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(wall->get_face_1()->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(wall->get_pierced_face_0()->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(wall->get_pierced_face_1()->get_normal(), sideways);  // at a right angle: stays
  EXPECT_EQ(wall->get_face()->get_normal().z, -1.0f);             // not among those that follow
}

TEST(qvi_wall_orientation, turns_a_face_that_serves_both_sides_once) {
  recording_scene scene;
  auto* wall = new qvi_wall;
  scene.add_child(wall, -1);
  qvi_polygon* face = qv_test::add_face(scene, qv_test::rectangle({0, 0, 0}, {0, 1, 0}, {1, 0, 0}));
  wall->set_face_0(face);
  wall->set_face_1(face);
  wall->propagate_normal_orientation();
  EXPECT_EQ(face->get_normal().z, 1.0f);
}

class counting_opening : public qvi_opening {
 public:
  int precompute_count = 0;
  void precompute() override {
    ++precompute_count;
    qvi_opening::precompute();
  }
};

TEST(qvi_wall_orientation, turns_openings_that_look_away_or_sideways) {
  recording_scene scene;
  auto* wall = new qvi_wall;
  scene.add_child(wall, -1);
  wall->set_wall_type(type::wall);
  wall->set_normal({1, 0, 0});
  const qv_3dvector normals[] = {{1, 0, 0}, {-1, 0, 0}, {0, 1, 0}, {0.6f, 0.8f, 0}};
  std::vector<counting_opening*> openings;
  for (const qv_3dvector& normal : normals) {
    openings.push_back(new counting_opening);
    openings.back()->set_wall(wall);
    openings.back()->set_normal(normal);
    scene.add_child(openings.back(), -1);
  }
  wall->precompute();
  scene.forget();
  wall->check_normal_orientation();
  EXPECT_EQ(openings[0]->get_normal(), qv_3dvector(1, 0, 0));
  EXPECT_EQ(openings[1]->get_normal(), qv_3dvector(1, 0, 0));
  // Perpendicular to the wall: turned as well, deliberately.
  EXPECT_EQ(openings[2]->get_normal(), qv_3dvector(0, -1, 0));
  EXPECT_EQ(openings[3]->get_normal(), qv_3dvector(0.6f, 0.8f, 0));
  for (std::size_t i = 0; i < 4; ++i) {
    const int turned = i == 1 || i == 2 ? 1 : 0;
    EXPECT_EQ(openings[i]->precompute_count, turned);
    EXPECT_EQ(scene.count_changes(openings[i], "normal"), turned);
  }
}

TEST(qvi_wall_orientation, leaves_a_normal_of_another_kind_alone) {
  recording_scene scene;
  auto* wall = new qvi_wall;
  scene.add_child(wall, -1);
  wall->set_space_0(qv_test::add_space(scene));
  wall->find_param("normal")->redeclare(qv_param::type_float);
  scene.forget();
  wall->check_normal_orientation();
  EXPECT_EQ(wall->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(scene.count_changes(wall, "normal"), 0);
}

}  // namespace
