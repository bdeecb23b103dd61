#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>

#include "app/pictures/qv_study_pictures.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/pictures/qv_picture_comparison.h"
#include "tests/support/qv_test_paths.h"

namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

const std::string sample = QV_SOURCE_DIR "/samples/house.xml";

void expect_one_line_complaint(const qv_program_run& run, int exit_code, const std::string& told) {
  EXPECT_EQ(run.exit_code, exit_code) << run.errors;
  EXPECT_EQ(run.output, "");
  EXPECT_EQ(std::count(run.errors.begin(), run.errors.end(), '\n'), 1) << run.errors;
  EXPECT_THAT(run.errors, HasSubstr(told));
}

std::vector<std::string> files_in(const fs::path& folder) {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(folder))
    names.push_back(entry.path().filename().string());
  std::sort(names.begin(), names.end());
  return names;
}

TEST(qv_picture_command, draws_a_picture_of_the_size_asked_for) {
  const qv_temporary_folder place;
  const std::string file = place.path() / "new" / "house.png";
  const auto run = qv_run({"picture", sample, "--out", file, "--size", "300x200", "--view", "plan",
                           "--storey", "1", "--color", "zone"});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(run.output, "Written to " + file + "\n");
  const qv::qv_pixels picture = qv_test::read_png(file);
  EXPECT_EQ(picture.width, 300);
  EXPECT_EQ(picture.height, 200);
  EXPECT_EQ(files_in(place.path() / "new"), std::vector<std::string>{"house.png"});
}

struct mistake {
  std::vector<std::string> words;
  std::string told;
};

TEST(qv_picture_command, names_each_mistake_in_the_command_line) {
  const mistake mistakes[] = {
      {{"--size", "big"}, "\"big\" is no size; write it as WIDTHxHEIGHT"},
      {{"--size", "300"}, "\"300\" is no size"},
      {{"--size", "300x"}, "\"300x\" is no size"},
      {{"--size", "300x200x100"}, "is no size"},
      {{"--size", "31x200"}, "each side is 32 to 8192 pixels"},
      {{"--size", "300x-200"}, "each side is 32 to 8192 pixels"},
      {{"--size", "8193x200"}, "each side is 32 to 8192 pixels"},
      {{"--size", "8192x8192"}, "more than 16777216 pixels"},
      {{"--size", "99999999999x200"}, "is no size"},
      {{"--view", "below"}, "--view: \"below\" is not iso, north"},
      {{"--color", "smell"}, "--color: \"smell\" is not contact-type, u"},
      {{"--storey", "-1"}, "--storey: \"-1\" is no storey"},
      {{"--storey", "1.5"}, "--storey: \"1.5\" is no storey"},
      {{"--storey", "first"}, "--storey: \"first\" is no storey"},
      {{"--north", "nan"}, "--north: \"nan\" is no angle"},
  };
  for (const mistake& made : mistakes) {
    SCOPED_TRACE(testing::PrintToString(made.words));
    std::vector<std::string> words = {"picture", sample, "--out", "x.png"};
    words.insert(words.end(), made.words.begin(), made.words.end());
    expect_one_line_complaint(qv_run(words), 2, made.told);
  }
  EXPECT_FALSE(fs::exists("x.png"));
}

TEST(qv_picture_command, refuses_what_the_model_has_not) {
  const qv_temporary_folder place;
  const std::string file = place.path() / "x.png";
  expect_one_line_complaint(qv_run({"picture", sample, "--out", file, "--select", "su-none"}), 3,
                            "has nothing with the id \"su-none\"");
  expect_one_line_complaint(qv_run({"picture", sample, "--out", file, "--hover", "no\nline"}), 3,
                            "has nothing with the id \"no line\"");
  expect_one_line_complaint(qv_run({"picture", sample, "--out", file, "--storey", "7"}), 3,
                            "there is no storey 7; choose one of 0, 1, 2");
  EXPECT_TRUE(fs::is_empty(place.path()));
}

TEST(qv_picture_command, tells_a_file_that_cannot_be_written) {
  const qv_temporary_folder place;
  std::ofstream(place.path() / "file") << "x";
  fs::create_directory(place.path() / "folder.png");
  for (const std::string& file :
       {(place.path() / "file" / "x.png").string(), std::string("/proc/qv/x.png"),
        (place.path() / "folder.png").string()}) {
    SCOPED_TRACE(file);
    expect_one_line_complaint(qv_run({"picture", sample, "--out", file}), 4, "cannot be written");
  }
}

TEST(qv_picture_command, draws_the_same_with_one_thread_and_two) {
  const qv_temporary_folder place;
  const std::string common =
      " $QV picture " + sample + " --size 200x150 --out " + place.path().string() + "/";
  const auto run = qv_run_shell("LP_NUM_THREADS=1" + common + "one.png && LP_NUM_THREADS=2" +
                                common + "two.png");
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_EQ(qv_file_content(place.path() / "one.png"), qv_file_content(place.path() / "two.png"));
}

// A machine without OpenGL: the library that the loader finds first is none.
std::string without_opengl(const qv_temporary_folder& place) {
  fs::create_directory(place.path() / "lib");
  std::ofstream(place.path() / "lib" / "libEGL.so.1") << "no library";
  return "LD_LIBRARY_PATH=" + (place.path() / "lib").string() + " $QV ";
}

TEST(qv_picture_command, says_what_a_machine_without_opengl_lacks) {
  const qv_temporary_folder place;
  const auto run = qv_run_shell(without_opengl(place) + "picture " + sample + " --out " +
                                place.path().string() + "/x.png");
  expect_one_line_complaint(run, 4, "install the packages libegl1 and libgl1-mesa-dri");
  EXPECT_FALSE(fs::exists(place.path() / "x.png"));
}

TEST(qv_study_pictures, are_left_out_with_a_line_on_a_machine_without_opengl) {
  const qv_temporary_folder place;
  const auto run = qv_run_shell(without_opengl(place) + "study " + sample + " --no-solar --out " +
                                place.path().string() + "/out");
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr("Note: no pictures: OpenGL: cannot draw: "));
  EXPECT_FALSE(fs::exists(place.path() / "out" / "pictures"));
  EXPECT_TRUE(fs::exists(place.path() / "out" / "study.json"));
}

TEST(qv_study_pictures, are_two_views_a_plan_of_each_storey_and_the_thermal_bridges) {
  const qv_temporary_folder place;
  const auto run = qv_run({"study", sample, "--no-solar", "--out", place.path() / "out"});
  ASSERT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_THAT(run.output, HasSubstr(" and 6 pictures in pictures/\n"));
  EXPECT_THAT(
      files_in(place.path() / "out" / "pictures"),
      testing::ElementsAre("iso-contact-type.png", "iso-u.png", "plan-storey-0.png",
                           "plan-storey-1.png", "plan-storey-2.png", "thermal-bridges.png"));
  for (const std::string& name : files_in(place.path() / "out" / "pictures"))
    EXPECT_EQ(qv_test::read_png(place.path() / "out" / "pictures" / name).width, 1280) << name;
}

TEST(qv_study_pictures, know_their_names) {
  for (const char* name : {"iso-contact-type.png", "iso-u.png", "thermal-bridges.png",
                           "plan-storey-0.png", "plan-storey-57.png"})
    EXPECT_TRUE(qv::qv_names_study_picture(name)) << name;
  for (const char* name :
       {"", "1", "iso-u.png.1", "plan-storey-.png", "plan-storey--1.png", "plan-storey-07.png",
        "plan-storey-1.jpg", "plan-storey-99999999999.png"})
    EXPECT_FALSE(qv::qv_names_study_picture(name)) << name;
}

TEST(qv_study_pictures, are_left_out_when_not_wanted) {
  const qv_temporary_folder place;
  const auto run =
      qv_run({"study", sample, "--no-solar", "--no-pictures", "--out", place.path() / "out"});
  EXPECT_EQ(run.exit_code, 0) << run.errors;
  EXPECT_FALSE(fs::exists(place.path() / "out" / "pictures"));
  EXPECT_THAT(run.output, testing::Not(HasSubstr("pictures")));
}

}  // namespace
