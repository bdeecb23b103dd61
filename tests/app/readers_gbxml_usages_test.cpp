#include <gtest/gtest.h>

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
std::string day(const std::string& id, const std::vector<std::string>& values,
                const std::string& type = "Fraction") {
  std::string text = "<DaySchedule id=\"" + id + "\" type=\"" + type + "\">";
  for (const std::string& value : values) text += "<ScheduleValue>" + value + "</ScheduleValue>";
  return text + "</DaySchedule>";
}

std::string year(const std::string& id, const std::string& begin, const std::string& end,
                 const std::string& week, const std::string& type = "Fraction") {
  return "<Schedule id=\"" + id + "\" type=\"" + type + "\"><Name>Name of " + id +
         "</Name><YearSchedule id=\"y\"><BeginDate>" + begin + "</BeginDate><EndDate>" + end +
         "</EndDate><WeekScheduleId weekScheduleIdRef=\"" + week + "\"/></YearSchedule></Schedule>";
}

qvi_schedule* schedule_of(const qv_gbxml_model& model, const std::string& id) {
  for (qv_item* item : model.scene->get_items("schedule"))
    if (item->get_unique_id() == id) return static_cast<qvi_schedule*>(item);
  return nullptr;
}

TEST(qv_year_schedule, counts_days_without_29_february) {
  EXPECT_EQ(qv_day_of_year("2015-01-01"), 0);
  EXPECT_EQ(qv_day_of_year("2016-02-29"), 58);
  EXPECT_EQ(qv_day_of_year("2016-03-01"), 59);
  EXPECT_EQ(qv_day_of_year("2015-12-31"), 364);
  EXPECT_FALSE(qv_day_of_year("2015-13-01").has_value());
  EXPECT_FALSE(qv_day_of_year("").has_value());
}

TEST(qv_year_schedule, knows_the_days_of_the_week) {
  const auto plain = qv_weekdays_of_year("2015-01-01");  // a Thursday
  ASSERT_EQ(plain.size(), 365u);
  EXPECT_EQ(plain[0], 4);
  EXPECT_EQ(plain[3], 0);
  EXPECT_EQ(plain[364], 4);
  const auto leap = qv_weekdays_of_year("2016-01-01");  // a Friday; 1 March 2016 a Tuesday
  EXPECT_EQ(leap[0], 5);
  EXPECT_EQ(leap[59], 2);
  EXPECT_EQ(qv_weekdays_of_year("?")[0], 1);
}

TEST(qv_year_schedule, averages_steps_over_hours) {
  EXPECT_EQ(qv_hours_of_day({})[5], 0.0f);
  EXPECT_EQ(qv_hours_of_day({0.5})[23], 0.5f);
  std::vector<double> halves(48);
  halves[2] = 1;  // 1:00 to 1:30
  EXPECT_EQ(qv_hours_of_day(halves)[1], 0.5f);
  const auto thirds = qv_hours_of_day({1, 2, 4});  // 8 hours each
  EXPECT_EQ(thirds[7], 1.0f);
  EXPECT_EQ(thirds[8], 2.0f);
  EXPECT_EQ(thirds[23], 4.0f);
}

TEST(qv_gbxml_schedules, take_the_day_that_fits_best) {
  const auto model =
      qv_gbxml_text()
          .head(year("s", "2015-01-01", "2015-12-31", "w") +
                "<WeekSchedule id=\"w\"><Day dayType=\"All\" dayScheduleIdRef=\"a\"/>"
                "<Day dayType=\"Weekend\" dayScheduleIdRef=\"b\"/>"
                "<Day dayType=\"Sun\" dayScheduleIdRef=\"c\"/>"
                "<Day dayType=\"Holiday\" dayScheduleIdRef=\"d\"/></WeekSchedule>" +
                day("a", {"0.1"}) + day("b", {"0.2"}) + day("c", {"0.3"}) + day("d", {"0.4"}))
          .box("r", {0, 0, 0}, {4, 5, 3})
          .read();
  const qvi_schedule* schedule = schedule_of(model, "s");
  ASSERT_NE(schedule, nullptr);
  EXPECT_EQ(schedule->get_name(), "Name of s");
  const qv_list<float>& values = schedule->get_values();
  ASSERT_EQ(values.get_count(), 8760);
  EXPECT_EQ(values[0], 0.1f);       // Thursday
  EXPECT_EQ(values[2 * 24], 0.2f);  // Saturday
  EXPECT_EQ(values[3 * 24], 0.3f);  // Sunday
  EXPECT_EQ(values[4 * 24], 0.1f);
  EXPECT_TRUE(model.warnings.empty());
}

TEST(qv_gbxml_schedules, say_what_is_missing) {
  const auto model = qv_gbxml_text()
                         .head(year("part", "2015-11-01", "2015-01-31", "w") +
                               year("none", "2015-01-01", "2015-12-31", "nowhere") +
                               "<WeekSchedule id=\"w\"><Day dayType=\"All\" "
                               "dayScheduleIdRef=\"a\"/></WeekSchedule>" +
                               day("a", {"1"}))
                         .box("r", {0, 0, 0}, {4, 5, 3})
                         .read();
  ASSERT_EQ(model.warnings.size(), 2u);
  EXPECT_NE(model.warnings[0].find("273 days"), std::string::npos);  // 365 − 61 − 31
  EXPECT_NE(model.warnings[1].find("Schedule \"none\""), std::string::npos);
  const qv_list<float>& values = schedule_of(model, "part")->get_values();
  EXPECT_EQ(values[0], 1.0f);
  EXPECT_EQ(values[31 * 24], 0.0f);
  EXPECT_EQ(values[8759], 1.0f);
  EXPECT_EQ(schedule_of(model, "none"), nullptr);
}

const char* const loads =
    "<PeopleNumber unit=\"SquareMPerPerson\">10</PeopleNumber>"
    "<PeopleHeatGain unit=\"WattPerPerson\" heatGainType=\"Sensible\">75</PeopleHeatGain>"
    "<PeopleHeatGain unit=\"WattPerPerson\" heatGainType=\"Latent\">55</PeopleHeatGain>"
    "<LightPowerPerArea unit=\"WattPerSquareFoot\">1</LightPowerPerArea>"
    "<EquipPowerPerArea unit=\"WattPerSquareMeter\">5</EquipPowerPerArea><Area>20</Area>";

TEST(qv_gbxml_usages, give_spaces_their_loads_and_share_them) {
  const auto model = qv_gbxml_text()
                         .space("a", loads)
                         .space("b", loads)
                         .space("c")
                         .box("r", {0, 0, 0}, {4, 5, 3})
                         .read();
  const qvi_space& a = *model.spaces[0].item;
  ASSERT_NE(a.get_usage_internal_gains(), nullptr);
  const auto& gains = *a.get_usage_internal_gains();
  EXPECT_EQ(gains.get_unit_type(), qvi_usage_internal_gains::gain_unit_type::per_area);
  EXPECT_FLOAT_EQ(gains.get_number_of_persons(), 0.1f);
  EXPECT_FLOAT_EQ(gains.get_person_heat_gain(), 130.0f);
  EXPECT_FLOAT_EQ(gains.get_equipment_power(), 5.0f);
  ASSERT_NE(a.get_usage_lighting(), nullptr);
  EXPECT_NEAR(a.get_usage_lighting()->get_power(), 10.7639f, 1e-3);
  EXPECT_EQ(model.spaces[1].item->get_usage_internal_gains(), &gains);
  EXPECT_EQ(model.spaces[2].item->get_usage_internal_gains(), nullptr);
  EXPECT_EQ(gains.get_spaces().get_count(), 2);
}

TEST(qv_gbxml_usages, count_persons_of_a_space_in_total) {
  const auto model =
      qv_gbxml_text()
          .space("a",
                 "<PeopleNumber unit=\"NumberOfPeople\">3</PeopleNumber>"
                 "<PeopleHeatGain unit=\"BtuPerHourPerson\" heatGainType=\"Total\">450"
                 "</PeopleHeatGain>"
                 "<EquipPowerPerArea unit=\"WattPerSquareMeter\">5</EquipPowerPerArea>"
                 "<Area>20</Area>")
          .box("r", {0, 0, 0}, {4, 5, 3})
          .read();
  const auto& gains = *model.spaces[0].item->get_usage_internal_gains();
  EXPECT_EQ(gains.get_unit_type(), qvi_usage_internal_gains::gain_unit_type::total);
  EXPECT_FLOAT_EQ(gains.get_number_of_persons(), 3.0f);
  EXPECT_NEAR(gains.get_person_heat_gain(), 131.88f, 0.01f);  // 450 × 1055.056 / 3600
  EXPECT_FLOAT_EQ(gains.get_equipment_power(), 100.0f);       // 5 × 20
}

TEST(qv_gbxml_usages, give_zones_set_points_and_fresh_air) {
  const auto model =
      qv_gbxml_text()
          .head(
              "<Zone id=\"z\"><Name>Z</Name><DesignHeatT unit=\"F\">68</DesignHeatT>"
              "<OAFlowPerPerson unit=\"LPerSec\">10</OAFlowPerPerson>"
              "<OAFlowPerArea unit=\"LPerSecPerSquareM\">0.5</OAFlowPerArea></Zone>"
              "<Zone id=\"cold\"><DesignHeatT>20</DesignHeatT><DesignCoolT>26</DesignCoolT>"
              "<AirChangesPerHour>0.5</AirChangesPerHour></Zone>")
          .space("a", loads, "zoneIdRef=\"z\"")
          .space("b", "", "zoneIdRef=\"cold\" conditionType=\"Unconditioned\"")
          .box("r", {0, 0, 0}, {4, 5, 3})
          .read();
  using period = qvi_usage_heating_cooling::active_period;
  const qvi_zone& warm = *model.spaces[0].item->get_zone();
  ASSERT_NE(warm.get_usage_heating_cooling(), nullptr);
  const auto& heated = *warm.get_usage_heating_cooling();
  EXPECT_EQ(heated.get_heating_period(), period::always);
  EXPECT_EQ(heated.get_cooling_period(), period::never);
  ASSERT_NE(heated.get_heating_schedule(), nullptr);
  EXPECT_FLOAT_EQ(heated.get_heating_schedule()->get_values()[100], 20.0f);
  EXPECT_EQ(heated.get_cooling_schedule(), nullptr);
  ASSERT_NE(warm.get_usage_ventilation(), nullptr);
  // 2 persons × 10 l/s + 20 m² × 0.5 l/s = 30 l/s
  EXPECT_FLOAT_EQ(warm.get_usage_ventilation()->get_flow(), 108.0f);
  const qvi_zone& cold = *model.spaces[1].item->get_zone();
  EXPECT_EQ(cold.get_usage_heating_cooling()->get_heating_period(), period::never);
  EXPECT_EQ(cold.get_usage_heating_cooling()->get_heating_schedule(),
            heated.get_heating_schedule());  // 68 °F is 20 °C
  EXPECT_EQ(cold.get_usage_ventilation()->get_unit_type(),
            qvi_usage_ventilation::ventilation_unit_type::renewal_date);
}

TEST(qv_gbxml_usages, are_listed_for_each_zone) {
  const auto model = qv_gbxml_text()
                         .head("<Zone id=\"z\"><Name>Z</Name><DesignHeatT>19</DesignHeatT></Zone>")
                         .box("r", {0, 0, 0}, {4, 5, 3})
                         .space("a", loads, "zoneIdRef=\"z\"")
                         .space("b", loads, "zoneIdRef=\"z\"")
                         .read();
  const auto study = qv_gather_study(model, qv_compute_model(model, {}));
  ASSERT_EQ(study.usages.size(), 3u);
  EXPECT_EQ(study.usages[0].kind, "heating_cooling");
  EXPECT_EQ(study.usages[0].zone, "Z");
  EXPECT_EQ(study.usages[0].heating_range, (std::vector<float>{19.0f, 19.0f}));
  EXPECT_TRUE(study.usages[0].cooling_range.empty());
  EXPECT_EQ(study.usages[1].kind, "lighting");
  EXPECT_EQ(study.usages[1].spaces, (std::vector<std::string>{"a", "b"}));
  EXPECT_EQ(study.usages[2].kind, "internal_gains");
  EXPECT_FLOAT_EQ(study.usages[2].persons.value(), 0.1f);
}

}  // namespace
