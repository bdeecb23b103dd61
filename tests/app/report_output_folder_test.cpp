#include "app/report/qv_output_folder.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "app/readers/qv_input_error.h"
#include "tests/app/qv_temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using qv::qv_input_error;
using qv::qv_output_folder;

std::string content_of(const fs::path& path) {
  std::ostringstream text;
  text << std::ifstream(path, std::ios::binary).rdbuf();
  return text.str();
}

std::size_t entry_count(const fs::path& folder) {
  return static_cast<std::size_t>(
      std::distance(fs::directory_iterator(folder), fs::directory_iterator()));
}

TEST(qv_output_folder, puts_every_staged_file_in_its_place) {
  const qv_temporary_folder place;
  qv_output_folder folder(place.path() / "a" / "b");
  folder.stage("one.txt", "1\r\n");
  folder.stage("two.txt", "2");
  EXPECT_FALSE(fs::exists(place.path() / "a" / "b" / "one.txt"));
  folder.commit();
  EXPECT_EQ(content_of(place.path() / "a" / "b" / "one.txt"), "1\r\n");
  EXPECT_EQ(content_of(place.path() / "a" / "b" / "two.txt"), "2");
  EXPECT_EQ(entry_count(place.path() / "a" / "b"), 2u);
}

TEST(qv_output_folder, replaces_what_an_earlier_run_left) {
  const qv_temporary_folder place;
  for (const char* text : {"old", "new"}) {
    qv_output_folder folder(place.path());
    folder.stage("one.txt", text);
    folder.commit();
  }
  EXPECT_EQ(content_of(place.path() / "one.txt"), "new");
}

TEST(qv_output_folder, leaves_nothing_when_nothing_is_committed) {
  const qv_temporary_folder place;
  {
    qv_output_folder folder(place.path() / "new" / "deep");
    folder.stage("one.txt", "1");
    EXPECT_EQ(entry_count(place.path() / "new" / "deep"), 1u);
  }
  EXPECT_EQ(entry_count(place.path()), 0u);
}

TEST(qv_output_folder, keeps_a_folder_in_which_somebody_else_put_something) {
  const qv_temporary_folder place;
  {
    qv_output_folder folder(place.path() / "new");
    std::ofstream(place.path() / "new" / "theirs.txt") << "x";
  }
  EXPECT_EQ(content_of(place.path() / "new" / "theirs.txt"), "x");
}

TEST(qv_output_folder, leaves_earlier_results_alone_when_a_run_fails) {
  const qv_temporary_folder place;
  std::ofstream(place.path() / "one.txt") << "old";
  fs::create_directories(place.path() / "two.txt");
  {
    qv_output_folder folder(place.path());
    folder.stage("one.txt", "new");
    EXPECT_THROW(folder.stage("two.txt", "new"), qv_input_error);
  }
  EXPECT_EQ(content_of(place.path() / "one.txt"), "old");
  EXPECT_EQ(entry_count(place.path()), 2u);
}

TEST(qv_output_folder, says_that_a_file_stands_where_the_folder_should) {
  const qv_temporary_folder place;
  std::ofstream(place.path() / "file") << "x";
  for (const fs::path& path : {place.path() / "file", place.path() / "file" / "below"}) {
    try {
      const qv_output_folder folder(path);
      ADD_FAILURE() << path << " was taken for a folder";
    } catch (const qv_input_error& error) {
      EXPECT_EQ(error.get_exit_code(), 4);
      EXPECT_NE(std::string(error.what()).find(path.string()), std::string::npos) << error.what();
    }
  }
}

}  // namespace
