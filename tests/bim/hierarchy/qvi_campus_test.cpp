#include "bim/hierarchy/qvi_campus.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/hierarchy/qvi_building.h"
#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::recording_scene;
using qv_test::to_vector;

namespace {

void expect_near(const qv_3dvector& a, const qv_3dvector& b, float tolerance) {
  EXPECT_NEAR(a.x, b.x, tolerance);
  EXPECT_NEAR(a.y, b.y, tolerance);
  EXPECT_NEAR(a.z, b.z, tolerance);
}

/// A site with a block of rooms, a window, two junctions, a chimney (solid), a bench (mesh) and two
/// trees that are instances of one mesh.
class qvi_campus_test : public ::testing::Test {
 protected:
  qvi_campus_test() {
    scene_.add_child(campus_, -1);
    campus_->add_child(building_, -1);
    block_ = qv_test::add_block(*building_, {1, 2, 0}, 2, 1, 2);
    for (qvi_space* space : block_.spaces)
      qv_test::add_face(*space, qv_test::rectangle({1, 2, 0}, {5, 2, 0}, {1, 7, 0}));

    opening_ = add<qvi_opening>(*block_.walls[1]);
    opening_->set_wall(block_.walls[1]);
    opening_->set_normal(block_.walls[1]->get_normal());
    qv_test::add_face(*opening_, qv_test::rectangle({2, 2, 1}, {3, 2, 1}, {2, 2, 2}));

    corner_ = add<qvi_connexion>(*building_);
    corner_->set_point_0({1, 2, 0});
    corner_->set_point_1({1, 2, 2.5f});
    corner_->set_walls({block_.walls[1], block_.walls[2]});
    corner_->set_wall_directions({{1, 0, 0}, {0, 1, 0}});
    without_walls_ = add<qvi_connexion>(*building_);
    without_walls_->set_point_1({3, 0, 0});
    without_walls_->set_wall_directions({{0, 0, 1}});

    qv_polygon base = qv_test::make_rectangle(4, 4, 5, 5, 6);
    qv_solid chimney;
    chimney.extrusion(base, {0, 0, 2});
    add<qvi_solid>(*building_)->load_from_solid(&chimney);
    bench_ = add<qvi_mesh>(*campus_);
    bench_->load_from_triangles({{11, 0, 0}, {12, 0, 0}, {12, 1, 0}}, {0, 1, 2});
    tree_ = add<qvi_mesh>(*campus_);
    const auto corners = qv_test::make_cube_corners(1);
    tree_->load_from_triangles(corners, qv_test::make_loose_triangles(corners));
    for (int i = 0; i < 2; ++i) {
      trees_[i] = add<qvi_mesh_instance>(*campus_);
      trees_[i]->set_mesh(tree_);
      trees_[i]->set_matrix(qv_matrix::translation({static_cast<float>(5 * i), -4, 0}));
    }
  }

  template <class T>
  static T* add(qv_item& parent) {
    auto* item = new T;
    parent.add_child(item, -1);
    return item;
  }

  struct state {
    std::vector<qv_3dvector> points;
    std::vector<qv_3dvector> directions;
  };
  // Everything that has a place or a direction.
  state take() const {
    state s;
    for (auto* mesh : qv_collect<qvi_mesh>(campus_, "mesh")) {
      for (const qv_3dvector& v : mesh->get_triangle_vertices()) s.points.push_back(v);
      qv_3dvector a, b, c, normal;
      for (int i = 0; i < mesh->get_nb_triangles(); ++i) {
        EXPECT_TRUE(mesh->read_triangle(i, a, b, c, &normal));
        s.directions.push_back(normal);
      }
      if (mesh->has_type("polygon"))
        s.directions.push_back(static_cast<qvi_polygon*>(mesh)->get_normal());
    }
    for (auto* wall : qv_collect<qvi_wall>(campus_, "wall"))
      s.directions.push_back(wall->get_normal());
    for (auto* opening : qv_collect<qvi_opening>(campus_, "opening"))
      s.directions.push_back(opening->get_normal());
    for (auto* junction : qv_collect<qvi_connexion>(campus_, "connexion")) {
      s.points.push_back(junction->get_point_0());
      s.points.push_back(junction->get_point_1());
      for (const qv_3dvector& d : junction->get_wall_directions()) s.directions.push_back(d);
    }
    return s;
  }
  static void expect_same(const state& a, const state& b) {
    ASSERT_EQ(a.points.size(), b.points.size());
    ASSERT_EQ(a.directions.size(), b.directions.size());
    for (std::size_t i = 0; i < a.points.size(); ++i) expect_near(a.points[i], b.points[i], 1e-4f);
    for (std::size_t i = 0; i < a.directions.size(); ++i)
      expect_near(a.directions[i], b.directions[i], 1e-4f);
  }

  recording_scene scene_;
  qvi_campus* campus_ = new qvi_campus;
  qvi_building* building_ = new qvi_building;
  qv_test::block block_;
  qvi_opening* opening_ = nullptr;
  qvi_connexion* corner_ = nullptr;
  qvi_connexion* without_walls_ = nullptr;
  qvi_mesh* bench_ = nullptr;
  qvi_mesh* tree_ = nullptr;
  qvi_mesh_instance* trees_[2] = {};
};

TEST_F(qvi_campus_test, gathers_the_buildings_below_it) {
  EXPECT_TRUE(campus_->get_buildings().is_empty());
  campus_->precompute();
  EXPECT_EQ(to_vector(campus_->get_buildings()), std::vector<qvi_building*>{building_});
  auto* annexe = add<qvi_building>(*building_);
  auto* barn = add<qvi_building>(*campus_);
  add<qvi_building>(scene_);  // not on the site
  EXPECT_EQ(campus_->get_buildings().get_count(), 1);
  campus_->precompute();
  EXPECT_EQ(to_vector(campus_->get_buildings()),
            (std::vector<qvi_building*>{building_, annexe, barn}));
  qv_item::destroy(barn);
  campus_->precompute();
  EXPECT_EQ(campus_->get_buildings().get_count(), 2);
}

TEST_F(qvi_campus_test, comes_back_to_where_it_was) {
  const state before = take();
  campus_->transform({12.5f, -7, 3}, 33);
  EXPECT_GT((take().points[0] - before.points[0]).length(), 1.0f);
  campus_->transform({40, 21, -1}, -118);
  campus_->transform({0, 0, 0}, 0);
  expect_same(take(), before);
}

TEST_F(qvi_campus_test, turns_by_two_halves_as_by_one_whole) {
  campus_->transform({3, 4, 0}, 0);
  const state before = take();
  campus_->transform({3, 4, 0}, 180);
  EXPECT_GT((take().points[0] - before.points[0]).length(), 1.0f);
  campus_->transform({3, 4, 0}, 360);
  const state by_halves = take();
  campus_->transform({3, 4, 0}, 0);  // back
  campus_->transform({3, 4, 0}, 360);
  expect_same(take(), by_halves);
  expect_same(by_halves, before);
}

TEST_F(qvi_campus_test, ends_in_the_same_place_by_any_way) {
  campus_->transform({5, 6, 7}, 45);
  const state direct = take();
  campus_->transform({-8, 0, 1}, 200);
  campus_->transform({-8, 30, 1}, 200);
  campus_->transform({5, 6, 7}, 45);
  expect_same(take(), direct);
}

TEST_F(qvi_campus_test, turns_about_its_own_place_and_not_about_the_origin) {
  campus_->transform({10, 0, 0}, 0);
  expect_near(bench_->get_triangle_vertices()[0], {21, 0, 0}, 1e-5f);
  campus_->transform({10, 0, 0}, 90);
  expect_near(bench_->get_triangle_vertices()[0], {10, 11, 0}, 1e-5f);
}

TEST_F(qvi_campus_test, puts_a_turned_site_at_its_new_place) {
  // Out of (10, 0, 0), turned by 90° − 30°, put at (0, 5, 2).
  campus_->transform({10, 0, 0}, 30);
  const qv_3dvector before = bench_->get_triangle_vertices()[1];
  campus_->transform({0, 5, 2}, 90);
  const qv_3dvector turned =
      qv_matrix::rotation(2, 60).transform_point(before - qv_3dvector(10, 0, 0));
  expect_near(bench_->get_triangle_vertices()[1], turned + qv_3dvector(0, 5, 2), 1e-5f);
}

TEST_F(qvi_campus_test, moves_what_instances_share_through_them_only) {
  const qv_list<qv_3dvector> tree = tree_->get_vertices();
  const qv_3dvector corner = trees_[1]->get_triangle_vertices()[0];
  campus_->transform({0, 0, 1}, 90);
  EXPECT_EQ(tree_->get_vertices(), tree);
  expect_near(trees_[1]->get_triangle_vertices()[0], {-corner.y, corner.x, corner.z + 1}, 1e-5f);
}

TEST_F(qvi_campus_test, moves_an_instance_of_an_instance_once) {
  auto* outer = add<qvi_mesh_instance>(*campus_);
  outer->set_mesh(trees_[1]);
  outer->set_matrix(qv_matrix::translation({0, 0, 4}));
  const qv_matrix inner = trees_[1]->get_matrix();
  const qv_3dvector corner = outer->get_triangle_vertices()[0];
  campus_->transform({1, 2, 3}, 0);
  EXPECT_EQ(trees_[1]->get_matrix(), inner);
  expect_near(outer->get_triangle_vertices()[0], corner + qv_3dvector(1, 2, 3), 1e-5f);
}

TEST_F(qvi_campus_test, leaves_what_is_not_below_it) {
  auto* other = add<qvi_mesh>(scene_);
  other->load_from_triangles({{1, 0, 0}, {2, 0, 0}, {2, 1, 0}}, {0, 1, 2});
  const qv_list<qv_3dvector> before = other->get_vertices();
  campus_->transform({1, 2, 3}, 45);
  EXPECT_EQ(other->get_vertices(), before);
}

TEST_F(qvi_campus_test, announces_the_meshes_that_it_moves) {
  scene_.forget();
  campus_->transform({1, 2, 3}, 0);
  EXPECT_GT(scene_.count_changes(bench_), 0);
  EXPECT_GT(scene_.count_changes(trees_[0]), 0);
  EXPECT_EQ(scene_.count_changes(tree_), 0);
}

TEST_F(qvi_campus_test, does_nothing_for_its_present_place) {
  for (int i = 0; i < 2; ++i) {
    const state before = take();
    scene_.forget();
    const unsigned int date = qv_get_date();
    campus_->transform(campus_->get_translation(), campus_->get_rotation_z());
    EXPECT_EQ(qv_get_date(), date);
    EXPECT_TRUE(scene_.changed.empty());
    expect_same(take(), before);
    campus_->transform({5, 5, 5}, 12);
  }
}

TEST_F(qvi_campus_test, keeps_its_new_place_and_gathers_its_buildings) {
  const unsigned int turned = campus_->get_rotation_z_date();
  campus_->transform({1, 2, 3}, 0);
  EXPECT_EQ(campus_->get_translation(), qv_3dvector(1, 2, 3));
  EXPECT_EQ(campus_->get_rotation_z_date(), turned);
  EXPECT_EQ(campus_->get_buildings().get_count(), 1);
  const unsigned int moved = campus_->get_translation_date();
  campus_->transform({1, 2, 3}, 7);
  EXPECT_EQ(campus_->get_rotation_z(), 7.0f);
  EXPECT_EQ(campus_->get_translation_date(), moved);
}

// A wall below the campus with only the faces named, each looking another way: towards +x, +y, −x,
// −y for face_0, face_1, pierced_face_0, pierced_face_1.
struct faces {
  bool face_0, face_1, pierced_face_0, pierced_face_1;
};
qvi_wall* add_wall_with(qv_item& campus, const faces& given) {
  auto* wall = new qvi_wall;
  campus.add_child(wall, -1);
  const auto face = [wall](bool is_given, const qv_3dvector& along) {
    return is_given ? qv_test::add_face(*wall,
                                        qv_test::rectangle({0, 0, 0}, along, qv_3dvector(0, 0, 2)))
                    : nullptr;
  };
  wall->set_face_0(face(given.face_0, {0, 1, 0}));
  wall->set_face_1(face(given.face_1, {-1, 0, 0}));
  wall->set_pierced_face_0(face(given.pierced_face_0, {0, -1, 0}));
  wall->set_pierced_face_1(face(given.pierced_face_1, {1, 0, 0}));
  return wall;
}

TEST_F(qvi_campus_test, takes_a_walls_normal_from_the_first_face_that_it_has) {
  const std::pair<faces, qv_3dvector> cases[] = {{{true, true, true, true}, {1, 0, 0}},
                                                 {{false, true, true, true}, {0, 1, 0}},
                                                 {{false, false, true, true}, {-1, 0, 0}},
                                                 {{false, false, false, true}, {0, -1, 0}}};
  for (const auto& [given, normal] : cases) {
    qvi_wall* const wall = add_wall_with(*campus_, given);
    campus_->transform(campus_->get_translation() + qv_3dvector(1, 0, 0), 0);
    expect_near(wall->get_normal(), normal, 1e-6f);
  }
}

TEST_F(qvi_campus_test, leaves_the_normal_of_a_wall_without_faces_on_either_side) {
  auto* thin = add<qvi_wall>(*campus_);
  thin->set_normal({0, 1, 0});
  thin->set_face(qv_test::add_face(*thin, qv_test::rectangle({0, 0, 0}, {0, 1, 0}, {0, 0, 2})));
  campus_->transform({0, 0, 0}, 90);
  EXPECT_EQ(thin->get_normal(), qv_3dvector(0, 1, 0));
}

TEST_F(qvi_campus_test, gives_an_opening_the_normal_of_its_wall) {
  opening_->set_normal({0, 0, 1});
  campus_->transform({0, 0, 0}, 90);
  EXPECT_EQ(opening_->get_normal(), block_.walls[1]->get_normal());
  expect_near(opening_->get_normal(), {1, 0, 0}, 1e-6f);  // −y, turned by 90°
  auto* stray = add<qvi_opening>(*campus_);
  campus_->transform({0, 0, 0}, 0);
  EXPECT_EQ(stray->get_normal(), qv_3dvector(0, 0, 1));
}

TEST_F(qvi_campus_test, moves_the_junctions_of_walls_and_leaves_those_without) {
  scene_.forget();
  campus_->transform({10, 0, 0}, 90);
  expect_near(corner_->get_point_0(), {8, 1, 0}, 1e-5f);
  expect_near(corner_->get_point_1(), {8, 1, 2.5f}, 1e-5f);
  expect_near(corner_->get_wall_directions()[0], {0, 1, 0}, 1e-5f);
  expect_near(corner_->get_wall_directions()[1], {-1, 0, 0}, 1e-5f);
  EXPECT_EQ(scene_.count_changes(corner_, "contour_vertices"), 1);
  EXPECT_EQ(scene_.count_changes(without_walls_), 0);
  EXPECT_EQ(without_walls_->get_point_1(), qv_3dvector(3, 0, 0));
  EXPECT_EQ(without_walls_->get_wall_directions()[0], qv_3dvector(0, 0, 1));
}

TEST_F(qvi_campus_test, makes_the_directions_of_junctions_of_unit_length) {
  corner_->set_wall_directions({{3, 0, 0}, {0.1f, 0.1f, 0}});
  campus_->transform({100, -50, 7}, 0);
  const qv_list<qv_3dvector> directions = corner_->get_wall_directions();
  for (const qv_3dvector& d : directions) EXPECT_NEAR(d.length(), 1, 1e-6f);
  expect_near(directions[0], {1, 0, 0}, 1e-5f);
  expect_near(directions[1], qv_3dvector(1, 1, 0).normalized(), 1e-5f);
}

TEST_F(qvi_campus_test, a_copy_constructed_one_shares_its_record_and_a_virtual_copy_does_not) {
  auto* copy = new qvi_campus(*campus_);
  campus_->precompute();
  EXPECT_EQ(&copy->get_buildings(), &campus_->get_buildings());
  auto* fresh = static_cast<qvi_campus*>(campus_->copy());
  EXPECT_TRUE(fresh->get_buildings().is_empty());
  qv_item::destroy(fresh);
  qv_item::destroy(copy);
  EXPECT_EQ(campus_->get_buildings().get_count(), 1);
}

}  // namespace
