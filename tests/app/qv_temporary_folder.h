#pragma once

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>
#include <string>

/// A folder of its own for a test, gone with the object.
class qv_temporary_folder {
 public:
  qv_temporary_folder() {
    std::string name = (std::filesystem::temp_directory_path() / "qv_test_XXXXXX").string();
    if (::mkdtemp(name.data()) == nullptr) throw std::runtime_error("no temporary folder");
    path_ = name;
  }
  qv_temporary_folder(const qv_temporary_folder&) = delete;
  qv_temporary_folder& operator=(const qv_temporary_folder&) = delete;
  ~qv_temporary_folder() {
    std::error_code ignored;
    std::filesystem::remove_all(path_, ignored);
  }

  const std::filesystem::path& path() const { return path_; }

 private:
  std::filesystem::path path_;
};
