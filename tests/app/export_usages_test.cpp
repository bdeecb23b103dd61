#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>

#include "app/export/qv_export_gbxml.h"
#include "app/readers/qv_year_schedule.h"
#include "app/study/qv_study.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/usages/qvi_usage_heating_cooling.h"
#include "bim/usages/qvi_usage_internal_gains.h"
#include "bim/usages/qvi_usage_lighting.h"
#include "bim/usages/qvi_usage_ventilation.h"
#include "core/light/qvi_schedule.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using namespace qv;
using testing::ElementsAre;
using testing::HasSubstr;

std::string written(qv_gbxml_model model) {
  qv_compute_model(model, {});
  return qv_export_gbxml(model);
}

// The texts between `begin` and `end`, in order.
std::vector<std::string> list_between(const std::string& text, const std::string& begin,
                                      const std::string& end) {
  std::vector<std::string> found;
  for (auto at = text.find(begin); at != std::string::npos; at = text.find(begin, at)) {
    at += begin.size();
    found.push_back(text.substr(at, text.find(end, at) - at));
  }
  return found;
}

std::string day(const std::string& id, const std::string& value, const std::string& type) {
  return "<DaySchedule id=\"" + id + "\" type=\"" + type + "\"><ScheduleValue>" + value +
         "</ScheduleValue></DaySchedule>";
}

std::string part(const std::string& begin, const std::string& end, const std::string& week) {
  return "<YearSchedule><BeginDate>" + begin + "</BeginDate><EndDate>" + end +
         "</EndDate><WeekScheduleId weekScheduleIdRef=\"" + week + "\"/></YearSchedule>";
}

// 2015, which begins on a Thursday; from Wednesday 1 July to Monday 31 August days are idle.
const std::string office_hours =
    "<Schedule id=\"office\" type=\"Fraction\"><Name>Bureau &amp; cie</Name>" +
    part("2015-01-01", "2015-06-30", "working") + part("2015-07-01", "2015-08-31", "idle") +
    part("2015-09-01", "2015-12-31", "working") +
    "</Schedule><WeekSchedule id=\"working\"><Day dayType=\"Weekday\" dayScheduleIdRef=\"on\"/>"
    "<Day dayType=\"Weekend\" dayScheduleIdRef=\"off\"/></WeekSchedule>"
    "<WeekSchedule id=\"idle\"><Day dayType=\"All\" dayScheduleIdRef=\"off\"/></WeekSchedule>" +
    day("on", "0.9", "Fraction") + day("off", "0.05", "Fraction");

const std::string set_points =
    "<Schedule id=\"warm\" type=\"Temp\"><Name>Consigne</Name>" +
    part("2015-01-01", "2015-12-31", "warm-week") +
    "</Schedule><WeekSchedule id=\"warm-week\"><Day dayType=\"All\" dayScheduleIdRef=\"19\"/>"
    "<Day dayType=\"Sun\" dayScheduleIdRef=\"16\"/></WeekSchedule>" +
    day("19", "19", "Temp") + day("16", "16", "Temp");

qv_gbxml_text usual_model() {
  qv_gbxml_text text;
  text.head(office_hours + set_points +
            "<Zone id=\"z\" heatSchedIdRef=\"warm\" outsideAirSchedIdRef=\"office\">"
            "<Name>Z</Name><DesignCoolT>26</DesignCoolT>"
            "<OAFlowPerArea unit=\"LPerSecPerSquareM\">0.5</OAFlowPerArea></Zone>"
            "<Zone id=\"cold\"><DesignHeatT>12</DesignHeatT>"
            "<AirChangesPerHour>0.5</AirChangesPerHour></Zone>");
  text.space("a",
             "<Area>20</Area><PeopleNumber unit=\"NumberOfPeople\">3</PeopleNumber>"
             "<PeopleHeatGain unit=\"WattPerPerson\" heatGainType=\"Total\">120</PeopleHeatGain>"
             "<EquipPowerPerArea unit=\"WattPerSquareMeter\">7</EquipPowerPerArea>"
             "<LightPowerPerArea unit=\"WattPerSquareMeter\">4.5</LightPowerPerArea>",
             "zoneIdRef=\"z\" peopleScheduleIdRef=\"office\" lightScheduleIdRef=\"office\"");
  text.space("b", "<PeopleNumber unit=\"SquareMPerPerson\">12</PeopleNumber>",
             "zoneIdRef=\"cold\" conditionType=\"Unconditioned\"");
  return text.box("r", {0, 0, 0}, {4, 5, 3});
}

TEST(export_usages, come_back_as_they_were) {
  const qv_gbxml_model again = qv_read_gbxml_bytes("again.xml", written(usual_model().read()));
  EXPECT_THAT(again.warnings, testing::IsEmpty());
  const qvi_space& a = *again.spaces[0].item;
  ASSERT_EQ(a.get_unique_id(), "a");
  const qvi_usage_internal_gains* gains = a.get_usage_internal_gains();
  ASSERT_NE(gains, nullptr);
  EXPECT_EQ(gains->get_unit_type(), qvi_usage_internal_gains::gain_unit_type::total);
  EXPECT_FLOAT_EQ(gains->get_number_of_persons(), 3);
  EXPECT_FLOAT_EQ(gains->get_person_heat_gain(), 120);
  EXPECT_FLOAT_EQ(gains->get_equipment_power(), 140);
  EXPECT_EQ(gains->get_equipment_schedule(), nullptr);
  ASSERT_NE(gains->get_occupation_schedule(), nullptr);
  EXPECT_EQ(gains->get_occupation_schedule()->get_name(), "Bureau & cie");
  const qvi_usage_lighting* light = a.get_usage_lighting();
  ASSERT_NE(light, nullptr);
  EXPECT_FLOAT_EQ(light->get_power(), 4.5);
  EXPECT_EQ(light->get_schedule(), gains->get_occupation_schedule());
  const qvi_space& b = *again.spaces[1].item;
  ASSERT_NE(b.get_usage_internal_gains(), nullptr);
  EXPECT_EQ(b.get_usage_internal_gains()->get_unit_type(),
            qvi_usage_internal_gains::gain_unit_type::per_area);
  EXPECT_FLOAT_EQ(b.get_usage_internal_gains()->get_number_of_persons(), 1.0f / 12);
  EXPECT_EQ(b.get_usage_lighting(), nullptr);

  using period = qvi_usage_heating_cooling::active_period;
  const qvi_usage_heating_cooling* warm = a.get_zone()->get_usage_heating_cooling();
  ASSERT_NE(warm, nullptr);
  EXPECT_EQ(warm->get_heating_schedule()->get_unique_id(), "warm");
  EXPECT_EQ(warm->get_heating_period(), period::always);
  EXPECT_EQ(warm->get_cooling_schedule()->get_values()[0], 26);
  EXPECT_EQ(a.get_zone()->get_usage_ventilation()->get_unit_type(),
            qvi_usage_ventilation::ventilation_unit_type::flow_per_area);
  EXPECT_FLOAT_EQ(a.get_zone()->get_usage_ventilation()->get_flow(), 1.8f);
  EXPECT_EQ(a.get_zone()->get_usage_ventilation()->get_schedule(), light->get_schedule());
  const qvi_zone& cold = *b.get_zone();
  EXPECT_EQ(cold.get_usage_heating_cooling()->get_heating_period(), period::never);
  EXPECT_FLOAT_EQ(cold.get_usage_ventilation()->get_flow(), 0.5f);
}

// As few parts of the year, weeks and days as say it, in the year of the file.
TEST(export_usages, write_schedules_in_few_words) {
  const std::string text = written(usual_model().read());
  EXPECT_THAT(list_between(text, "<BeginDate>", "<"),
              ElementsAre("2015-01-01", "2015-07-01", "2015-09-01", "2015-01-01"));
  EXPECT_THAT(list_between(text, "<EndDate>", "<"),
              ElementsAre("2015-06-30", "2015-08-31", "2015-12-31", "2015-12-31"));
  EXPECT_THAT(list_between(text, "<ScheduleValue>", "<"), ElementsAre("0.9", "0.05", "19", "16"));
  EXPECT_THAT(
      list_between(text, "dayType=\"", "\""),
      ElementsAre("Weekday", "Weekend", "All", "Sun", "Mon", "Tue", "Wed", "Thu", "Fri", "Sat"));
  EXPECT_EQ(list_between(text, "<DaySchedule ", ">").size(), 4u);
  EXPECT_THAT(text, HasSubstr("<Schedule id=\"warm\" type=\"Temp\">"));
}

TEST(export_usages, keep_the_hours_of_every_day) {
  const qv_gbxml_model model = usual_model().read();
  const std::string text = written(usual_model().read());
  const qv_gbxml_model again = qv_read_gbxml_bytes("again.xml", text);
  ASSERT_EQ(again.schedules.size(), 2u);
  for (std::size_t i = 0; i < 2; ++i) {
    EXPECT_EQ(again.schedules[i].type, model.schedules[i].type);
    const qv_list<float>& before = model.schedules[i].item->get_values();
    const qv_list<float>& after = again.schedules[i].item->get_values();
    EXPECT_TRUE(std::equal(before.begin(), before.end(), after.begin(), after.end()));
  }
}

TEST(export_usages, put_schedules_of_no_known_year_into_one_that_begins_on_a_monday) {
  EXPECT_EQ(qv_date_text(0, ""), "2018-01-01");
  EXPECT_EQ(qv_weekdays_of_year(qv_date_text(0, "")), qv_weekdays_of_year(""));
  EXPECT_EQ(qv_date_text(59, "2016-05-01"), "2016-03-01");
  EXPECT_EQ(qv_date_text(364, "2016-05-01"), "2016-12-31");
  for (int number = 0; number < qv_days_of_year; ++number)
    EXPECT_EQ(qv_day_of_year(qv_date_text(number, "2015-01-01")), number);
}

}  // namespace
