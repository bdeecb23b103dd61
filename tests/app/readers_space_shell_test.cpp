#include "app/readers/qv_space_shell.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <ctime>
#include <deque>
#include <numbers>
#include <random>

#include "app/readers/qv_vertex_welder.h"

namespace {

using qv::qv_double3;
using qv::qv_loop;
using qv::qv_shell_evidence;

// Faces of one space, given by loops that run counter-clockwise seen from outside.
class shell_builder {
 public:
  void add(const qv_loop& loop, bool inside_out = false) {
    qv_loop directed = loop;
    if (inside_out) std::reverse(directed.begin(), directed.end());
    qv::qv_source_polygon cleaned = qv::qv_clean_polygon(directed);
    ASSERT_EQ(cleaned.parts.size(), 1U);
    parts_.push_back(std::move(cleaned.parts[0]));
    qv::qv_shell_polygon polygon;
    polygon.part = &parts_.back();
    for (const qv_loop& contour : parts_.back().contours) {
      auto& numbers = polygon.contours.emplace_back();
      for (const qv_double3& p : contour) numbers.push_back(welder_.weld(p));
    }
    polygons_.push_back(std::move(polygon));
    faces_.push_back({&polygons_.back(), 1});
  }
  // The faces of a box; face i is inside out when bit i of `mask` is set.
  void add_box(const qv_double3& a, const qv_double3& b, unsigned mask = 0,
               unsigned leave_out = 0) {
    const std::vector<qv_loop> loops = {
        {{a.x, a.y, a.z}, {a.x, b.y, a.z}, {b.x, b.y, a.z}, {b.x, a.y, a.z}},
        {{a.x, a.y, b.z}, {b.x, a.y, b.z}, {b.x, b.y, b.z}, {a.x, b.y, b.z}},
        {{a.x, a.y, a.z}, {b.x, a.y, a.z}, {b.x, a.y, b.z}, {a.x, a.y, b.z}},
        {{b.x, a.y, a.z}, {b.x, b.y, a.z}, {b.x, b.y, b.z}, {b.x, a.y, b.z}},
        {{b.x, b.y, a.z}, {a.x, b.y, a.z}, {a.x, b.y, b.z}, {b.x, b.y, b.z}},
        {{a.x, b.y, a.z}, {a.x, a.y, a.z}, {a.x, a.y, b.z}, {a.x, b.y, b.z}}};
    for (unsigned i = 0; i < 6; ++i)
      if ((leave_out >> i & 1U) == 0) add(loops[i], (mask >> i & 1U) != 0);
  }
  qv::qv_shell_verdict orient() const { return qv_orient_shell(faces_, welder_.get_points()); }
  bool is_closed() const { return qv_is_shell_closed(faces_, welder_.get_points()); }
  double volume() const { return qv_shell_volume(faces_); }
  // Turns the faces as the verdict asks.
  void obey(const qv::qv_shell_verdict& verdict) {
    for (std::size_t i = 0; i < faces_.size(); ++i)
      if (!verdict.faces[i].right) faces_[i].side = -faces_[i].side;
  }

 private:
  std::deque<qv::qv_plane_part> parts_;
  std::deque<qv::qv_shell_polygon> polygons_;
  std::vector<qv::qv_shell_face> faces_;
  qv::qv_vertex_welder welder_;
};

}  // namespace

TEST(qv_orient_shell, finds_which_faces_of_a_box_are_inside_out_for_every_choice) {
  for (unsigned mask = 0; mask < 64; ++mask) {
    shell_builder shell;
    shell.add_box({1, 2, 3}, {5, 5, 6}, mask);
    const qv::qv_shell_verdict verdict = shell.orient();
    EXPECT_TRUE(verdict.closed);
    for (unsigned i = 0; i < 6; ++i) {
      EXPECT_EQ(verdict.faces[i].right, (mask >> i & 1U) == 0) << "mask " << mask << " face " << i;
      EXPECT_EQ(verdict.faces[i].evidence, qv_shell_evidence::closed);
    }
    EXPECT_EQ(shell.is_closed(), mask == 0 || mask == 63);
    shell.obey(verdict);
    EXPECT_TRUE(shell.is_closed());
    EXPECT_NEAR(shell.volume(), 4 * 3 * 3, 1e-9);
  }
}

TEST(qv_orient_shell, closes_where_one_wall_meets_two) {
  shell_builder shell;
  // The roof of the box in two halves, whose middle corners lie on the sides of the walls.
  shell.add_box({0, 0, 0}, {4, 3, 2}, 0, 1U << 1U);
  shell.add({{0, 0, 2}, {1.7, 0, 2}, {1.7, 3, 2}, {0, 3, 2}});
  shell.add({{1.7, 0, 2}, {4, 0, 2}, {4, 3, 2}, {1.7, 3, 2}}, true);
  const qv::qv_shell_verdict verdict = shell.orient();
  EXPECT_TRUE(verdict.closed);
  EXPECT_TRUE(verdict.faces[5].right);
  EXPECT_FALSE(verdict.faces[6].right);
}

TEST(qv_orient_shell, a_box_without_roof_is_open_but_its_walls_know_their_side) {
  shell_builder shell;
  shell.add_box({0, 0, 0}, {4, 3, 2}, 1U << 3U, 1U << 1U);
  const qv::qv_shell_verdict verdict = shell.orient();
  EXPECT_FALSE(verdict.closed);
  // Faces: floor, south, east (inside out), north, west.
  EXPECT_EQ(verdict.faces[2].evidence, qv_shell_evidence::rays);
  EXPECT_FALSE(verdict.faces[2].right);
  EXPECT_EQ(verdict.faces[1].evidence, qv_shell_evidence::rays);
  EXPECT_TRUE(verdict.faces[1].right);
  EXPECT_NE(verdict.faces[0].evidence, qv_shell_evidence::closed);
  EXPECT_TRUE(verdict.faces[0].right);
}

TEST(qv_orient_shell, rays_decide_where_no_edges_match) {
  // Six faces of a box, each drawn 5 cm too small: no two share an edge.
  shell_builder shell;
  const auto shrunk = [](qv_loop loop) {
    qv_double3 middle;
    for (const qv_double3& p : loop) middle = middle + p * 0.25;
    for (qv_double3& p : loop) p = middle + (p - middle) * 0.98;
    return loop;
  };
  shell.add(shrunk({{0, 0, 0}, {0, 3, 0}, {4, 3, 0}, {4, 0, 0}}));
  shell.add(shrunk({{0, 0, 2}, {4, 0, 2}, {4, 3, 2}, {0, 3, 2}}), true);
  shell.add(shrunk({{0, 0, 0}, {4, 0, 0}, {4, 0, 2}, {0, 0, 2}}));
  shell.add(shrunk({{4, 0, 0}, {4, 3, 0}, {4, 3, 2}, {4, 0, 2}}), true);
  shell.add(shrunk({{4, 3, 0}, {0, 3, 0}, {0, 3, 2}, {4, 3, 2}}));
  shell.add(shrunk({{0, 3, 0}, {0, 0, 0}, {0, 0, 2}, {0, 3, 2}}));
  const qv::qv_shell_verdict verdict = shell.orient();
  EXPECT_FALSE(verdict.closed);
  for (std::size_t i = 0; i < 6; ++i) {
    EXPECT_EQ(verdict.faces[i].evidence, qv_shell_evidence::rays);
    EXPECT_EQ(verdict.faces[i].right, i != 1 && i != 3) << i;
  }
}

TEST(qv_orient_shell, a_cavity_points_into_itself) {
  shell_builder shell;
  shell.add_box({0, 0, 0}, {10, 10, 10});
  shell.add_box({4, 4, 4}, {6, 6, 6}, 63);
  const qv::qv_shell_verdict verdict = shell.orient();
  EXPECT_TRUE(verdict.closed);
  for (const qv::qv_face_verdict& face : verdict.faces) EXPECT_TRUE(face.right);
  EXPECT_NEAR(shell.volume(), 1000 - 8, 1e-9);
}

TEST(qv_orient_shell, two_separate_boxes_both_point_outwards) {
  shell_builder shell;
  shell.add_box({0, 0, 0}, {1, 1, 1}, 63);
  shell.add_box({5, 0, 0}, {7, 2, 2});
  const qv::qv_shell_verdict verdict = shell.orient();
  EXPECT_TRUE(verdict.closed);
  for (std::size_t i = 0; i < 12; ++i) EXPECT_EQ(verdict.faces[i].right, i >= 6);
}

TEST(qv_orient_shell, boxes_that_touch_along_an_edge_are_closed) {
  shell_builder shell;
  shell.add_box({0, 0, 0}, {1, 1, 1});
  shell.add_box({1, 1, 0}, {2, 2, 1});
  EXPECT_TRUE(shell.orient().closed);
  EXPECT_TRUE(shell.is_closed());
}

TEST(qv_orient_shell, takes_corners_within_a_millimetre_as_one) {
  shell_builder shell;
  shell.add_box({0, 0, 0}, {4, 3, 2}, 0, 1U << 1U);
  shell.add({{0.0004, 0, 2}, {4, -0.0003, 2}, {4, 3, 2.0002}, {0, 3, 2}});
  EXPECT_TRUE(shell.orient().closed);
  shell_builder gaping;
  gaping.add_box({0, 0, 0}, {4, 3, 2}, 0, 1U << 1U);
  gaping.add({{0.01, 0, 2}, {4, 0, 2}, {4, 3, 2}, {0.01, 3, 2}});
  EXPECT_FALSE(gaping.orient().closed);
}

// Walls like the pages of a book, all along one edge: four hundred times as long for twenty times
// the pages would keep a senseless model busy for minutes.
TEST(qv_orient_shell, takes_time_in_proportion_to_the_faces_along_one_edge) {
  const auto get_seconds = [](int pages) {
    shell_builder book;
    for (int i = 0; i < pages; ++i) {
      const double angle = 2 * std::numbers::pi * i / pages;
      const double x = 50 * std::cos(angle), y = 50 * std::sin(angle);
      book.add({{0, 0, 0}, {x, y, 0}, {x, y, 3}, {0, 0, 3}});
    }
    double least = 1e9;
    for (int run = 0; run < 3; ++run) {
      const std::clock_t start = std::clock();
      EXPECT_FALSE(book.is_closed());
      least = std::min(least, static_cast<double>(std::clock() - start) / CLOCKS_PER_SEC);
    }
    return least;
  };
  const double many = get_seconds(40000), few = get_seconds(2000);
  EXPECT_LT(many, 40 * few) << few;
}

TEST(qv_orient_shell, no_faces_enclose_nothing) {
  const shell_builder shell;
  EXPECT_FALSE(shell.orient().closed);
  EXPECT_FALSE(shell.is_closed());
  EXPECT_EQ(shell.volume(), 0);
}

TEST(qv_vertex_welder, agrees_with_looking_at_every_earlier_point) {
  constexpr unsigned seed = 20260101;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  // Around the corners of the welder's cells, where neighbours lie in other cells.
  std::uniform_real_distribution<double> offset(-0.003, 0.003);
  std::uniform_int_distribution<int> cell(-2, 2);
  qv::qv_vertex_welder welder;
  std::vector<qv_double3> kept;
  for (int i = 0; i < 5000; ++i) {
    const double width = 64 * qv::qv_vertex_welder::distance;
    const qv_double3 p = {cell(random) * width + offset(random),
                          cell(random) * width + offset(random), offset(random)};
    const int number = welder.weld(p);
    ASSERT_LE(number, static_cast<int>(kept.size()));
    if (number == static_cast<int>(kept.size())) {
      for (const qv_double3& k : kept) ASSERT_GT((k - p).length(), qv::qv_vertex_welder::distance);
      kept.push_back(p);
    } else {
      ASSERT_LE((kept[static_cast<std::size_t>(number)] - p).length(),
                qv::qv_vertex_welder::distance);
    }
  }
}
