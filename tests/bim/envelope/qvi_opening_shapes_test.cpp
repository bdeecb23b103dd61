#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <numbers>
#include <vector>

#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"
#include "tests/support/qv_test_openings.h"
#include "utilities/qv_random.h"

// Windows, doors and curtain walls as models bring them, with areas worked out by hand.

namespace {

using namespace qv;
using contour = qv_list<qv_3dvector>;
using qv_test::add_new;
using qv_test::facade_rectangle;

constexpr double pi = std::numbers::pi;

// Facing −y, counter-clockwise seen from there.
contour arc(double x, double z, double radius, int segments, double from = 0, double to = 2 * pi,
            double y = 0) {
  contour vertices;
  const bool is_closed = to - from > 2 * pi - 1e-9;
  const int count = is_closed ? segments : segments + 1;
  for (int i = 0; i < count; ++i) {
    const double angle = from + (to - from) * i / segments;
    vertices.append({static_cast<float>(x + radius * std::cos(angle)), static_cast<float>(y),
                     static_cast<float>(z + radius * std::sin(angle))});
  }
  return vertices;
}
double area_of_disc(double radius, int segments) {
  return 0.5 * segments * radius * radius * std::sin(2 * pi / segments);
}
contour box(double x0, double z0, double x1, double z1, double y = 0) {
  const auto f = [](double v) { return static_cast<float>(v); };
  return {{f(x0), f(y), f(z0)}, {f(x1), f(y), f(z0)}, {f(x1), f(y), f(z1)}, {f(x0), f(y), f(z1)}};
}
qv_polygon shape(const std::vector<contour>& contours) {
  qv_polygon polygon(contours[0][0], {0, -1, 0});
  for (const contour& c : contours) polygon.add_contour(c);
  return polygon;
}

class shapes : public testing::Test {
 protected:
  void add(const qv_polygon& piece, qvi_shader* shader) {
    qv_test::add_piece(*opening, piece, shader);
  }
  void add_pane(const contour& c) { add(shape({c}), glazing); }
  void add_panel(const contour& c) { add(shape({c}), panel); }
  void add_frame(const std::vector<contour>& contours) { add(shape(contours), frame); }
  // Net areas, which are also those of the faces, to 1e-5 of the whole; the parts share them out.
  void expect_areas(double glazing_area, double opaque_area, double frame_area,
                    double relative = 1e-5) {
    opening->compute_geometry();
    const double near = relative * (glazing_area + opaque_area + frame_area);
    EXPECT_NEAR(opening->get_glazing_area(), glazing_area, near);
    EXPECT_NEAR(opening->get_opaque_area(), opaque_area, near);
    EXPECT_NEAR(opening->get_frame_area(), frame_area, near);
    EXPECT_NEAR(opening->get_full_area(), glazing_area + opaque_area + frame_area, near);
    EXPECT_NEAR(opening->get_full_face().get_area(), opening->get_full_area(), near);
    std::array<double, 3> sums = {0, 0, 0};
    for (const qvi_opening_part& part : opening->get_parts())
      sums[static_cast<std::size_t>(part.part_kind)] += part.area;
    EXPECT_NEAR(sums[0], opening->get_glazing_area(), near);
    EXPECT_NEAR(sums[1], opening->get_opaque_area(), near);
    EXPECT_NEAR(sums[2], opening->get_frame_area(), near);
  }

  qv_scene scene;
  qvi_opening* opening = qv_test::add_opening(scene);
  qvi_glazing* glazing = add_new<qvi_glazing>(scene);
  qvi_opaque* panel = add_new<qvi_opaque>(scene);
  qvi_opening_shader* frame = add_new<qvi_opening_shader>(scene);
};

TEST_F(shapes, of_a_casement_window_whose_panes_reach_into_their_rebates) {
  // 1.20 × 1.50 m, frame 6 cm all around with an 8 cm mullion, as one polygon with two holes; each
  // pane reaches 1.5 cm under the frame on every side.
  add_frame({box(0, 0, 1.2, 1.5), box(0.06, 0.06, 0.56, 1.44), box(0.64, 0.06, 1.14, 1.44)});
  add_pane(box(0.045, 0.045, 0.575, 1.455));
  add_pane(box(0.625, 0.045, 1.155, 1.455));
  expect_areas(2 * 0.5 * 1.38, 0, 1.8 - 2 * 0.5 * 1.38);
}

TEST_F(shapes, of_a_window_whose_panes_fill_their_frame_to_the_line) {
  add_frame({box(0, 0, 1, 1), box(0.1, 0.1, 0.9, 0.9)});
  add_pane(box(0.1, 0.1, 0.5, 0.9));
  add_pane(box(0.5, 0.1, 0.9, 0.9));
  expect_areas(0.64, 0, 0.36);
}

TEST_F(shapes, of_a_pane_behind_a_lattice_of_mullions) {
  // One pane of 2 × 2 m behind three bars of 5 cm each way.
  add_pane(box(0, 0, 2, 2));
  for (int i = 1; i <= 3; ++i) {
    const double at = 0.5 * i;
    add_frame({box(at - 0.025, 0, at + 0.025, 2)});
    add_frame({box(0, at - 0.025, 2, at + 0.025)});
  }
  const double bars = 2 * 3 * 0.05 * 2 - 9 * 0.05 * 0.05;
  expect_areas(4 - bars, 0, bars);
}

TEST_F(shapes, of_a_front_door_with_a_light_and_a_letter_box) {
  add_frame({box(0, 0, 1, 2.2), box(0.05, 0, 0.95, 2.15)});
  add(shape({box(0.05, 0, 0.95, 2.15), box(0.3, 1.5, 0.7, 1.9)}), panel);
  add_pane(box(0.28, 1.48, 0.72, 1.92));    // reaches under the leaf
  add_frame({box(0.35, 1.0, 0.65, 1.06)});  // letter box on the leaf
  const double leaf = 0.9 * 2.15 - 0.4 * 0.4 - 0.3 * 0.06;
  expect_areas(0.16, leaf, 2.2 - 0.9 * 2.15 + 0.3 * 0.06);
}

TEST_F(shapes, of_a_curtain_wall_of_a_hundred_panes) {
  // 10 × 10 panes in a grid of 1.5 × 1.2 m, under mullions and transoms of 6 cm that run through;
  // every tenth field is a spandrel.
  constexpr double width = 1.5, height = 1.2, bar = 0.06, overlap = 0.015;
  for (int row = 0; row < 10; ++row) {
    for (int column = 0; column < 10; ++column) {
      const contour field =
          box(column * width + bar / 2 - overlap, row * height + bar / 2 - overlap,
              (column + 1) * width - bar / 2 + overlap, (row + 1) * height - bar / 2 + overlap);
      row == 0 ? add_panel(field) : add_pane(field);
    }
  }
  for (int i = 0; i <= 10; ++i) {
    add_frame({box(i * width - bar / 2, -bar / 2, i * width + bar / 2, 10 * height + bar / 2)});
    add_frame({box(-bar / 2, i * height - bar / 2, 10 * width + bar / 2, i * height + bar / 2)});
  }
  const double field = (width - bar) * (height - bar);
  expect_areas(90 * field, 10 * field, (10 * width + bar) * (10 * height + bar) - 100 * field);
  EXPECT_EQ(opening->get_parts().size(), 3u);
}

TEST_F(shapes, of_a_curtain_wall_whose_panes_touch) {
  for (int row = 0; row < 10; ++row)
    for (int column = 0; column < 10; ++column)
      add_pane(box(column * 1.1, row * 0.7, (column + 1) * 1.1, (row + 1) * 0.7));
  expect_areas(77, 0, 0);
}

TEST_F(shapes, of_a_round_window) {
  constexpr int segments = 360;
  add_frame({arc(1, 1, 0.8, segments), arc(1, 1, 0.7, segments)});
  add_pane(arc(1, 1, 0.72, segments));
  expect_areas(area_of_disc(0.7, segments), 0,
               area_of_disc(0.8, segments) - area_of_disc(0.7, segments));
}

TEST_F(shapes, of_a_round_window_whose_pane_follows_its_frame_with_other_segments) {
  // Between two regular polygons of one radius lies less than the frame's inner one lacks of the
  // disc; the pane covers it from behind.
  add_frame({arc(0, 0, 1, 1000), arc(0, 0, 0.9, 100)});
  add_pane(arc(0, 0, 0.9, 97));
  opening->compute_geometry();
  const double hole = area_of_disc(0.9, 100);
  EXPECT_LE(opening->get_glazing_area(), hole + 1e-5);
  EXPECT_GE(opening->get_glazing_area(), hole - (pi * 0.81 - area_of_disc(0.9, 97)));
  EXPECT_NEAR(opening->get_frame_area(), area_of_disc(1, 1000) - hole, 1e-5);
  EXPECT_NEAR(opening->get_full_area(), opening->get_full_face().get_area(), 1e-5);
}

TEST_F(shapes, of_an_arched_window) {
  // A rectangle of 1 × 1 m under half a disc of 250 segments, glazed in fan-shaped panes.
  constexpr int segments = 250, fields = 5;
  contour outer = arc(0, 1, 0.5, segments, 0, pi);
  outer.append({-0.5f, 0, 0});
  outer.append({0.5f, 0, 0});
  contour inner = arc(0, 1, 0.44, segments, 0, pi);
  inner.append({-0.44f, 0, 0.06f});
  inner.append({0.44f, 0, 0.06f});
  add_frame({outer, inner});
  for (int i = 0; i < fields; ++i) {
    contour fan = arc(0, 1, 0.46, segments / fields, pi * i / fields, pi * (i + 1) / fields);
    fan.append({0, 0, 1});
    add_pane(fan);
  }
  add_pane(box(-0.46, 0.04, 0.46, 1));
  const double half_disc = 0.5 * segments * std::sin(pi / segments);
  const double glass = half_disc * 0.44 * 0.44 + 0.88 * 0.94;
  expect_areas(glass, 0, half_disc * 0.25 + 1 - glass);
}

TEST_F(shapes, of_panes_a_hair_off_the_plane_of_the_wall) {
  const double offsets[] = {0, 1e-6, -1e-6, 1e-5, -1e-5, 1e-4, -1e-4, 1e-3, -1e-3, 5e-5};
  for (int i = 0; i < 10; ++i) add_pane(box(0.5 * i, 0, 0.5 * (i + 1), 1, offsets[i]));
  add_frame({box(-0.1, -0.1, 5.1, 1.1, 2e-5), box(0, 0, 5, 1, 2e-5)});
  expect_areas(5, 0, 5.2 * 1.2 - 5);
}

TEST_F(shapes, of_panes_a_hair_out_of_true) {
  // Each corner of the panes lies elsewhere by up to a tenth of a millimetre, in the plane too.
  qv_random random(5);
  const auto hair = [&] { return 1e-4f * (2 * random.dice_float() - 1); };
  for (int row = 0; row < 4; ++row) {
    for (int column = 0; column < 4; ++column) {
      contour pane = box(column, row, column + 1, row + 1);
      for (qv_3dvector& v : pane) v += qv_3dvector(hair(), hair(), hair());
      add_pane(pane);
    }
  }
  opening->compute_geometry();
  // Panes may overlap or gape by a hair along 40 edges of a metre.
  EXPECT_NEAR(opening->get_glazing_area(), 16, 40 * 1e-4);
  EXPECT_NEAR(opening->get_full_area(), opening->get_glazing_area(), 1e-6);
  EXPECT_NEAR(opening->get_full_face().get_area(), opening->get_full_area(), 1e-5);
}

// Glazing, panels and frame as a painter lays them on a grid of centimetres, frames last.
class painted_grid {
 public:
  static constexpr int size = 240;
  void paint(int x0, int z0, int x1, int z1, int layer) {
    for (int x = x0; x < x1; ++x)
      for (int z = z0; z < z1; ++z) {
        auto& cell = cells_[static_cast<std::size_t>(x) * size + static_cast<std::size_t>(z)];
        cell = std::max(cell, layer);
      }
  }
  double area(int layer) const {
    return 1e-4 * static_cast<double>(std::count(cells_.begin(), cells_.end(), layer));
  }

 private:
  std::vector<int> cells_ = std::vector<int>(static_cast<std::size_t>(size) * size, 0);
};

class random_shapes : public shapes, public testing::WithParamInterface<int> {};

TEST_P(random_shapes, have_the_areas_that_a_painted_grid_shows) {
  qv_random random(GetParam());
  const auto dice = [&](int count) {
    return static_cast<int>(random.dice() % static_cast<unsigned int>(count));
  };
  painted_grid grid;
  for (int i = 0; i < 25; ++i) {
    const int x0 = dice(160), z0 = dice(160), x1 = x0 + 1 + dice(78), z1 = z0 + 1 + dice(78);
    const int layer = 1 + dice(3);
    grid.paint(x0, z0, x1, z1, layer);
    const contour piece = box(0.01 * x0, 0.01 * z0, 0.01 * x1, 0.01 * z1, 0.02 * dice(3));
    layer == 1 ? add_pane(piece) : layer == 2 ? add_panel(piece) : add_frame({piece});
  }
  expect_areas(grid.area(1), grid.area(2), grid.area(3));
}

INSTANTIATE_TEST_SUITE_P(seeds, random_shapes, testing::Range(1, 21));

// The same opening wherever it stands and whichever way it faces.
TEST_F(shapes, do_not_depend_on_place_and_direction) {
  qv_random random(11);
  double first_glazing_area = 0;
  for (int round = 0; round < 20; ++round) {
    qv_scene place;
    auto* const turned = qv_test::add_opening(place);
    // Two unit vectors at a right angle span the façade.
    const qv_3dvector right = random.dice_vector();
    const qv_3dvector up = right.cross(random.dice_vector()).normalized();
    const qv_3dvector origin = random.dice_vector() * 300.0f;
    const auto moved = [&](const contour& c) {
      contour result;
      for (const qv_3dvector& v : c) result.append(origin + right * v.x + up * v.z);
      return result;
    };
    turned->set_normal(right.cross(up));
    const auto add_turned = [&](const std::vector<contour>& contours, qvi_shader* shader) {
      qv_polygon piece(origin, right.cross(up));
      for (const contour& c : contours) piece.add_contour(moved(c));
      qv_test::add_piece(*turned, piece, shader);
    };
    add_turned({box(0, 0, 1.2, 1.5), box(0.06, 0.06, 0.56, 1.44), box(0.64, 0.06, 1.14, 1.44)},
               frame);
    add_turned({arc(0.31, 0.75, 0.9, 90)}, glazing);
    add_turned({box(0.625, 0.045, 1.155, 1.455)}, panel);
    turned->compute_geometry();
    EXPECT_NEAR(turned->get_full_area(), turned->get_full_face().get_area(), 1e-3);
    // The disc shows around the window and through its left light.
    const double opaque = 0.5 * 1.38, frame_area = 1.8 - 2 * 0.5 * 1.38;
    // Coordinates of some 300 m are good to 3e-5 m; borders of some 10 m.
    EXPECT_NEAR(turned->get_opaque_area(), opaque, 3e-4);
    EXPECT_NEAR(turned->get_frame_area(), frame_area, 3e-4);
    if (round == 0) first_glazing_area = turned->get_glazing_area();
    EXPECT_NEAR(turned->get_glazing_area(), first_glazing_area, 6e-4);
    qv_item::destroy(turned);
  }
}

}  // namespace
