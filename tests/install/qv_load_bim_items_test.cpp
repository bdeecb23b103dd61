#include "bim/qv_load_bim_items.h"

#include <dlfcn.h>
#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "core/items/qv_item.h"
#include "core/items/qv_item_type.h"

namespace {

using namespace qv;

/// The module as a host has it: not linked, loaded while the program runs, never unloaded.
class qv_bim_module : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    for (const qv_item_type* type : qv_item_type::get_types()) host_types_.push_back(type);
    void* library = dlopen(QV_BIM_LIBRARY, RTLD_NOW | RTLD_LOCAL);
    ASSERT_NE(library, nullptr) << dlerror();
    const auto entry =
        reinterpret_cast<decltype(&qv_load_bim_items)>(dlsym(library, "qv_load_bim_items"));
    ASSERT_NE(entry, nullptr) << dlerror();
    load_ = entry;
    load_();
  }

  /// Names of the types that came with the module, in the order of their registration.
  static std::vector<std::string> get_module_types() {
    std::vector<std::string> names;
    for (const qv_item_type* type : qv_item_type::get_types()) {
      if (testing::Value(host_types_, testing::Contains(type))) continue;
      names.push_back(type->get_name());
    }
    return names;
  }

  static std::string get_parent_name(const std::string& type_name) {
    const qv_item_type* type = qv_item_type::find(type_name);
    if (type == nullptr) return "no such type";
    return type->get_parent() == nullptr ? "" : type->get_parent()->get_name();
  }

  static inline void (*load_)() = nullptr;
  static inline std::vector<const qv_item_type*> host_types_;
};

TEST_F(qv_bim_module, registers_its_types_in_the_order_of_its_entry_bases_first) {
  std::vector<std::string> names = get_module_types();
  // The classes that the module builds upon belong to the host and come with the first class that
  // derives from them.
  for (const char* host_type : {"item", "mesh", "polygon", "shader"}) std::erase(names, host_type);
  EXPECT_EQ(names, (std::vector<std::string>{"bim_configuration",
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
                                             "usage_internal_gains"}));
}

TEST_F(qv_bim_module, places_each_type_under_that_of_its_base_class) {
  EXPECT_EQ(get_parent_name("usage_lighting"), "usage");
  EXPECT_EQ(get_parent_name("space"), "xspace");
  EXPECT_EQ(get_parent_name("custom_bim_object"), "bim_object");
  EXPECT_EQ(get_parent_name("bim_polygon"), "polygon");
  EXPECT_EQ(get_parent_name("material_mix"), "material");
  EXPECT_EQ(get_parent_name("glazing_pv"), "glazing_glass");
  EXPECT_EQ(get_parent_name("glazing"), "opening_shader");
  EXPECT_EQ(get_parent_name("opening_shader"), "shader");
  EXPECT_EQ(get_parent_name("wall"), "item");
}

TEST_F(qv_bim_module, leaves_coverings_and_piercings_unknown) {
  EXPECT_EQ(qv_item_type::find("covering"), nullptr);
  EXPECT_EQ(qv_item_type::find("bim_piercing"), nullptr);
}

TEST_F(qv_bim_module, registers_nothing_new_when_loaded_again) {
  const int count = qv_item_type::get_types().get_count();
  load_();
  EXPECT_EQ(qv_item_type::get_types().get_count(), count);
}

TEST_F(qv_bim_module, makes_items_through_their_types_alone) {
  for (const std::string& name : get_module_types()) {
    qv_item* item = qv_item_type::find(name)->create_item();
    ASSERT_NE(item, nullptr) << name;
    EXPECT_TRUE(item->has_exact_type(name)) << name;
    qv_item::destroy(item);
  }
}

}  // namespace
