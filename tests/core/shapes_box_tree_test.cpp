#include "core/shapes/qv_box_tree.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <random>

namespace {

using namespace qv;

std::vector<qv_double_box> random_boxes(std::mt19937& random, int count) {
  std::uniform_real_distribution<double> place(0, 100);
  std::uniform_real_distribution<double> size(0, 5);
  std::vector<qv_double_box> boxes;
  for (int i = 0; i < count; ++i) {
    const qv_double3 low(place(random), place(random), place(random));
    boxes.push_back({low, low + qv_double3(size(random), size(random), size(random))});
  }
  return boxes;
}

TEST(qv_box_tree, finds_what_a_scan_finds) {
  std::mt19937 random(3);
  const auto boxes = random_boxes(random, 500);
  const qv_box_tree tree(boxes);
  std::vector<std::uint32_t> found;
  for (const auto& place : random_boxes(random, 200)) {
    const qv_double_box wide = place.grown(4);
    std::vector<std::uint32_t> expected;
    for (std::uint32_t i = 0; i < boxes.size(); ++i)
      if (boxes[i].overlaps(wide)) expected.push_back(i);
    tree.find(wide, found);
    EXPECT_EQ(found, expected);
  }
}

TEST(qv_box_tree, finds_every_box_that_holds_a_point_of_a_segment) {
  std::mt19937 random(4);
  const auto boxes = random_boxes(random, 500);
  const qv_box_tree tree(boxes);
  std::vector<std::uint32_t> found;
  std::uniform_real_distribution<double> place(0, 100);
  for (int round = 0; round < 30; ++round) {
    const qv_double3 from(place(random), place(random), place(random));
    const qv_double3 to(place(random), place(random), place(random));
    tree.find_along(from, to, 0.5, found);
    std::size_t touched = 0;
    for (std::uint32_t i = 0; i < boxes.size(); ++i) {
      bool touches = false;
      for (int step = 0; step <= 2000 && !touches; ++step) {
        const qv_double3 p = from + (to - from) * (step / 2000.0);
        touches = boxes[i].grown(0.5).overlaps({p, p});
      }
      touched += touches ? 1 : 0;
      if (touches) {
        EXPECT_TRUE(std::binary_search(found.begin(), found.end(), i));
      }
    }
    EXPECT_LE(found.size(), touched + 2);  // grazed between two of the points
  }
}

TEST(qv_box_tree, knows_segments_along_an_axis) {
  const qv_box_tree tree({{{0, 0, 0}, {1, 1, 1}}, {{5, 0, 0}, {6, 1, 1}}, {{0, 5, 0}, {1, 6, 1}}});
  std::vector<std::uint32_t> found;
  tree.find_along({-1, 0.5, 0.5}, {9, 0.5, 0.5}, 0, found);
  EXPECT_EQ(found, (std::vector<std::uint32_t>{0, 1}));
  tree.find_along({0.5, 0.5, 0.5}, {0.5, 0.5, 0.5}, 0, found);
  EXPECT_EQ(found, (std::vector<std::uint32_t>{0}));
  tree.find_along({-1, 1.5, 0.5}, {9, 1.5, 0.5}, 0.4, found);
  EXPECT_TRUE(found.empty());
}

TEST(qv_box_tree, stops_at_the_limit) {
  std::vector<qv_double_box> boxes(50, {{0, 0, 0}, {1, 1, 1}});
  const qv_box_tree tree(boxes);
  std::vector<std::uint32_t> found;
  tree.find(boxes[0], found, 10);
  EXPECT_EQ(found.size(), 10u);
  qv_box_tree({}).find(boxes[0], found);
  EXPECT_TRUE(found.empty());
}

}  // namespace
