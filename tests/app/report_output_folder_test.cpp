#include "app/report/qv_output_folder.h"

#include <gtest/gtest.h>
#include <sys/stat.h>

#include <algorithm>
#include <fstream>
#include <sstream>

#include "app/readers/qv_input_error.h"
#include "tests/app/qv_temporary_folder.h"

namespace {

namespace fs = std::filesystem;
using qv::qv_input_error;
using qv::qv_output_file;
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

std::string complaint_about(const fs::path& path, const std::vector<std::string>& read) {
  try {
    const qv_output_file file(path, read);
  } catch (const qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), 4);
    return error.what();
  }
  return "none";
}

TEST(qv_output_file, takes_the_place_of_no_file_that_is_read) {
  const qv_temporary_folder place;
  const fs::path model = place.path() / "model.xml";
  const fs::path weather = place.path() / "weather.epw";
  const std::vector<std::string> read = {model.string(), "", weather.string()};
  EXPECT_EQ(complaint_about(model, read), "none");  // it will be told that there is no model
  std::ofstream(model) << "model";
  std::ofstream(weather) << "weather";
  fs::create_symlink(model, place.path() / "link.xml");
  fs::create_hard_link(model, place.path() / "second.xml");
  for (const fs::path& name : {model, weather, place.path() / "." / "model.xml",
                               place.path() / "link.xml", place.path() / "second.xml"}) {
    EXPECT_EQ(complaint_about(name, read),
              name.string() +
                  ": cannot be written: it is a file that this run reads; name another place");
  }
  EXPECT_EQ(complaint_about(place.path() / "new.xml", read), "none");
  EXPECT_EQ(content_of(model), "model");

  qv_output_folder folder(place.path(), read);
  folder.stage("other.xml", "1");
  EXPECT_THROW(folder.stage("model.xml", "1"), qv_input_error);
}

// A rename would put a file in the place of /dev/null.
TEST(qv_output_file, takes_the_place_of_no_pipe_and_no_device) {
  const qv_temporary_folder place;
  const fs::path pipe = place.path() / "pipe";
  ASSERT_EQ(::mkfifo(pipe.c_str(), 0600), 0);
  EXPECT_EQ(complaint_about(pipe, {}),
            pipe.string() +
                ": cannot be written: a device or pipe is in its place; name another "
                "place");
  EXPECT_TRUE(fs::is_fifo(pipe));
}

TEST(qv_output_file, names_its_folder_when_that_takes_no_files) {
  EXPECT_EQ(complaint_about("/proc/hours.csv", {}),
            "/proc: cannot be written: No such file or directory; name another place");
}

TEST(qv_output_folder, takes_away_what_an_earlier_run_left_when_it_is_to_be_discarded) {
  const qv_temporary_folder place;
  const fs::path folder_of_theirs = place.path() / "folder";
  fs::create_directory(folder_of_theirs);
  for (const char* name : {"old.txt", "read.txt", "kept.txt"}) std::ofstream(place.path() / name);
  {
    qv_output_folder failed(place.path());
    failed.discard("old.txt");
  }
  EXPECT_EQ(entry_count(place.path()), 4u);
  qv_output_folder folder(place.path(), {(place.path() / "read.txt").string()});
  for (const char* name : {"old.txt", "read.txt", "folder", "never there"}) folder.discard(name);
  folder.commit();
  EXPECT_EQ(entry_count(place.path()), 3u);
  EXPECT_FALSE(fs::exists(place.path() / "old.txt"));
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
