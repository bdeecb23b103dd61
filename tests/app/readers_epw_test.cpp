#include "app/readers/qv_epw.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <numbers>
#include <sstream>

#include "core/light/qvi_sun.h"
#include "tests/support/qv_test_paths.h"

using namespace qv;

namespace {

/// A weather file: header lines, then rows of year, month, day, hour, minute, direct, diffuse.
struct epw_text {
  std::string location = "LOCATION,Lyon,-,FRA,test,0,45.75,4.85,1.0,200.0";
  std::string periods = "DATA PERIODS,1,1,Data,Sunday, 6/21, 6/21";
  std::string rows;
  std::string line_end = "\n";

  void add_row(const std::string& time, const std::string& direct, const std::string& diffuse) {
    rows += time + ",?9?9,20,10,50,99000,0,0,300,0," + direct + "," + diffuse + ",0,0,0,0,180,2" +
            line_end;
  }
  std::string get() const {
    return location + line_end + "DESIGN CONDITIONS,0" + line_end + "COMMENTS 1,a, b" + line_end +
           periods + line_end + rows;
  }
};

std::string error_of(const std::string& bytes) {
  try {
    qv_read_epw_bytes("w.epw", bytes);
  } catch (const qv_input_error& error) {
    return error.what();
  }
  return {};
}

bool has_warning(const qv_weather& weather, const std::string& part) {
  for (const std::string& warning : weather.warnings)
    if (warning.find(part) != std::string::npos) return true;
  return false;
}

double angle_between(const qv_3dvector& a, const qv_3dvector& b) {
  return std::acos(std::min(1.0f, a.dot(b))) * 180 / std::acos(-1.0);
}

std::filesystem::path shared_epw(const std::string& name) {
  const char* folder = std::getenv("QV_SHARED_DATA");
  const std::filesystem::path root = folder != nullptr ? folder : QV_SOURCE_DIR "/../shared/data";
  return root / "epw" / name;
}

}  // namespace

TEST(qv_sun_position, agrees_with_the_published_reference) {
  // I. Reda, A. Andreas, Solar position algorithm for solar radiation applications, 2004: 17
  // October 2003, 12:30:30, 7 h behind universal time.
  qv_sun_position position(39.742476, -105.1786, 1830.14, 820, 11);
  const qv_sun_angles sun = position.get_angles(qv_make_moment(2003, 10, 17, 12 * 60 + 30.5, -7));
  EXPECT_NEAR(90 - sun.elevation, 50.11162, 0.01);
  EXPECT_NEAR(sun.azimuth, 194.34024, 0.01);
}

TEST(qv_sun_position, follows_the_day_without_steps_at_midnight) {
  // Prepared once a day: between the last minute of one and the first of the next the sun moves as
  // in any other minute, a quarter of a degree.
  for (double longitude : {-179.0, -60.0, 0.0, 75.0, 179.0}) {
    qv_sun_position position(40, longitude, 0);
    const auto at = [&](double minutes) {
      const qv_sun_angles sun = position.get_angles(qv_make_moment(2020, 3, 1, minutes, 0));
      const double e = sun.elevation * M_PI / 180, a = sun.azimuth * M_PI / 180;
      return qv_3dvector(static_cast<float>(std::cos(e) * std::sin(a)),
                         static_cast<float>(std::cos(e) * std::cos(a)),
                         static_cast<float>(std::sin(e)));
    };
    for (double minute : {1439.0, 1440.0, 2879.0})
      EXPECT_NEAR(angle_between(at(minute), at(minute + 1)), 0.25, 0.05) << longitude;
  }
}

TEST(qv_sun_position, knows_the_calendar) {
  const auto days = [](const qv_moment& m) { return m.day + m.fraction; };
  // 1 January 2000, 12:00: Julian date 2451545.
  EXPECT_DOUBLE_EQ(days(qv_make_moment(2000, 1, 1, 720, 0)), 2451545);
  EXPECT_DOUBLE_EQ(days(qv_make_moment(2000, 1, 1, 720, 3)), 2451545 - 3 / 24.0);
  EXPECT_DOUBLE_EQ(days(qv_make_moment(2004, 3, 1, 0, 0)) - days(qv_make_moment(2004, 2, 28, 0, 0)),
                   2);
  EXPECT_DOUBLE_EQ(days(qv_make_moment(2003, 2, 29, 0, 0)), days(qv_make_moment(2003, 3, 1, 0, 0)));
  const qv_moment before = qv_make_moment(2000, 1, 1, 30, 1);
  EXPECT_DOUBLE_EQ(days(before), 2451544.5 - 0.5 / 24);
  EXPECT_GE(before.fraction, 0);
}

TEST(qv_epw, reads_place_and_hours_that_end_at_their_time) {
  epw_text text;
  text.add_row("2001,6,21,12,60", "800", "120");
  text.add_row("2001,6,21,13,60", "810.5", "110");
  const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
  EXPECT_EQ(weather.place, "Lyon");
  EXPECT_DOUBLE_EQ(weather.latitude, 45.75);
  EXPECT_DOUBLE_EQ(weather.longitude, 4.85);
  EXPECT_DOUBLE_EQ(weather.time_zone, 1);
  EXPECT_DOUBLE_EQ(weather.elevation, 200);
  EXPECT_DOUBLE_EQ(weather.step_hours, 1);
  ASSERT_EQ(weather.steps.size(), 2u);
  EXPECT_EQ(weather.steps[0].month, 6);
  EXPECT_DOUBLE_EQ(weather.steps[0].hour, 11.5);
  EXPECT_EQ(weather.steps[0].direct, 800);
  EXPECT_EQ(weather.steps[0].diffuse, 120);
  EXPECT_EQ(weather.steps[1].direct, 810.5f);
  EXPECT_TRUE(weather.warnings.empty());
  // 11:30 an hour ahead of universal time.
  const qv_moment expected = qv_make_moment(2001, 6, 21, 10.5 * 60, 0);
  EXPECT_NEAR(weather.steps[0].middle.fraction, expected.fraction, 1e-9);
  EXPECT_EQ(weather.steps[0].middle.day, expected.day);
}

TEST(qv_epw, means_the_same_by_minute_0_and_minute_60) {
  epw_text zero, sixty;
  zero.add_row("2001,6,21,12,0", "800", "120");
  sixty.add_row("2001,6,21,12,60", "800", "120");
  EXPECT_DOUBLE_EQ(qv_read_epw_bytes("w.epw", zero.get()).steps[0].hour,
                   qv_read_epw_bytes("w.epw", sixty.get()).steps[0].hour);
}

TEST(qv_epw, parts_an_hour_among_its_records) {
  for (const char* minutes : {"15 30 45 60", "0 15 30 45"}) {
    epw_text text;
    text.periods = "DATA PERIODS,1,4,Data,Sunday, 6/21, 6/21";
    std::istringstream list(minutes);
    for (std::string minute; list >> minute;) text.add_row("2001,6,21,12," + minute, "800", "120");
    text.add_row("2001,6,21,13,15", "800", "120");
    const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
    EXPECT_DOUBLE_EQ(weather.step_hours, 0.25);
    ASSERT_EQ(weather.steps.size(), 5u);
    for (std::size_t i = 0; i < 5; ++i)
      EXPECT_DOUBLE_EQ(weather.steps[i].hour, 11.125 + 0.25 * static_cast<double>(i)) << minutes;
  }
}

TEST(qv_epw, takes_each_row_s_own_year_and_29_february_in_any) {
  epw_text text;
  text.add_row("2004,2,29,12,60", "800", "120");
  text.add_row("1999,3,1,12,60", "800", "120");
  text.add_row("1999,2,29,12,60", "800", "120");
  const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
  ASSERT_EQ(weather.steps.size(), 3u);
  EXPECT_EQ(weather.steps[0].middle.day, qv_make_moment(2004, 2, 29, 630, 0).day);
  EXPECT_EQ(weather.steps[1].middle.day, qv_make_moment(1999, 3, 1, 630, 0).day);
}

// A time zone of the wrong sign moves the days: their beam falls where the sun is down.
TEST(qv_epw, says_that_there_is_beam_by_night) {
  epw_text text;
  for (int hour = 1; hour <= 24; ++hour) {
    // The sun is up in Lyon from 3:55 to 19:35 on this day.
    const bool is_up = hour > 4 && hour <= 20;
    text.add_row("2001,6,21," + std::to_string(hour) + ",60", is_up ? "500" : "0", "0");
  }
  EXPECT_TRUE(qv_read_epw_bytes("w.epw", text.get()).warnings.empty());
  text.location = "LOCATION,Lyon,-,FRA,test,0,45.75,4.85,-8.0,200.0";
  const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
  ASSERT_EQ(weather.warnings.size(), 1u);
  EXPECT_TRUE(has_warning(weather, " steps have beam while the sun is down"));
}

TEST(qv_epw, reads_real_files_without_beam_by_night) {
  for (const char* name : {"DEU_NW_Aachen.105010_TMYx.epw", "USA_CO_Golden-NREL.724666_TMY3.epw"}) {
    if (!std::filesystem::exists(shared_epw(name))) GTEST_SKIP() << "no " << name;
    EXPECT_FALSE(has_warning(qv_read_epw(shared_epw(name)), "while the sun is down")) << name;
  }
}

TEST(qv_epw, counts_missing_values_by_daylight_as_dark_and_says_so) {
  epw_text text;
  text.add_row("2001,6,21,1,60", "9999", "9999");
  text.add_row("2001,6,21,12,60", "9999", "120");
  text.add_row("2001,6,21,13,60", "", "99999");
  text.add_row("2001,6,21,14,60", "-5", "100");
  text.add_row("2001,6,21,15,60", "700", "100");
  const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
  EXPECT_EQ(weather.steps[1].direct, 0);
  EXPECT_EQ(weather.steps[1].diffuse, 120);
  EXPECT_EQ(weather.steps[2].diffuse, 0);
  EXPECT_EQ(weather.steps[3].direct, 0);
  EXPECT_EQ(weather.steps[4].direct, 700);
  ASSERT_EQ(weather.warnings.size(), 1u);
  EXPECT_TRUE(has_warning(weather, "3 steps by daylight have no irradiation"));
}

TEST(qv_epw, reads_files_of_other_systems) {
  epw_text text;
  text.line_end = "\r\n";
  text.add_row(" 2001, 6,21,12,60", " 800.0 ", "+120");
  const qv_weather weather = qv_read_epw_bytes("w.epw", "\xef\xbb\xbf" + text.get() + "\r\n \r\n");
  ASSERT_EQ(weather.steps.size(), 1u);
  EXPECT_EQ(weather.steps[0].direct, 800);
  EXPECT_EQ(weather.steps[0].diffuse, 120);
}

TEST(qv_epw, leaves_out_a_last_line_that_is_cut_off) {
  epw_text text;
  text.periods = "DATA PERIODS,1,1,Data,Sunday, 1/ 1,12/31";
  text.add_row("2001,6,21,12,60", "800", "120");
  text.add_row("2001,6,21,13,60", "800", "120");
  const std::string whole = text.get();
  const std::string cut = whole.substr(0, whole.rfind("2001") + 30);
  const qv_weather weather = qv_read_epw_bytes("w.epw", cut);
  EXPECT_EQ(weather.steps.size(), 1u);
  EXPECT_TRUE(has_warning(weather, "last line is cut off"));
  EXPECT_TRUE(has_warning(weather, "ends after 1 steps"));
}

TEST(qv_epw, says_where_a_file_is_wrong) {
  epw_text sound;
  sound.add_row("2001,6,21,12,60", "800", "120");
  EXPECT_EQ(error_of(sound.get()), "");
  EXPECT_NE(error_of("").find("is empty"), std::string::npos);
  EXPECT_NE(error_of("<gbXML/>\n").find("w.epw, line 1: does not begin with LOCATION"),
            std::string::npos);
  EXPECT_NE(error_of(sound.location + "\nDESIGN CONDITIONS,0\n").find("no line DATA PERIODS"),
            std::string::npos);
  EXPECT_NE(error_of(epw_text().get()).find("no hours"), std::string::npos);

  epw_text text = sound;
  text.location = "LOCATION,Lyon,-,FRA,test,0,95.0,4.85,1.0,200.0";
  EXPECT_NE(error_of(text.get()).find("latitude"), std::string::npos);
  text = sound;
  text.periods = "DATA PERIODS,1,many,Data";
  EXPECT_NE(error_of(text.get()).find("line 4"), std::string::npos);
  for (const char* time :
       {"2001,13,21,12,60", "2001,2,30,12,60", "2001,6,21,25,60", "x,6,21,12,60"}) {
    text = sound;
    text.add_row(time, "800", "120");
    EXPECT_NE(error_of(text.get()).find("line 6: is no row"), std::string::npos) << time;
  }
  text = sound;
  text.add_row("2001,6,21,13,60", "bright", "120");
  EXPECT_NE(error_of(text.get()).find("line 6: has an irradiation that is no number"),
            std::string::npos);
  EXPECT_THROW(qv_read_epw("/nowhere/w.epw"), qv_input_error);
}

TEST(qv_epw, reads_the_sample) {
  const qv_weather weather = qv_read_epw(QV_SOURCE_DIR "/samples/twelve-days.epw");
  EXPECT_EQ(weather.steps.size(), 288u);
  EXPECT_TRUE(weather.warnings.empty());
}

TEST(qv_epw, reads_files_of_others) {
  struct expected {
    const char* name;
    std::size_t steps;
    bool truncated;
  };
  for (const expected& file :
       {expected{"FRA_AR_Lyon-Bron.AP.074800_TMYx.2004-2018.epw", 8760, false},
        expected{"DEU_NW_Aachen.105010_TMYx.epw", 8760, false},
        expected{"USA_CO_Golden-NREL.724666_TMY3.epw", 8760, false},
        expected{"USA_CO_Golden-NREL.724666_TMY3-leapday.epw", 8784, false},
        expected{"leapday-test.epw", 8784, false}, expected{"multiyear_truncated.epw", 16, true}}) {
    const auto path = shared_epw(file.name);
    if (!std::filesystem::exists(path)) GTEST_SKIP() << "no " << path;
    const qv_weather weather = qv_read_epw(path.string());
    EXPECT_EQ(weather.steps.size(), file.steps) << file.name;
    EXPECT_EQ(has_warning(weather, "ends after"), file.truncated) << file.name;
    // The sun that the file tells of is up when it stands above the horizon.
    qvi_sun* sun = new qvi_sun;
    qv_fill_sun(weather, 0, *sun);
    int dark = 0, bright = 0;
    for (int i = 0; i < sun->get_nb_values(); ++i) {
      if (sun->get_direct_irradiation()[i] < 50) continue;
      ++bright;
      if (sun->get_directions()[i].z < -0.05f) ++dark;
    }
    EXPECT_LE(dark, bright / 500) << file.name;
    qv_item::destroy(sun);
  }
}

TEST(qv_weather, turns_directions_with_the_model) {
  epw_text text;
  text.add_row("2001,6,21,13,60", "800", "120");
  const qv_weather weather = qv_read_epw_bytes("w.epw", text.get());
  qvi_sun* sun = new qvi_sun;
  qv_fill_sun(weather, 0, *sun);
  const qv_3dvector north_up = sun->get_directions()[0];
  EXPECT_LT(north_up.y, 0);  // south of the zenith
  EXPECT_NEAR(north_up.length(), 1, 1e-6);
  // With +Y to the east, what was in the south is on the right, at +X.
  qv_fill_sun(weather, 90, *sun);
  const qv_3dvector east_up = sun->get_directions()[0];
  EXPECT_NEAR(east_up.x, -north_up.y, 1e-6);
  EXPECT_NEAR(east_up.y, north_up.x, 1e-6);
  EXPECT_NEAR(east_up.z, north_up.z, 1e-6);
  qv_item::destroy(sun);
}

TEST(qv_weather, looks_for_the_sun_in_the_part_of_the_hour_in_which_it_is_up) {
  qv_weather weather;
  weather.latitude = 48;
  weather.longitude = 3;
  for (int month : {1, 6, 10}) {
    for (int hour = 0; hour < 24; ++hour) {
      qv_weather_step step;
      step.middle = qv_make_moment(2001, month, 14, 60 * hour + 30, 0);
      step.direct = 100;
      weather.steps.push_back(step);
    }
  }
  qvi_sun* sun = new qvi_sun;
  qv_fill_sun(weather, 0, *sun);
  qv_sun_position position(weather.latitude, weather.longitude, weather.elevation);
  int rises = 0;
  for (std::size_t i = 0; i < weather.steps.size(); ++i) {
    // Minute by minute.
    double first = 0, last = 0;
    int minutes = 0;
    for (int minute = 0; minute < 60; ++minute) {
      const double hours = (minute + 0.5) / 60 - 0.5;
      qv_moment moment = weather.steps[i].middle;
      moment.fraction += hours / 24;
      if (position.get_angles(moment).elevation <= 0) continue;
      if (minutes++ == 0) first = hours;
      last = hours;
    }
    if (minutes > 0 && minutes < 60) ++rises;
    qv_moment middle = weather.steps[i].middle;
    if (minutes > 0) middle.fraction += (first + last) / 2 / 24;
    const qv_sun_angles angles = position.get_angles(middle);
    const qv_3dvector found = sun->get_directions()[static_cast<int>(i)];
    EXPECT_NEAR(std::asin(found.z) * 180 / std::numbers::pi, angles.elevation, 0.2) << i;
    EXPECT_EQ(found.z > 0, minutes > 0) << i;
  }
  EXPECT_EQ(rises, 6);
  qv_item::destroy(sun);
}

TEST(qv_weather, has_a_clear_sky_year_for_every_place) {
  for (double latitude : {-90.0, 0.0, 45.0}) {
    const qv_weather weather = qv_make_clear_sky_year(latitude, 15, 300);
    ASSERT_EQ(weather.steps.size(), 8760u);
    double direct = 0, diffuse = 0, noon = 0, midnight = 0;
    for (const qv_weather_step& step : weather.steps) {
      ASSERT_GE(step.direct, 0);
      ASSERT_LE(step.direct, 1100);
      ASSERT_LE(step.diffuse, 200);
      direct += step.direct;
      diffuse += step.diffuse;
      if (step.hour == 11.5 || step.hour == 12.5) noon += step.direct;
      if (step.hour == 0.5 || step.hour == 23.5) midnight += step.direct;
    }
    EXPECT_GT(direct, 1.8e6) << latitude;
    EXPECT_LT(direct, 4e6) << latitude;
    EXPECT_GT(diffuse, 0.05 * direct) << latitude;
    if (std::fabs(latitude) < 60) {
      EXPECT_GT(noon, 0);
      EXPECT_EQ(midnight, 0);
    }
  }
}
