#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"

namespace {

using namespace qv;
using qv_test::make_item;

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

class listening_polygon : public qvi_polygon {
 public:
  std::vector<std::string> changes;
  ~listening_polygon() override = default;

 protected:
  void item_changed(qv_item* item, const std::string& name) override {
    if (item == this) changes.push_back(name);
    qvi_polygon::item_changed(item, name);
  }
};

// 5 × 4 less 3 × 2.
constexpr float frame_area = 14;
qv_polygon make_frame() {
  return qv_test::make_frame(0, 0, 5, 4, 1);
}

// The triangles' common normal; fails the test when they have none.
qv_3dvector get_triangle_normal(qvi_mesh& mesh) {
  qv_3dvector a, b, c, normal, first;
  for (int i = 0; i < mesh.get_nb_triangles(); ++i) {
    EXPECT_TRUE(mesh.read_triangle(i, a, b, c, &normal));
    if (i == 0) first = normal;
    EXPECT_NEAR(normal.dot(first), 1, 1e-5);
  }
  return first;
}

TEST(qvi_polygon, is_a_mesh_without_region_when_new) {
  const auto polygon = make_item<qvi_polygon>();
  EXPECT_TRUE(polygon->has_exact_type("polygon"));
  EXPECT_TRUE(polygon->has_type("mesh"));
  EXPECT_EQ(polygon->get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(polygon->get_area(), 0);
  EXPECT_EQ(polygon->get_nb_triangles(), 0);
  EXPECT_EQ(polygon->build_raw_polygons().get_count(), 0);
  EXPECT_TRUE(polygon->get_local_bounding_box().is_empty());
}

TEST(qvi_polygon, gives_back_the_polygon_that_it_was_loaded_from) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  qv_polygon again;
  again.add_contour({{7, 7, 7}, {8, 7, 7}, {7, 8, 7}});
  item.fill_polygon(&again);
  EXPECT_EQ(again.get_contour_vertices(), frame.get_contour_vertices());
  EXPECT_EQ(again.get_contour_sizes(), frame.get_contour_sizes());
  EXPECT_EQ(again.get_normal(), frame.get_normal());
  EXPECT_EQ(again.get_point().z, 1);
  EXPECT_EQ(again.get_area(), frame_area);
  const std::size_t announced = item.changes.size();
  item.load_from_polygon(&again);
  EXPECT_EQ(item.changes.size(), announced);
  item.fill_polygon(nullptr);
  item.load_from_polygon(nullptr);
  EXPECT_EQ(item.get_area(), 0);
  EXPECT_EQ(item.get_vertices().get_count(), 0);
}

TEST(qvi_polygon, measures_draws_and_traces_its_region) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  EXPECT_FLOAT_EQ(item.get_area(), frame_area);
  EXPECT_FLOAT_EQ(item.qvi_mesh::get_area(), frame_area);
  EXPECT_EQ(get_triangle_normal(item), qv_3dvector(0, 0, 1));
  EXPECT_EQ(item.get_local_bounding_box(), qv_box({0, 0, 1}, {5, 4, 1}));
  const qv_test::owned_polygons raw(item.build_raw_polygons());
  ASSERT_EQ(raw.get_count(), 1);
  EXPECT_EQ(raw[0].get_contour_sizes(), frame.get_contour_sizes());
}

TEST(qvi_polygon, triangulates_anew_only_after_a_change_of_shape) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  const qv_3dvector* triangulated = item.get_triangle_vertices().data();
  item.set_rendering_visibility(false);
  const auto shader = make_item<qvi_shader>();
  item.set_front_shader(shader.get());
  EXPECT_EQ(item.get_triangle_vertices().data(), triangulated);
  item.set_vertices({{0, 0, 1}, {1, 0, 1}, {0, 1, 1}});
  item.set_contour_sizes({3});
  EXPECT_EQ(item.get_nb_triangles(), 1);
  item.matrix_transform(qv_matrix::translation({0, 0, 4}), false);
  for (const qv_3dvector& vertex : item.get_triangle_vertices()) EXPECT_EQ(vertex.z, 5);
}

TEST(qvi_polygon, copies_the_same_triangles_kept_or_not_and_new_ones_after_a_change) {
  const auto polygon = make_item<qvi_polygon>();
  const qv_polygon frame = make_frame();
  polygon->load_from_polygon(&frame);
  const qv_triangulation before_keeping = polygon->copy_triangles();
  EXPECT_EQ(before_keeping.vertices, polygon->get_triangle_vertices());
  EXPECT_EQ(before_keeping.triangles, polygon->get_triangle_indices());
  EXPECT_EQ(before_keeping.triangles, polygon->copy_triangles().triangles);
  polygon->load_from_polygon(nullptr);
  EXPECT_EQ(polygon->copy_triangles().triangles.get_count(), 0);
}

TEST(qvi_polygon, dates_every_parameter_of_its_shape) {
  listening_polygon item;
  unsigned int date = item.get_shape_date();
  const auto is_later = [&] {
    const bool later = item.get_shape_date() > date && item.get_geometry_date() > date;
    date = item.get_shape_date();
    return later;
  };
  item.set_normal({1, 0, 0});
  EXPECT_TRUE(is_later());
  item.set_contour_sizes({3});
  EXPECT_TRUE(is_later());
  item.set_vertices({{0, 0, 0}});
  EXPECT_TRUE(is_later());
  item.set_rendering_layers({"main"});
  EXPECT_FALSE(is_later());
}

TEST(qvi_polygon, moves_and_comes_back) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  const qv_matrix there = qv_matrix::translation({3, 2, 1}) * qv_matrix::rotation(0, 90);
  item.changes.clear();
  item.matrix_transform(there, true);
  EXPECT_EQ(item.changes, (std::vector<std::string>{"normal", "vertices"}));
  EXPECT_EQ(item.get_normal(), qv_3dvector(0, -1, 0));
  EXPECT_EQ(get_triangle_normal(item), qv_3dvector(0, -1, 0));
  EXPECT_FLOAT_EQ(item.get_area(), frame_area);
  item.matrix_transform(there.get_inverse(), true);
  EXPECT_EQ(item.get_normal(), qv_3dvector(0, 0, 1));
  EXPECT_EQ(item.get_vertices(), frame.get_contour_vertices());
}

TEST(qvi_polygon, moves_without_a_word_when_asked_to) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  item.changes.clear();
  const unsigned int date = item.get_local_date();
  item.matrix_transform(qv_matrix::rotation(0, 90), false);
  EXPECT_TRUE(item.changes.empty());
  EXPECT_EQ(item.get_local_date(), date);
  EXPECT_EQ(item.get_normal(), qv_3dvector(0, -1, 0));
}

TEST(qvi_polygon, keeps_its_front_on_its_side_in_a_mirror) {
  const qv_polygon frame = make_frame();
  for (const qv_3dvector& mirror :
       {qv_3dvector(-1, 1, 1), qv_3dvector(1, -1, 1), qv_3dvector(1, 1, -1)}) {
    listening_polygon item;
    item.load_from_polygon(&frame);
    item.matrix_transform(qv_matrix::scaling(mirror), true);
    const qv_3dvector expected(0, 0, mirror.z);
    EXPECT_EQ(item.get_normal(), expected);
    EXPECT_EQ(get_triangle_normal(item), expected);
    EXPECT_FLOAT_EQ(item.get_area(), frame_area);
    // The outer contour still runs counter-clockwise about the normal.
    const qv_3dvector a = item.get_vertices()[0], b = item.get_vertices()[1],
                      c = item.get_vertices()[2];
    EXPECT_GT((b - a).cross(c - b).dot(expected), 0);
  }
}

TEST(qvi_polygon, is_pushed_along_its_normal) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  item.push_offset(0.5f);
  EXPECT_EQ(item.get_local_bounding_box(), qv_box({0, 0, 1.5f}, {5, 4, 1.5f}));
  item.push_offset(-0.5f);
  EXPECT_EQ(item.get_vertices(), frame.get_contour_vertices());
  item.push_offset(not_a_number);
  item.push_offset(infinity);
  EXPECT_EQ(item.get_vertices(), frame.get_contour_vertices());
}

TEST(qvi_polygon, turns_over_with_its_shaders_and_back) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  const auto shader = make_item<qvi_shader>();
  item.load_from_polygon(&frame);
  item.set_front_shader(shader.get());
  item.reverse();
  EXPECT_EQ(item.get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(get_triangle_normal(item), qv_3dvector(0, 0, -1));
  EXPECT_FLOAT_EQ(item.get_area(), frame_area);
  EXPECT_EQ(item.get_back_shader(), shader.get());
  EXPECT_EQ(item.get_front_shader(), nullptr);
  item.reverse();
  EXPECT_EQ(item.get_vertices(), frame.get_contour_vertices());
  EXPECT_EQ(item.get_front_shader(), shader.get());
}

TEST(qvi_polygon, unites_what_it_is_merged_with_in_its_plane) {
  const qv_polygon left = qv_test::make_rectangle(0, 0, 4, 3);
  const qv_polygon right = qv_test::make_rectangle(3, 0, 6, 3, 0.7f);
  listening_polygon item, other;
  item.load_from_polygon(&left);
  other.load_from_polygon(&right);
  item.merge(&other);
  EXPECT_FLOAT_EQ(item.get_area(), 18);
  EXPECT_EQ(item.get_local_bounding_box(), qv_box({0, 0, 0}, {6, 3, 0}));
  item.changes.clear();
  item.merge(qv_list<qvi_mesh*>{nullptr, &item});
  EXPECT_TRUE(item.changes.empty());
}

TEST(qvi_polygon, leaves_operations_on_triangles_alone) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  item.changes.clear();
  item.optimize_vertices(10);
  item.load_from_triangles({{0, 0, 0}, {1, 0, 0}, {0, 1, 0}}, {0, 1, 2});
  EXPECT_TRUE(item.changes.empty());
  EXPECT_FLOAT_EQ(item.get_area(), frame_area);
}

TEST(qvi_polygon, survives_lists_that_do_not_fit) {
  listening_polygon item;
  item.set_vertices({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {not_a_number, 1, 1}});
  for (const auto& sizes : {std::vector<unsigned int>{},
                            {4, 4000000000u, 7, 4294967295u},
                            {0, 0, 5},
                            {1, 1, 1, 1, 1},
                            {4294967295u}}) {
    qv_list<unsigned int> list;
    for (unsigned int size : sizes) list.append(size);
    item.set_contour_sizes(list);
    item.get_area();
    item.get_nb_triangles();
    item.reverse();
    item.matrix_transform(qv_matrix::scaling({-1, 1, 1}), false);
    item.push_offset(1);
    const qv_test::owned_polygons raw(item.build_raw_polygons());
    item.to_json();
  }
  item.set_contour_sizes({4, 99});
  item.set_vertices({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}});
  EXPECT_FLOAT_EQ(item.get_area(), 4);
}

TEST(qvi_polygon, survives_transformations_that_flatten_or_destroy_it) {
  const qv_polygon frame = make_frame();
  for (const qv_matrix& matrix :
       {qv_matrix::scaling({0, 1, 1}), qv_matrix::scaling({0, 0, 0}),
        qv_matrix::scaling({not_a_number, 1, 1}), qv_matrix::scaling({infinity, 1, 1}),
        qv_matrix::translation({0, 0, 3e38f}) * qv_matrix::scaling({3e38f, 3e38f, 3e38f})}) {
    listening_polygon item;
    item.load_from_polygon(&frame);
    item.matrix_transform(matrix, true);
    EXPECT_EQ(item.get_area(), 0);
    EXPECT_EQ(item.get_nb_triangles(), 0);
    item.reverse();
    item.push_offset(1);
  }
}

TEST(qvi_polygon, shares_shape_and_triangles_with_a_copy) {
  const qv_polygon frame = make_frame();
  qv_test::owned_item<qvi_polygon> item(new qvi_polygon);
  item->load_from_polygon(&frame);
  qv_test::owned_item<qvi_polygon> twin(new qvi_polygon(*item));
  EXPECT_EQ(item->get_triangle_vertices().data(), twin->get_triangle_vertices().data());
  item->matrix_transform(qv_matrix::translation({0, 0, 9}), false);
  for (const qv_3dvector& vertex : twin->get_triangle_vertices()) EXPECT_EQ(vertex.z, 10);
  item.reset();
  EXPECT_FLOAT_EQ(twin->get_area(), frame_area);
  EXPECT_GT(twin->get_nb_triangles(), 0);
}

TEST(qvi_polygon, takes_another_region_by_assignment) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  qvi_polygon* other = new qvi_polygon;
  other->load_from_polygon(&frame);
  item.get_nb_triangles();
  static_cast<qvi_polygon&>(item) = *other;
  EXPECT_FLOAT_EQ(item.get_area(), frame_area);
  EXPECT_FLOAT_EQ(item.qvi_mesh::get_area(), frame_area);
  qv_item::destroy(other);
  EXPECT_FLOAT_EQ(item.qvi_mesh::get_area(), frame_area);
}

TEST(qvi_polygon, makes_an_empty_polygon_when_asked_for_a_copy) {
  const qv_polygon frame = make_frame();
  listening_polygon item;
  item.load_from_polygon(&frame);
  qv_test::owned_item<qv_item> fresh(item.copy());
  ASSERT_NE(fresh, nullptr);
  EXPECT_TRUE(fresh->has_exact_type("polygon"));
  EXPECT_EQ(static_cast<qvi_polygon*>(fresh.get())->get_area(), 0);
  EXPECT_TRUE(static_cast<qvi_polygon*>(fresh.get())->copy_params(&item) > 0);
  EXPECT_FLOAT_EQ(static_cast<qvi_polygon*>(fresh.get())->get_area(), frame_area);
}

}  // namespace
