#include "bim/project/qv_side_test.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "bim/project/qvi_bim_root.h"
#include "core/light/qv_ray.h"
#include "core/light/qv_raytracer.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_random.h"

using namespace qv;
using qv_test::add_face;
using qv_test::add_space;
using qv_test::rectangle;
using contact = qvi_wall::contact_type;

namespace {

// Where a ray crosses a plane before the wall, and how far it has come.
struct crossing {
  float x;
  float distance;
};

/// A wall of one square metre at y = 0 that looks towards −y, and screens before and behind it.
class qv_side_test : public ::testing::Test {
 protected:
  qv_side_test() {
    scene_.add_child(root_, -1);
    wall_->set_name("W");
  }

  // A wide wall of `space` that ends at `x_end`.
  qvi_wall* add_screen(float x_end, float y, qvi_space* space) {
    return qv_test::add_wall(*root_, qvi_wall::wall_type::wall, nullptr, space,
                             rectangle({-100, y, -100}, {x_end, y, -100}, {-100, y, 100}), 0);
  }
  // The rays that decide, made once more from their definition, at the plane `ahead` metres to the
  // side of `direction`; sorted by x.
  std::vector<crossing> cross(const qv_3dvector& direction, float ahead) const {
    qv_random random(54873);
    qv_polygon polygon;
    wall_->get_face_0()->fill_polygon(&polygon);
    std::vector<crossing> crossings;
    for (const qv_3dvector& point : polygon.random_distribution(100, 65421)) {
      qv_3dvector spread = random.dice_vector();
      if (direction.dot(spread) < 0) spread = spread * -1.0f;
      const qv_3dvector way = (spread + direction * 0.1f).normalized();
      const float distance = ahead / way.dot(direction);
      crossings.push_back({point.x + way.x * distance, distance});
    }
    std::sort(crossings.begin(), crossings.end(),
              [](const crossing& a, const crossing& b) { return a.x < b.x; });
    return crossings;
  }
  // The end of a screen at that plane that `hits` of the rays hit.
  float find_end(const qv_3dvector& direction, float ahead, int hits) const {
    const std::vector<crossing> crossings = cross(direction, ahead);
    const auto next = static_cast<std::size_t>(hits);
    if (hits == 0) return crossings.front().x - 1;
    if (next == crossings.size()) return crossings.back().x + 1;
    return (crossings[next - 1].x + crossings[next].x) / 2;
  }
  float test(const qv_3dvector& direction) {
    qv_list<qvi_mesh*> meshes;
    for (qvi_mesh* mesh : qv_collect<qvi_mesh>(root_, "mesh")) meshes.append(mesh);
    qv_raytracer raytracer(meshes);
    raytracer.update();
    return qv_test_side(wall_->get_face_0(), direction, room_, raytracer);
  }
  // Returns what was logged of the wall, which bears the name W; the screens have rooms as well.
  std::vector<std::string> check_orientation() {
    qv_test::log_recorder log;
    root_->check_orientation();
    std::erase_if(log.lines,
                  [](const std::string& line) { return !line.starts_with("Wall W : "); });
    return log.lines;
  }

  qv_scene scene_;
  qvi_bim_root* root_ = new qvi_bim_root;
  qvi_space* room_ = add_space(scene_);
  qvi_space* other_room_ = add_space(scene_);
  qvi_wall* wall_ = qv_test::add_wall(*root_, qvi_wall::wall_type::wall, room_, nullptr,
                                      rectangle({0, 0, 0}, {1, 0, 0}, {0, 0, 1}), 0);
  const qv_3dvector front_ = {0, -1, 0};
  const qv_3dvector back_ = {0, 1, 0};
};

// Seeds, number and tilt of the rays are part of what the check decides by.
TEST_F(qv_side_test, sends_a_hundred_rays_that_are_fixed_once_and_for_all) {
  for (const qv_3dvector& direction : {front_, back_}) {
    ASSERT_EQ(cross(direction, 0.3f).size(), 100u);
    for (const int hits : {0, 1, 13, 37, 50, 64, 99, 100}) {
      const float end = find_end(direction, 0.3f, hits);
      qvi_wall* const screen = add_screen(end, 0.3f * direction.y, room_);
      EXPECT_EQ(test(direction), static_cast<float>(hits) / 100.0f);
      EXPECT_EQ(test(-direction), 0.0f);
      qv_item::destroy(screen);
    }
  }
}

TEST_F(qv_side_test, does_not_see_what_lies_within_a_centimetre) {
  // Rays that are steep enough pass this screen before they begin to see.
  add_screen(100, 0.004f, other_room_);
  add_screen(100, 0.5f, room_);
  const std::vector<crossing> crossings = cross(back_, 0.004f);
  const auto passing = std::count_if(crossings.begin(), crossings.end(),
                                     [](const crossing& c) { return c.distance < 0.01f; });
  ASSERT_GT(passing, 20);
  ASSERT_LT(passing, 80);
  EXPECT_EQ(test(back_), static_cast<float>(passing) / 100.0f);
}

TEST_F(qv_side_test, knows_a_room_by_either_space_of_the_nearest_wall_above_what_is_hit) {
  EXPECT_EQ(test(back_), 0.0f);
  qvi_wall* const screen = add_screen(100, 0.3f, room_);
  EXPECT_EQ(test(back_), 1.0f);
  screen->set_space_1(nullptr);
  screen->set_space_0(room_);
  EXPECT_EQ(test(back_), 1.0f);
  screen->set_space_0(other_room_);
  screen->set_space_1(other_room_);
  EXPECT_EQ(test(back_), 0.0f);

  const qv_list<qv_3dvector> nearer =
      rectangle({-100, 0.2f, -100}, {100, 0.2f, -100}, {-100, 0.2f, 100});
  qvi_polygon* const face = add_face(*root_, nearer);  // belongs to no wall
  EXPECT_EQ(test(back_), 0.0f);
  auto* const folder = new qv_item;
  auto* const upper_wall = new qvi_wall;
  upper_wall->set_space_1(room_);
  root_->add_child(upper_wall, -1);
  upper_wall->add_child(folder, -1);
  folder->add_child(face, -1);
  EXPECT_EQ(test(back_), 1.0f);
  screen->add_child(face, -1);
  upper_wall->add_child(screen, -1);  // the wall between decides
  EXPECT_EQ(test(back_), 0.0f);
}

// --- what the check of orientations makes of the shares ---

TEST_F(qv_side_test, decides_a_wall_by_its_shares_on_either_side) {
  enum class outcome { left, turned, logged };
  struct sample {
    int direct;   // rays that see the room on the side where it should lie
    int reverse;  // and on the other one
    outcome expected;
  };
  // The missing second space counts 1: 90 rays make (0.9 + 1) / 2.
  const sample samples[] = {{91, 100, outcome::left},    // above 0.95
                            {90, 100, outcome::turned},  // 0.95 is not above
                            {90, 89, outcome::left},    {90, 90, outcome::turned},
                            {80, 79, outcome::left},    {80, 80, outcome::turned},
                            {79, 80, outcome::turned},  {0, 80, outcome::turned},
                            {79, 79, outcome::logged},  {79, 0, outcome::logged}};
  wall_->precompute();
  ASSERT_EQ(wall_->get_contact_type(), contact::outer_wall);
  for (const sample& s : samples) {
    SCOPED_TRACE(testing::Message() << s.direct << " and " << s.reverse);
    wall_->set_normal(front_);
    wall_->propagate_normal_orientation();
    qvi_wall* const behind = add_screen(find_end(back_, 0.3f, s.direct), 0.3f, room_);
    qvi_wall* const before = add_screen(find_end(front_, 0.3f, s.reverse), -0.3f, room_);
    ASSERT_EQ(test(back_), static_cast<float>(s.direct) / 100.0f);
    ASSERT_EQ(test(front_), static_cast<float>(s.reverse) / 100.0f);
    const std::vector<std::string> lines = check_orientation();
    EXPECT_EQ(wall_->get_normal(), s.expected == outcome::turned ? back_ : front_);
    EXPECT_EQ(lines.size(), s.expected == outcome::logged ? 1u : 0u);
    if (s.direct == 79 && s.reverse == 0) {
      EXPECT_EQ(lines.front(),
                "Wall W : incoherent data (Direct check : 0.895000 - reverse check : 0.500000)");
    }
    qv_item::destroy(behind);
    qv_item::destroy(before);
  }
}

TEST_F(qv_side_test, of_another_wall_the_wrong_way_round_is_logged) {
  wall_->precompute();
  add_screen(100, -0.3f, room_);
  for (const contact type : {contact::inner_wall, contact::lower_floor, contact::roof,
                             contact::outside_wall, contact::outside_slab}) {
    wall_->set_contact_type(type);
    EXPECT_EQ(check_orientation(),
              std::vector<std::string>{
                  "Wall W : incoherent behaviour : spaces reversed and should not be"});
    EXPECT_EQ(wall_->get_normal(), front_);
    EXPECT_EQ(wall_->get_space_0(), room_);
    EXPECT_EQ(wall_->get_space_1(), nullptr);
  }
}

}  // namespace
