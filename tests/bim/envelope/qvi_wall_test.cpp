#include "bim/envelope/qvi_wall.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using contact = qvi_wall::contact_type;
using type = qvi_wall::wall_type;
using qv_test::recording_scene;
using qv_test::to_vector;

namespace {

class qvi_wall_test : public ::testing::Test {
 protected:
  qvi_wall_test() {
    for (qv_item* item : std::initializer_list<qv_item*>{a_, b_, wall_}) scene_.add_child(item, -1);
    scene_.forget();
  }
  // A square of the given side as a polygon of the scene.
  qvi_polygon* add_square(float side) {
    return qv_test::add_face(scene_, qv_test::rectangle({0, 0, 0}, {side, 0, 0}, {0, 0, side}));
  }
  void touch_scene() { scene_.add_child(new qv_test::probe_item, -1); }

  recording_scene scene_;
  qvi_space* a_ = new qvi_space;
  qvi_space* b_ = new qvi_space;
  qvi_wall* wall_ = new qvi_wall;
};

// A wall that remembers each contact type it told of.
class telling_wall : public qvi_wall {
 public:
  std::vector<contact> told;

 protected:
  void item_changed(qv_item* item, const std::string& name) override {
    if (name == "contact_type") told.push_back(get_contact_type());
    qvi_wall::item_changed(item, name);
  }
};

// --- what it separates ---

TEST_F(qvi_wall_test, what_it_separates_follows_from_its_type_and_its_spaces) {
  struct row {
    type wall_type;
    contact between, envelope, alone;
  };
  const row table[] = {
      {type::wall, contact::inner_wall, contact::outer_wall, contact::outside_wall},
      {type::floor, contact::intermediate_floor, contact::lower_floor, contact::outside_slab},
      {type::roof, contact::roof, contact::roof, contact::outside_slab}};
  for (const row& r : table) {
    for (int spaces = 0; spaces < 3; ++spaces) {
      auto* wall = new qvi_wall;
      wall->set_wall_type(r.wall_type);
      wall->set_space_0(spaces > 0 ? a_ : nullptr);
      wall->set_space_1(spaces > 1 ? b_ : nullptr);
      scene_.add_child(wall, -1);
      wall->precompute();
      EXPECT_EQ(wall->get_contact_type(), spaces == 2   ? r.between
                                          : spaces == 1 ? r.envelope
                                                        : r.alone)
          << "type " << static_cast<int>(r.wall_type) << ", spaces " << spaces;
    }
  }
}

TEST_F(qvi_wall_test, takes_its_second_space_as_first_when_that_is_the_only_one) {
  wall_->set_wall_type(type::wall);
  wall_->set_space_1(b_);
  scene_.forget();
  wall_->precompute();
  EXPECT_EQ(wall_->get_space_0(), b_);
  EXPECT_EQ(wall_->get_space_1(), nullptr);
  EXPECT_EQ(wall_->get_contact_type(), contact::outer_wall);
  EXPECT_EQ(scene_.count_changes(wall_, "space_0"), 1);
  EXPECT_EQ(scene_.count_changes(wall_, "space_1"), 1);

  auto* floor = new qvi_wall;
  floor->set_space_1(b_);
  scene_.add_child(floor, -1);
  floor->precompute();
  EXPECT_EQ(floor->get_contact_type(), contact::lower_floor);
}

TEST_F(qvi_wall_test, does_all_but_the_openings_without_a_scene) {
  wall_->remove();
  wall_->set_wall_type(type::wall);
  wall_->set_space_1(b_);
  qvi_polygon* face = add_square(2);
  wall_->set_pierced_face_1(face);
  wall_->precompute();
  EXPECT_EQ(wall_->get_space_0(), b_);
  EXPECT_EQ(wall_->get_contact_type(), contact::outer_wall);
  EXPECT_EQ(wall_->get_face_1(), face);
  EXPECT_FLOAT_EQ(wall_->get_loss_area(), 4.0f);
  qv_item::destroy(wall_);
}

// The detour through "roof" gives the parameter a fresh date and an announcement in every case.
TEST_F(qvi_wall_test, deliberately_passes_through_roof_on_its_way_to_a_contact_type) {
  auto* floor = new telling_wall;
  floor->set_space_0(a_);
  scene_.add_child(floor, -1);
  const unsigned int before = qv_get_date();
  floor->precompute();  // the default already says what comes out
  EXPECT_EQ(floor->told, (std::vector<contact>{contact::roof, contact::lower_floor}));
  EXPECT_GT(floor->get_contact_type_date(), before);

  floor->set_contact_type(contact::roof);
  floor->told.clear();
  floor->set_wall_type(type::wall);
  floor->precompute();
  EXPECT_EQ(floor->told, std::vector<contact>{contact::outer_wall});
}

TEST_F(qvi_wall_test, goes_straight_to_the_contact_type_of_a_roof) {
  auto* roof = new telling_wall;
  roof->set_wall_type(type::roof);
  scene_.add_child(roof, -1);
  roof->precompute();
  EXPECT_EQ(roof->told, std::vector<contact>{contact::outside_slab});
}

TEST_F(qvi_wall_test, keeps_a_contact_type_set_by_hand_until_type_or_faces_change) {
  wall_->set_wall_type(type::wall);
  wall_->set_space_0(a_);
  wall_->set_contact_type(contact::inner_wall);  // before the first run: does not last
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::outer_wall);

  wall_->set_contact_type(contact::outside_wall);
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::outside_wall);
  wall_->set_normal({1, 0, 0});
  touch_scene();
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::outside_wall);

  wall_->set_wall_type(type::floor);
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::lower_floor);
  wall_->set_contact_type(contact::outside_wall);
  wall_->set_face_0(add_square(1));
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::lower_floor);
  wall_->set_contact_type(contact::outside_wall);
  wall_->set_face_1(add_square(1));
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::lower_floor);
}

TEST_F(qvi_wall_test, deliberately_does_not_see_a_space_that_comes_later) {
  wall_->set_wall_type(type::wall);
  wall_->set_space_0(a_);
  wall_->precompute();
  wall_->set_space_1(b_);
  wall_->precompute();
  EXPECT_EQ(wall_->get_contact_type(), contact::outer_wall);
}

TEST_F(qvi_wall_test, does_nothing_while_the_scene_stays_as_it_is) {
  wall_->set_space_0(a_);
  wall_->precompute();
  scene_.forget();
  const unsigned int date = qv_get_date();
  wall_->precompute();
  wall_->precompute();
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene_.changed.empty());
}

TEST_F(qvi_wall_test, may_have_a_limit_condition_unless_it_lies_between_two_spaces) {
  for (int i = 0; i < qvi_wall::get_contact_type_list().get_count(); ++i) {
    const auto value = static_cast<contact>(i);
    wall_->set_contact_type(value);
    EXPECT_EQ(wall_->can_have_limit_condition(),
              value != contact::inner_wall && value != contact::intermediate_floor);
  }
}

TEST_F(qvi_wall_test, is_exterior_with_outside_air_on_a_side) {
  qvi_limit_condition condition;
  EXPECT_TRUE(wall_->is_exterior());
  wall_->set_space_1(b_);
  EXPECT_TRUE(wall_->is_exterior());
  wall_->set_limit_condition(&condition);
  EXPECT_FALSE(wall_->is_exterior());
  wall_->set_space_0(a_);
  EXPECT_FALSE(wall_->is_exterior());
  wall_->set_limit_condition(nullptr);
  EXPECT_FALSE(wall_->is_exterior());
}

// --- its openings ---

TEST_F(qvi_wall_test, finds_its_openings_in_scene_order) {
  auto* other = new qvi_wall;
  std::vector<qvi_opening*> openings;
  for (int i = 0; i < 4; ++i) {
    openings.push_back(new qvi_opening);
    scene_.add_child(openings.back(), 0);  // the later, the further in front
    openings.back()->set_wall(i == 1 ? other : wall_);
  }
  wall_->precompute();
  EXPECT_EQ(to_vector(wall_->get_openings()),
            (std::vector<qvi_opening*>{openings[3], openings[2], openings[0]}));
  openings[3]->set_wall(other);
  EXPECT_EQ(wall_->get_openings().get_count(), 3);  // until the next run
  wall_->precompute();
  EXPECT_EQ(to_vector(wall_->get_openings()),
            (std::vector<qvi_opening*>{openings[2], openings[0]}));
  qv_item::destroy(other);
}

// --- its faces ---

TEST_F(qvi_wall_test, completes_a_face_by_its_pierced_twin_and_the_other_way_round) {
  qvi_polygon* p = add_square(1);
  qvi_polygon* q = add_square(2);
  wall_->set_face_0(p);
  wall_->set_pierced_face_1(q);
  wall_->precompute();
  EXPECT_EQ(wall_->get_pierced_face_0(), p);
  EXPECT_EQ(wall_->get_face_0(), p);
  EXPECT_EQ(wall_->get_face_1(), q);
  EXPECT_EQ(wall_->get_pierced_face_1(), q);
  EXPECT_EQ(wall_->get_face(), nullptr);
  EXPECT_EQ(wall_->get_pierced_face(), nullptr);
}

TEST_F(qvi_wall_test, does_not_replace_faces_that_are_set) {
  qvi_polygon* faces[4];
  for (auto& face : faces) face = add_square(1);
  wall_->set_face_0(faces[0]);
  wall_->set_pierced_face_0(faces[1]);
  wall_->set_face_1(faces[2]);
  wall_->set_pierced_face_1(faces[3]);
  wall_->precompute();
  EXPECT_EQ(wall_->get_face_0(), faces[0]);
  EXPECT_EQ(wall_->get_pierced_face_0(), faces[1]);
  EXPECT_EQ(wall_->get_face_1(), faces[2]);
  EXPECT_EQ(wall_->get_pierced_face_1(), faces[3]);
}

TEST_F(qvi_wall_test, loses_heat_through_the_first_face_that_is_set) {
  // Side k + 1 for the k-th in the order of choice.
  qvi_polygon* squares[6];
  for (int i = 0; i < 6; ++i) squares[i] = add_square(static_cast<float>(i + 1));
  void (*const setters[])(qvi_wall*, qvi_polygon*) = {
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_pierced_face(face); },
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_pierced_face_0(face); },
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_pierced_face_1(face); },
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_face(face); },
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_face_0(face); },
      [](qvi_wall* wall, qvi_polygon* face) { wall->set_face_1(face); }};
  for (int chosen = 0; chosen < 6; ++chosen) {
    // "face_0" and "face_1" give their polygon to the pierced faces first, so a wall with them
    // never comes to its single face.
    auto* wall = new qvi_wall;
    scene_.add_child(wall, -1);
    for (int i = chosen; i < 6; ++i)
      if ((chosen != 3 || i == 3) && (chosen != 2 || i != 4)) setters[i](wall, squares[i]);
    wall->precompute();
    const auto side = static_cast<float>(chosen + 1);
    EXPECT_FLOAT_EQ(wall->get_loss_area(), side * side) << "choice " << chosen;
  }
}

TEST_F(qvi_wall_test, loses_nothing_without_a_face) {
  wall_->precompute();
  EXPECT_EQ(wall_->get_loss_area(), 0.0f);
}

TEST_F(qvi_wall_test, leaves_the_openings_out_of_what_it_loses_heat_through) {
  qv_polygon region({0, 0, 0}, {0, 0, 0});
  region.add_contour(qv_test::rectangle({0, 0, 0}, {4, 0, 0}, {0, 0, 3}));
  region.add_contour(qv_test::rectangle({1, 0, 1}, {1, 0, 2}, {2, 0, 1}));
  auto* pierced = new qvi_polygon;
  pierced->load_from_polygon(&region);
  scene_.add_child(pierced, -1);
  wall_->set_pierced_face_0(pierced);
  wall_->precompute();
  EXPECT_FLOAT_EQ(wall_->get_loss_area(), 11.0f);  // 4 × 3 − 1 × 1
}

TEST_F(qvi_wall_test, measures_again_when_the_face_changed) {
  qvi_polygon* face = add_square(2);
  wall_->set_face(face);
  wall_->precompute();
  EXPECT_FLOAT_EQ(wall_->get_loss_area(), 4.0f);
  qv_polygon region({0, 0, 0}, {0, 0, 0});
  region.add_contour(qv_test::rectangle({0, 0, 0}, {3, 0, 0}, {0, 0, 3}));
  face->load_from_polygon(&region);
  wall_->precompute();
  EXPECT_FLOAT_EQ(wall_->get_loss_area(), 9.0f);
}

}  // namespace
