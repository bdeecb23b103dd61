#include "core/shapes/qv_manifold.h"

#include <gtest/gtest.h>

#include <limits>
#include <vector>

#include "core/shapes/qvi_mesh_instance.h"
#include "core/shapes/qvi_polygon.h"
#include "core/shapes/qvi_solid.h"
#include "light_meshes.h"
#include "utilities/qv_random.h"

using namespace qv;
using namespace qv_test;

namespace {

using contour = qv_list<qv_3dvector>;

/// The faces of the box from the origin to `size`, pointing outwards.
std::vector<contour> box_faces(const qv_3dvector& size) {
  const float x = size.x, y = size.y, z = size.z;
  return {
      {{0, 0, 0}, {0, y, 0}, {x, y, 0}, {x, 0, 0}}, {{0, 0, z}, {x, 0, z}, {x, y, z}, {0, y, z}},
      {{0, 0, 0}, {x, 0, 0}, {x, 0, z}, {0, 0, z}}, {{x, 0, 0}, {x, y, 0}, {x, y, z}, {x, 0, z}},
      {{x, y, 0}, {0, y, 0}, {0, y, z}, {x, y, z}}, {{0, y, 0}, {0, 0, 0}, {0, 0, z}, {0, y, z}}};
}

qvi_polygon* add_polygon(qv_item& parent, const std::vector<contour>& contours) {
  // The normal comes from the first contour.
  qv_polygon shape({0, 0, 0}, {0, 0, 0});
  for (const contour& c : contours) shape.add_contour(c);
  auto* polygon = new qvi_polygon;
  polygon->load_from_polygon(&shape);
  parent.add_child(polygon, -1);
  return polygon;
}

/// Enclosed volume of every mesh under `item`, outward positive.
double enclosed(qv_item& item) {
  double sum = 0;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(&item, "mesh")) {
    qv_3dvector a, b, c;
    for (int i = 0; i < mesh->get_nb_triangles(); ++i)
      if (mesh->read_triangle(i, a, b, c, nullptr)) sum += double(a.dot(b.cross(c))) / 6;
  }
  return sum;
}

}  // namespace

TEST(qv_manifold, turns_the_polygons_of_a_shell_outwards_and_counts_them) {
  owned<qv_item> space(new qv_item);
  std::vector<qvi_polygon*> polygons;
  for (const contour& face : box_faces({4, 3, 2.5f}))
    polygons.push_back(add_polygon(*space, {face}));
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 0);
  polygons[1]->reverse();
  polygons[4]->reverse();
  const unsigned int date = polygons[0]->get_date();
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 2);
  EXPECT_NEAR(enclosed(*space), 30, 1e-4);
  EXPECT_EQ(polygons[1]->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(polygons[0]->get_date(), date) << "a face that needs no turning is not touched";
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 0);
}

TEST(qv_manifold, turns_a_shell_that_points_inwards_as_a_whole) {
  owned<qv_item> space(new qv_item);
  for (const contour& face : box_faces({4, 3, 2.5f})) add_polygon(*space, {face})->reverse();
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 6);
  EXPECT_NEAR(enclosed(*space), 30, 1e-4);
}

TEST(qv_manifold, follows_the_edges_of_a_hole_in_a_face) {
  // A shaft stands in the room: a hole in floor and ceiling, four faces around it.
  const auto build = [](qv_item& space) {
    std::vector<contour> faces = box_faces({4, 3, 2.5f});
    const float l = 1, h = 2, z = 2.5f;
    const contour below = {{l, l, 0}, {h, l, 0}, {h, h, 0}, {l, h, 0}};
    const contour above = {{l, l, z}, {l, h, z}, {h, h, z}, {h, l, z}};
    add_polygon(space, {faces[0], below});
    add_polygon(space, {faces[1], above});
    for (std::size_t i = 2; i < 6; ++i) add_polygon(space, {faces[i]});
    for (int i = 0; i < 4; ++i)
      add_polygon(space, {contour{below[(i + 1) % 4], below[i], below[i] + qv_3dvector(0, 0, z),
                                  below[(i + 1) % 4] + qv_3dvector(0, 0, z)}});
  };
  qv_random random(2);
  for (int run = 0; run < 20; ++run) {
    owned<qv_item> space(new qv_item);
    build(*space);
    ASSERT_NEAR(enclosed(*space), 27.5, 1e-4);
    int wrong = 0;
    for (qvi_mesh* mesh : qv_collect<qvi_mesh>(space.get(), "mesh")) {
      if (random.dice_float() < 0.5f) continue;
      mesh->reverse();
      ++wrong;
    }
    EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), wrong);
    EXPECT_NEAR(enclosed(*space), 27.5, 1e-4) << "run " << run;
  }
}

TEST(qv_manifold, takes_polygons_and_a_mesh_together) {
  // Floor and ceiling are one mesh, the sides are polygons.
  owned<qv_item> space(new qv_item);
  const std::vector<contour> faces = box_faces({4, 3, 2.5f});
  for (std::size_t i = 2; i < 6; ++i) add_polygon(*space, {faces[i]});
  std::vector<corners> flat;
  for (std::size_t i = 0; i < 2; ++i) {
    flat.push_back({faces[i][0], faces[i][1], faces[i][2]});
    flat.push_back({faces[i][0], faces[i][3], faces[i][2]});
  }
  qvi_mesh* mesh = make_mesh(flat).release();
  space->add_child(mesh, -1);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 2);
  EXPECT_NEAR(enclosed(*space), 30, 1e-4);
  EXPECT_EQ(mesh->get_nb_triangles(), 4);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 0);
}

TEST(qv_manifold, turns_single_triangles_of_a_mesh) {
  std::vector<corners> triangles = sphere({1, 2, 3}, 2, 12);
  qv_random random(3);
  int wrong = 0;
  for (corners& t : triangles) {
    if (random.dice_float() < 0.3f) continue;
    std::swap(t[0], t[1]);
    ++wrong;
  }
  const auto mesh = make_mesh(triangles);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(mesh.get()), wrong);
  const auto sound = make_mesh(sphere({1, 2, 3}, 2, 12));
  EXPECT_NEAR(enclosed(*mesh), enclosed(*sound), 1e-3);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(mesh.get()), 0);
}

TEST(qv_manifold, turns_a_solid_as_a_whole) {
  qv_polygon base({0, 0, 0}, {0, 0, 1});
  base.add_contour({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
  qv_solid prism;
  prism.extrusion(base, {0, 0, 3});
  owned<qvi_solid> solid(new qvi_solid);
  solid->load_from_solid(&prism);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(solid.get()), 0);
  solid->reverse();
  ASSERT_NEAR(enclosed(*solid), -12, 1e-4);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(solid.get()), 6);
  EXPECT_NEAR(enclosed(*solid), 12, 1e-4);
}

TEST(qv_manifold, leaves_what_has_no_faces_alone) {
  EXPECT_EQ(qv_check_mesh_manifold_orientation(nullptr), 0);
  owned<qv_item> empty(new qv_item);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(empty.get()), 0);
  // An instance shows another mesh, which is turned where it lies.
  auto shown = make_mesh(box({0, 0, 0}, {1, 1, 1}));
  shown->reverse();
  auto* instance = new qvi_mesh_instance;
  instance->set_mesh(shown.get());
  empty->add_child(instance, -1);
  EXPECT_EQ(qv_check_mesh_manifold_orientation(empty.get()), 0);
  instance->set_mesh(nullptr);
}

TEST(qv_manifold, leaves_a_single_polygon_alone) {
  owned<qv_item> space(new qv_item);
  qvi_polygon* polygon = add_polygon(*space, {box_faces({1, 1, 1})[0]});
  EXPECT_EQ(qv_check_mesh_manifold_orientation(space.get()), 0);
  polygon->reverse();
  EXPECT_EQ(qv_check_mesh_manifold_orientation(polygon), 0);
}

TEST(qv_manifold, survives_vertices_and_indices_of_no_sense) {
  constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
  owned<qvi_mesh> mesh(new qvi_mesh);
  mesh->set_vertices({{not_a_number, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 0, 1}});
  mesh->set_triangles({0, 1, 2, 1, 2, 3, 7, -1, 2, 3, 3, 3, 1});
  const int turned = qv_check_mesh_manifold_orientation(mesh.get());
  EXPECT_EQ(turned, 0);
  EXPECT_EQ(mesh->get_triangles().get_count(), 13);
}
