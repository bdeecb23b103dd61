#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <vector>

#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "core/light/sample_sequence.h"
#include "core/light/sun_plan.h"
#include "core/light/surface_sampler.h"
#include "light_receivers.h"

using namespace qv;
using namespace qv::light;
using namespace qv_test;

TEST(sample_sequence, fills_every_strip_of_each_dimension_and_each_cell_of_the_first_two) {
  for (std::uint32_t seed : {1u, 2u, 77u}) {
    for (const auto make : {get_sequence_point, get_shuffled_sequence_point}) {
      std::vector<int> strips(4 * 256), cells(256);
      for (std::uint32_t i = 0; i < 256; ++i) {
        const auto point = make(i, scrambling(seed));
        for (std::size_t d = 0; d < 4; ++d) {
          ASSERT_GE(point[d], 0);
          ASSERT_LT(point[d], 1);
          ++strips[d * 256 + static_cast<std::size_t>(point[d] * 256)];
        }
        ++cells[static_cast<std::size_t>(point[0] * 16) * 16 +
                static_cast<std::size_t>(point[1] * 16)];
      }
      EXPECT_EQ(*std::max_element(strips.begin(), strips.end()), 1) << seed;
      EXPECT_EQ(*std::max_element(cells.begin(), cells.end()), 1) << seed;
    }
  }
}

TEST(sample_sequence, gives_eight_points_at_once_as_one_by_one) {
  const scrambling by(11);
  for (std::uint32_t first : {0u, 250u, 65530u, 0xfffffff0u}) {
    std::uint32_t indices[sequence_points::size];
    for (std::uint32_t i = 0; i < sequence_points::size; ++i) indices[i] = first + i;
    sequence_points points, shuffled;
    get_sequence_points(indices, by, points);
    get_shuffled_sequence_points(indices, by, shuffled);
    for (std::size_t i = 0; i < sequence_points::size; ++i) {
      const auto point = get_sequence_point(indices[i], by);
      const auto other = get_shuffled_sequence_point(indices[i], by);
      for (std::size_t d = 0; d < 4; ++d) {
        EXPECT_EQ(points.coordinates[d][i], point[d]);
        EXPECT_EQ(shuffled.coordinates[d][i], other[d]);
      }
    }
  }
}

TEST(sample_sequence, has_points_of_different_seeds_that_have_nothing_in_common) {
  // Mean product of deviations from 1/2 over many seeds: 0 for what is independent.
  double product = 0, square = 0;
  constexpr int count = 4000;
  for (std::uint32_t i = 0; i < count; ++i) {
    const double a = get_sequence_point(5, scrambling(combine_seeds(3, i)))[2] - 0.5;
    const double b = get_sequence_point(5, scrambling(combine_seeds(4, i)))[2] - 0.5;
    product += a * b;
    square += a * a;
  }
  EXPECT_NEAR(square / count, 1 / 12.0, 0.005);
  EXPECT_NEAR(product / count, 0, 3.0 / 12 / std::sqrt(count));
}

TEST(surface_sampler, gives_equal_areas_equal_parts_of_its_row) {
  qv_polygon polygon = to_polygon({0, 0, 0}, {8, 0, 0}, {0, 4, 0});
  polygon.add_contour({{1, 1, 0}, {1, 3, 0}, {3, 3, 0}, {3, 1, 0}});
  const surface_sampler sampler(polygon, {0, 0, 0.5f});
  EXPECT_NEAR(sampler.get_area(), 28, 1e-4);
  constexpr int count = 1 << 14;
  int left = 0, below = 0;
  for (int i = 0; i < count; ++i) {
    const auto across = to_unit(mix_bits(static_cast<std::uint32_t>(i)));
    const qv_3dvector point = sampler.get_point((i + 0.5) / count, across, 14);
    ASSERT_EQ(point.z, 0.5f);
    ASSERT_FALSE(point.x > 1 && point.x < 3 && point.y > 1 && point.y < 3);
    left += point.x < 4 ? 1 : 0;
    below += point.y < 1 ? 1 : 0;
  }
  EXPECT_NEAR(static_cast<double>(left) / count, 12 / 28.0, 0.002);
  EXPECT_NEAR(static_cast<double>(below) / count, 8 / 28.0, 0.002);
}

TEST(surface_sampler, has_a_point_in_each_of_as_many_parts_as_asked_for) {
  // Four neighbouring strata of 1 / 4,096 of the row make a small square each, or two of them half
  // a square: every square gets as many points.
  const surface_sampler sampler(to_polygon({0, 0, 0}, {1, 0, 0}, {0, 1, 0}), {});
  constexpr int count = 4096, edge = 32;
  std::vector<int> squares(edge * edge);
  qv_random random(3);
  for (int i = 0; i < count; ++i) {
    const double position = (i + static_cast<double>(random.dice_float())) / count;
    const qv_3dvector p = sampler.get_point(position, random.dice_float(), 12);
    const auto column = static_cast<std::size_t>(p.x * edge);
    ++squares[column * edge + static_cast<std::size_t>(p.y * edge)];
  }
  EXPECT_EQ(*std::min_element(squares.begin(), squares.end()), 4);
  EXPECT_EQ(*std::max_element(squares.begin(), squares.end()), 4);
}

TEST(surface_sampler, has_neighbours_in_its_row_close_together) {
  const surface_sampler sampler(to_polygon({0, 0, 0}, {4, 0, 0}, {0, 4, 0}), {});
  for (int i = 0; i < 64; ++i) {
    const qv_3dvector begin = sampler.get_point(i / 64.0, 0.3f, 6);
    const qv_3dvector end = sampler.get_point((i + 0.999) / 64, 0.6f, 6);
    // A 64th of 16 m²: half a metre square, 1.2 m across in a long triangle and its neighbour.
    EXPECT_LT((end - begin).length(), 1.2f) << i;
  }
}

TEST(sun_plan, shares_each_step_among_nodes_around_its_sun) {
  qv_scene scene;
  const qvi_sun* sun = add_sun(scene, year_of_suns());
  const sun_plan plan = make_sun_plan(sun);
  EXPECT_FALSE(plan.exact_nodes);
  EXPECT_GT(plan.lit.size(), 4000u);
  EXPECT_LT(plan.nodes.size(), 300u);
  for (const lit_step& step : plan.lit) {
    float sum = 0;
    for (const node_weight& share : step.nodes) {
      EXPECT_GE(share.weight, 0);
      sum += share.weight;
      if (share.weight == 0) continue;
      const qv_3dvector& node = plan.nodes[static_cast<std::size_t>(share.node)];
      EXPECT_GT(node.dot(step.direction), std::cos(11 * std::numbers::pi / 180));
    }
    ASSERT_NEAR(sum, 1, 1e-5);
  }
}

TEST(qv_raytracer, finds_the_light_of_a_packet_as_of_single_rays) {
  const auto mesh = make_mesh(scatter(3000, 30, 5));
  const auto other = make_mesh(scatter(1000, 30, 6));
  qv_raytracer tracer({mesh.get(), other.get()});
  tracer.update();
  qv_random random(9);
  for (int round = 0; round < 500; ++round) {
    qv_ray_packet packet;
    packet.count = 1 + round % qv_ray_packet::size;
    qv_3dvector origins[qv_ray_packet::size];
    const qv_3dvector common = random.dice_vector();
    qv_3dvector directions[qv_ray_packet::size];
    for (int i = 0; i < packet.count; ++i) {
      const float x = random.dice_float(), y = random.dice_float(), z = random.dice_float();
      origins[i] = qv_3dvector(x, y, z) * 30;
      directions[i] = round % 2 == 0 ? common : random.dice_vector();
      packet.set_ray(i, origins[i], directions[i]);
    }
    tracer.find_light(packet, nullptr, round % 2 == 0);
    for (int i = 0; i < packet.count; ++i) {
      const qv_ray ray(origins[i], directions[i]);
      EXPECT_EQ(packet.light[i], tracer.is_occluded(ray) ? 0 : 1);
    }
    // The first mesh lets half through: what is left halves at each triangle of it that is met.
    const float transmission[4] = {0.5f, 0.5f, 0, 0};
    tracer.find_light(packet, transmission, round % 2 == 0);
    for (int i = 0; i < packet.count; ++i) {
      float light = 1;
      qv_ray ray(origins[i], directions[i]);
      while (light > 0 && tracer.raytrace(ray)) {
        light = ray.hit_mesh_index == 0 ? light / 2 : 0;
        ray.minimum_distance = std::nextafter(ray.hit_distance, 1e9f);
      }
      EXPECT_FLOAT_EQ(packet.light[i], light);
    }
  }
}

TEST(qv_raytracer, looks_behind_a_plane_by_the_corners_of_triangles_not_by_all_vertices) {
  // Shared corners, and vertices of no triangle beyond the plane.
  const owned<qvi_mesh> mesh(new qvi_mesh);
  mesh->load_from_triangles(
      {{0, 0, 9}, {0, 0, 0}, {4, 0, 0}, {4, 4, 1}, {0, 4, 1}, {0, 0, 9}, {0, 0, 9}},
      {1, 2, 3, 1, 3, 4});
  const auto other = make_mesh(square(1, 0.5f));
  qv_raytracer tracer({mesh.get(), other.get()});
  tracer.update();
  EXPECT_TRUE(tracer.is_all_behind({0, 0, 1}, {0, 0, 1}, 1e-5f));
  EXPECT_FALSE(tracer.is_all_behind({0, 0, 0.9f}, {0, 0, 1}, 1e-5f));
  EXPECT_TRUE(tracer.is_all_behind({0, 0, 0}, {0, 0, -1}, 1e-5f));
}

TEST(qv_raytracer, knows_whether_all_lies_behind_a_plane) {
  const auto mesh = make_mesh(box({0, 0, 0}, {2, 3, 4}));
  const auto other = make_mesh(square(1, 6));
  qv_raytracer tracer({mesh.get(), other.get()});
  tracer.update();
  EXPECT_TRUE(tracer.is_all_behind({2, 0, 0}, {1, 0, 0}, 1e-5f));
  EXPECT_TRUE(tracer.is_all_behind({0, 0, 6}, {0, 0, 1}, 1e-5f));
  EXPECT_FALSE(tracer.is_all_behind({0, 0, 4}, {0, 0, 1}, 1e-5f));
  EXPECT_FALSE(tracer.is_all_behind({1.9f, 0, 0}, {1, 0, 0}, 1e-5f));
  // What was taken out does not count.
  tracer.set_meshes({mesh.get()});
  tracer.update();
  EXPECT_TRUE(tracer.is_all_behind({0, 0, 4}, {0, 0, 1}, 1e-5f));
}
