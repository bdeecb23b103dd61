#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/shapes/qvi_solid.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"

namespace {

using namespace qv;
using qv_test::make_item;
using qv_test::to_vector;

constexpr float not_a_number = std::numeric_limits<float>::quiet_NaN();
constexpr float infinity = std::numeric_limits<float>::infinity();

class listening_solid : public qvi_solid {
 public:
  std::vector<std::string> changes;
  ~listening_solid() override = default;

 protected:
  void item_changed(qv_item* item, const std::string& name) override {
    if (item == this) changes.push_back(name);
    qvi_solid::item_changed(item, name);
  }
};

qv_solid make_box(float x, float y, float z) {
  qv_solid box;
  box.extrusion(qv_test::make_rectangle(0, 0, x, y), {0, 0, z});
  return box;
}

// Volume enclosed by the raw polygons.
double get_volume(qvi_solid& item) {
  const qv_test::owned_polygons faces(item.build_raw_polygons());
  qv_solid solid;
  for (int i = 0; i < faces.get_count(); ++i) solid.add_face(faces[i]);
  return solid.get_volume();
}

TEST(qvi_solid, is_a_mesh_without_faces_when_new) {
  const auto solid = make_item<qvi_solid>();
  EXPECT_TRUE(solid->has_exact_type("solid"));
  EXPECT_TRUE(solid->has_type("mesh"));
  EXPECT_EQ(solid->get_area(), 0);
  EXPECT_EQ(solid->build_raw_polygons().get_count(), 0);
  EXPECT_EQ(solid->build_polygons().get_count(), 0);
}

TEST(qvi_solid, measures_a_box) {
  const qv_solid box = make_box(2, 3, 4);
  listening_solid item;
  item.load_from_solid(&box);
  // 2 · (2 × 3 + 3 × 4 + 4 × 2)
  EXPECT_FLOAT_EQ(item.get_area(), 52);
  EXPECT_FLOAT_EQ(item.qvi_mesh::get_area(), 52);
  EXPECT_EQ(item.get_nb_triangles(), 12);
  EXPECT_NEAR(get_volume(item), 24, 1e-5);
  EXPECT_EQ(item.get_local_bounding_box(), qv_box({0, 0, 0}, {2, 3, 4}));
  const std::size_t announced = item.changes.size();
  EXPECT_EQ(announced, 4u);
  item.load_from_solid(&box);
  EXPECT_EQ(item.changes.size(), announced);
  item.load_from_solid(nullptr);
  EXPECT_EQ(item.get_area(), 0);
  EXPECT_EQ(item.get_vertices().get_count(), 0);
}

TEST(qvi_solid, gives_back_the_faces_that_it_was_loaded_from) {
  qv_solid pipe;
  pipe.extrusion(qv_test::make_frame(0, 0, 5, 4), {0, 0, 3});
  listening_solid item;
  item.load_from_solid(&pipe);
  const qv_test::owned_polygons faces(item.build_raw_polygons());
  ASSERT_EQ(faces.get_count(), pipe.get_faces().get_count());
  for (int i = 0; i < faces.get_count(); ++i) {
    EXPECT_EQ(faces[i].get_contour_vertices(), pipe.get_faces()[i]->get_contour_vertices());
    EXPECT_EQ(faces[i].get_contour_sizes(), pipe.get_faces()[i]->get_contour_sizes());
    EXPECT_EQ(faces[i].get_normal(), pipe.get_faces()[i]->get_normal());
  }
  // (5 × 4 − 3 × 2) × 3
  EXPECT_NEAR(get_volume(item), 42, 1e-4);
}

TEST(qvi_solid, makes_polygon_items_with_its_shaders) {
  const qv_solid box = make_box(1, 1, 1);
  listening_solid item;
  const auto shader = make_item<qvi_shader>();
  item.load_from_solid(&box);
  item.set_front_shader(shader.get());
  double area = 0;
  const qv_list<qvi_polygon*> polygons = item.build_polygons();
  EXPECT_EQ(polygons.get_count(), 6);
  for (qvi_polygon* polygon : polygons) {
    area += polygon->get_area();
    EXPECT_EQ(polygon->get_front_shader(), shader.get());
    EXPECT_EQ(polygon->get_back_shader(), nullptr);
    EXPECT_EQ(polygon->get_parent(), nullptr);
    qv_item::destroy(polygon);
  }
  EXPECT_FLOAT_EQ(static_cast<float>(area), 6);
}

TEST(qvi_solid, adds_the_faces_of_what_it_is_merged_with) {
  const qv_solid small = make_box(1, 1, 1);
  const qv_solid large = make_box(2, 2, 2);
  listening_solid item, other;
  qvi_mesh* mesh = new qvi_mesh;
  item.load_from_solid(&small);
  other.load_from_solid(&large);
  mesh->merge(&other);
  item.merge(qv_list<qvi_mesh*>{&other, mesh, nullptr, &item});
  EXPECT_FLOAT_EQ(item.get_area(), 6 + 24 + 24);
  EXPECT_EQ(item.get_face_sizes().get_count(), 18);
  qv_item::destroy(mesh);
}

TEST(qvi_solid, becomes_a_single_face) {
  const qv_polygon frame = qv_test::make_frame(0, 0, 5, 4);
  listening_solid item;
  item.load_from_polygon(&frame);
  EXPECT_EQ(to_vector(item.get_face_sizes()), (std::vector<unsigned int>{2}));
  EXPECT_FLOAT_EQ(item.get_area(), 14);
  item.load_from_polygon(nullptr);
  EXPECT_EQ(item.get_area(), 0);
}

TEST(qvi_solid, keeps_its_faces_outwards_wherever_it_is_placed) {
  const qv_solid box = make_box(2, 3, 4);
  for (const qv_matrix& matrix :
       {qv_matrix::rotation(0, 30) * qv_matrix::rotation(2, 70), qv_matrix::scaling({-1, 1, 1}),
        qv_matrix::scaling({-1, -1, -1}), qv_matrix::translation({4, 5, 6})}) {
    for (bool notify : {true, false}) {
      listening_solid item;
      item.load_from_solid(&box);
      EXPECT_EQ(item.get_nb_triangles(), 12);
      item.changes.clear();
      const unsigned int date = item.get_local_date();
      item.matrix_transform(matrix, notify);
      EXPECT_EQ(item.changes.empty(), !notify);
      EXPECT_EQ(item.get_local_date() == date, !notify);
      EXPECT_NEAR(get_volume(item), 24, 1e-4);
      double volume = 0;
      qv_3dvector a, b, c;
      for (int i = 0; i < item.get_nb_triangles(); ++i) {
        ASSERT_TRUE(item.read_triangle(i, a, b, c, nullptr));
        volume += double{a.dot(b.cross(c))} / 6;
      }
      EXPECT_NEAR(volume, 24, 1e-4);
      item.matrix_transform(matrix.get_inverse(), notify);
      for (int i = 0; i < item.get_vertices().get_count(); ++i)
        EXPECT_LT((item.get_vertices()[i] - (*box.get_faces()[i / 4]).get_contour_vertices()[i % 4])
                      .length(),
                  1e-5);
    }
  }
}

TEST(qvi_solid, grows_by_a_layer_of_the_given_thickness) {
  const qv_solid box = make_box(2, 3, 4);
  listening_solid item;
  item.load_from_solid(&box);
  item.push_offset(0.5f);
  EXPECT_EQ(item.get_local_bounding_box(), qv_box({-0.5f, -0.5f, -0.5f}, {2.5f, 3.5f, 4.5f}));
  // 3 × 4 × 5
  EXPECT_NEAR(get_volume(item), 60, 1e-4);
  item.push_offset(-0.5f);
  EXPECT_NEAR(get_volume(item), 24, 1e-4);
  item.changes.clear();
  item.push_offset(not_a_number);
  item.push_offset(infinity);
  EXPECT_TRUE(item.changes.empty());
}

TEST(qvi_solid, keeps_every_face_in_its_moved_plane_when_it_grows) {
  // A prism over a triangle with a sharp corner, and an L.
  qv_polygon triangle({0, 0, 0}, {0, 0, 1});
  triangle.add_contour({{0, 0, 0}, {10, 0, 0}, {0, 2, 0}});
  qv_polygon l({0, 0, 0}, {0, 0, 1});
  l.add_contour({{0, 0, 0}, {6, 0, 0}, {6, 2, 0}, {3, 2, 0}, {3, 5, 0}, {0, 5, 0}});
  for (const qv_polygon& base : {triangle, l}) {
    qv_solid prism;
    prism.extrusion(base, {0, 0, 3});
    listening_solid item;
    item.load_from_solid(&prism);
    item.push_offset(0.1f);
    const qv_test::owned_polygons faces(item.build_raw_polygons());
    for (int i = 0; i < faces.get_count(); ++i) {
      const qv_polygon& before = *prism.get_faces()[i];
      for (const qv_3dvector& vertex : faces[i].get_contour_vertices())
        EXPECT_NEAR((vertex - before.get_contour_vertices()[0]).dot(before.get_normal()), 0.1,
                    1e-5);
    }
  }
}

TEST(qvi_solid, turns_over_with_its_shaders) {
  const qv_solid box = make_box(2, 3, 4);
  listening_solid item;
  const auto shader = make_item<qvi_shader>();
  item.load_from_solid(&box);
  item.set_front_shader(shader.get());
  item.reverse();
  EXPECT_NEAR(get_volume(item), -24, 1e-5);
  EXPECT_EQ(item.get_back_shader(), shader.get());
  item.reverse();
  EXPECT_NEAR(get_volume(item), 24, 1e-5);
  EXPECT_EQ(item.get_front_shader(), shader.get());
}

TEST(qvi_solid, survives_lists_that_do_not_fit) {
  listening_solid item;
  item.set_vertices({{0, 0, 0}, {2, 0, 0}, {2, 2, 0}, {0, 2, 0}, {infinity, 1, 1}});
  item.set_contour_sizes({4, 4000000000u, 3, 1});
  for (const auto& sizes : {std::vector<unsigned int>{}, {1, 1}, {4294967295u, 2, 2}, {0, 0, 1}}) {
    qv_list<unsigned int> list;
    for (unsigned int size : sizes) list.append(size);
    item.set_face_sizes(list);
    for (const auto& normals : {qv_list<qv_3dvector>{}, qv_list<qv_3dvector>{{0, 0, 1}},
                                qv_list<qv_3dvector>{{not_a_number, 0, 0}, {0, 0, 0}}}) {
      item.set_face_normals(normals);
      item.get_area();
      item.get_nb_triangles();
      item.reverse();
      item.push_offset(0.1f);
      item.matrix_transform(qv_matrix::scaling({0, 1, -1}), false);
      item.to_json();
      const qv_test::owned_polygons faces(item.build_raw_polygons());
      EXPECT_EQ(faces.get_count(), list.get_count());
    }
  }
}

}  // namespace
