#include "core/shapes/qv_shell_sides.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <limits>
#include <vector>

#include "core/shapes/qv_double3.h"
#include "core/shapes/qv_face_links.h"
#include "utilities/qv_random.h"

using namespace qv;

namespace {

using loop = std::vector<qv_3dvector>;

/// The six faces of a box, pointing outwards.
std::vector<loop> box(const qv_3dvector& low, const qv_3dvector& high) {
  const float x0 = low.x, y0 = low.y, z0 = low.z, x1 = high.x, y1 = high.y, z1 = high.z;
  return {{{x0, y0, z0}, {x0, y1, z0}, {x1, y1, z0}, {x1, y0, z0}},
          {{x0, y0, z1}, {x1, y0, z1}, {x1, y1, z1}, {x0, y1, z1}},
          {{x0, y0, z0}, {x1, y0, z0}, {x1, y0, z1}, {x0, y0, z1}},
          {{x1, y0, z0}, {x1, y1, z0}, {x1, y1, z1}, {x1, y0, z1}},
          {{x1, y1, z0}, {x0, y1, z0}, {x0, y1, z1}, {x1, y1, z1}},
          {{x0, y1, z0}, {x0, y0, z0}, {x0, y0, z1}, {x0, y1, z1}}};
}

void append(std::vector<loop>& to, const std::vector<loop>& from) {
  to.insert(to.end(), from.begin(), from.end());
}

void turn(loop& face) {
  std::reverse(face.begin(), face.end());
}

/// Convex faces as fans of triangles.
std::vector<qv_face_triangle> triangles(const std::vector<loop>& faces, int faces_per_owner = 0) {
  std::vector<qv_face_triangle> result;
  for (std::size_t f = 0; f < faces.size(); ++f) {
    const int face = static_cast<int>(f);
    const int owner = faces_per_owner > 0 ? face / faces_per_owner : 0;
    for (std::size_t i = 2; i < faces[f].size(); ++i)
      result.push_back({{faces[f][0], faces[f][i - 1], faces[f][i]}, face, owner});
  }
  return result;
}

/// Turns what must be turned and returns how many faces that were.
int repair(std::vector<loop>& faces, int faces_per_owner = 0) {
  const std::vector<qv_face_triangle> t = triangles(faces, faces_per_owner);
  const std::vector<bool> turned =
      qv_find_faces_to_turn(t, static_cast<int>(faces.size()), qv_link_faces(t));
  int count = 0;
  for (std::size_t i = 0; i < faces.size(); ++i) {
    if (!turned[i]) continue;
    turn(faces[i]);
    ++count;
  }
  return count;
}

/// Enclosed volume of faces `first` to `last`, outward positive.
double volume(const std::vector<loop>& faces, std::size_t first, std::size_t last) {
  double sum = 0;
  const qv_double3 origin(faces[first][0]);
  for (std::size_t f = first; f < last; ++f)
    for (std::size_t i = 2; i < faces[f].size(); ++i)
      sum += dot(qv_double3(faces[f][0]) - origin,
                 cross(qv_double3(faces[f][i - 1]) - origin, qv_double3(faces[f][i]) - origin)) /
             6;
  return sum;
}
double volume(const std::vector<loop>& faces) {
  return volume(faces, 0, faces.size());
}

void turn_some(std::vector<loop>& faces, qv_random& random) {
  for (loop& face : faces)
    if (random.dice_float() < 0.5f) turn(face);
}

}  // namespace

TEST(shell_sides, leaves_a_sound_box_alone) {
  std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
  EXPECT_EQ(repair(faces), 0);
}

TEST(shell_sides, turns_any_choice_of_faces_of_a_box_outwards) {
  for (int choice = 0; choice < 64; ++choice) {
    std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
    int wrong = 0;
    for (std::size_t f = 0; f < 6; ++f) {
      if ((choice >> f & 1) == 0) continue;
      turn(faces[f]);
      ++wrong;
    }
    EXPECT_EQ(repair(faces), wrong) << "choice " << choice;
    EXPECT_NEAR(volume(faces), 30, 1e-6) << "choice " << choice;
    EXPECT_EQ(repair(faces), 0) << "choice " << choice;
  }
}

TEST(shell_sides, does_not_depend_on_the_order_of_the_faces) {
  qv_random random(7);
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = box({-3, 2, 1}, {5, 3, 4});
    turn_some(faces, random);
    for (std::size_t i = faces.size(); i > 1; --i)
      std::swap(faces[i - 1], faces[random.dice() % i]);
    repair(faces);
    EXPECT_NEAR(volume(faces), 24, 1e-6) << "run " << run;
  }
}

TEST(shell_sides, orients_boxes_apart_from_each_other_one_by_one) {
  std::vector<loop> faces = box({0, 0, 0}, {1, 1, 1});
  append(faces, box({5, 0, 0}, {7, 1, 1}));
  for (std::size_t f = 6; f < 12; ++f) turn(faces[f]);
  EXPECT_EQ(repair(faces), 6);
  EXPECT_NEAR(volume(faces, 0, 6), 1, 1e-6);
  EXPECT_NEAR(volume(faces, 6, 12), 2, 1e-6);
}

TEST(shell_sides, orients_a_box_inside_another_one_outwards_by_itself) {
  qv_random random(3);
  for (int run = 0; run < 20; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {10, 10, 10});
    append(faces, box({4, 4, 4}, {6, 6, 6}));
    turn_some(faces, random);
    repair(faces);
    EXPECT_NEAR(volume(faces, 0, 6), 1000, 1e-4);
    EXPECT_NEAR(volume(faces, 6, 12), 8, 1e-6);
  }
}

TEST(shell_sides, keeps_coincident_faces_of_neighbouring_boxes_with_their_owner) {
  qv_random random(11);
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {3, 3, 3});
    append(faces, box({3, 0, 0}, {6, 3, 3}));
    append(faces, box({0, 3, 0}, {3, 6, 3}));
    turn_some(faces, random);
    repair(faces, 6);
    for (std::size_t b = 0; b < 3; ++b)
      EXPECT_NEAR(volume(faces, 6 * b, 6 * b + 6), 27, 1e-5) << "run " << run << " box " << b;
    EXPECT_EQ(repair(faces, 6), 0);
  }
}

TEST(shell_sides, orients_boxes_that_touch_along_an_edge) {
  qv_random random(12);
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {3, 3, 3});
    append(faces, box({3, 3, 0}, {6, 6, 3}));
    turn_some(faces, random);
    repair(faces);
    EXPECT_NEAR(volume(faces, 0, 6), 27, 1e-5) << "run " << run;
    EXPECT_NEAR(volume(faces, 6, 12), 27, 1e-5) << "run " << run;
  }
}

TEST(shell_sides, decides_a_box_without_a_face_like_a_closed_one) {
  for (std::size_t missing = 0; missing < 6; ++missing) {
    std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
    faces.erase(faces.begin() + static_cast<std::ptrdiff_t>(missing));
    const std::vector<loop> sound = faces;
    EXPECT_EQ(repair(faces), 0);
    for (loop& face : faces) turn(face);
    turn(faces[2]);
    EXPECT_EQ(repair(faces), 4);
    EXPECT_EQ(faces, sound);
  }
}

TEST(shell_sides, sees_through_gaps_of_two_millimetres) {
  qv_random random(5);
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
    for (loop& face : faces) {
      const qv_3dvector away = random.dice_vector() * 0.001f;
      for (qv_3dvector& p : face) p += away;
    }
    const std::vector<loop> sound = faces;
    turn_some(faces, random);
    repair(faces);
    EXPECT_EQ(faces, sound) << "run " << run;
    EXPECT_EQ(repair(faces), 0);
  }
}

TEST(shell_sides, follows_walls_whose_edges_overlap_only_in_part) {
  // One long wall faces three short ones; the slab is one piece below and two above.
  qv_random random(6);
  const std::vector<loop> sound = {
      {{0, 0, 0}, {0, 4, 0}, {9, 4, 0}, {9, 0, 0}}, {{0, 0, 3}, {5, 0, 3}, {5, 4, 3}, {0, 4, 3}},
      {{5, 0, 3}, {9, 0, 3}, {9, 4, 3}, {5, 4, 3}}, {{0, 0, 0}, {9, 0, 0}, {9, 0, 3}, {0, 0, 3}},
      {{9, 0, 0}, {9, 4, 0}, {9, 4, 3}, {9, 0, 3}}, {{9, 4, 0}, {6, 4, 0}, {6, 4, 3}, {9, 4, 3}},
      {{6, 4, 0}, {2, 4, 0}, {2, 4, 3}, {6, 4, 3}}, {{2, 4, 0}, {0, 4, 0}, {0, 4, 3}, {2, 4, 3}},
      {{0, 4, 0}, {0, 0, 0}, {0, 0, 3}, {0, 4, 3}}};
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = sound;
    turn_some(faces, random);
    repair(faces);
    EXPECT_EQ(faces, sound) << "run " << run;
  }
}

TEST(shell_sides, makes_an_open_shell_agree_and_keeps_the_side_of_most_of_its_area) {
  // Three faces of a box, the first one the largest: 12 against 10 and 7.5 m².
  std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
  faces = {faces[0], faces[2], faces[5]};
  turn(faces[1]);
  turn(faces[2]);
  // Outward 12 m², inward 17.5 m²: the floor is turned.
  EXPECT_EQ(repair(faces), 1);
  EXPECT_EQ(repair(faces), 0);
  turn(faces[1]);
  EXPECT_EQ(repair(faces), 1);
}

TEST(shell_sides, leaves_a_single_face_alone) {
  std::vector<loop> faces = {{{0, 0, 0}, {1, 0, 0}, {1, 1, 0}, {0, 1, 0}}};
  EXPECT_EQ(repair(faces), 0);
  turn(faces[0]);
  EXPECT_EQ(repair(faces), 0);
}

TEST(shell_sides, ends_on_coincident_faces) {
  qv_random random(9);
  for (int run = 0; run < 50; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {4, 3, 2.5f});
    faces.push_back(faces[1]);
    faces.push_back(faces[1]);
    turn_some(faces, random);
    repair(faces);
    EXPECT_EQ(repair(faces), 0) << "run " << run;
    EXPECT_NEAR(faces[2][0].y, 0, 0);
    // The faces that are there once form the shell.
    std::vector<loop> once(faces.begin() + 2, faces.begin() + 6);
    const std::vector<loop> sound = box({0, 0, 0}, {4, 3, 2.5f});
    EXPECT_EQ(once, std::vector<loop>(sound.begin() + 2, sound.begin() + 6)) << "run " << run;
  }
}

TEST(shell_sides, orients_a_thin_pane) {
  qv_random random(10);
  for (int run = 0; run < 20; ++run) {
    std::vector<loop> faces = box({0, 0, 0}, {1.2f, 0.004f, 1.5f});
    turn_some(faces, random);
    repair(faces);
    EXPECT_GT(volume(faces), 0.0071) << "run " << run;
  }
}

TEST(shell_sides, orients_a_shell_far_from_the_origin) {
  qv_random random(13);
  std::vector<loop> faces = box({400000, 250000, 100}, {400008, 250006, 103});
  append(faces, box({400002, 250002, 110}, {400003, 250003, 111}));
  turn_some(faces, random);
  repair(faces);
  EXPECT_NEAR(volume(faces, 0, 6), 144, 1e-3);
  EXPECT_NEAR(volume(faces, 6, 12), 1, 1e-3);
}

TEST(shell_sides, orients_a_concave_shell_whose_middle_lies_outside) {
  // A U seen from above, extruded.
  const loop u = {{0, 0, 0}, {9, 0, 0}, {9, 9, 0}, {8, 9, 0},
                  {8, 1, 0}, {1, 1, 0}, {1, 9, 0}, {0, 9, 0}};
  std::vector<loop> faces;
  for (std::size_t i = 0; i < u.size(); ++i) {
    const qv_3dvector a = u[i], b = u[(i + 1) % u.size()], up{0, 0, 3};
    faces.push_back({a, b, b + up, a + up});
  }
  append(faces, {{{0, 0, 0}, {0, 1, 0}, {9, 1, 0}, {9, 0, 0}},
                 {{0, 1, 0}, {0, 9, 0}, {1, 9, 0}, {1, 1, 0}},
                 {{8, 1, 0}, {8, 9, 0}, {9, 9, 0}, {9, 1, 0}},
                 {{0, 0, 3}, {9, 0, 3}, {9, 1, 3}, {0, 1, 3}},
                 {{0, 1, 3}, {1, 1, 3}, {1, 9, 3}, {0, 9, 3}},
                 {{8, 1, 3}, {9, 1, 3}, {9, 9, 3}, {8, 9, 3}}});
  ASSERT_NEAR(volume(faces), 75, 1e-4);
  const std::vector<loop> sound = faces;
  qv_random random(14);
  for (int run = 0; run < 20; ++run) {
    turn_some(faces, random);
    repair(faces);
    EXPECT_EQ(faces, sound) << "run " << run;
  }
}

TEST(shell_sides, survives_triangles_of_no_sense) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  constexpr float infinite = std::numeric_limits<float>::infinity();
  std::vector<loop> faces = box({0, 0, 0}, {1, 1, 1});
  turn(faces[3]);
  append(faces, {{{nan, 0, 0}, {1, 0, 0}, {1, 1, 0}},
                 {{infinite, 0, 0}, {1, 0, 0}, {1, 1, 0}},
                 {{3e38f, 0, 0}, {1, -3e38f, 0}, {1, 1, 0}},
                 {{0, 0, 0}, {0, 0, 0}, {1, 1, 0}},
                 {{0, 0, 0}, {1, 1, 1}, {2, 2, 2}},
                 {},
                 {{1, 1, 1}}});
  EXPECT_EQ(repair(faces), 1);
  EXPECT_NEAR(volume(faces, 0, 6), 1, 1e-9);
  std::vector<loop> nothing;
  EXPECT_EQ(repair(nothing), 0);
}

TEST(shell_sides, turns_nothing_the_second_time_on_random_triangles) {
  qv_random random(15);
  for (int run = 0; run < 200; ++run) {
    // Corners on a coarse grid: many shared edges, crowded edges, strips with one side only.
    std::vector<loop> faces(40);
    for (loop& face : faces)
      for (int k = 0; k < 3; ++k)
        face.push_back({static_cast<float>(random.dice() % 3),
                        static_cast<float>(random.dice() % 3),
                        static_cast<float>(random.dice() % 3)});
    repair(faces);
    EXPECT_EQ(repair(faces), 0) << "run " << run;
  }
}

TEST(shell_sides, keeps_one_seam_of_a_moebius_strip) {
  std::vector<loop> faces;
  const int count = 24;
  faces.reserve(count);
  const auto rung = [&](int i, float side) {
    const float turn = 2 * 3.14159265f * static_cast<float>(i) / count, twist = turn / 2;
    const float r = 5 + side * std::cos(twist);
    return qv_3dvector(r * std::cos(turn), r * std::sin(turn), side * std::sin(twist));
  };
  for (int i = 0; i < count; ++i)
    faces.push_back({rung(i, -1), rung(i + 1, -1), rung(i + 1, 1), rung(i, 1)});
  repair(faces);
  EXPECT_EQ(repair(faces), 0);
}

TEST(shell_sides, ends_on_thousands_of_faces_in_one_place) {
  // Thousands of faces that coincide or nearly do: bounded work for each, not one for each pair.
  qv_random random(16);
  std::vector<loop> faces;
  for (int i = 0; i < 3000; ++i) {
    const auto h = static_cast<float>(i % 2) * 1e-4f * random.dice_float();
    faces.push_back({{0, 0, h}, {1, h, 0}, {1, 1, h}, {0, 1, 0}});
  }
  repair(faces);
  EXPECT_EQ(repair(faces), 0);
}
