// A program of its own, which is not linked with the module: it loads the library as a host does
// and sees what the host knows before and after the entry.

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <map>
#include <memory>
#include <set>

#include "core/items/qv_item.h"
#include "core/items/qv_item_type.h"
#include "tests/support/qv_failing_memory.h"

using namespace qv;

namespace {

using names = std::vector<std::string>;

// The types that the entry makes known, in the order in which their records come into being. Those
// above a listed class that are not themselves listed before it come with it: "opening_shader" with
// "glazing", "glazing_layer" with "glazing_gaz", "xspace" with "space".
const names registered = {"bim_configuration",
                          "bim_root",
                          "bim_property",
                          "bim_object",
                          "custom_bim_object",
                          "bim_polygon",
                          "composition",
                          "matter",
                          "material",
                          "material_mix",
                          "wall",
                          "opening_shader",
                          "glazing",
                          "glazing_layer",
                          "glazing_gaz",
                          "glazing_glass",
                          "glazing_interlayer",
                          "glazing_pv",
                          "opaque",
                          "opening",
                          "opening_composition",
                          "campus",
                          "building",
                          "zone",
                          "xspace",
                          "space",
                          "limit_condition",
                          "connexion",
                          "usage",
                          "usage_heating_cooling",
                          "usage_ventilation",
                          "usage_lighting",
                          "usage_internal_gains"};

using entry_function = void (*)();

// The host's view at three times: library loaded, entry called, entry called again.
class entry : public ::testing::Test {
 protected:
  static void SetUpTestSuite() {
    library_ = dlopen(QV_BIM_LIBRARY, RTLD_NOW | RTLD_GLOBAL);
    ASSERT_NE(library_, nullptr) << dlerror();
    function_ = reinterpret_cast<entry_function>(dlsym(library_, "qv_load_bim_items"));
    ASSERT_NE(function_, nullptr) << dlerror();
    before_ = known();
    if (!known_to_survive_failures_) known_to_survive_failures_ = try_failing_allocations();
    function_();
    after_ = known();
    for (const std::string& name : registered)
      if (const qv_item_type* type = qv_item_type::find(name)) samples_[name] = type->get_sample();
    function_();
    again_ = known();
  }
  static names known() {
    names result;
    for (const qv_item_type* type : qv_item_type::get_types()) result.push_back(type->get_name());
    return result;
  }
  static bool contains(const names& all, const std::string& name) {
    return std::find(all.begin(), all.end(), name) != all.end();
  }

  // Runs the entry in child processes in which one allocation fails, sooner or later, and tells
  // which of them went wrong.
  static std::unique_ptr<names> try_failing_allocations();

  static inline void* library_ = nullptr;
  static inline entry_function function_ = nullptr;
  static inline names before_;
  static inline names after_;
  static inline names again_;
  static inline std::map<std::string, qv_item*> samples_;
  static inline std::unique_ptr<names> known_to_survive_failures_;
};

// What a child process reports by its exit code.
enum outcome { sound = 0, thrown = 1, lost_classes = 2, not_reached = 3 };

outcome run_with_failing_allocation(entry_function function, long index) {
  qv_test::fail_allocation_after(index);
  try {
    function();
  } catch (...) {
    return thrown;
  }
  if (qv_test::is_failure_pending()) return not_reached;
  int known = 0;
  for (const std::string& name : registered) known += qv_item_type::find(name) != nullptr;
  return known + 1 < static_cast<int>(registered.size()) ? lost_classes : sound;
}

std::unique_ptr<names> entry::try_failing_allocations() {
  auto faults = std::make_unique<names>();
  long index = 0;
  long step = 1;
  for (int run = 0; run < 150; ++run, index += step, step = 1 + index / 40) {
    const pid_t child = fork();
    if (child == 0) _exit(run_with_failing_allocation(function_, index));
    int status = 0;
    waitpid(child, &status, 0);
    const int code = WIFEXITED(status) ? WEXITSTATUS(status) : 100;
    if (code == not_reached) break;
    if (code != sound)
      faults->push_back("allocation " + std::to_string(index) + ": code " + std::to_string(code));
  }
  return faults;
}

TEST_F(entry, loading_the_library_alone_registers_nothing) {
  for (const std::string& name : registered) EXPECT_FALSE(contains(before_, name)) << name;
}

TEST_F(entry, registers_the_types_in_their_fixed_order) {
  names found;
  for (const std::string& name : after_)
    if (contains(registered, name)) found.push_back(name);
  EXPECT_EQ(found, registered);
}

TEST_F(entry, registers_each_type_once) {
  const std::set<std::string> distinct(after_.begin(), after_.end());
  EXPECT_EQ(distinct.size(), after_.size());
}

TEST_F(entry, leaves_coverings_and_piercings_unknown) {
  EXPECT_FALSE(contains(again_, "covering"));
  EXPECT_FALSE(contains(again_, "bim_piercing"));
  EXPECT_EQ(qv_item_type::find("covering"), nullptr);
  EXPECT_EQ(qv_item_type::find("bim_piercing"), nullptr);
}

TEST_F(entry, a_type_comes_after_the_one_above_it) {
  for (const qv_item_type* type : qv_item_type::get_types()) {
    const qv_item_type* above = type->get_parent();
    EXPECT_TRUE(above == nullptr || above->get_index() < type->get_index()) << type->get_name();
  }
}

TEST_F(entry, the_index_finds_every_type_with_its_parent) {
  for (const std::string& name : registered) ASSERT_NE(qv_item_type::find(name), nullptr) << name;
  EXPECT_EQ(qv_item_type::find("usage_lighting")->get_parent(), qv_item_type::find("usage"));
  EXPECT_EQ(qv_item_type::find("space")->get_parent(), qv_item_type::find("xspace"));
  EXPECT_EQ(qv_item_type::find("material_mix")->get_parent(), qv_item_type::find("material"));
  EXPECT_EQ(qv_item_type::find("matter")->get_parent(), qv_item_type::find("shader"));
  EXPECT_EQ(qv_item_type::find("bim_polygon")->get_parent(), qv_item_type::find("polygon"));
  EXPECT_EQ(qv_item_type::find("xspace")->get_parent(), qv_item_type::find("item"));
}

TEST_F(entry, each_type_has_one_sample_of_its_own_class) {
  std::set<qv_item*> distinct;
  for (const std::string& name : registered) {
    ASSERT_NE(samples_[name], nullptr) << name;
    EXPECT_TRUE(samples_[name]->has_exact_type(name)) << name;
    EXPECT_EQ(samples_[name]->get_scene(), nullptr);
    distinct.insert(samples_[name]);
  }
  EXPECT_EQ(distinct.size(), registered.size());
}

TEST_F(entry, a_second_call_registers_nothing_new) {
  EXPECT_EQ(again_, after_);
  for (const std::string& name : registered)
    EXPECT_EQ(qv_item_type::find(name)->get_sample(), samples_[name]) << name;
}

TEST_F(entry, an_allocation_that_fails_ends_nothing_but_its_own_class) {
  EXPECT_EQ(*known_to_survive_failures_, names{});
}

TEST_F(entry, a_copy_is_null_when_memory_is_short) {
  for (const std::string& name : registered) {
    qv_item* sample = samples_[name];
    ASSERT_NE(sample, nullptr);
    // The first allocation, or a later one within the construction, fails.
    for (long succeeding = 0; succeeding < 500; ++succeeding) {
      qv_test::fail_allocation_after(succeeding);
      qv_item* copy = sample->copy();
      qv_test::fail_allocation_after(-1);
      if (copy != nullptr) {
        EXPECT_GT(succeeding, 0) << name << " needs memory";
        qv_item::destroy(copy);
        break;
      }
      ASSERT_LT(succeeding, 499) << name;
    }
  }
}

}  // namespace
