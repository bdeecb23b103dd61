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
///
/// Only files of an earlier run are replaced: no file of `read`, which are those that the run
/// reads, and nothing that is no regular file.
class qv_output_folder {
 public:
  /// Makes the folder with those above it where they are missing, and makes sure that files can be
  /// made in it.
  explicit qv_output_folder(std::filesystem::path folder, std::vector<std::string> read = {});
  qv_output_folder(const qv_output_folder&) = delete;
  qv_output_folder& operator=(const qv_output_folder&) = delete;
  ~qv_output_folder();

  /// Makes sure that a file of this name may be made, or replaced, before there is its content.
  void check_place(const std::string& name) const;
  /// Writes `content` beside the place of `name`.
  void stage(const std::string& name, std::string_view content);
  /// What an earlier run left under this name is of no use beside the files of this one: `commit`
  /// takes it away.
  void discard(const std::string& name);
  /// Puts every staged file in its place, over what an earlier run left there. On an
  /// error none of them is left.
  void commit();

  const std::filesystem::path& get_path() const { return folder_; }

 private:
  void make_folder();
  // Why no file of this name may be made or replaced; empty when it may.
  std::string find_obstacle(const std::string& name) const;
  void remove_leftovers() noexcept;
  std::filesystem::path part_of(const std::string& name) const;

  std::filesystem::path folder_;
  std::vector<std::string> read_;
  std::vector<std::filesystem::path> made_folders_;  // innermost last
  std::vector<std::string> staged_;
  std::vector<std::string> discarded_;
  bool committed_ = false;
};

/// The one file that a run writes, whole or not at all; its folder is made where it is missing.
class qv_output_file {
 public:
  /// Makes sure that a file can be made there, over none of those that the run reads. Throws
  /// `qv_input_error`, of the kind `no_access`.
  explicit qv_output_file(const std::filesystem::path& path, std::vector<std::string> read = {});

  void stage(std::string_view content) { folder_.stage(name_, content); }
  void commit() { folder_.commit(); }

 private:
  qv_output_folder folder_;
  std::string name_;
};

}  // namespace qv
