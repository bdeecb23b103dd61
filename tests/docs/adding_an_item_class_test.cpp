#include <gtest/gtest.h>

#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/support/qv_test_paths.h"

namespace {

std::string read(const std::string& path) {
  std::ifstream file(std::string(QV_SOURCE_DIR) + "/" + path);
  EXPECT_TRUE(file) << path;
  std::stringstream text;
  text << file.rdbuf();
  return text.str();
}

/// The C++ blocks of a Markdown text, without their fences.
std::vector<std::string> get_code_blocks(const std::string& markdown) {
  const std::string fence = "```cpp\n";
  std::vector<std::string> blocks;
  for (std::size_t at = markdown.find(fence); at != std::string::npos;
       at = markdown.find(fence, at)) {
    at += fence.size();
    blocks.push_back(markdown.substr(at, markdown.find("```", at) - at));
  }
  return blocks;
}

TEST(adding_an_item_class, shows_code_that_is_compiled_and_tested) {
  const std::string compiled = read("docs/examples/qvi_heat_emitter.h") +
                               read("docs/examples/qvi_heat_emitter.cpp") +
                               read("tests/docs/qvi_heat_emitter_test.cpp");
  const std::vector<std::string> blocks = get_code_blocks(read("docs/adding-an-item-class.md"));
  EXPECT_GE(blocks.size(), 5u);
  for (const std::string& block : blocks) {
    EXPECT_NE(compiled.find(block), std::string::npos) << "not in the example:\n" << block;
  }
}

}  // namespace
