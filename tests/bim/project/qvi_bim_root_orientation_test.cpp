#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <random>
#include <set>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "bim/project/qvi_bim_root.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_shapes.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_turned_walls.h"

using namespace qv;
using qv_test::add_wall;
using qv_test::log_recorder;
using qv_test::rectangle;
using qv_test::take_sides;
using qv_test::turn_walls;
using contact = qvi_wall::contact_type;
using kind = qvi_wall::wall_type;

namespace {

/// Counts how often it is precomputed.
class counting_root : public qvi_bim_root {
 public:
  ~counting_root() override = default;
  int precompute_count = 0;
  void precompute() override {
    ++precompute_count;
    qvi_bim_root::precompute();
  }
};

class qvi_bim_root_orientation : public ::testing::Test {
 protected:
  qvi_bim_root_orientation() { scene_.add_child(root_, -1); }
  // A closed room of thin walls, each of which names the room.
  qv_test::box_room add_room(const qv_3dvector& origin = {0, 0, 0}) {
    return qv_test::add_box_room(*root_, origin, {4, 5, 2.5f}, 0);
  }
  qvi_composition* add_composition(const std::string& name, const qv_list<qvi_matter*>& layers) {
    auto* composition = new qvi_composition;
    composition->set_name(name);
    composition->set_layers(layers);
    root_->add_child(composition, -1);
    return composition;
  }
  qvi_matter* add_matter() {
    auto* matter = new qvi_matter;
    root_->add_child(matter, -1);
    return matter;
  }
  // The wall stands alone and sees nothing of its room on either side.
  qvi_wall* add_blind_wall(float x, const std::string& name) {
    qvi_wall* const wall = add_wall(*root_, kind::wall, qv_test::add_space(*root_), nullptr,
                                    rectangle({x, 0, 0}, {x + 1, 0, 0}, {x, 0, 1}), 0);
    wall->set_name(name);
    return wall;
  }

  qv_test::recording_scene scene_;
  counting_root* root_ = new counting_root;
  log_recorder log_;
};

TEST_F(qvi_bim_root_orientation, leaves_a_room_that_is_right) {
  add_room();
  const auto before = take_sides(*root_);
  root_->check_orientation();
  EXPECT_EQ(take_sides(*root_), before);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(qvi_bim_root_orientation, turns_outer_walls_that_look_into_their_room) {
  const auto room = add_room();
  const auto before = take_sides(*root_);
  for (qvi_wall* side : room.sides) side->set_normal(-side->get_normal());
  root_->check_orientation();
  EXPECT_EQ(take_sides(*root_), before);
  EXPECT_TRUE(log_.lines.empty());
  for (qvi_wall* side : room.sides)  // the face follows
    EXPECT_GT(side->get_face_0()->get_normal().dot(side->get_normal()), 0.99f);
}

TEST_F(qvi_bim_root_orientation, turns_the_openings_of_a_wall_that_it_turns) {
  const auto room = add_room();
  auto* window = new qvi_opening;
  window->set_wall(room.sides[0]);
  window->set_normal(room.sides[0]->get_normal());
  root_->add_child(window, -1);
  room.sides[0]->set_normal(-room.sides[0]->get_normal());
  root_->check_orientation();
  EXPECT_EQ(window->get_normal(), qv_3dvector(0, -1, 0));
}

TEST_F(qvi_bim_root_orientation, points_floors_down_and_roofs_up_before_looking) {
  const auto room = add_room();
  const auto before = take_sides(*root_);
  room.floor->set_normal({0, 0, 1});
  room.roof->set_normal({0, 0, -1});
  root_->check_orientation();
  EXPECT_EQ(take_sides(*root_), before);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(qvi_bim_root_orientation, swaps_the_spaces_and_the_composition_of_an_intermediate_floor) {
  auto block = qv_test::add_block(*root_, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  auto* const screed = add_matter();
  auto* const concrete = add_matter();
  auto* const slab = add_composition("Dalle", {concrete, screed});
  qvi_wall* const floor = *std::find_if(block.walls.begin(), block.walls.end(),
                                        [](qvi_wall* w) { return w->get_space_1() != nullptr; });
  floor->set_composition(slab);  // its first space is the lower one and it points up
  root_->check_orientation();
  EXPECT_EQ(floor->get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(floor->get_space_0(), block.at(0, 0, 1));
  EXPECT_EQ(floor->get_space_1(), block.at(0, 0, 0));
  ASSERT_NE(floor->get_composition(), nullptr);
  EXPECT_EQ(floor->get_composition()->get_name(), "Dalle-");
  EXPECT_EQ(floor->get_composition()->get_layers(), (qv_list<qvi_matter*>{screed, concrete}));
  EXPECT_TRUE(log_.lines.empty());
  const auto after = take_sides(*root_);
  root_->check_orientation();  // and now it is right
  EXPECT_EQ(take_sides(*root_), after);
}

TEST_F(qvi_bim_root_orientation, leaves_a_lone_space_of_an_intermediate_floor_as_the_second_one) {
  const auto room = add_room();
  // The ceiling is taken for a floor between storeys whose upper one is not there.
  room.roof->set_wall_type(kind::floor);
  room.roof->precompute();
  room.roof->set_contact_type(contact::intermediate_floor);
  root_->check_orientation();
  EXPECT_EQ(room.roof->get_normal(), qv_3dvector(0, 0, -1));
  EXPECT_EQ(room.roof->get_space_0(), nullptr);
  EXPECT_EQ(room.roof->get_space_1(), room.space);
}

TEST_F(qvi_bim_root_orientation, does_not_touch_a_wall_that_is_as_right_the_other_way_round) {
  // A screen in the middle of a room sees it on both sides.
  const auto room = add_room();
  qvi_wall* const screen = add_wall(*root_, kind::wall, room.space, nullptr,
                                    rectangle({1, 2, 0.5f}, {3, 2, 0.5f}, {1, 2, 2}), 0);
  screen->precompute();
  const unsigned int date = screen->get_normal_date();
  root_->check_orientation();
  EXPECT_EQ(screen->get_normal_date(), date);
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(qvi_bim_root_orientation, takes_a_thick_wall_for_right_by_either_of_its_faces) {
  // The far face of a thick wall names the same room as the rest of it. So a thick wall is wrong
  // only when its faces are exchanged as well.
  const auto room = qv_test::add_box_room(*root_, {0, 0, 0}, {4, 5, 2.5f}, 0.3f);
  qvi_wall* const turned = room.sides[0];
  turned->set_normal(-turned->get_normal());
  qvi_wall* const reversed = room.sides[2];
  qvi_polygon* const inside = reversed->get_face_0();
  reversed->set_face_0(reversed->get_face_1());
  reversed->set_face_1(inside);
  reversed->set_pierced_face_0(nullptr);
  reversed->set_pierced_face_1(nullptr);
  reversed->set_normal(-reversed->get_normal());
  root_->check_orientation();
  EXPECT_EQ(turned->get_normal(), qv_3dvector(0, 1, 0));
  EXPECT_EQ(reversed->get_normal(), qv_3dvector(0, 1, 0));
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(qvi_bim_root_orientation, turns_walls_only_after_it_has_looked_at_all) {
  auto block = qv_test::add_block(*root_, {0, 0, 0}, 1, 1, 2, {4, 5, 2.5f}, 0);
  root_->check_orientation();
  std::vector<qvi_wall*> outer;
  qvi_wall* floor = nullptr;
  for (qvi_wall* wall : block.walls) {
    if (wall->get_contact_type() == contact::outer_wall) outer.push_back(wall);
    if (wall->get_contact_type() == contact::intermediate_floor) floor = wall;
  }
  ASSERT_NE(floor, nullptr);
  ASSERT_EQ(block.walls.front(), root_->collect("wall")[0]);
  for (qvi_wall* wall : outer) wall->set_normal(-wall->get_normal());
  qvi_space* const upper = floor->get_space_0();
  floor->set_space_0(floor->get_space_1());
  floor->set_space_1(upper);
  scene_.forget();
  root_->check_orientation();
  std::vector<std::string> order;
  for (const qv_test::notification& change : scene_.changed)
    if (change.name == "normal" || change.name.starts_with("space_")) {
      if (change.item->has_type("wall")) order.push_back(change.name);
    }
  std::vector<std::string> expected = {"space_0", "space_1"};
  expected.insert(expected.end(), outer.size(), "normal");
  EXPECT_EQ(order, expected);
}

TEST_F(qvi_bim_root_orientation, logs_other_walls_that_are_the_wrong_way_round) {
  auto block = qv_test::add_block(*root_, {0, 0, 0}, 2, 1, 1, {4, 5, 2.5f}, 0);
  qvi_wall* const partition =
      *std::find_if(block.walls.begin(), block.walls.end(),
                    [](const qvi_wall* w) { return w->get_space_1() != nullptr; });
  partition->set_name("Cloison");
  partition->set_normal(-partition->get_normal());
  const auto before = take_sides(*root_);
  root_->check_orientation();
  EXPECT_EQ(take_sides(*root_), before);
  EXPECT_EQ(log_.lines,
            std::vector<std::string>{
                "Wall Cloison : incoherent behaviour : spaces reversed and should not be"});
}

TEST_F(qvi_bim_root_orientation, logs_walls_that_see_their_room_on_neither_side) {
  qvi_wall* const wall = add_blind_wall(0, "Mur");
  const qv_3dvector normal = wall->get_normal();
  root_->check_orientation();
  // The missing second space counts 1 in each: (0 + 1) / 2.
  EXPECT_EQ(log_.lines,
            std::vector<std::string>{"Wall Mur : incoherent data (Direct check : 0.500000 - "
                                     "reverse check : 0.500000)"});
  EXPECT_EQ(wall->get_normal(), normal);
}

TEST_F(qvi_bim_root_orientation, logs_walls_without_faces_and_leaves_them) {
  auto* wall = new qvi_wall;
  wall->set_name("Vide");
  wall->set_wall_type(kind::wall);
  wall->set_normal({1, 0, 0});
  wall->set_space_0(qv_test::add_space(*root_));
  root_->add_child(wall, -1);
  root_->check_orientation();
  ASSERT_EQ(log_.lines.size(), 1u);
  EXPECT_TRUE(log_.lines[0].starts_with("Wall Vide : incoherent data (Direct check : "));
  EXPECT_EQ(wall->get_normal(), qv_3dvector(1, 0, 0));
}

TEST_F(qvi_bim_root_orientation, says_nothing_of_walls_without_a_space) {
  add_blind_wall(0, "Muret")->set_space_0(nullptr);
  root_->check_orientation();
  EXPECT_TRUE(log_.lines.empty());
}

TEST_F(qvi_bim_root_orientation, logs_a_hundred_lines_and_no_more) {
  for (int i = 0; i < 150; ++i) add_blind_wall(2.0f * static_cast<float>(i), std::to_string(i));
  root_->check_orientation();
  ASSERT_EQ(log_.lines.size(), 100u);
  EXPECT_TRUE(log_.lines[99].starts_with("Wall 99 : "));
  log_.lines.clear();
  root_->check_orientation();  // each call counts anew
  EXPECT_EQ(log_.lines.size(), 100u);
}

TEST_F(qvi_bim_root_orientation, counts_both_messages_together_and_still_repairs_what_follows) {
  for (int i = 0; i < 60; ++i) add_blind_wall(2.0f * static_cast<float>(i), "blind");
  // A row of rooms whose 60 partitions look the wrong way.
  auto row = qv_test::add_block(*root_, {0, 10, 0}, 61, 1, 1, {4, 5, 2.5f}, 0);
  std::vector<qvi_wall*> outer;
  for (qvi_wall* wall : row.walls) {
    if (wall->get_wall_type() != kind::wall) continue;
    wall->set_normal(-wall->get_normal());
    if (wall->get_space_1() == nullptr) outer.push_back(wall);
  }
  root_->check_orientation();
  EXPECT_EQ(log_.lines.size(), 100u);
  EXPECT_EQ(std::count_if(log_.lines.begin(), log_.lines.end(),
                          [](const std::string& line) {
                            return line.find("incoherent data") != std::string::npos;
                          }),
            60);
  for (const qvi_wall* wall : outer) {
    const qv_3dvector away = wall->get_face_0()->get_vertices()[0] - qv_3dvector(122, 12.5f, 1.25f);
    EXPECT_GT(away.dot(wall->get_normal()), 0) << "not repaired";
  }
}

TEST_F(qvi_bim_root_orientation, precomputes_the_root_twice) {
  add_room();
  root_->check_orientation();
  EXPECT_EQ(root_->precompute_count, 2);
}

TEST_F(qvi_bim_root_orientation, looks_at_walls_below_the_root_alone) {
  const auto inside = add_room();
  const auto outside = qv_test::add_box_room(scene_, {10, 0, 0}, {4, 5, 2.5f}, 0);
  for (qvi_wall* wall : {inside.sides[0], outside.sides[0]}) wall->set_normal(-wall->get_normal());
  root_->check_orientation();
  EXPECT_EQ(inside.sides[0]->get_normal(), qv_3dvector(0, -1, 0));
  EXPECT_EQ(outside.sides[0]->get_normal(), qv_3dvector(0, 1, 0));
}

TEST_F(qvi_bim_root_orientation, of_an_empty_model_does_nothing) {
  root_->check_orientation();
  EXPECT_TRUE(log_.lines.empty());
}

// --- whole buildings, damaged at random ---

std::set<std::string> names_logged(const std::vector<std::string>& lines) {
  std::set<std::string> names;
  for (const std::string& line : lines) names.insert(line.substr(5, line.find(" : ") - 5));
  return names;
}

TEST_F(qvi_bim_root_orientation, repairs_every_facade_and_floor_of_closed_buildings) {
  qv_test::add_block(*root_, {0, 0, 0}, 3, 2, 3, {4, 5, 2.5f}, 0);
  qv_test::add_block(*root_, {20, 0, 0}, 2, 1, 2, {3, 3, 3}, 0);
  auto* const slab = add_composition("slab", {add_matter(), add_matter(), add_matter()});
  const qv_list<qvi_wall*> walls = qv_collect<qvi_wall>(root_, "wall");
  for (int i = 0; i < walls.get_count(); ++i) walls[i]->set_name("W" + std::to_string(i));
  for (qvi_wall* wall : walls)
    if (wall->get_wall_type() == kind::floor) wall->set_composition(slab);
  root_->check_orientation();
  const auto before = take_sides(*root_);
  for (const unsigned int seed : {1u, 2u, 3u}) {
    SCOPED_TRACE(testing::Message() << "seed " << seed);
    std::set<std::string> undecided;
    for (const qvi_wall* wall : turn_walls(*root_, seed))
      if (wall->get_contact_type() == contact::inner_wall) undecided.insert(wall->get_name());
    ASSERT_LT(undecided.size(), 100u);
    log_.lines.clear();
    root_->check_orientation();
    EXPECT_EQ(names_logged(log_.lines), undecided);
    const auto after = take_sides(*root_);
    int repaired = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
      const qvi_wall* const wall = before[i].wall;
      if (wall->get_contact_type() == contact::inner_wall) continue;
      EXPECT_EQ(after[i], before[i]) << wall->get_name();
      ++repaired;
    }
    EXPECT_GT(repaired, 50);
    for (const auto& sides : before) {  // the partitions too, for the next round
      sides.wall->set_normal(sides.normal);
      sides.wall->set_space_0(sides.space_0);
      sides.wall->set_space_1(sides.space_1);
      sides.wall->set_composition(sides.composition);
    }
  }
}

// Destroys one wall in twenty, drawn at random.
void remove_walls(const qvi_bim_root& root, unsigned int seed) {
  std::vector<qvi_wall*> walls = qv_test::to_vector(qv_collect<qvi_wall>(&root, "wall"));
  std::shuffle(walls.begin(), walls.end(), std::mt19937(seed));
  walls.resize((walls.size() + 19) / 20);
  for (qvi_wall* wall : walls) qv_item::destroy(wall);
}

bool is_repairable(const qvi_wall& wall) {
  return wall.get_contact_type() == contact::outer_wall ||
         wall.get_contact_type() == contact::intermediate_floor;
}

// Replaces each face by `parts` × `parts` walls that cover it.
void divide_walls(qvi_bim_root& root, int parts) {
  for (qvi_wall* wall : qv_collect<qvi_wall>(&root, "wall")) {
    const qv_list<qv_3dvector> corners = wall->get_face_0()->get_vertices();
    const float share = 1 / static_cast<float>(parts);
    const qv_3dvector u = (corners[1] - corners[0]) * share;
    const qv_3dvector v = (corners[3] - corners[0]) * share;
    for (int i = 0; i < parts; ++i)
      for (int k = 0; k < parts; ++k) {
        const qv_3dvector a = corners[0] + u * static_cast<float>(i) + v * static_cast<float>(k);
        add_wall(root, wall->get_wall_type(), wall->get_space_0(), wall->get_space_1(),
                 rectangle(a, a + u, a + v), 0);
      }
    qv_item::destroy(wall);
  }
}

// Turns the walls that the check can repair and leaves the others.
void turn_repairable_walls(qvi_bim_root& root, unsigned int seed) {
  const auto before = take_sides(root);
  turn_walls(root, seed);
  for (const auto& sides : before) {
    if (is_repairable(*sides.wall)) continue;
    sides.wall->set_normal(sides.normal);
    sides.wall->set_space_0(sides.space_0);
    sides.wall->set_space_1(sides.space_1);
  }
}

TEST_F(qvi_bim_root_orientation, with_every_twentieth_face_missing_says_what_it_leaves_wrong) {
  // What a hole takes from the walls beside it is a matter of its size. One of a room's six faces
  // is too much for many of the other five; of six times six panels on each side nearly all come
  // right.
  struct damage {
    int count_x, count_y, count_z;
    int parts;
    int least_share;  // of the façades and floors that come right, %
  };
  for (const damage& d : {damage{5, 4, 3, 1, 85}, damage{2, 1, 2, 6, 98}}) {
    auto* model = new qvi_bim_root;
    scene_.add_child(model, -1);
    qv_test::add_block(*model, {0, 0, 0}, d.count_x, d.count_y, d.count_z, {4, 5, 2.5f}, 0);
    divide_walls(*model, d.parts);
    model->check_orientation();
    remove_walls(*model, 1);
    const auto before = take_sides(*model);
    for (std::size_t i = 0; i < before.size(); ++i)
      before[i].wall->set_name("W" + std::to_string(i));
    turn_repairable_walls(*model, 11);
    log_.lines.clear();
    model->check_orientation();
    ASSERT_LT(log_.lines.size(), 100u);
    const std::set<std::string> logged = names_logged(log_.lines);
    const auto after = take_sides(*model);
    int right = 0;
    int all = 0;
    for (std::size_t i = 0; i < before.size(); ++i) {
      if (!is_repairable(*before[i].wall)) {
        EXPECT_EQ(after[i], before[i]);
        continue;
      }
      ++all;
      if (after[i] == before[i]) {
        ++right;
      } else {
        EXPECT_TRUE(logged.contains(before[i].wall->get_name())) << before[i].wall->get_name();
      }
    }
    EXPECT_GE(all, 80);
    EXPECT_GE(right * 100, all * d.least_share) << right << " of " << all;
    qv_item::destroy(model);
  }
}

TEST_F(qvi_bim_root_orientation, decides_the_same_each_time) {
  qv_test::add_block(*root_, {0, 0, 0}, 3, 1, 2, {4, 5, 2.5f}, 0);
  for (int i = 0; i < 5; ++i) qv_item::destroy(root_->collect("wall")[3 * i]);
  root_->check_orientation();
  log_.lines.clear();
  root_->check_orientation();
  const std::vector<std::string> first = log_.lines;
  EXPECT_FALSE(first.empty());
  log_.lines.clear();
  root_->check_orientation();
  EXPECT_EQ(log_.lines, first);
}

}  // namespace
