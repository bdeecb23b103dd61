#include "app/study/qv_study_sun.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/commands/qv_progress.h"
#include "app/report/qv_study_json.h"
#include "app/report/qv_sun_report.h"
#include "app/study/qv_study.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string sample = QV_SOURCE_DIR "/samples/house.xml";
const std::string weather = QV_SOURCE_DIR "/samples/twelve-days.epw";

qv::qv_study_options draft() {
  qv::qv_study_options options;
  options.model = sample;
  options.solar.wanted = true;
  options.solar.weather = weather;
  options.solar.quality = qv::qv_solar_quality::draft;
  return options;
}

const qv::qv_study_results& study_of_sample() {
  static const qv::qv_study_results study = [] {
    auto options = draft();
    options.solar.keep_hours = true;
    return qv::qv_run_study(options);
  }();
  return study;
}

std::size_t line_count(const std::string& text) {
  return static_cast<std::size_t>(std::count(text.begin(), text.end(), '\n'));
}

// Runs a command that makes `folder`/new for the file that it writes, and interrupts it there. What
// it reads is a pipe that says nothing before. A command that stops before it reads leaves the
// writer waiting, which is then stopped too.
qv_program_run run_interrupted(const std::string& command, const std::string& folder) {
  return qv_run_shell("set -m; cd '" + folder + "'; mkfifo model.xml; \"$QV\" " + command +
                      " & work=$!; for i in {1..1000}; do [ -e new ] && break; sleep 0.01; done; "
                      "kill -INT $work; cat '" +
                      sample +
                      "' > model.xml & writer=$!; wait $work; code=$?; kill $writer; "
                      "exit $code");
}

}  // namespace

TEST(qv_study_sun, shines_on_walls_towards_the_air_and_on_no_others) {
  const auto& study = study_of_sample();
  std::size_t computed = 0;
  for (std::size_t i = 0; i < study.walls.size(); ++i) {
    const auto& wall = study.walls[i];
    const auto* sun = study.sun.get_wall(i);
    EXPECT_EQ(sun != nullptr, wall.is_loss() && !wall.limit_condition) << wall.id;
    if (sun == nullptr) continue;
    ++computed;
    double months = 0;
    for (double month : sun->monthly_total) months += month;
    EXPECT_NEAR(months, sun->total, 1e-6 * sun->total);
    EXPECT_NEAR(sun->direct + sun->diffuse + sun->reflected, sun->total, 1e-9);
    EXPECT_GE(sun->half_width_95, 0);
    EXPECT_FALSE(sun->monthly_heat);
  }
  EXPECT_GT(computed, 5u);
  EXPECT_EQ(study.sun.get_wall(100000), nullptr);
}

TEST(qv_study_sun, gives_the_south_more_than_the_north) {
  const auto& groups = study_of_sample().sun.orientations;
  ASSERT_EQ(groups.size(), 6u);
  EXPECT_EQ(groups[0].orientation, "north");
  EXPECT_EQ(groups[2].orientation, "south");
  ASSERT_GT(groups[0].area, 0);
  ASSERT_GT(groups[2].area, 0);
  EXPECT_GT(groups[2].total / groups[2].area, 2 * groups[0].total / groups[0].area);
}

TEST(qv_study_sun, tells_the_heat_through_openings) {
  const auto& study = study_of_sample();
  ASSERT_FALSE(study.openings.empty());
  std::size_t told = 0;
  for (std::size_t i = 0; i < study.openings.size(); ++i) {
    const auto* sun = study.sun.get_opening(i);
    if (sun == nullptr || !sun->monthly_heat) continue;
    ++told;
    const auto& opening = study.openings[i];
    for (std::size_t m = 0; m < 12; ++m) {
      EXPECT_NEAR((*sun->monthly_heat)[m],
                  sun->monthly_total[m] * opening.full_area * *opening.solar_factor, 1e-6);
    }
  }
  EXPECT_GT(told, 0u);
}

TEST(qv_study_sun, is_the_same_for_any_number_of_threads) {
  const auto run = [](unsigned int threads) {
    auto options = draft();
    options.solar.threads = threads;
    options.solar.weather.clear();
    options.solar.reflexions = 1;
    return qv::qv_study_json(qv::qv_run_study(options));
  };
  EXPECT_EQ(run(1), run(3));
}

TEST(qv_study_sun, computes_one_surface_when_asked_for_one) {
  auto options = draft();
  options.solar.only = "su-06";
  const auto study = qv::qv_run_study(options);
  for (std::size_t i = 0; i < study.walls.size(); ++i)
    EXPECT_EQ(study.sun.get_wall(i) != nullptr, study.walls[i].id == "su-06");
}

TEST(qv_study_sun, stops_when_told_to) {
  auto options = draft();
  options.solar_progress = [](std::size_t done, std::size_t) { return done < 2; };
  EXPECT_THROW(qv::qv_run_study(options), qv::qv_interrupted);
}

TEST(qv_study_sun, says_why_there_is_none) {
  const qv_temporary_folder folder;
  std::string text = qv_file_content(sample);
  const auto at = text.find("<Latitude>");
  text.erase(at, text.find("</Latitude>") + 11 - at);
  std::ofstream(folder.path() / "m.xml") << text;
  auto options = draft();
  options.model = (folder.path() / "m.xml").string();
  options.solar.weather.clear();
  const auto study = qv::qv_run_study(options);
  EXPECT_TRUE(study.sun.weather.empty());
  EXPECT_THAT(study.notes, testing::Contains(HasSubstr("does not say its latitude")));
  const auto json = nlohmann::json::parse(qv::qv_study_json(study));
  EXPECT_TRUE(json["weather"].is_null());
  EXPECT_TRUE(json["walls"][0]["solar"].is_null());
}

TEST(qv_study_sun, stands_in_the_json_under_its_keys) {
  const auto json = nlohmann::json::parse(qv::qv_study_json(study_of_sample()));
  EXPECT_EQ(json["weather"]["steps"], 288);
  EXPECT_EQ(json["solar_by_orientation"].size(), 6u);
  bool found = false;
  for (const auto& wall : json["walls"]) {
    ASSERT_TRUE(wall.contains("solar"));
    if (wall["solar"].is_null()) continue;
    found = true;
    for (const char* key : {"direct_kwh_m2", "diffuse_kwh_m2", "reflected_kwh_m2", "total_kwh_m2",
                            "half_width_95_kwh_m2"}) {
      EXPECT_TRUE(wall["solar"][key].is_number()) << key;
    }
    EXPECT_EQ(wall["solar"]["monthly_total_kwh_m2"].size(), 12u);
  }
  EXPECT_TRUE(found);
  EXPECT_TRUE(json["openings"][0].contains("solar"));
}

TEST(qv_study_sun, stands_in_tables) {
  const auto& study = study_of_sample();
  std::size_t computed = 0;
  for (std::size_t i = 0; i < study.walls.size(); ++i) computed += study.sun.get_wall(i) != nullptr;
  for (std::size_t i = 0; i < study.openings.size(); ++i)
    computed += study.sun.get_opening(i) != nullptr;
  EXPECT_EQ(line_count(qv::qv_solar_csv(study)), computed + 1);
  EXPECT_THAT(qv::qv_solar_csv(study), HasSubstr("\r\nwall,su-06,"));

  const std::string hours = qv::qv_hourly_csv(study);
  EXPECT_EQ(line_count(hours), 289u);
  const std::string header = hours.substr(0, hours.find('\r'));
  EXPECT_EQ(static_cast<std::size_t>(std::count(header.begin(), header.end(), ',')), computed + 2);

  EXPECT_EQ(qv::qv_surface_hours(study, "su-06"), "") << "parts are kept of single surfaces only";
}

TEST(qv_study_sun, tells_the_hours_of_one_surface_in_parts) {
  auto options = draft();
  options.solar.keep_hours = true;
  options.solar.only = "su-06";
  const auto study = qv::qv_run_study(options);
  std::istringstream table(qv::qv_surface_hours(study, "su-06"));
  std::string line;
  std::getline(table, line);
  EXPECT_EQ(line, "month,day,hour,total_w_m2,direct_w_m2,diffuse_w_m2,reflected_w_m2\r");
  double sum = 0;
  while (std::getline(table, line)) {
    std::replace(line.begin(), line.end(), ',', ' ');
    std::istringstream cells(line);
    double month = 0, day = 0, hour = 0, total = 0, direct = 0, diffuse = 0, reflected = 0;
    cells >> month >> day >> hour >> total >> direct >> diffuse >> reflected;
    EXPECT_EQ(day, 21);
    EXPECT_NEAR(total, direct + diffuse + reflected, 0.03);
    sum += total / 1000;
  }
  // The hours of a surface add up to its year.
  for (std::size_t i = 0; i < study.walls.size(); ++i) {
    const auto* sun = study.sun.get_wall(i);
    if (sun != nullptr) {
      EXPECT_NEAR(sum, sun->total, 0.01);
    }
  }
  EXPECT_EQ(qv::qv_surface_hours(study, "nobody"), "");
}

TEST(qv_program, writes_the_sun_of_a_study_and_prints_that_of_a_surface) {
  const qv_temporary_folder folder;
  const std::string out = (folder.path() / "out").string();
  const std::string hours = (folder.path() / "hours.csv").string();
  const auto run = qv_run({"study", sample, "--no-pictures", "--out", out, "--weather", weather,
                           "--quality", "draft", "--reflexions", "0", "--hourly", hours});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("solar.csv"));
  EXPECT_THAT(run.output, HasSubstr("Sun on what faces"));
  EXPECT_EQ(line_count(qv_file_content(hours)), 289u);
  const auto json = nlohmann::json::parse(qv_file_content(out + "/study.json"));
  for (const auto& wall : json["walls"])
    if (!wall["solar"].is_null()) {
      EXPECT_EQ(wall["solar"]["reflected_kwh_m2"], 0);
    }

  const auto none = qv_run({"study", sample, "--no-pictures", "--out", out + "2", "--no-solar"});
  EXPECT_EQ(none.exit_code, 0) << none.errors;
  EXPECT_FALSE(fs::exists(out + "2/solar.csv"));

  const auto one = qv_run({"solar", sample, "--weather", weather, "--quality", "draft", "--surface",
                           "su-06", "--hourly"});
  EXPECT_EQ(one.exit_code, 0) << one.errors;
  EXPECT_EQ(line_count(one.output), 289u);
  const auto months =
      qv_run({"solar", sample, "--weather", weather, "--quality", "draft", "--surface", "su-06"});
  EXPECT_THAT(months.output, HasSubstr("su-06: "));
  EXPECT_THAT(months.output, HasSubstr("month 12"));
  EXPECT_THAT(months.output, HasSubstr("Weather: " + weather + " (Lyon)"));
}

// Of one surface the user is told what a study tells of all: which weather, and what is wrong with
// it.
TEST(qv_solar_command, tells_of_its_weather) {
  const qv_temporary_folder folder;
  std::string text = qv_file_content(sample);
  const auto move_to = [&text](const char* tag, const char* degrees) {
    const auto begin = text.find(tag) + std::string(tag).size();
    text.replace(begin, text.find('<', begin) - begin, degrees);
  };
  const auto run = [&](const std::vector<std::string>& more) {
    const std::string model = folder.path() / "house.xml";
    std::ofstream(model) << text;
    std::vector<std::string> words = {"solar",     model,   "--quality",    "draft",
                                      "--surface", "su-06", "--reflexions", "0"};
    words.insert(words.end(), more.begin(), more.end());
    return qv_run(words);
  };
  const auto at_home = run({"--weather", weather});
  EXPECT_EQ(at_home.errors, "");
  move_to("<Latitude>", "0");
  move_to("<Longitude>", "0.0");
  EXPECT_THAT(run({"--weather", weather}).errors,
              HasSubstr("qv: note: " + weather + ": is the weather of another place"));
  const auto nowhere = run({});
  EXPECT_THAT(nowhere.errors, HasSubstr("qv: note: the model lies at latitude 0 and longitude 0"));
  EXPECT_THAT(nowhere.output, HasSubstr("Weather: a clear sky all year"));
  // The wall looks elsewhere.
  const auto turned = run({"--weather", weather, "--north", "180"});
  EXPECT_EQ(turned.exit_code, 0);
  EXPECT_NE(turned.output, at_home.output);
}

TEST(qv_program, understands_the_options_of_the_sun) {
  const qv_temporary_folder folder;
  const std::string out = (folder.path() / "out").string();
  const std::vector<std::string> study = {"study", sample, "--no-pictures", "--out", out};
  const auto with = [&study](const std::vector<std::string>& more) {
    std::vector<std::string> words = study;
    words.insert(words.end(), more.begin(), more.end());
    return qv_run(words);
  };
  EXPECT_EQ(with({"--quality", "best"}).exit_code, 2);
  EXPECT_EQ(with({"--reflexions", "-1"}).exit_code, 2);
  EXPECT_EQ(with({"--reflexions", "many"}).exit_code, 2);
  EXPECT_EQ(with({"--no-solar", "--hourly", "h.csv"}).exit_code, 2);
  EXPECT_EQ(with({"--weather", "nowhere.epw"}).exit_code, 4);
  EXPECT_EQ(with({"--weather", sample}).exit_code, 3);
  EXPECT_FALSE(fs::exists(out));
  const auto stranger = qv_run({"solar", sample, "--surface", "nobody", "--weather", weather});
  EXPECT_EQ(stranger.exit_code, 3);
  EXPECT_THAT(stranger.errors, HasSubstr("no wall or opening of the id \"nobody\" stands"));
}

TEST(qv_program, leaves_nothing_behind_when_it_is_interrupted) {
  const qv_temporary_folder folder;
  const std::string out = (folder.path() / "out").string();
  // The folder is made before the work, which takes a second at least. Only a shell that controls
  // jobs leaves the interrupt to what runs in its background.
  const auto run =
      qv_run_shell("set -m; \"$QV\" study --no-pictures '" + sample + "' --out '" + out +
                   "' --quality fine --reflexions 60 & for i in {1..1000}; do [ -e '" + out +
                   "' ] && break; sleep 0.01; done; kill -INT $!; wait $!");
  EXPECT_EQ(run.exit_code, 130);
  EXPECT_THAT(run.errors, HasSubstr("interrupted; nothing was written"));
  EXPECT_FALSE(fs::exists(out));
}

TEST(qv_program, leaves_no_folder_behind_when_a_command_of_one_file_is_interrupted) {
  for (const char* command :
       {"picture model.xml --out new/out.png", "export model.xml --format obj --out new/out.obj",
        "configure save model.xml new/out.json", "check model.xml --fix --out new/out.xml"}) {
    SCOPED_TRACE(command);
    const qv_temporary_folder place;
    const auto run = run_interrupted(command, place.path().string());
    EXPECT_EQ(run.exit_code, 130) << run.errors;
    EXPECT_THAT(run.errors, HasSubstr("interrupted; nothing was written"));
    EXPECT_FALSE(fs::exists(place.path() / "new"));
  }
}

TEST(qv_progress, says_how_much_time_is_left) {
  EXPECT_EQ(qv::qv_progress::share_text(0, 10, 5), "0 %");
  EXPECT_EQ(qv::qv_progress::share_text(5, 20, 10), "25 %, 30 s left");
  EXPECT_EQ(qv::qv_progress::share_text(20, 20, 10), "100 %, 0 s left");
}
