#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <nlohmann/json.hpp>

#include "tests/app/qv_gbxml_text.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

using testing::HasSubstr;

const std::string sample = QV_SOURCE_DIR "/samples/house.xml";

class check_command : public testing::Test {
 protected:
  // A room whose eastern wall looks inwards and whose northern one is missing.
  std::string write_room(bool without_wall) {
    qv_gbxml_text text;
    text.box("room", {0, 0, 0}, {4, 5, 2.5});
    std::string content = text.text();
    const std::string from = qv_gbxml_text::loop({{4, 0, 0}, {4, 5, 0}, {4, 5, 2.5}, {4, 0, 2.5}});
    const std::string to = qv_gbxml_text::loop({{4, 0, 2.5}, {4, 5, 2.5}, {4, 5, 0}, {4, 0, 0}});
    content.replace(content.find(from), from.size(), to);
    if (without_wall) {
      const std::size_t at = content.find("<Surface id=\"room-north\"");
      content.erase(at, content.find("</Surface>\n", at) + 11 - at);
    }
    std::string path = place_.path() / "room.xml";
    std::ofstream(path, std::ios::binary) << content;
    return path;
  }
  qv_temporary_folder place_;
};

TEST_F(check_command, has_nothing_to_tell_of_the_sample) {
  const auto run = qv_run({"check", sample});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(run.output, "no findings\n");
  const auto json = qv_run({"check", sample, "--format", "json"});
  EXPECT_EQ(json.exit_code, 0);
  EXPECT_TRUE(nlohmann::json::parse(json.output).at("findings").empty());
}

TEST_F(check_command, tells_each_finding_on_a_line) {
  const auto run = qv_run({"check", write_room(true)});
  EXPECT_EQ(run.exit_code, 1) << run.errors;
  EXPECT_EQ(std::count(run.output.begin(), run.output.end(), '\n'), 3);
  EXPECT_THAT(run.output, testing::StartsWith("leaking-space: Space \"room\" at ("));
  EXPECT_THAT(run.output,
              HasSubstr("\nreversed-normal: Surface \"room-east\" at (4.00, 2.50, 1.25)"));
  EXPECT_THAT(run.output, testing::EndsWith("\n2 findings\n"));
}

TEST_F(check_command, tells_the_same_as_json) {
  const std::string model = write_room(true);
  const auto run = qv_run({"check", model, "--format", "json"});
  EXPECT_EQ(run.exit_code, 1);
  const auto json = nlohmann::json::parse(run.output);
  EXPECT_EQ(json.at("format"), "qv-check");
  EXPECT_EQ(json.at("source"), model);
  ASSERT_EQ(json.at("findings").size(), 2u);
  const auto& reversed = json.at("findings")[1];
  EXPECT_EQ(reversed.at("code"), "reversed-normal");
  EXPECT_EQ(reversed.at("kind"), "Surface");
  EXPECT_EQ(reversed.at("id"), "room-east");
  EXPECT_EQ(reversed.at("place"), (nlohmann::json{4, 2.5, 1.25}));
}

TEST_F(check_command, turns_what_is_reversed_and_leaves_the_rest) {
  const std::string mended = place_.path() / "new" / "mended.xml";
  const auto run = qv_run({"check", write_room(false), "--fix", "--out", mended});
  EXPECT_EQ(run.exit_code, 0) << run.output << run.errors;
  EXPECT_EQ(run.output, "1 surface turned, written to " + mended + "\nno findings\n");
  EXPECT_EQ(qv_run({"check", mended}).exit_code, 0);
  const auto left = qv_run({"check", write_room(true), "--fix", "--out", mended});
  EXPECT_EQ(left.exit_code, 1);
  EXPECT_THAT(left.output, testing::StartsWith("leaking-space: "));
  EXPECT_THAT(left.output, testing::Not(HasSubstr("reversed-normal")));
}

TEST_F(check_command, names_each_mistake) {
  const std::pair<std::vector<std::string>, std::string> mistakes[] = {
      {{"check"}, "MODEL is required"},
      {{"check", sample, "--fix"}, "--fix and --out go together"},
      {{"check", sample, "--out", "x.xml"}, "--fix and --out go together"},
      {{"check", sample, "--format", "yaml"}, "--format: \"yaml\" is not text or json"}};
  for (const auto& [words, told] : mistakes) {
    const auto run = qv_run(words);
    EXPECT_EQ(run.exit_code, 2);
    EXPECT_THAT(run.errors, HasSubstr(told));
  }
  EXPECT_EQ(qv_run({"check", "missing.xml"}).exit_code, 4);
}

TEST_F(check_command, is_part_of_a_study_which_marks_what_leaks) {
  const std::string out = place_.path() / "out";
  const auto run = qv_run({"study", write_room(true), "--no-pictures", "--out", out});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("50.00*"));
  EXPECT_THAT(run.output, HasSubstr("* The space leaks"));
  EXPECT_THAT(run.output, HasSubstr("reversed-normal"));
  const auto json = nlohmann::json::parse(qv_file_content(out + "/study.json"));
  EXPECT_EQ(json.at("findings").size(), 2u);
  EXPECT_GT(json.at("spaces")[0].at("leaking_share"), 0.05);

  const std::string house_out = place_.path() / "house";
  const auto house = qv_run({"study", sample, "--no-pictures", "--out", house_out});
  EXPECT_THAT(house.output, testing::Not(HasSubstr("Findings")));
  const auto house_json = nlohmann::json::parse(qv_file_content(house_out + "/study.json"));
  EXPECT_TRUE(house_json.at("findings").empty());
  EXPECT_TRUE(house_json.at("spaces")[0].at("leaking_share").is_null());
}

}  // namespace
