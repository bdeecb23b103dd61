#include <gtest/gtest.h>

#include <limits>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/project/qvi_bim_root.h"
#include "core/shapes/qvi_mesh.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"

using namespace qv;

namespace {

// One building with one zone and one space of forced size, beneath the root.
class qvi_bim_root_json : public ::testing::Test {
 protected:
  qvi_bim_root_json() {
    scene_.add_child(root_, -1);
    building_ = add_building("B1");
    zone_ = add_zone(building_, "Z1");
    space_ = add_space(zone_, "S1", 100, 250);
  }
  qvi_building* add_building(const std::string& name) {
    auto* building = new qvi_building;
    building->set_name(name);
    root_->add_child(building, -1);
    return building;
  }
  qvi_zone* add_zone(qvi_building* building, const std::string& name) {
    auto* zone = new qvi_zone;
    zone->set_name(name);
    zone->set_building(building);
    scene_.add_child(zone, -1);
    return zone;
  }
  qvi_space* add_space(qvi_zone* zone, const std::string& name, float area, float volume) {
    auto* space = qv_test::add_space(scene_, name);
    space->set_zone(zone);
    space->set_forced_area(area);
    space->set_forced_volume(volume);
    return space;
  }
  qvi_mesh* add_triangle(qv_item* parent, float z) {
    auto* mesh = new qvi_mesh;
    mesh->load_from_triangles({{0, 0, z}, {1, 0, z}, {0, 1, z}}, {0, 1, 2});
    parent->add_child(mesh, -1);
    return mesh;
  }
  std::string to_json() {
    scene_.precompute();
    return root_->to_json();
  }
  // The text for one space with what follows its sizes.
  static std::string text_with(const std::string& geometry) {
    return "{\"buildings:\":[{\"name:\":\"B1\",\"zones:\":[{\"name:\":\"Z1\",\"volume\":250.00,"
           "\"area\":100.00,\"spaces:\":[{\"name:\":\"S1\",\"volume\":250.00,\"area\":100.00" +
           geometry + "}]}]}]}";
  }
  qv_scene scene_;
  qvi_bim_root* root_ = new qvi_bim_root;
  qvi_building* building_;
  qvi_zone* zone_;
  qvi_space* space_;
};

TEST_F(qvi_bim_root_json, of_a_root_without_buildings) {
  qvi_bim_root root;
  EXPECT_EQ(root.to_json(), "{\"buildings:\":[]}");
}

TEST_F(qvi_bim_root_json, of_one_building_with_one_space) {
  EXPECT_EQ(to_json(), text_with(""));
}

TEST_F(qvi_bim_root_json, separates_buildings_zones_and_spaces_by_commas) {
  add_space(zone_, "S2", 0.125f, 1.0f / 3);
  add_zone(building_, "Z2");
  add_building("B2");
  EXPECT_EQ(to_json(),
            "{\"buildings:\":["
            "{\"name:\":\"B1\",\"zones:\":["
            "{\"name:\":\"Z1\",\"volume\":250.33,\"area\":100.12,\"spaces:\":["
            "{\"name:\":\"S1\",\"volume\":250.00,\"area\":100.00},"
            "{\"name:\":\"S2\",\"volume\":0.33,\"area\":0.12}]},"
            "{\"name:\":\"Z2\",\"volume\":0.00,\"area\":0.00,\"spaces:\":[]}]},"
            "{\"name:\":\"B2\",\"zones:\":[]}]}");
}

TEST_F(qvi_bim_root_json, finds_buildings_at_any_depth_below_the_root_only) {
  auto* folder = new qv_item;
  root_->add_child(folder, -1);
  folder->add_child(building_, -1);
  auto* elsewhere = new qvi_building;
  scene_.add_child(elsewhere, -1);
  EXPECT_EQ(to_json(), text_with(""));
}

TEST_F(qvi_bim_root_json, deliberately_does_not_escape_names) {
  building_->set_name("B\"1\\");
  EXPECT_NE(to_json().find("{\"name:\":\"B\"1\\\",\"zones:\""), std::string::npos);
}

TEST_F(qvi_bim_root_json, writes_one_mesh_by_its_own_text) {
  qvi_mesh* mesh = add_triangle(space_, 1);
  EXPECT_EQ(to_json(), text_with(",\"geometry:\":" + mesh->to_json()));
}

TEST_F(qvi_bim_root_json, leaves_the_vertices_of_one_mesh_as_they_are) {
  auto* mesh = new qvi_mesh;  // two triangles that share an edge, but for less than a millimetre
  mesh->load_from_triangles(
      {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}, {1.0005f, 0, 0}, {1, 1, 0}, {0, 1.0005f, 0}},
      {0, 1, 2, 3, 4, 5});
  space_->add_child(mesh, -1);
  ASSERT_EQ(mesh->get_nb_vertices(), 6);
  EXPECT_EQ(to_json(), text_with(",\"geometry:\":" + mesh->to_json()));
}

TEST_F(qvi_bim_root_json, joins_vertices_of_several_meshes_up_to_a_millimetre) {
  for (const float gap : {0.0009f, 0.0011f}) {
    auto* const one = add_triangle(space_, 1);
    auto* const other = new qvi_mesh;
    other->load_from_triangles({{1, gap, 1}, {1, 1, 1}, {0, 1, 1}}, {0, 1, 2});
    space_->add_child(other, -1);
    qvi_mesh expected;
    expected.load_from_triangles({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}}, {0, 1, 2});
    expected.merge(other);
    expected.optimize_vertices(0.001f);
    ASSERT_EQ(expected.get_nb_vertices(), gap < 0.001f ? 4 : 5);
    EXPECT_EQ(to_json(), text_with(",\"geometry:\":" + expected.to_json()));
    qv_item::destroy(one);
    qv_item::destroy(other);
  }
}

TEST_F(qvi_bim_root_json, merges_several_meshes_into_one) {
  auto* folder = new qv_item;
  space_->add_child(folder, -1);
  add_triangle(folder, 0);
  // Shares an edge with the first, but for less than a millimetre.
  auto* other = new qvi_mesh;
  other->load_from_triangles({{1.0005f, 0, 0}, {1, 1, 0}, {0, 1.0005f, 0}}, {0, 1, 2});
  space_->add_child(other, -1);

  qvi_mesh expected;
  expected.load_from_triangles({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
  expected.merge(other);
  expected.optimize_vertices(0.001f);
  EXPECT_EQ(expected.get_nb_vertices(), 4);
  EXPECT_EQ(to_json(), text_with(",\"geometry:\":" + expected.to_json()));
  // The meshes themselves stay as they are, and nothing is left in the scene.
  EXPECT_EQ(other->get_vertices()[0].x, 1.0005f);
  EXPECT_EQ(space_->collect("mesh").get_count(), 2);
  EXPECT_EQ(scene_.get_items("mesh").get_count(), 2);
}

TEST_F(qvi_bim_root_json, prints_sizes_with_two_decimals_and_a_point) {
  space_->set_forced_area(1234567.875f);
  space_->set_forced_volume(0.005f);
  const std::string text = to_json();
  EXPECT_NE(text.find("\"area\":1234567.88}"), std::string::npos) << text;
  EXPECT_NE(text.find("\"volume\":0.00,"), std::string::npos) << text;  // 0.0049999999
}

TEST_F(qvi_bim_root_json, has_the_measured_sizes_and_the_shell_of_a_block) {
  qv_scene scene;
  auto* root = new qvi_bim_root;
  scene.add_child(root, -1);
  qv_test::add_block(*root, {0, 0, 0}, 1, 1, 1);
  qvi_building::build_buildings(&scene, true);
  root->add_child(scene.get_items("building")[0], -1);
  const std::string text = root->to_json();
  EXPECT_EQ(text.rfind("{\"buildings:\":[{\"name:\":\"Bâtiment 1\",\"zones:\":[{\"name:\":"
                       "\"Zone 1-1\",\"volume\":50.00,\"area\":20.00,\"spaces:\":[{\"name:\":"
                       "\"Pièce 1-1\",\"volume\":50.00,\"area\":20.00,\"geometry:\":{",
                       0),
            0u)
      << text;
}

}  // namespace
