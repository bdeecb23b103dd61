#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <nlohmann/json.hpp>

#include "app/commands/qv_progress.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

const std::string sample = QV_SOURCE_DIR "/samples/house.xml";

// One line on standard error that names the program, and nothing on standard output.
void expect_one_line_complaint(const qv_program_run& run, int exit_code) {
  EXPECT_EQ(run.exit_code, exit_code) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
  EXPECT_THAT(run.errors, testing::StartsWith("qv: "));
  EXPECT_THAT(run.errors, testing::EndsWith("\n"));
}

std::size_t entry_count(const fs::path& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::recursive_directory_iterator(folder), fs::recursive_directory_iterator()));
}

TEST(qv_program, explains_itself) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"help"}, {"--help"}, {"-h"}}) {
    const auto run = qv_run(words);
    EXPECT_EQ(run.exit_code, 0);
    EXPECT_EQ(run.errors, "");
    for (const char* text : {"study", "check", "info", "help", "Examples:", "Exit codes:"}) {
      EXPECT_THAT(run.output, HasSubstr(text));
    }
  }
}

TEST(qv_program, explains_each_command_with_examples) {
  for (const std::vector<std::string>& words :
       {std::vector<std::string>{"help", "study"}, {"study", "--help"}, {"study", "-h"}}) {
    const auto run = qv_run(words);
    EXPECT_EQ(run.exit_code, 0);
    for (const char* text : {"MODEL", "--out DIR", "--rename-spaces", "--regroup", "Examples:"}) {
      EXPECT_THAT(run.output, HasSubstr(text));
    }
  }
  EXPECT_THAT(qv_run({"help", "info"}).output, HasSubstr("qv info house.xml"));
  EXPECT_THAT(qv_run({"help", "help"}).output, HasSubstr("COMMAND"));
  EXPECT_THAT(qv_run({"configure", "save", "--help"}).output,
              HasSubstr("Usage: qv configure save "));
  EXPECT_EQ(qv_run({"help", "configure", "save"}).output,
            qv_run({"configure", "save", "--help"}).output);
}

TEST(qv_program, says_its_version) {
  const auto run = qv_run({"--version"});
  EXPECT_EQ(run.exit_code, 0);
  EXPECT_THAT(run.output, testing::MatchesRegex("qv [0-9]+\\.[0-9]+\\.[0-9]+\n"));
}

struct mistake {
  std::vector<std::string> words;
  std::string told;  // part of the message
};

TEST(qv_program, names_each_mistake_in_the_command_line) {
  const mistake mistakes[] = {
      {{}, "a command is missing; `qv help` explains"},
      {{"stduy", "a.xml"}, "there is no command \"stduy\""},
      {{"--fast"}, "unexpected option \"--fast\""},
      {{"study"}, "MODEL is required; `qv help study` explains"},
      {{"study", sample}, "--out is required"},
      {{"study", "--out", "x"}, "MODEL is required"},
      {{"study", sample, "--out"}, "--out needs a value"},
      {{"study", sample, "--out", ""}, "--out is an empty name"},
      {{"study", "", "--out", "x"}, "MODEL is an empty name"},
      {{"study", sample, "--out", "x", "--fast"}, "unexpected option \"--fast\""},
      {{"study", sample, "b.xml", "--out", "x"}, "unexpected argument \"b.xml\""},
      {{"study", sample, "--out", "x", "--out", "y"}, "--out is given more than once"},
      {{"study", sample, "--out", "x", "--regroup=maybe"},
       "cannot make sense of \"--regroup = maybe\""},
      {{"info"}, "MODEL is required; `qv help info` explains"},
      {{"info", ""}, "MODEL is an empty name"},
      {{"info", sample, "b.xml"}, "unexpected argument \"b.xml\""},
      {{"configure"}, "a command is missing; `qv help configure` explains"},
      {{"configure", "sav", sample}, "there is no command \"sav\"; `qv help configure` explains"},
      {{"configure", "--psi", "x"}, "unexpected option \"--psi\""},
      {{"configure", "save"}, "MODEL is required; `qv help configure` explains"},
      {{"study", sample, "--out", "x", "--reflexions", "1.5"}, "\"1.5\" is no whole number"},
      {{"help", "stduy"}, "there is no command \"stduy\""},
      {{"help", "study", "info"}, "there is no command \"study info\""},
      {{"help", "configure", "sav"}, "there is no command \"configure sav\""},
      {{"help", ""}, "COMMAND is an empty name"},
      {{"picture", sample, "--out", "x.jpg"}, "\"x.jpg\" names no PNG file"},
  };
  for (const mistake& made : mistakes) {
    SCOPED_TRACE(testing::PrintToString(made.words));
    const auto run = qv_run(made.words);
    expect_one_line_complaint(run, 2);
    EXPECT_THAT(run.errors, HasSubstr(made.told));
  }
  EXPECT_FALSE(fs::exists("x"));
}

// A command line and model that must fail with the code, leaving no trace in the folder.
void expect_refused(const std::string& model, int exit_code, const std::string& told) {
  SCOPED_TRACE(model);
  const qv_temporary_folder place;
  const auto study = qv_run({"study", model, "--out", place.path() / "new" / "out"});
  expect_one_line_complaint(study, exit_code);
  EXPECT_THAT(study.errors, HasSubstr(told));
  EXPECT_EQ(entry_count(place.path()), 0u);
  const auto info = qv_run({"info", model});
  expect_one_line_complaint(info, exit_code);
  EXPECT_THAT(info.errors, HasSubstr(told));
}

class qv_program_on_bad_input : public testing::Test {
 protected:
  std::string write(const std::string& name, const std::string& content) {
    std::string path = place_.path() / name;
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  std::string sample_with(const std::string& from, const std::string& to) {
    std::string text = qv_file_content(sample);
    const auto at = text.find(from);
    EXPECT_NE(at, std::string::npos) << from;
    return text.replace(at, from.size(), to);
  }
  qv_temporary_folder place_;
};

TEST_F(qv_program_on_bad_input, tells_a_missing_file) {
  const std::string path = place_.path() / "none.xml";
  expect_refused(path, 4, path);
}

TEST_F(qv_program_on_bad_input, tells_a_folder_in_the_place_of_a_file) {
  expect_refused(place_.path(), 4, place_.path().string());
}

TEST_F(qv_program_on_bad_input, tells_an_empty_file) {
  expect_refused(write("empty.xml", ""), 3, "empty.xml");
}

TEST_F(qv_program_on_bad_input, tells_a_truncated_file) {
  const std::string text = qv_file_content(sample);
  expect_refused(write("cut.xml", text.substr(0, text.size() / 2)), 3, "cut.xml");
}

TEST_F(qv_program_on_bad_input, tells_another_xml) {
  expect_refused(write("page.xml", "<?xml version=\"1.0\"?><html><body/></html>"), 3, "page.xml");
}

TEST_F(qv_program_on_bad_input, tells_an_entity_bomb) {
  std::string bomb = "<?xml version=\"1.0\"?><!DOCTYPE gbXML [<!ENTITY a0 \"ha\">";
  for (int level = 1; level < 30; ++level) {
    const std::string below = "&a" + std::to_string(level - 1) + ";";
    bomb += "<!ENTITY a" + std::to_string(level) + " \"";
    for (int copy = 0; copy < 3; ++copy) bomb += below;
    bomb += "\">";
  }
  bomb += "]><gbXML lengthUnit=\"Meters\">&a29;</gbXML>";
  expect_refused(write("bomb.xml", bomb), 3, "bomb.xml");
}

TEST_F(qv_program_on_bad_input, tells_a_model_without_surfaces) {
  expect_refused(write("bare.xml",
                       "<gbXML xmlns=\"http://www.gbxml.org/schema\" lengthUnit=\"Meters\" "
                       "areaUnit=\"SquareMeters\" volumeUnit=\"CubicMeters\" "
                       "temperatureUnit=\"C\"><Campus id=\"c\"/></gbXML>"),
                 3, "bare.xml");
}

TEST_F(qv_program_on_bad_input, tells_an_id_given_twice_to_spaces) {
  expect_refused(write("twice.xml", sample_with("<Space id=\"hall\"", "<Space id=\"salon\"")), 3,
                 "salon");
}

TEST_F(qv_program_on_bad_input, tells_200_megabytes_of_nonsense) {
  const std::string path = place_.path() / "nonsense.xml";
  {
    const std::string block = "<nonsense attribute=3>&&& ]]> \x01\x02 text < > ";
    std::string megabyte;
    while (megabyte.size() < 1u << 20) megabyte += block;
    std::ofstream file(path, std::ios::binary);
    for (int count = 0; count < 200; ++count) file << megabyte;
  }
  expect_refused(path, 3, "nonsense.xml");
}

TEST(qv_study_command, tells_an_output_folder_that_cannot_be_written) {
  const qv_temporary_folder place;
  std::ofstream(place.path() / "file") << "x";
  for (const std::string& folder :
       {(place.path() / "file").string(), (place.path() / "file" / "below").string(),
        std::string("/proc/qv/out")}) {
    SCOPED_TRACE(folder);
    const auto run = qv_run({"study", sample, "--out", folder});
    expect_one_line_complaint(run, 4);
    EXPECT_THAT(run.errors, HasSubstr("cannot be written"));
  }
  EXPECT_EQ(entry_count(place.path()), 1u);
}

TEST(qv_study_command, leaves_nothing_behind_when_the_disk_is_full) {
  const qv_temporary_folder place;
  // Files may grow to 1 KB; the signal that goes with the limit is ignored, so that writing fails.
  const auto run = qv_run_shell("trap '' XFSZ; ulimit -f 1; \"$QV\" study --no-pictures '" +
                                sample + "' --out '" + (place.path() / "out").string() + "' | cat");
  EXPECT_THAT(run.errors, HasSubstr("cannot be written"));
  EXPECT_EQ(entry_count(place.path()), 0u);
}

TEST(qv_command_line, writes_over_nothing_that_it_reads) {
  const qv_temporary_folder place;
  const std::string model = place.path() / "house.xml";
  std::filesystem::copy_file(sample, model);
  const std::string content = qv_file_content(model);
  const std::string out = place.path() / "out";
  const std::vector<std::vector<std::string>> commands = {
      {"export", model, "--format", "obj", "--out", model},
      {"configure", "save", model, model},
      {"check", model, "--fix", "--out", model},
      {"study", model, "--out", out, "--hourly", model}};
  for (const auto& command : commands) {
    SCOPED_TRACE(command.front());
    const auto run = qv_run(command);
    expect_one_line_complaint(run, 4);
    EXPECT_THAT(run.errors, HasSubstr("it is a file that this run reads"));
    EXPECT_EQ(qv_file_content(model), content);
  }
  EXPECT_EQ(entry_count(place.path()), 1u);
}

TEST(qv_study_command, refuses_hours_in_the_place_of_another_result) {
  const qv_temporary_folder place;
  const auto run = qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--hourly",
                           place.path() / "." / "walls.csv"});
  expect_one_line_complaint(run, 2);
  EXPECT_THAT(run.errors, HasSubstr("is a file that the study writes itself"));
  expect_one_line_complaint(qv_run({"study", sample, "--no-pictures", "--out", place.path(),
                                    "--hourly", place.path() / std::string(300, 'h')}),
                            4);
  EXPECT_EQ(entry_count(place.path()), 0u);
}

TEST(qv_study_command, leaves_nothing_of_an_earlier_study_beside_its_own) {
  const qv_temporary_folder place;
  const auto pictures = place.path() / "pictures";
  std::filesystem::create_directory(pictures);
  for (const auto& file : {place.path() / "solar.csv", pictures / "plan-storey-7.png",
                           pictures / "iso-u.png", pictures / "mine.png"})
    std::ofstream(file) << "old";
  ASSERT_EQ(
      qv_run({"study", sample, "--no-solar", "--no-pictures", "--out", place.path()}).exit_code, 0);
  EXPECT_EQ(entry_count(place.path()), 8u);  // six files, the folder of pictures, mine.png
  EXPECT_FALSE(std::filesystem::exists(place.path() / "solar.csv"));
  EXPECT_EQ(entry_count(pictures), 1u);
  EXPECT_TRUE(std::filesystem::exists(pictures / "mine.png"));
}

TEST(qv_study_command, tells_that_standard_output_cannot_be_written) {
  const auto run = qv_run_shell("\"$QV\" --version > /dev/full");
  EXPECT_EQ(run.exit_code, 4);
  EXPECT_THAT(run.errors, HasSubstr("standard output"));
}

TEST(qv_study_command, writes_its_files_and_a_summary) {
  const qv_temporary_folder place;
  const auto run = qv_run({"study", sample, "--no-pictures", "--out", place.path()});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("1 building, 3 storeys, 3 zones, 11 spaces"));
  EXPECT_EQ(entry_count(place.path()), 7u);
  const auto study = nlohmann::json::parse(qv_file_content(place.path() / "study.json"));
  EXPECT_EQ(study["source"], sample);
  const std::string model = qv_file_content(place.path() / "model.json");
  EXPECT_THAT(model, testing::StartsWith("{\"buildings:\":[{\"name:\":\"Maison\",\"zones:\":["));
  EXPECT_TRUE(nlohmann::json::accept(model));
  EXPECT_THAT(model, HasSubstr("\"name:\":\"Salon\",\"volume\":108.00,\"area\":40.00"));
  for (const std::string name : {"spaces", "walls", "openings", "thermal_bridges"}) {
    const std::string table = qv_file_content(place.path() / (name + ".csv"));
    const auto& records = study[name];
    EXPECT_EQ(static_cast<std::size_t>(std::count(table.begin(), table.end(), '\n')),
              records.size() + 1);
  }
}

TEST(qv_study_command, prints_what_the_readme_shows) {
  const std::string page = qv_file_content(QV_SOURCE_DIR "/README.md");
  const auto begin = page.find("Study of samples/house.xml");
  ASSERT_NE(begin, std::string::npos);
  const std::string shown = page.substr(begin, page.find("```", begin) - begin);
  const qv_temporary_folder place;
  const auto run = qv_run_shell("cd '" QV_SOURCE_DIR
                                "' && \"$QV\" study samples/house.xml --no-pictures --out '" +
                                place.path().string() + "'");
  EXPECT_THAT(run.output, testing::StartsWith(shown));
}

TEST(qv_study_command, gives_the_same_files_each_time_and_from_any_folder) {
  const qv_temporary_folder place;
  const std::string first = place.path() / "first";
  ASSERT_EQ(qv_run({"study", sample, "--no-pictures", "--out", first}).exit_code, 0);
  const auto run =
      qv_run_shell("cd '" + place.path().string() + "' && cp '" + sample +
                   "' house.xml && \"$QV\" study house.xml --no-pictures --out second");
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  for (const char* name : {"model.json", "spaces.csv", "walls.csv", "openings.csv",
                           "thermal_bridges.csv", "solar.csv"}) {
    EXPECT_EQ(qv_file_content(place.path() / "first" / name),
              qv_file_content(place.path() / "second" / name))
        << name;
  }
  auto one = nlohmann::json::parse(qv_file_content(place.path() / "first" / "study.json"));
  auto other = nlohmann::json::parse(qv_file_content(place.path() / "second" / "study.json"));
  EXPECT_EQ(other["source"], "house.xml");
  other["source"] = one["source"];
  EXPECT_EQ(one, other);
}

TEST(qv_study_command, names_the_figures_of_openings_and_glazings_as_its_guide_does) {
  const qv_temporary_folder place;
  ASSERT_EQ(
      qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--no-solar"}).exit_code, 0);
  const auto study = nlohmann::ordered_json::parse(qv_file_content(place.path() / "study.json"));
  const auto keys = [](const nlohmann::ordered_json& record) {
    std::string text;
    for (const auto& [key, content] : record.items()) text += key + " ";
    return text;
  };
  EXPECT_EQ(keys(study["openings"][0]),
            "id name wall opening_type composition glazing_area_m2 opaque_area_m2 frame_area_m2 "
            "full_area_m2 u solar_factor visible_transmittance html solar ");
  EXPECT_EQ(keys(study["glazings"][0]),
            "name u_vertical u_horizontal u_inclined solar_factor visible_transmittance "
            "thickness_m layers ");
  EXPECT_EQ(study["openings"][0]["wall"], "su-06");
  EXPECT_EQ(study["openings"][0]["composition"], "Baie coulissante");
  EXPECT_EQ(study["glazings"][0]["layers"][1]["gas"], "argon");
  EXPECT_TRUE(study["openings"].back()["visible_transmittance"].is_null());
  ASSERT_EQ(study["facades"].size(), 4u);
  EXPECT_EQ(study["facades"][2]["orientation"], "south");
  EXPECT_NEAR(study["facades"][2]["window_to_wall_ratio"].get<double>(), 9.96 / 70.5, 1e-6);
  EXPECT_TRUE(study["generated_openings"].is_null());
  const std::string table = qv_file_content(place.path() / "openings.csv");
  EXPECT_THAT(table, testing::StartsWith(
                         "id,name,wall,opening_type,composition,glazing_area_m2,opaque_area_m2,"
                         "frame_area_m2,full_area_m2,u,solar_factor,visible_transmittance\r\n"));
}

TEST(qv_study_command, generates_openings_by_orientation) {
  const qv_temporary_folder place;
  const auto run =
      qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--glazing-ratio", "0.2",
              "--glazing-ratio-north", "0", "--glazing-ratio-east", "0.35", "--no-solar"});
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  const auto study = nlohmann::json::parse(qv_file_content(place.path() / "study.json"));
  // Of 24 outer walls eight look north; of the others six have openings. The office's east wall of
  // 5.8 m² goes round a corner of the garage.
  EXPECT_EQ(study["generated_openings"]["walls_with_openings"], 6);
  EXPECT_EQ(study["generated_openings"]["made"], 9);
  ASSERT_EQ(study["generated_openings"]["refused"].size(), 1u);
  EXPECT_EQ(study["generated_openings"]["refused"][0]["walls"], 1);
  EXPECT_THAT(run.output, HasSubstr("  9 openings generated; 6 outer walls with openings of the "
                                    "file left as they are\n"));
  EXPECT_NEAR(study["facades"][0]["window_to_wall_ratio"].get<double>(), 3.6 / 70.5, 1e-6);
  EXPECT_NEAR(study["facades"][1]["window_to_wall_ratio"].get<double>(), 0.35 * (58.4 - 5.8) / 58.4,
              1e-3);
  // South: only the knee wall of the attic, 5 m², had none.
  EXPECT_NEAR(study["facades"][2]["window_to_wall_ratio"].get<double>(), (9.96 + 1.0) / 70.5, 1e-3);
}

TEST(qv_study_command, refuses_a_glazing_ratio_that_is_no_share) {
  const qv_temporary_folder place;
  for (const char* ratio : {"1", "-0.1", "nan", "30%", "x", "0,3"}) {
    const auto run = qv_run({"study", sample, "--no-pictures", "--out", place.path() / "out",
                             "--glazing-ratio", ratio});
    EXPECT_EQ(run.exit_code, 2) << ratio;
    EXPECT_FALSE(std::filesystem::exists(place.path() / "out")) << ratio;
  }
}

TEST(qv_study_command, groups_and_renames_when_asked) {
  const qv_temporary_folder place;
  const auto run = qv_run({"study", sample, "--no-pictures", "--out", place.path(), "--regroup",
                           "--rename-spaces", "--no-solar"});
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  const auto study = nlohmann::json::parse(qv_file_content(place.path() / "study.json"));
  ASSERT_EQ(study["buildings"].size(), 1u);
  EXPECT_EQ(study["buildings"][0]["name"], "Bâtiment 1");
  ASSERT_EQ(study["buildings"][0]["zones"].size(), 1u);
  EXPECT_EQ(study["buildings"][0]["zones"][0]["name"], "Zone 1-1");
  EXPECT_EQ(study["buildings"][0]["zones"][0]["spaces"].size(), 11u);
  EXPECT_EQ(study["spaces"][0]["name"], "Pièce 1-1");
  EXPECT_THAT(qv_file_content(place.path() / "model.json"),
              testing::StartsWith("{\"buildings:\":[{\"name:\":\"Bâtiment 1\","));
}

TEST(qv_study_command, says_that_names_stay_where_the_file_has_buildings) {
  const qv_temporary_folder place;
  const auto run = qv_run(
      {"study", sample, "--no-pictures", "--out", place.path(), "--rename-spaces", "--no-solar"});
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("spaces keep their names"));
  EXPECT_THAT(run.output, HasSubstr("Salon"));
}

TEST(qv_info_command, says_what_a_model_holds) {
  const auto run = qv_run({"info", sample});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(run.errors, "");
  for (const char* text : {"gbXML", "Meters", "Lyon", "spaces 11 (11 closed)", "Surface", "kept"}) {
    EXPECT_THAT(run.output, HasSubstr(text));
  }
}

TEST(qv_progress, of_a_command_that_writes_a_file_counts_to_its_last_step) {
  const qv_temporary_folder place;
  const std::string out = place.path() / "out";
  for (const std::vector<std::string>& command :
       {std::vector<std::string>{"export", "--format", "json"}, {"picture", "--size", "64x64"}}) {
    SCOPED_TRACE(command.front());
    std::vector<std::string> words = command;
    words.insert(words.end(), {sample, "--out", out});
    const auto run = qv_run_on_terminal(words);
    ASSERT_EQ(run.exit_code, 0) << run.errors;
    for (const char* step : {"] 1/5", "] 2/5", "] 3/5", "] 4/5", "] 5/5"})
      EXPECT_THAT(run.errors, HasSubstr(step));
    EXPECT_THAT(run.errors, testing::Not(HasSubstr("] 4/4")));
    // Nothing of the bar stays.
    EXPECT_THAT(run.errors, testing::EndsWith("\r\x1b[K"));
  }
}

TEST(qv_progress, of_a_study_counts_the_sun_from_the_first_step_on) {
  const qv_temporary_folder place;
  const std::vector<std::string> words = {"study",     sample,  "--no-pictures",
                                          "--quality", "draft", "--reflexions",
                                          "0",         "--out", place.path() / "out"};
  const auto run = qv_run_on_terminal(words);
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  for (const char* step : {"] 1/6", "] 2/6", "] 3/6", "] 4/6", "] 5/6", "] 6/6"})
    EXPECT_THAT(run.errors, HasSubstr(step));
  EXPECT_THAT(run.errors, testing::Not(HasSubstr("/5 ")));
}

TEST(qv_progress, fills_its_bar_step_by_step) {
  EXPECT_EQ(qv::qv_progress::bar_text(1, 4, "reading"), "[--------------------] 1/4 reading");
  EXPECT_EQ(qv::qv_progress::bar_text(3, 4, "walls"), "[##########----------] 3/4 walls");
}

}  // namespace
