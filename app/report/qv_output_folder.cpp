#include "app/report/qv_output_folder.h"

#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <memory>
#include <system_error>

#include "app/readers/qv_input_error.h"

namespace qv {
namespace {

namespace fs = std::filesystem;

[[noreturn]] void fail(const fs::path& path, const std::string& reason) {
  throw qv_input_error(qv_input_error::kind::no_access, {path.string(), 0, {}, {}},
                       "cannot be written: " + reason, "name another place");
}

std::string reason_of(int error) {
  return std::generic_category().message(error);
}

// Why the file cannot be written; empty when it was.
std::string write_file(const fs::path& path, std::string_view content) {
  struct closer {
    void operator()(std::FILE* file) const { std::fclose(file); }
  };
  std::unique_ptr<std::FILE, closer> file(std::fopen(path.c_str(), "wb"));
  if (file == nullptr) return reason_of(errno);
  if (!content.empty() &&
      std::fwrite(content.data(), 1, content.size(), file.get()) != content.size()) {
    return reason_of(errno);
  }
  if (std::fclose(file.release()) != 0) return reason_of(errno);
  return {};
}

// Whether two names are those of one file, however they are written.
bool is_same_file(const fs::path& a, const fs::path& b) {
  std::error_code ignored;
  return fs::equivalent(a, b, ignored);
}

}  // namespace

qv_output_folder::qv_output_folder(fs::path folder, std::vector<std::string> read)
    : folder_(std::move(folder)), read_(std::move(read)) {
  try {
    make_folder();
    const fs::path probe = part_of("probe");
    const std::string obstacle = write_file(probe, {});
    if (!obstacle.empty()) fail(folder_, obstacle);
    fs::remove(probe);
  } catch (const fs::filesystem_error& error) {
    remove_leftovers();
    fail(folder_, error.code().message());
  } catch (const qv_input_error&) {
    remove_leftovers();
    throw;
  }
}

qv_output_folder::~qv_output_folder() {
  if (!committed_) remove_leftovers();
}

void qv_output_folder::make_folder() {
  if (fs::exists(folder_)) {
    if (!fs::is_directory(folder_)) fail(folder_, "it is a file, and a folder is needed");
    return;
  }
  std::vector<fs::path> missing;
  for (fs::path path = fs::absolute(folder_).lexically_normal(); !fs::exists(path);
       path = path.parent_path()) {
    missing.push_back(path);
  }
  for (auto path = missing.rbegin(); path != missing.rend(); ++path) {
    if (fs::create_directory(*path)) made_folders_.push_back(*path);
  }
}

fs::path qv_output_folder::part_of(const std::string& name) const {
  return folder_ / ("." + name + "." + std::to_string(::getpid()) + ".part");
}

void qv_output_folder::check_place(const std::string& name) const {
  const std::string obstacle = find_obstacle(name);
  if (!obstacle.empty()) fail(folder_ / name, obstacle);
}

std::string qv_output_folder::find_obstacle(const std::string& name) const {
  const fs::path place = folder_ / name;
  std::error_code ignored;
  const fs::file_status present = fs::status(place, ignored);
  if (!fs::exists(present)) return {};
  if (fs::is_directory(present)) return "a folder of that name is in its place";
  if (!fs::is_regular_file(present)) return "a device or pipe is in its place";
  const bool is_read = std::any_of(read_.begin(), read_.end(), [&place](const std::string& file) {
    return is_same_file(place, file);
  });
  return is_read ? "it is a file that this run reads" : "";
}

void qv_output_folder::stage(const std::string& name, std::string_view content) {
  check_place(name);
  if (std::find(staged_.begin(), staged_.end(), name) == staged_.end()) staged_.push_back(name);
  const std::string obstacle = write_file(part_of(name), content);
  if (!obstacle.empty()) fail(folder_ / name, obstacle);
}

void qv_output_folder::discard(const std::string& name) {
  discarded_.push_back(name);
}

void qv_output_folder::commit() {
  for (std::size_t index = 0; index < staged_.size(); ++index) {
    const fs::path place = folder_ / staged_[index];
    std::error_code error;
    fs::rename(part_of(staged_[index]), place, error);
    if (error) {
      std::error_code ignored;
      for (std::size_t done = 0; done < index; ++done) fs::remove(folder_ / staged_[done], ignored);
      fail(place, error.message());
    }
  }
  committed_ = true;
  std::error_code ignored;
  for (const std::string& name : discarded_)
    if (find_obstacle(name).empty()) fs::remove(folder_ / name, ignored);
}

void qv_output_folder::remove_leftovers() noexcept {
  std::error_code ignored;
  for (const std::string& name : staged_) fs::remove(part_of(name), ignored);
  // A folder that somebody else has put something in is not empty and stays.
  for (auto path = made_folders_.rbegin(); path != made_folders_.rend(); ++path) {
    fs::remove(*path, ignored);
  }
}

qv_output_file::qv_output_file(const fs::path& path, std::vector<std::string> read)
    : folder_(path.has_parent_path() ? path.parent_path() : fs::path("."), std::move(read)),
      name_(path.filename().string()) {
  folder_.check_place(name_);
}

}  // namespace qv
