#include "app/readers/qv_file.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <filesystem>
#include <memory>

#include "app/readers/qv_input_error.h"

namespace {

[[noreturn]] void fail_to_read(const std::string& path, const std::string& problem,
                               const std::string& advice) {
  throw qv::qv_input_error(qv::qv_input_error::kind::no_access, {path, 0, "", ""}, problem, advice);
}

}  // namespace

namespace qv {

std::string qv_read_file(const std::string& path, const std::string& expected) {
  std::error_code fault;
  const auto status = std::filesystem::status(path, fault);
  if (!std::filesystem::exists(status))
    fail_to_read(path, "there is no such file", "check the path");
  if (std::filesystem::is_directory(status))
    fail_to_read(path, "is a directory", "name " + expected + " in it");
  const std::unique_ptr<std::FILE, int (*)(std::FILE*)> file(std::fopen(path.c_str(), "rb"),
                                                             &std::fclose);
  if (file == nullptr)
    fail_to_read(path, std::string("cannot be opened: ") + std::strerror(errno),
                 "check its permissions");
  std::string bytes;
  const auto size = std::filesystem::file_size(path, fault);
  constexpr std::size_t least_piece = 65536;
  if (!fault) bytes.reserve(static_cast<std::size_t>(size) + least_piece);
  for (;;) {
    const std::size_t before = bytes.size();
    bytes.resize(std::max(bytes.capacity(), before + least_piece));
    const std::size_t count =
        std::fread(bytes.data() + before, 1, bytes.size() - before, file.get());
    bytes.resize(before + count);
    if (count == 0) break;
  }
  if (std::ferror(file.get()) != 0)
    fail_to_read(path, std::string("cannot be read: ") + std::strerror(errno), "check the disk");
  return bytes;
}

}  // namespace qv
