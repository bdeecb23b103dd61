#pragma once

#include <gtest/gtest.h>

#include <string>
#include <vector>

namespace qv_test {

/// Folder of the models of other people's tools, which stand beside the project and not in it:
/// `gbxml` in $QV_SHARED_DATA, or else in ../shared/data.
std::string models_folder();

/// File names of the models there, sorted; one empty name when there are none.
std::vector<std::string> model_names();

/// A test for each of them, skipped where there are none.
class shared_model : public testing::TestWithParam<std::string> {
 protected:
  void SetUp() override;
  std::string path() const { return models_folder() + "/" + GetParam(); }
};

/// The file's name in letters that a test's name may have.
std::string model_test_name(const testing::TestParamInfo<std::string>& model);

}  // namespace qv_test
