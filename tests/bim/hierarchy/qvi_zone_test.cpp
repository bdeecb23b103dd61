#include "bim/hierarchy/qvi_zone.h"

#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "tests/support/qv_test_buildings.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::recording_scene;
using qv_test::to_vector;
using spaces = std::vector<qvi_space*>;

namespace {

class qvi_zone_test : public ::testing::Test {
 protected:
  qvi_zone_test() {
    scene_.add_child(day_, -1);
    scene_.add_child(night_, -1);
    for (int i = 0; i < 3; ++i) {
      rooms_[i] = qv_test::add_space(scene_);
      rooms_[i]->set_forced_area(static_cast<float>(10 * (i + 1)));    // 10, 20, 30
      rooms_[i]->set_forced_volume(static_cast<float>(25 * (i + 1)));  // 25, 50, 75
    }
    rooms_[0]->set_zone(day_);
    rooms_[1]->set_zone(night_);
    rooms_[2]->set_zone(day_);
  }
  recording_scene scene_;
  qvi_zone* day_ = new qvi_zone;
  qvi_zone* night_ = new qvi_zone;
  qvi_space* rooms_[3];
};

TEST_F(qvi_zone_test, gathers_and_sums_the_spaces_that_name_it) {
  day_->precompute();
  EXPECT_EQ(to_vector(day_->get_spaces()), (spaces{rooms_[0], rooms_[2]}));
  EXPECT_EQ(day_->get_area(), 40.0f);
  EXPECT_EQ(day_->get_volume(), 100.0f);
}

TEST_F(qvi_zone_test, follows_a_space_that_moves_to_another_zone) {
  scene_.precompute();
  rooms_[2]->set_zone(night_);
  scene_.precompute();
  EXPECT_EQ(to_vector(day_->get_spaces()), spaces{rooms_[0]});
  EXPECT_EQ(day_->get_area(), 10.0f);
  EXPECT_EQ(to_vector(night_->get_spaces()), (spaces{rooms_[1], rooms_[2]}));
  EXPECT_EQ(night_->get_area(), 50.0f);
}

TEST_F(qvi_zone_test, counts_a_space_of_forced_area_zero_as_nothing) {
  rooms_[0]->set_forced_area(0);
  day_->precompute();
  EXPECT_EQ(day_->get_area(), 30.0f);
}

TEST_F(qvi_zone_test, precomputes_its_own_spaces_only) {
  auto day_room = qv_test::add_box_room(scene_, {0, 0, 0}, {4, 5, 2.5f});
  auto other_room = qv_test::add_box_room(scene_, {10, 0, 0}, {4, 5, 2.5f});
  day_room.space->set_zone(day_);
  day_->precompute();
  EXPECT_NEAR(day_->get_area(), 60.0f, 1e-3f);  // 10 + 30 + 20
  EXPECT_EQ(other_room.space->get_walls().get_count(), 0);
}

TEST_F(qvi_zone_test, is_empty_without_spaces_and_outside_a_scene) {
  auto* empty = new qvi_zone;
  scene_.add_child(empty, -1);
  empty->precompute();
  EXPECT_EQ(empty->get_area(), 0.0f);
  EXPECT_EQ(empty->get_volume(), 0.0f);
  EXPECT_EQ(empty->get_spaces().get_count(), 0);
  day_->remove();
  day_->precompute();
  EXPECT_EQ(day_->get_spaces().get_count(), 0);
  qv_item::destroy(day_);
}

TEST_F(qvi_zone_test, does_nothing_while_the_scene_stays_as_it_is) {
  day_->precompute();
  rooms_[0]->find_param("forced_area")->store_float(99);  // a change that nobody is told of
  day_->precompute();
  EXPECT_EQ(day_->get_area(), 40.0f);
  scene_.add_child(new qv_test::probe_item, -1);  // the scene changed: one condition is enough
  day_->precompute();
  EXPECT_EQ(day_->get_area(), 129.0f);
}

TEST_F(qvi_zone_test, forgets_a_space_that_is_gone) {
  day_->precompute();
  qv_item::destroy(rooms_[0]);
  day_->precompute();
  EXPECT_EQ(to_vector(day_->get_spaces()), spaces{rooms_[2]});
}

TEST_F(qvi_zone_test, finds_its_campus_through_its_building) {
  auto* campus = new qvi_campus;
  auto* building = new qvi_building;
  scene_.add_child(campus, -1);
  campus->add_child(building, -1);
  EXPECT_EQ(day_->get_campus(), nullptr);
  day_->set_building(building);
  scene_.precompute();
  EXPECT_EQ(day_->get_campus(), campus);
}

TEST_F(qvi_zone_test, a_copy_constructed_one_shares_its_record_and_a_virtual_copy_does_not) {
  for (bool source_first : {true, false}) {
    auto* source = new qvi_zone;
    scene_.add_child(source, -1);
    rooms_[0]->set_zone(source);
    auto* copy = new qvi_zone(*source);
    source->precompute();
    EXPECT_EQ(copy->get_area(), 10.0f);
    EXPECT_EQ(&copy->get_spaces(), &source->get_spaces());
    EXPECT_EQ(copy->find_param("building"), source->find_param("building"));
    auto* fresh = static_cast<qvi_zone*>(source->copy());
    EXPECT_EQ(fresh->get_area(), 0.0f);
    EXPECT_NE(&fresh->get_spaces(), &source->get_spaces());
    qv_item::destroy(fresh);
    qv_item::destroy(source_first ? source : copy);
    EXPECT_EQ((source_first ? copy : source)->get_area(), 10.0f);
    qv_item::destroy(source_first ? copy : source);
  }
}

}  // namespace
