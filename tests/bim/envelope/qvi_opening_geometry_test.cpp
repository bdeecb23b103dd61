#include <gtest/gtest.h>

#include <cmath>

#include "bim/imported/qvi_bim_object.h"
#include "bim/imported/qvi_bim_polygon.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_openings.h"

// How an opening splits into glazing, panels and frame.

namespace {

using namespace qv;
using kind = qvi_opening_part::kind;
using qv_test::add_new;
using qv_test::add_piece;
using qv_test::facade_rectangle;

class opening_geometry : public testing::Test {
 protected:
  void compute() { opening->compute_geometry(); }
  void expect_areas(double glazing_area, double opaque_area, double frame_area) {
    EXPECT_NEAR(opening->get_glazing_area(), glazing_area, 1e-5);
    EXPECT_NEAR(opening->get_opaque_area(), opaque_area, 1e-5);
    EXPECT_NEAR(opening->get_frame_area(), frame_area, 1e-5);
    EXPECT_NEAR(opening->get_glazing_face().get_area(), glazing_area, 1e-5);
    EXPECT_NEAR(opening->get_opaque_face().get_area(), opaque_area, 1e-5);
    EXPECT_NEAR(opening->get_frame_face().get_area(), frame_area, 1e-5);
    EXPECT_NEAR(opening->get_full_area(), glazing_area + opaque_area + frame_area, 1e-5);
  }

  qv_scene scene;
  qvi_opening* opening = qv_test::add_opening(scene);
  qvi_glazing* glazing = add_new<qvi_glazing>(scene);
  qvi_glazing* glazing_2 = add_new<qvi_glazing>(scene);
  qvi_opaque* panel = add_new<qvi_opaque>(scene);
  qvi_opening_shader* frame = add_new<qvi_opening_shader>(scene);
};

TEST_F(opening_geometry, sorts_pieces_by_the_kind_of_their_front_shader) {
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 3, 1), panel);
  add_piece(*opening, facade_rectangle(3, 0, 3.5f, 1), frame);
  compute();
  expect_areas(1, 2, 0.5);
  ASSERT_EQ(opening->get_parts().size(), 3u);
  const kind kinds[] = {kind::glazing, kind::opaque, kind::frame};
  for (std::size_t i = 0; i < 3; ++i) EXPECT_EQ(opening->get_parts()[i].part_kind, kinds[i]);
}

TEST_F(opening_geometry, makes_one_part_of_all_meshes_with_one_front_shader) {
  auto* const left = add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 2, 1), glazing_2);
  auto* const right = add_piece(*opening, facade_rectangle(2, 0, 4, 1), glazing);
  compute();
  ASSERT_EQ(opening->get_parts().size(), 2u);
  EXPECT_EQ(opening->get_parts()[0].shader, glazing);
  EXPECT_EQ(opening->get_parts()[1].shader, glazing_2);
  EXPECT_EQ(opening->get_parts()[0].meshes, (qv_list<qvi_mesh*>{left, right}));
  EXPECT_NEAR(opening->get_parts()[0].area, 3, 1e-5);
  EXPECT_NEAR(opening->get_parts()[0].polygon.get_area(), 3, 1e-5);
  EXPECT_NEAR(opening->get_parts()[1].area, 1, 1e-5);
}

TEST_F(opening_geometry, finds_pieces_at_any_depth_below_it) {
  auto* const sash = add_new<qv_item>(*opening);
  auto* const piece = add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  sash->add_child(piece, -1);
  add_piece(*opening, facade_rectangle(2, 0, 3, 1), frame);
  compute();
  expect_areas(1, 0, 1);
}

TEST_F(opening_geometry, leaves_out_meshes_that_have_no_opening_shader) {
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 2, 1), nullptr);
  add_piece(*opening, facade_rectangle(2, 0, 3, 1, -5), add_new<qvi_shader>(scene));
  compute();
  expect_areas(1, 0, 0);
  EXPECT_EQ(opening->get_parts().size(), 1u);
  EXPECT_NEAR(opening->get_full_face().get_point().y, 0, 1e-5);
}

TEST_F(opening_geometry, without_parts_has_no_area) {
  compute();
  expect_areas(0, 0, 0);
  EXPECT_TRUE(opening->get_full_face().is_empty());
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), nullptr);
  compute();
  expect_areas(0, 0, 0);
}

TEST_F(opening_geometry, counts_only_the_visible_part_of_a_pane_behind_its_frame) {
  // Two panes of 1 m², of which a frame hides half of the first one.
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 2, 1), glazing_2);
  add_piece(*opening, facade_rectangle(-0.1f, 0, 0.5f, 1), frame);
  compute();
  expect_areas(1.5, 0, 0.6);
  // Both parts are scaled by the visible share of the glazing as a whole, 1.5/2.
  EXPECT_NEAR(opening->get_parts()[0].area, 0.75, 1e-5);
  EXPECT_NEAR(opening->get_parts()[1].area, 0.75, 1e-5);
  EXPECT_NEAR(opening->get_parts()[2].area, 0.6, 1e-5);
}

TEST_F(opening_geometry, counts_panes_that_overlap_once) {
  add_piece(*opening, facade_rectangle(0, 0, 2, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 2, 1), glazing_2);
  compute();
  expect_areas(2, 0, 0);
  EXPECT_NEAR(opening->get_parts()[0].area, 2 * 2.0 / 3, 1e-5);
  EXPECT_NEAR(opening->get_parts()[1].area, 1 * 2.0 / 3, 1e-5);
  // The same for pieces of one part, whose union is the part.
  add_piece(*opening, facade_rectangle(0, 0, 2, 1), glazing);
  compute();
  EXPECT_NEAR(opening->get_parts()[0].area, 2 * 2.0 / 3, 1e-5);
}

TEST_F(opening_geometry, hides_panels_behind_frames_and_glazing_behind_both) {
  add_piece(*opening, facade_rectangle(0, 0, 4, 1), glazing);
  add_piece(*opening, facade_rectangle(1, 0, 3, 1), panel);
  add_piece(*opening, facade_rectangle(2, 0, 4, 0.5f), frame);
  compute();
  // Frame 2·0.5; panel 2 − 1·0.5; glazing 4 − frame 1 − visible panel 1.5.
  expect_areas(1.5, 1.5, 1);
  EXPECT_NEAR(opening->get_full_face().get_area(), 4, 1e-5);
}

TEST_F(opening_geometry, may_be_hidden_wholly) {
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  add_piece(*opening, facade_rectangle(-1, -1, 2, 2), frame);
  compute();
  expect_areas(0, 0, 9);
  EXPECT_EQ(opening->get_parts()[0].area, 0.0f);
}

TEST_F(opening_geometry, lies_in_the_plane_of_its_outermost_vertices) {
  add_piece(*opening, facade_rectangle(0, 0, 2, 1, 0.25f), glazing);
  add_piece(*opening, facade_rectangle(2, 0, 3, 1, -0.5f), frame);
  compute();
  for (const qv_polygon* face : {&opening->get_glazing_face(), &opening->get_opaque_face(),
                                 &opening->get_frame_face(), &opening->get_full_face()}) {
    // The middle of the bounding box, moved out to y = −0.5.
    EXPECT_NEAR(face->get_point().x, 1.5, 1e-5);
    EXPECT_NEAR(face->get_point().y, -0.5, 1e-5);
    EXPECT_NEAR(face->get_point().z, 0.5, 1e-5);
    EXPECT_EQ(face->get_normal(), qv_3dvector(0, -1, 0));
    for (const qv_3dvector& v : face->get_contour_vertices()) EXPECT_NEAR(v.y, -0.5, 1e-5);
  }
  expect_areas(2, 0, 1);
}

TEST_F(opening_geometry, may_lie_far_behind_the_origin) {
  add_piece(*opening, facade_rectangle(0, 0, 2, 1, 5000), glazing);
  compute();
  EXPECT_EQ(opening->get_full_face().get_point().y, 5000.0f);
  expect_areas(2, 0, 0);
}

TEST_F(opening_geometry, takes_pieces_of_every_class_of_polygons) {
  const auto shape = facade_rectangle(0, 0, 2, 1);
  auto* const piece = add_new<qvi_bim_polygon>(*opening);
  piece->load_from_polygon(&shape);
  piece->set_front_shader(glazing);
  compute();
  expect_areas(2, 0, 0);
}

TEST_F(opening_geometry, is_seen_along_its_normal) {
  // A pane that leans by 60° about x counts with the half of its area that it shows.
  qv_polygon leaning({0, 0, 0}, {0, 0, 0});
  const float half = 0.5f, height = 0.8660254f;
  leaning.add_contour({{0, 0, 0}, {1, 0, 0}, {1, height, half}, {0, height, half}});
  add_piece(*opening, leaning, glazing);
  compute();
  expect_areas(0.5, 0, 0);
}

TEST_F(opening_geometry, takes_meshes_that_are_no_polygons_for_their_depth_alone) {
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  auto* const handle = add_new<qvi_mesh>(*opening);
  handle->load_from_triangles({{0, -0.2f, 0}, {3, -0.2f, 0}, {3, -0.2f, 3}}, {0, 1, 2});
  handle->set_front_shader(frame);
  compute();
  expect_areas(1, 0, 0);
  ASSERT_EQ(opening->get_parts().size(), 2u);
  EXPECT_EQ(opening->get_parts()[1].area, 0.0f);
  EXPECT_NEAR(opening->get_full_face().get_point().y, -0.2, 1e-6);
}

TEST_F(opening_geometry, follows_its_pieces_and_its_normal) {
  auto* const pane = add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  compute();
  const auto expect_glazing = [&](double area) {
    compute();
    EXPECT_NEAR(opening->get_glazing_area(), area, 1e-5);
  };
  auto shape = facade_rectangle(0, 0, 2, 1);
  pane->load_from_polygon(&shape);
  expect_glazing(2);
  auto* const second = add_piece(*opening, facade_rectangle(2, 0, 3, 1), glazing);
  expect_glazing(3);
  second->set_front_shader(frame);
  expect_glazing(2);
  second->set_front_shader(glazing_2);
  expect_glazing(3);
  second->remove();
  expect_glazing(2);
  qv_item::destroy(second);
  opening->set_normal({0, -0.6f, 0.8f});
  expect_glazing(1.2);
  qv_item::destroy(pane);
  expect_glazing(0);
}

TEST_F(opening_geometry, is_not_computed_again_when_only_its_name_changed) {
  auto* const pane = add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  compute();
  // The part keeps what it had; a second computation would have made another one.
  const qvi_opening_part* const part = opening->get_parts().data();
  const qv_3dvector* const vertices = part->polygon.get_contour_vertices().data();
  opening->set_name("Nord");
  pane->set_name("Vitre");
  compute();
  EXPECT_EQ(opening->get_parts().data(), part);
  EXPECT_EQ(opening->get_parts()[0].polygon.get_contour_vertices().data(), vertices);
}

TEST_F(opening_geometry, needs_no_scene) {
  opening->remove();
  add_piece(*opening, facade_rectangle(0, 0, 1, 1), glazing);
  compute();
  expect_areas(1, 0, 0);
  qv_item::destroy(opening);
}

// --- of one polygon whose source is an imported object ---

class imported_opening : public opening_geometry {
 protected:
  imported_opening() { opening->set_source(object); }
  qvi_shader* add_shader(float alpha) {
    auto* const shader = add_new<qvi_shader>(scene);
    shader->set_diffuse_color(qv_color(1, 1, 1, alpha));
    return shader;
  }
  qvi_polygon* add_mesh(const qv_polygon& shape, qvi_shader* shader) {
    auto* const mesh = new qvi_polygon;
    mesh->load_from_polygon(&shape);
    mesh->set_front_shader(shader);
    object->add_child(mesh, -1);
    return mesh;
  }

  qvi_bim_object* object = add_new<qvi_bim_object>(scene);
  qvi_polygon* outline = add_piece(*opening, facade_rectangle(0, 0, 2, 1), nullptr);
};

TEST_F(imported_opening, takes_panes_and_panels_from_its_source) {
  add_mesh(facade_rectangle(0, 0, 2, 1), add_shader(0.3f));
  add_mesh(facade_rectangle(0, 0, 0.5f, 1), add_shader(1.0f));
  compute();
  expect_areas(1.5, 0.5, 0);
  EXPECT_TRUE(opening->get_parts().empty());
  EXPECT_NEAR(opening->get_full_face().get_area(), 2, 1e-5);
}

TEST_F(imported_opening, takes_for_glass_what_lets_more_than_a_hundredth_through) {
  add_mesh(facade_rectangle(0, 0, 0.5f, 1), add_shader(0.989f));
  add_mesh(facade_rectangle(0.5f, 0, 1, 1), add_shader(0.99f));
  add_mesh(facade_rectangle(1, 0, 1.5f, 1), nullptr);
  compute();
  expect_areas(0.5, 1, 0);
}

TEST_F(imported_opening, is_clipped_to_its_polygon) {
  add_mesh(facade_rectangle(-1, -1, 3, 0.5f), add_shader(0.3f));
  add_mesh(facade_rectangle(-1, 0.5f, 3, 5), add_shader(1.0f));
  compute();
  expect_areas(1, 1, 0);
}

TEST_F(imported_opening, drops_the_reveals) {
  // A box of 2 × 0.3 × 1 m: front and back count (once, from both sides), four sides do not.
  qvi_mesh* const box = add_new<qvi_mesh>(*object);
  const qv_list<qv_3dvector> corners = {{0, 0, 0},       {2, 0, 0},      {2, 0.3f, 0},
                                        {0, 0.3f, 0},    {0, 0, 0.5f},   {2, 0, 0.5f},
                                        {2, 0.3f, 0.5f}, {0, 0.3f, 0.5f}};
  box->load_from_triangles(corners, {0, 1, 5, 0, 5, 4, 1, 2, 6, 1, 6, 5, 2, 3, 7, 2, 7, 6,
                                     3, 0, 4, 3, 4, 7, 4, 5, 6, 4, 6, 7, 0, 2, 1, 0, 3, 2});
  compute();
  expect_areas(0, 1, 0);
}

TEST_F(imported_opening, drops_what_faces_it_by_a_tenth_or_less) {
  const auto leaning = [](float cosine, float z) {  // 1 m wide, |m·n| = cosine
    qv_polygon shape({0, 0, 0}, {0, 0, 0});
    const float depth = 0.2f, height = depth * cosine / std::sqrt(1 - cosine * cosine);
    shape.add_contour({{0, 0, z}, {1, 0, z}, {1, depth, z + height}, {0, depth, z + height}});
    return shape;
  };
  add_mesh(leaning(0.098f, 0.1f), nullptr);
  compute();
  expect_areas(0, 0, 0);
  add_mesh(leaning(0.102f, 0.5f), nullptr);
  compute();
  expect_areas(0, 0.2 * 0.102 / std::sqrt(1 - 0.102 * 0.102), 0);
}

TEST_F(imported_opening, lies_in_the_plane_of_its_polygon) {
  const auto shape = facade_rectangle(0, 0, 2, 1, 0.7f);
  outline->load_from_polygon(&shape);
  add_mesh(facade_rectangle(0, 0, 1, 1, 0.4f), add_shader(0.3f));
  compute();
  EXPECT_NEAR(opening->get_glazing_face().get_point().y, 0.7, 1e-6);
  for (const qv_3dvector& v : opening->get_glazing_face().get_contour_vertices())
    EXPECT_NEAR(v.y, 0.7, 1e-6);
  EXPECT_EQ(opening->get_opaque_face().get_normal(), qv_3dvector(0, -1, 0));
}

TEST_F(imported_opening, looks_where_its_own_normal_looks_whatever_its_polygon_does) {
  outline->reverse();
  add_mesh(facade_rectangle(0, 0, 2, 1), add_shader(0.3f));
  compute();
  expect_areas(2, 0, 0);
  EXPECT_EQ(opening->get_glazing_face().get_normal(), qv_3dvector(0, -1, 0));
  EXPECT_EQ(opening->get_full_face().get_normal(), qv_3dvector(0, -1, 0));
}

TEST_F(imported_opening, has_no_frame_any_more_when_it_is_down_to_its_polygon) {
  auto* const border = add_piece(*opening, facade_rectangle(2, 0, 2.5f, 1), frame);
  add_mesh(facade_rectangle(0, 0, 2, 1), add_shader(0.3f));
  compute();
  expect_areas(0, 0, 0.5);
  qv_item::destroy(border);
  compute();
  expect_areas(2, 0, 0);
}

TEST_F(imported_opening, follows_its_source) {
  const auto expect_after_a_pass = [&](double glazing_area, double opaque_area) {
    scene.precompute();
    expect_areas(glazing_area, opaque_area, 0);
  };
  qvi_shader* const clear = add_shader(0.3f);
  auto* const mesh = add_mesh(facade_rectangle(0, 0, 1, 1), clear);
  expect_after_a_pass(1, 0);
  mesh->set_front_shader(add_shader(1.0f));
  expect_after_a_pass(0, 1);
  add_mesh(facade_rectangle(1, 0, 2, 1), clear);
  expect_after_a_pass(1, 1);
  clear->set_diffuse_color(qv_color(1, 1, 1, 1));  // painted over
  expect_after_a_pass(0, 2);
  qv_item::destroy(mesh);
  expect_after_a_pass(0, 1);
}

TEST_F(imported_opening, follows_its_own_polygon_and_normal) {
  add_mesh(facade_rectangle(0, 0, 2, 2), add_shader(0.3f));
  compute();
  expect_areas(2, 0, 0);
  const auto higher = facade_rectangle(0, 0, 2, 1.5f);
  outline->load_from_polygon(&higher);
  compute();
  expect_areas(3, 0, 0);
  opening->set_normal({1, 0, 0});  // everything is a reveal
  compute();
  expect_areas(0, 0, 0);
}

TEST_F(imported_opening, follows_the_loss_of_its_source) {
  add_mesh(facade_rectangle(0, 0, 1, 1), nullptr);
  outline->set_front_shader(panel);
  compute();
  expect_areas(0, 1, 0);
  EXPECT_TRUE(opening->get_parts().empty());
  qv_item::destroy(object);
  compute();
  expect_areas(0, 2, 0);
  EXPECT_EQ(opening->get_parts().size(), 1u);
  auto* const other = add_new<qvi_bim_object>(scene);
  opening->set_source(other);
  compute();
  expect_areas(0, 0, 0);
}

TEST_F(imported_opening, of_several_meshes_or_no_polygon_is_split_as_any_other) {
  add_mesh(facade_rectangle(0, 0, 2, 1), nullptr);
  add_piece(*opening, facade_rectangle(0, 0, 0.5f, 1), glazing);
  compute();
  expect_areas(0.5, 0, 0);
  EXPECT_EQ(opening->get_parts().size(), 1u);
}

TEST_F(imported_opening, whose_source_is_no_imported_object_is_split_as_any_other) {
  opening->set_source(add_new<qv_item>(scene));
  outline->set_front_shader(panel);
  compute();
  expect_areas(0, 2, 0);
}

TEST_F(imported_opening, has_no_parts_to_weigh) {
  add_mesh(facade_rectangle(0, 0, 2, 1), add_shader(0.3f));
  opening->precompute();
  EXPECT_EQ(opening->get_U(), 0.0f);
  EXPECT_EQ(opening->get_solar_factor(), 0.0f);
  expect_areas(2, 0, 0);
}

}  // namespace
