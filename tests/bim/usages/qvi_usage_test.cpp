#include "bim/usages/qvi_usage.h"

#include <gtest/gtest.h>

#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::log_recorder;
using qv_test::to_vector;
using zones = std::vector<qvi_zone*>;
using spaces = std::vector<qvi_space*>;
using usages = std::vector<qvi_usage*>;

namespace {

class qvi_usage_test : public ::testing::Test {
 protected:
  template <class T>
  T* add() {
    auto* item = new T;
    scene_.add_child(item, -1);
    return item;
  }
  qv_test::recording_scene scene_;
  qvi_zone* zones_[3] = {add<qvi_zone>(), add<qvi_zone>(), add<qvi_zone>()};
  qvi_space* spaces_[2] = {add<qvi_space>(), add<qvi_space>()};
};

TEST_F(qvi_usage_test, a_plain_one_logs_that_it_counts_zones_and_finds_none) {
  auto* usage = add<qvi_usage>();
  log_recorder log;
  EXPECT_TRUE(usage->get_zones().is_empty());
  EXPECT_EQ(log.lines, std::vector<std::string>{"couting zones in qvi_usage::get_zones..."});
  log.lines.clear();
  EXPECT_TRUE(usage->get_spaces().is_empty());
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(qvi_usage_test, finds_the_zones_that_are_heated_by_it) {
  auto* usage = add<qvi_usage_heating_cooling>();
  zones_[2]->set_usage_heating_cooling(usage);
  zones_[0]->set_usage_heating_cooling(usage);
  log_recorder log;
  EXPECT_EQ(to_vector(usage->get_zones()), (zones{zones_[0], zones_[2]}));  // scene order
  EXPECT_EQ(log.lines, std::vector<std::string>{"couting zones..."});
  log.lines.clear();
  EXPECT_TRUE(usage->get_spaces().is_empty());
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(qvi_usage_test, finds_the_zones_and_spaces_that_gain_heat_by_it) {
  auto* usage = add<qvi_usage_internal_gains>();
  zones_[1]->set_usage_internal_gains(usage);
  spaces_[0]->set_usage_internal_gains(usage);
  spaces_[1]->set_usage_internal_gains(add<qvi_usage_internal_gains>());
  log_recorder log;
  EXPECT_EQ(to_vector(usage->get_zones()), zones{zones_[1]});
  EXPECT_EQ(to_vector(usage->get_spaces()), spaces{spaces_[0]});
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(qvi_usage_test, finds_the_zones_and_spaces_that_are_lit_by_it) {
  auto* usage = add<qvi_usage_lighting>();
  zones_[1]->set_usage_lighting(usage);
  zones_[2]->set_usage_lighting(usage);
  for (qvi_space* space : spaces_) space->set_usage_lighting(usage);
  log_recorder log;
  EXPECT_EQ(to_vector(usage->get_zones()), (zones{zones_[1], zones_[2]}));
  EXPECT_EQ(to_vector(usage->get_spaces()), (spaces{spaces_[0], spaces_[1]}));
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(qvi_usage_test, finds_the_zones_that_are_ventilated_by_it) {
  auto* usage = add<qvi_usage_ventilation>();
  zones_[1]->set_usage_ventilation(usage);
  log_recorder log;
  EXPECT_EQ(to_vector(usage->get_zones()), zones{zones_[1]});
  EXPECT_TRUE(usage->get_spaces().is_empty());
  EXPECT_TRUE(log.lines.empty());
}

TEST_F(qvi_usage_test, does_not_find_a_zone_that_refers_to_it_as_another_kind) {
  auto* lighting = add<qvi_usage_lighting>();
  const auto refer = [lighting](qv_item* item, const char* name) {
    item->set_param_value<qv_item*>(item->find_param(name), lighting);
  };
  refer(zones_[0], "usage_ventilation");
  refer(zones_[1], "usage_internal_gains");
  refer(spaces_[0], "usage_internal_gains");
  EXPECT_TRUE(lighting->get_zones().is_empty());
  EXPECT_TRUE(lighting->get_spaces().is_empty());
}

TEST_F(qvi_usage_test, outside_a_scene_finds_nothing_and_says_nothing) {
  auto* usage = new qvi_usage_heating_cooling;
  auto* lighting = new qvi_usage_lighting;
  zones_[0]->set_usage_heating_cooling(usage);
  zones_[0]->set_usage_lighting(lighting);
  spaces_[0]->set_usage_lighting(lighting);
  log_recorder log;
  EXPECT_TRUE(usage->get_zones().is_empty());
  EXPECT_TRUE(lighting->get_zones().is_empty());
  EXPECT_TRUE(lighting->get_spaces().is_empty());
  EXPECT_TRUE(log.lines.empty());
  qv_item::destroy(usage);
  qv_item::destroy(lighting);
}

TEST_F(qvi_usage_test, follows_zones_that_come_change_and_go) {
  auto* usage = add<qvi_usage_ventilation>();
  for (qvi_zone* zone : zones_) zone->set_usage_ventilation(usage);
  qv_item::destroy(zones_[1]);
  zones_[0]->set_usage_ventilation(nullptr);
  EXPECT_EQ(to_vector(usage->get_zones()), zones{zones_[2]});
}

TEST_F(qvi_usage_test, of_a_schedule_are_listed_by_kind_and_then_in_scene_order) {
  auto* schedule = add<qvi_schedule>();
  auto* ventilation = add<qvi_usage_ventilation>();
  auto* lighting = add<qvi_usage_lighting>();
  auto* equipment = add<qvi_usage_internal_gains>();
  auto* people = add<qvi_usage_internal_gains>();
  auto* cooling = add<qvi_usage_heating_cooling>();
  auto* heating = add<qvi_usage_heating_cooling>();
  ventilation->set_schedule(schedule);
  lighting->set_schedule(schedule);
  equipment->set_equipment_schedule(schedule);
  people->set_occupation_schedule(schedule);
  cooling->set_cooling_schedule(schedule);
  heating->set_heating_schedule(schedule);
  add<qvi_usage_lighting>()->set_schedule(add<qvi_schedule>());
  add<qvi_usage>();
  EXPECT_EQ(to_vector(qvi_usage::get_usages(schedule)),
            (usages{cooling, heating, equipment, people, lighting, ventilation}));
}

TEST_F(qvi_usage_test, that_refers_to_a_schedule_twice_is_listed_once) {
  auto* schedule = add<qvi_schedule>();
  auto* heating = add<qvi_usage_heating_cooling>();
  heating->set_heating_schedule(schedule);
  heating->set_cooling_schedule(schedule);
  auto* gains = add<qvi_usage_internal_gains>();
  gains->set_occupation_schedule(schedule);
  gains->set_equipment_schedule(schedule);
  EXPECT_EQ(to_vector(qvi_usage::get_usages(schedule)), (usages{heating, gains}));
}

TEST_F(qvi_usage_test, of_a_schedule_outside_a_scene_are_none) {
  qvi_schedule schedule;
  auto* lighting = add<qvi_usage_lighting>();
  lighting->set_schedule(&schedule);
  EXPECT_TRUE(qvi_usage::get_usages(&schedule).is_empty());
  lighting->set_schedule(nullptr);
}

TEST_F(qvi_usage_test, precomputing_changes_nothing) {
  qvi_usage* const all[] = {add<qvi_usage>(), add<qvi_usage_heating_cooling>(),
                            add<qvi_usage_internal_gains>(), add<qvi_usage_lighting>(),
                            add<qvi_usage_ventilation>()};
  scene_.forget();
  const unsigned int date = qv_get_date();
  for (qvi_usage* usage : all) usage->precompute();
  EXPECT_EQ(qv_get_date(), date);
  EXPECT_TRUE(scene_.changed.empty());
}

TEST_F(qvi_usage_test, for_heating_runs_all_year_and_never_cools_until_told_otherwise) {
  auto* usage = add<qvi_usage_heating_cooling>();
  using period = qvi_usage_heating_cooling::active_period;
  EXPECT_EQ(usage->get_heating_period(), period::always);
  EXPECT_EQ(usage->get_heating_start(), 0);
  EXPECT_EQ(usage->get_heating_end(), 364);
  EXPECT_EQ(usage->get_cooling_period(), period::never);
  usage->set_heating_period(period::dates);
  const unsigned int date = usage->get_heating_period_date();
  usage->set_heating_period(period::dates);
  EXPECT_EQ(usage->get_heating_period_date(), date);
}

TEST_F(qvi_usage_test, for_lighting_may_outlive_its_copy_or_the_other_way_round) {
  for (const bool source_first : {true, false}) {
    auto* source = new qvi_usage_lighting;
    auto* copy = new qvi_usage_lighting(*source);
    source->set_power(7);
    EXPECT_EQ(copy->get_power(), 7.0f);
    qv_item::destroy(source_first ? source : copy);
    EXPECT_EQ((source_first ? copy : source)->get_power(), 7.0f);
    qv_item::destroy(source_first ? copy : source);
  }
}

}  // namespace
