#pragma once

#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

namespace qv {

/// A folder that receives the files of one run: all of them, or none.
///
/// Whatever cannot be written ends in a `qv_input_error` of the kind `no_access`.
///
/// Files are written beside their place and renamed by `commit`. What was not committed is gone
/// with the object, and so are the folders that were made for it.
class qv_output_folder {
 public:
  /// Makes the folder with those above it where they are missing, and makes sure that files can be
  /// made in it.
  explicit qv_output_folder(std::filesystem::path folder);
  qv_output_folder(const qv_output_folder&) = delete;
  qv_output_folder& operator=(const qv_output_folder&) = delete;
  ~qv_output_folder();

  /// Writes `content` beside the place of `name`.
  void stage(const std::string& name, std::string_view content);
  /// Puts every staged file in its place, over what an earlier run left there. On an
  /// error none of them is left.
  void commit();

  const std::filesystem::path& get_path() const { return folder_; }

 private:
  void make_folder();
  void remove_leftovers() noexcept;
  std::filesystem::path part_of(const std::string& name) const;

  std::filesystem::path folder_;
  std::vector<std::filesystem::path> made_folders_;  // innermost last
  std::vector<std::string> staged_;
  bool committed_ = false;
};

/// The one file that a run writes, whole or not at all; its folder is made where it is missing.
class qv_output_file {
 public:
  /// Makes sure that a file can be made there. Throws `qv_input_error`, of the kind `no_access`.
  explicit qv_output_file(const std::filesystem::path& path);

  void stage(std::string_view content) { folder_.stage(name_, content); }
  void commit() { folder_.commit(); }

 private:
  qv_output_folder folder_;
  std::string name_;
};

}  // namespace qv
