#include "tests/app/qv_shared_models.h"

#include <algorithm>
#include <cctype>
#include <cstdlib>
#include <filesystem>

#include "bim/qv_load_bim_items.h"
#include "tests/support/qv_test_paths.h"

namespace fs = std::filesystem;

namespace qv_test {

std::string models_folder() {
  const char* named = std::getenv("QV_SHARED_DATA");
  return (fs::path(named != nullptr ? named : QV_SOURCE_DIR "/../shared/data") / "gbxml").string();
}

std::vector<std::string> model_names() {
  std::vector<std::string> names;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(models_folder(), ignored)) {
    if (entry.path().extension() == ".xml") names.push_back(entry.path().filename().string());
  }
  std::sort(names.begin(), names.end());
  if (names.empty()) names.emplace_back();
  return names;
}

void shared_model::SetUp() {
  if (GetParam().empty()) GTEST_SKIP() << "no models in " << models_folder();
  qv_load_bim_items();
}

std::string model_test_name(const testing::TestParamInfo<std::string>& model) {
  std::string name = model.param.empty() ? "none" : model.param;
  std::replace_if(
      name.begin(), name.end(), [](unsigned char letter) { return std::isalnum(letter) == 0; },
      '_');
  return name;
}

}  // namespace qv_test
