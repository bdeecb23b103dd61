#include "core/light/qv_raytracer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <thread>
#include <vector>

#include "core/light/qv_ray.h"
#include "light_meshes.h"

using namespace qv;
using namespace qv_test;

namespace {

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinite = std::numeric_limits<float>::infinity();

/// Nearest distance at which a ray meets a triangle by solving for the point in double precision;
/// infinite without a hit.
double plain_hit(const corners& t, const qv_ray& ray) {
  const double e1[3] = {double(t[1].x) - t[0].x, double(t[1].y) - t[0].y, double(t[1].z) - t[0].z};
  const double e2[3] = {double(t[2].x) - t[0].x, double(t[2].y) - t[0].y, double(t[2].z) - t[0].z};
  const double d[3] = {ray.direction.x, ray.direction.y, ray.direction.z};
  const double s[3] = {double(ray.origin.x) - t[0].x, double(ray.origin.y) - t[0].y,
                       double(ray.origin.z) - t[0].z};
  const auto cross = [](const double* a, const double* b, double* c) {
    c[0] = a[1] * b[2] - a[2] * b[1];
    c[1] = a[2] * b[0] - a[0] * b[2];
    c[2] = a[0] * b[1] - a[1] * b[0];
  };
  const auto dot = [](const double* a, const double* b) {
    return a[0] * b[0] + a[1] * b[1] + a[2] * b[2];
  };
  double p[3], q[3];
  cross(d, e2, p);
  cross(s, e1, q);
  const double det = dot(e1, p);
  const double u = dot(s, p) / det, v = dot(d, q) / det, distance = dot(e2, q) / det;
  const bool inside = u >= 0 && v >= 0 && u + v <= 1;
  if (!inside || !(distance > ray.minimum_distance) || !(distance <= ray.maximum_distance))
    return std::numeric_limits<double>::infinity();
  return distance;
}

}  // namespace

TEST(qv_raytracer, meets_a_plane_at_the_computed_distance) {
  const auto mesh = make_mesh(square(10, 3));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  EXPECT_EQ(tracer.get_triangle_count(), 2);
  // From (1, 2, 1) along (2, 1, 2)/3: 2 m higher after 3 m.
  qv_ray ray({1, 2, 1}, {2 / 3.0f, 1 / 3.0f, 2 / 3.0f});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_NEAR(ray.hit_distance, 3, 1e-5);
  EXPECT_EQ(ray.hit_mesh, mesh.get());
  EXPECT_EQ(ray.hit_normal, qv_3dvector(0, 0, 1));
  EXPECT_EQ(ray.hit_triangle, 0);
  EXPECT_NEAR(ray.get_hit_point().x, 3, 1e-5);
  EXPECT_TRUE(tracer.is_occluded(ray));
}

TEST(qv_raytracer, tells_the_front_side_also_from_behind) {
  const auto mesh = make_mesh(square(10, 3));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  qv_ray down({1, -2, 5}, {0, 0, -1});
  ASSERT_TRUE(tracer.raytrace(down));
  EXPECT_FLOAT_EQ(down.hit_distance, 2);
  EXPECT_EQ(down.hit_normal, qv_3dvector(0, 0, 1));
}

TEST(qv_raytracer, clears_the_hit_when_nothing_is_met) {
  const auto mesh = make_mesh(square(10, 3));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  qv_ray ray({1, 2, 1}, {0, 0, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  ray.direction = {0, 0, -1};
  EXPECT_FALSE(tracer.raytrace(ray));
  EXPECT_LT(ray.hit_distance, 0);
  EXPECT_EQ(ray.hit_mesh, nullptr);
  EXPECT_EQ(ray.hit_triangle, -1);
  EXPECT_FALSE(tracer.is_occluded(ray));
}

TEST(qv_raytracer, meets_all_sides_of_a_box_from_its_inside) {
  const auto mesh = make_mesh(box({-1, -2, -3}, {4, 5, 6}));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  const qv_3dvector directions[6] = {{-1, 0, 0}, {1, 0, 0},  {0, -1, 0},
                                     {0, 1, 0},  {0, 0, -1}, {0, 0, 1}};
  const float distances[6] = {1.5f, 3.5f, 2.25f, 4.75f, 3.125f, 5.875f};
  for (int i = 0; i < 6; ++i) {
    qv_ray ray({0.5f, 0.25f, 0.125f}, directions[i]);
    ASSERT_TRUE(tracer.raytrace(ray));
    EXPECT_FLOAT_EQ(ray.hit_distance, distances[i]);
    EXPECT_EQ(ray.hit_normal, directions[i]);
  }
}

TEST(qv_raytracer, meets_a_sphere_within_the_height_of_its_facets) {
  constexpr int rows = 128;
  constexpr float radius = 2;
  const auto mesh = make_mesh(sphere({1, 2, 3}, radius, rows));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  // A chord over an angle w lies r (1 − cos(w/2)) deep at most, and patches have two directions.
  const double depth = 2 * radius * (1 - std::cos(std::numbers::pi / rows / 2)) + 1e-5;
  qv_random random(1);
  for (int i = 0; i < 2000; ++i) {
    const qv_3dvector out = random.dice_vector();
    qv_ray inside({1, 2, 3}, out);
    ASSERT_TRUE(tracer.raytrace(inside));
    EXPECT_NEAR(inside.hit_distance, radius, depth);
    EXPECT_GT(inside.hit_normal.dot(out), 0.99f);
    qv_ray outside(qv_3dvector(1, 2, 3) + out * 10, -out);
    ASSERT_TRUE(tracer.raytrace(outside));
    EXPECT_NEAR(outside.hit_distance, 10 - radius, depth);
  }
}

TEST(qv_raytracer, agrees_with_trying_every_triangle) {
  const std::vector<corners> triangles = scatter(500, 10, 2);
  const auto mesh = make_mesh(triangles);
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  qv_random random(3);
  int hits = 0;
  for (int i = 0; i < 2000; ++i) {
    const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
    qv_ray ray(qv_3dvector(x, y, z) * 12, random.dice_vector());
    ray.minimum_distance = random.dice_float();
    ray.maximum_distance = 1 + 10 * random.dice_float();
    double nearest = infinite;
    int which = -1;
    for (std::size_t t = 0; t < triangles.size(); ++t) {
      const double distance = plain_hit(triangles[t], ray);
      if (distance < nearest) {
        nearest = distance;
        which = static_cast<int>(t);
      }
    }
    const bool hit = tracer.raytrace(ray);
    EXPECT_EQ(tracer.is_occluded(ray), hit);
    ASSERT_EQ(hit, which >= 0) << "ray " << i;
    if (!hit) continue;
    ++hits;
    EXPECT_NEAR(ray.hit_distance, nearest, 1e-4);
    EXPECT_EQ(ray.hit_triangle, which);
  }
  EXPECT_GT(hits, 300);
}

TEST(qv_raytracer, finds_the_hits_of_a_packet_as_of_single_rays) {
  const auto mesh = make_mesh(scatter(2000, 30, 5));
  const auto other = make_mesh(scatter(1000, 30, 6));
  const auto late = make_mesh(scatter(100, 30, 7));
  qv_raytracer tracer({mesh.get(), other.get()});
  tracer.update();
  // A second structure beside the first, which now has triangles that are not there any more.
  tracer.set_meshes({other.get(), late.get()});
  tracer.update();
  qv_random random(9);
  int hit_count = 0;
  for (int round = 0; round < 1000; ++round) {
    qv_ray_packet packet;
    packet.count = 1 + round % qv_ray_packet::size;
    std::vector<qv_ray> rays;
    for (int i = 0; i < packet.count; ++i) {
      const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
      rays.emplace_back(qv_3dvector(x, y, z) * 30, random.dice_vector());
      packet.set_ray(i, rays.back().origin, rays.back().direction);
    }
    qv_packet_hits hits;
    tracer.find_hits(packet, hits);
    for (int i = 0; i < packet.count; ++i) {
      qv_ray& ray = rays[static_cast<std::size_t>(i)];
      ASSERT_EQ(hits.distance[i] >= 0, tracer.raytrace(ray));
      if (hits.distance[i] < 0) continue;
      ++hit_count;
      EXPECT_NEAR(hits.distance[i], ray.hit_distance, 1e-5f * ray.hit_distance);
      EXPECT_EQ(hits.mesh_index[i], ray.hit_mesh_index);
      EXPECT_EQ(hits.normal[i], ray.hit_normal);
    }
  }
  EXPECT_GT(hit_count, 500);
}

TEST(qv_raytracer, gives_a_packet_the_first_of_coincident_meshes) {
  const auto first = make_mesh(square(4, 2)), second = make_mesh(square(4, 2));
  qv_packet_hits hits;
  qv_ray_packet packet;
  packet.count = qv_ray_packet::size;
  for (int i = 0; i < packet.count; ++i)
    packet.set_ray(i, {0.3f * static_cast<float>(i) - 1, 0.2f, 0}, {0, 0, 1});
  for (const auto& meshes : {qv_list<qvi_mesh*>{first.get(), second.get()},
                             qv_list<qvi_mesh*>{second.get(), first.get()}}) {
    qv_raytracer tracer(meshes);
    tracer.update();
    tracer.find_hits(packet, hits);
    for (int i = 0; i < packet.count; ++i) {
      EXPECT_FLOAT_EQ(hits.distance[i], 2);
      EXPECT_EQ(hits.mesh_index[i], 0);
    }
  }
}

TEST(qv_raytracer, lets_nothing_through_shared_edges_and_corners) {
  const std::vector<corners> triangles = sphere({30, -20, 10}, 3, 60);
  const auto mesh = make_mesh(triangles);
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  int rays = 0, lost = 0;
  qv_random random(4);
  for (const corners& t : triangles) {
    for (int k = 0; k < 3; ++k) {
      const qv_3dvector along = t[(k + 1) % 3] - t[k];
      for (const qv_3dvector& target :
           {t[k], t[k] + along * 0.5f, t[k] + along * random.dice_float()}) {
        // From inside: each ray must meet the closed surface.
        const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
        const qv_3dvector origin = qv_3dvector(29, -21, 9) + qv_3dvector(x, y, z) * 2;
        qv_ray ray(origin, (target - origin).normalized());
        ++rays;
        if (!tracer.raytrace(ray)) ++lost;
      }
    }
  }
  EXPECT_GT(rays, 100000);
  EXPECT_LT(lost * 1000, rays) << lost << " of " << rays;
}

TEST(qv_raytracer, respects_minimum_and_maximum_distance) {
  const auto near = make_mesh(square(10, 1));
  const auto far = make_mesh(square(10, 5));
  qv_raytracer tracer({near.get(), far.get()});
  tracer.update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ray.minimum_distance = 0.5f;
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, near.get());
  ray.minimum_distance = 2;
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, far.get());
  ray.maximum_distance = 4;
  EXPECT_FALSE(tracer.raytrace(ray));
  EXPECT_FALSE(tracer.is_occluded(ray));
  ray.minimum_distance = 5.5f;
  ray.maximum_distance = 1;
  EXPECT_FALSE(tracer.raytrace(ray));
  ray.minimum_distance = -3;
  ray.maximum_distance = 10;
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, near.get());
}

TEST(qv_raytracer, keeps_its_precision_far_from_the_origin) {
  // Coordinates of a national grid, 400 km out: floats lie 3 cm apart there, so the box lies on
  // multiples of 1/16 m and every distance must come out to the millimetre.
  const qv_3dvector far{400000, 250000, 100};
  const auto mesh = make_mesh(box(far, far + qv_3dvector(8, 6, 3)));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  for (int i = 1; i < 32; ++i) {
    const qv_3dvector start = far + qv_3dvector(0.25f * static_cast<float>(i), 2, 1);
    qv_ray up(start, {0, 0, 1});
    ASSERT_TRUE(tracer.raytrace(up));
    EXPECT_NEAR(up.hit_distance, 2, 1e-3);
    qv_ray across(start, {1, 0, 0});
    ASSERT_TRUE(tracer.raytrace(across));
    EXPECT_NEAR(across.hit_distance, 8 - 0.25f * static_cast<float>(i), 1e-3);
  }
}

TEST(qv_raytracer, hits_nothing_when_it_is_empty) {
  qv_raytracer tracer(qv_list<qvi_mesh*>{});
  qv_ray ray({0, 0, 0}, {0, 0, 1});
  EXPECT_FALSE(tracer.raytrace(ray));
  tracer.update();
  EXPECT_FALSE(tracer.raytrace(ray));
  EXPECT_FALSE(tracer.is_occluded(ray));
  EXPECT_EQ(tracer.get_triangle_count(), 0);
  const auto mesh = make_mesh({});
  tracer.set_meshes({mesh.get(), nullptr, mesh.get()});
  tracer.update();
  EXPECT_EQ(tracer.get_meshes().get_count(), 1);
  EXPECT_FALSE(tracer.raytrace(ray));
}

TEST(qv_raytracer, leaves_out_triangles_without_sense) {
  using point = qv_3dvector;
  std::vector<corners> triangles = {
      {point(not_a_number, 0, 1), point(1, 0, 1), point(1, 1, 1)},
      {point(-9, -9, 1), point(infinite, 0, 1), point(1, 9, 1)},
      {point(0, 0, 1), point(1, 1, 1), point(2, 2, 1)},
      {point(3e9f, 0, 1), point(-3e9f, -3e9f, 1), point(-3e9f, 3e9f, 1)}};
  for (const corners& t : square(10, 2)) triangles.push_back(t);
  const auto mesh = make_mesh(triangles);
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  EXPECT_EQ(tracer.get_triangle_count(), 2);
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_FLOAT_EQ(ray.hit_distance, 2);
  EXPECT_GE(ray.hit_triangle, 4);
}

TEST(qv_raytracer, refuses_rays_without_sense) {
  const auto mesh = make_mesh(box({-1, -1, -1}, {1, 1, 1}));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  qv_ray rays[] = {{{0, 0, 0}, {0, 0, 0}},
                   {{0, 0, 0}, {not_a_number, 0, 1}},
                   {{0, 0, 0}, {0, infinite, 0}},
                   {{not_a_number, 0, 0}, {0, 0, 1}},
                   {{infinite, 0, 0}, {-1, 0, 0}}};
  for (qv_ray& ray : rays) {
    EXPECT_FALSE(tracer.raytrace(ray));
    EXPECT_FALSE(tracer.is_occluded(ray));
  }
  qv_ray ray({0, 0, 0}, {0, 0, 1});
  ray.maximum_distance = not_a_number;
  EXPECT_FALSE(tracer.raytrace(ray));
  ray.maximum_distance = infinite;
  EXPECT_TRUE(tracer.raytrace(ray));
}

TEST(qv_raytracer, takes_another_set_at_the_next_update) {
  const auto low = make_mesh(square(10, 1));
  const auto high = make_mesh(square(10, 2));
  qv_raytracer tracer({low.get()});
  tracer.update();
  tracer.set_meshes({high.get()});
  tracer.update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, high.get());
  tracer.set_meshes({high.get(), low.get()});
  tracer.update();
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, low.get());
  tracer.set_meshes({});
  tracer.update();
  EXPECT_FALSE(tracer.raytrace(ray));
  EXPECT_EQ(tracer.get_triangle_count(), 0);
}

// What is told of a mesh, and which of coincident ones is met, go by its place in the present set.
TEST(qv_raytracer, follows_the_order_of_the_set) {
  const auto a = make_mesh(square(10, 1)), b = make_mesh(square(10, 1));
  const auto far = make_mesh(square(10, 5));
  qv_raytracer tracer({a.get(), b.get(), far.get()});
  tracer.update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, a.get());
  tracer.set_meshes({far.get(), b.get(), a.get()});
  tracer.update();
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, b.get());
  EXPECT_EQ(ray.hit_mesh_index, 1);

  // Both squares let half of the light through, the far one none.
  const float transmission[] = {0, 0, 0.5f, 0.5f, 0.5f, 0.5f};
  qv_ray_packet packet;
  packet.count = 2;
  packet.set_ray(0, {0.5f, 0.25f, 0}, {0, 0, 1});
  packet.set_ray(1, {0.5f, 0.25f, 0.5f}, {0, 0, -1});
  tracer.find_light(packet, transmission, false);
  EXPECT_EQ(packet.light[0], 0);
  EXPECT_EQ(packet.light[1], 1);
  tracer.set_meshes({b.get(), a.get()});
  tracer.update();
  tracer.find_light(packet, transmission + 2, false);
  EXPECT_EQ(packet.light[0], 0.25f);
}

TEST(qv_raytracer, follows_changes_of_geometry_when_updated) {
  const auto mesh = make_mesh(square(10, 1));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  load(*mesh, square(10, 4));
  tracer.update();
  qv_ray ray({0.5f, 0.25f, 0}, {0, 0, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_FLOAT_EQ(ray.hit_distance, 4);
  EXPECT_EQ(tracer.get_triangle_count(), 2);
  mesh->reverse();
  tracer.update();
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_normal, qv_3dvector(0, 0, -1));
}

TEST(qv_raytracer, hits_the_first_of_coincident_meshes_in_any_history) {
  std::vector<owned<qvi_mesh>> meshes;
  qv_list<qvi_mesh*> list;
  for (int i = 0; i < 20; ++i) {
    meshes.push_back(make_mesh(square(10, 1)));
    list.append(meshes.back().get());
  }
  qv_raytracer tracer(list);
  tracer.update();
  qv_ray ray({0.5f, 0.25f, 0}, {0.1f, 0.2f, 1});
  ASSERT_TRUE(tracer.raytrace(ray));
  EXPECT_EQ(ray.hit_mesh, meshes[0].get());
  for (std::size_t i = 0; i < 20; ++i) {
    load(*meshes[i], square(10, 2));
    load(*meshes[i], square(10, 1));
    tracer.update();
    ASSERT_TRUE(tracer.raytrace(ray));
    EXPECT_EQ(ray.hit_mesh, meshes[0].get()) << "after change " << i;
  }
}

TEST(qv_raytracer, gives_after_many_changes_what_a_new_one_gives) {
  qv_random random(5);
  std::vector<owned<qvi_mesh>> meshes;
  const std::vector<corners> triangles = scatter(600, 8, 6);
  std::vector<std::vector<corners>> parts(200);
  for (std::size_t i = 0; i < triangles.size(); ++i) parts[i / 3].push_back(triangles[i]);
  meshes.reserve(parts.size());
  for (const auto& part : parts) meshes.push_back(make_mesh(part));
  qv_list<qvi_mesh*> members;
  for (const auto& mesh : meshes) members.append(mesh.get());
  qv_raytracer tracer(members);
  for (int round = 0; round < 60; ++round) {
    for (int k = 0; k < 4; ++k) {
      const std::size_t i = random.dice() % parts.size();
      for (corners& t : parts[i])
        for (qv_3dvector& p : t) p += random.dice_vector() * 0.2f;
      load(*meshes[i], parts[i]);
    }
    if (round % 5 == 0) {
      members.clear();
      for (const auto& mesh : meshes)
        if (random.dice_float() < 0.8f) members.append(mesh.get());
      tracer.set_meshes(members);
    }
    tracer.update();
    qv_raytracer fresh(members);
    fresh.update();
    EXPECT_EQ(tracer.get_triangle_count(), fresh.get_triangle_count());
    for (int r = 0; r < 100; ++r) {
      const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
      qv_ray a(qv_3dvector(x, y, z) * 9, random.dice_vector());
      qv_ray b = a;
      ASSERT_EQ(tracer.raytrace(a), fresh.raytrace(b)) << "round " << round;
      EXPECT_EQ(tracer.is_occluded(a), fresh.is_occluded(b));
      EXPECT_EQ(a.hit_mesh, b.hit_mesh);
      EXPECT_EQ(a.hit_mesh_index, b.hit_mesh_index);
      EXPECT_EQ(a.hit_triangle, b.hit_triangle);
      EXPECT_NEAR(a.hit_distance, b.hit_distance, 1e-5);
    }
  }
}

TEST(qv_raytracer, gives_the_same_answers_to_any_number_of_threads) {
  const auto mesh = make_mesh(scatter(3000, 12, 7));
  qv_raytracer tracer({mesh.get()});
  tracer.update();
  constexpr std::size_t count = 4000;
  std::vector<qv_ray> rays;
  qv_random random(8);
  for (std::size_t i = 0; i < count; ++i) {
    const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
    rays.emplace_back(qv_3dvector(x, y, z) * 12, random.dice_vector());
  }
  std::vector<qv_ray> alone = rays;
  for (qv_ray& ray : alone) tracer.raytrace(ray);

  std::vector<std::jthread> threads;
  constexpr std::size_t thread_count = 4;
  for (std::size_t k = 0; k < thread_count; ++k) {
    threads.emplace_back([&, k] {
      tracer.update();
      for (std::size_t i = k; i < count; i += thread_count) tracer.raytrace(rays[i]);
    });
  }
  threads.clear();
  for (std::size_t i = 0; i < count; ++i) {
    EXPECT_EQ(rays[i].hit_distance, alone[i].hit_distance);
    EXPECT_EQ(rays[i].hit_triangle, alone[i].hit_triangle);
  }
}
