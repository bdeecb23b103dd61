#include "tests/bim/data_model_table.h"

#include <gtest/gtest.h>

#include <map>
#include <sstream>

#include "bim/envelope/qvi_covering.h"
#include "bim/imported/qvi_bim_piercing.h"
#include "bim/materials/qvi_matter.h"
#include "bim/qv_load_bim_items.h"
#include "core/items/qv_item.h"
#include "core/items/qv_item_type.h"
#include "tests/support/qv_recorders.h"

using namespace qv;

namespace {

struct param_row {
  std::string name;
  std::string kind;
  std::vector<std::string> rest;  // default, then labels
};
struct class_row {
  std::string type;
  std::string parent;
  std::vector<param_row> params;
};

std::vector<class_row> read_table(const char* text) {
  std::vector<class_row> rows;
  std::istringstream lines(text);
  for (std::string line; std::getline(lines, line);) {
    std::istringstream words(line);
    std::string word;
    if (!(words >> word)) continue;
    if (word == "class") {
      class_row row;
      words >> row.type >> word >> row.parent;
      rows.push_back(row);
      continue;
    }
    param_row param{word, {}, {}};
    words >> param.kind;
    while (words >> word) param.rest.push_back(word == "\"\"" ? "" : word);
    rows.back().params.push_back(param);
  }
  return rows;
}

int kind_code(const std::string& kind) {
  static const std::map<std::string, int> codes = {
      {"float", 0},        {"int", 2},         {"bool", 4},      {"3dvector", 5},
      {"color", 6},        {"matrix", 7},      {"string", 8},    {"enum", 9},
      {"item", 10},        {"float_list", 11}, {"int_list", 13}, {"3dvector_list", 16},
      {"string_list", 17}, {"enum_list", 18},  {"item_list", 19}};
  return codes.at(kind);
}

bool has_value(const qv_param& param, const param_row& row) {
  const auto number = [&](std::size_t i) { return std::stof(row.rest.at(i)); };
  const std::string& kind = row.kind;
  if (kind == "float") return param.get_float() == number(0);
  if (kind == "int" || kind == "enum") return param.get_int() == std::stoi(row.rest.at(0));
  if (kind == "bool") return param.get_bool() == (row.rest.at(0) == "1");
  if (kind == "string") return param.get_string() == row.rest.at(0);
  if (kind == "3dvector")
    return param.get_3dvector() == qv_3dvector(number(0), number(1), number(2));
  if (kind == "color")
    return param.get_color() == qv_color(number(0), number(1), number(2), number(3));
  if (kind == "matrix") return param.get_matrix() == qv_matrix();
  if (kind == "item") return param.get_item() == nullptr;
  if (kind == "item_list") return param.get_item_list().is_empty();
  if (kind == "float_list") return param.get_float_list().is_empty();
  if (kind == "enum_list") return param.get_int_list().is_empty();
  if (kind == "string_list") return param.get_string_list().is_empty();
  return kind == "3dvector_list" && param.get_3dvector_list().is_empty();
}

class data_model : public ::testing::Test {
 protected:
  // Two classes become known by their first instance only.
  static void SetUpTestSuite() {
    qv_load_bim_items();
    qv_item::destroy(new qvi_covering);
    qv_item::destroy(new qvi_bim_piercing);
  }
  // A new item of the type, which `made_` frees.
  qv_item* make(const std::string& type_name) {
    qv_item_type* type = qv_item_type::find(type_name);
    if (type == nullptr) return nullptr;
    qv_item* item = type->create_item();
    made_.push_back(item);
    return item;
  }
  ~data_model() override {
    for (qv_item* item : made_) qv_item::destroy(item);
  }

 private:
  std::vector<qv_item*> made_;
};

TEST_F(data_model, lists_all_classes_of_the_module) {
  EXPECT_EQ(read_table(qv_test::data_model).size(), 35u);
}

TEST_F(data_model, each_type_derives_from_the_one_above_it) {
  for (const class_row& row : read_table(qv_test::data_model)) {
    SCOPED_TRACE(row.type);
    const qv_item_type* type = qv_item_type::find(row.type);
    ASSERT_NE(type, nullptr);
    ASSERT_NE(type->get_parent(), nullptr);
    EXPECT_EQ(type->get_parent()->get_name(), row.parent);
    qv_item* item = make(row.type);
    ASSERT_NE(item, nullptr);
    EXPECT_EQ(item->get_item_type(), type);
    EXPECT_TRUE(item->has_exact_type(row.type));
    EXPECT_TRUE(item->has_type(row.parent));
  }
}

TEST_F(data_model, each_class_declares_its_parameters_in_order_behind_those_of_its_base) {
  for (const class_row& row : read_table(qv_test::data_model)) {
    SCOPED_TRACE(row.type);
    qv_item* item = make(row.type);
    ASSERT_NE(item, nullptr);
    qv_item* base = row.parent == "item" ? nullptr : make(row.parent);
    const int first = base == nullptr ? 0 : base->get_param_count();
    for (int i = 0; i < first; ++i)
      EXPECT_EQ(item->get_param(i)->get_name(), base->get_param(i)->get_name());
    ASSERT_EQ(item->get_param_count(), first + static_cast<int>(row.params.size()));
    for (std::size_t i = 0; i < row.params.size(); ++i) {
      const qv_param* param = item->get_param(first + static_cast<int>(i));
      EXPECT_EQ(param->get_name(), row.params[i].name);
      EXPECT_EQ(param->get_param_type(), kind_code(row.params[i].kind)) << row.params[i].name;
      EXPECT_EQ(item->find_param(row.params[i].name), param);
    }
  }
}

TEST_F(data_model, each_parameter_starts_from_its_default) {
  for (const class_row& row : read_table(qv_test::data_model)) {
    qv_item* item = make(row.type);
    ASSERT_NE(item, nullptr) << row.type;
    for (const param_row& param : row.params) {
      SCOPED_TRACE(row.type + '.' + param.name);
      ASSERT_NE(item->find_param(param.name), nullptr);
      EXPECT_TRUE(has_value(*item->find_param(param.name), param));
    }
  }
}

TEST_F(data_model, each_enumeration_has_its_labels) {
  int enumerations = 0;
  for (const class_row& row : read_table(qv_test::data_model)) {
    qv_item* item = make(row.type);
    for (const param_row& param : row.params) {
      SCOPED_TRACE(row.type + '.' + param.name);
      const qv_list<std::string>* labels = item->find_param(param.name)->get_labels();
      const bool scalar = param.kind == "enum";
      if (!scalar && param.kind != "enum_list") {
        EXPECT_EQ(labels, nullptr);
        continue;
      }
      ++enumerations;
      ASSERT_NE(labels, nullptr);
      const std::vector<std::string> expected(param.rest.begin() + (scalar ? 1 : 0),
                                              param.rest.end());
      EXPECT_EQ(qv_test::to_vector(*labels), expected);
    }
  }
  EXPECT_EQ(enumerations, 22);
}

TEST_F(data_model, constructors_set_what_differs_from_the_declared_default) {
  for (const class_row& row : read_table(qv_test::constructor_values)) {
    qv_item* item = make(row.type);
    ASSERT_NE(item, nullptr) << row.type;
    for (const param_row& param : row.params) {
      SCOPED_TRACE(row.type + '.' + param.name);
      ASSERT_NE(item->find_param(param.name), nullptr);
      EXPECT_TRUE(has_value(*item->find_param(param.name), param));
    }
  }
}

TEST_F(data_model, ready_made_glazing_layers_have_names) {
  EXPECT_EQ(make("glazing_interlayer")->get_name(), "Interlayer");
  EXPECT_EQ(make("glazing_pv")->get_name(), "PV layer");
  EXPECT_EQ(make("glazing_glass")->get_name(), "");
}

TEST_F(data_model, a_new_matter_is_a_light_grey_matt_surface) {
  for (const char* type : {"matter", "material", "material_mix"}) {
    auto* matter = static_cast<qvi_matter*>(make(type));
    for (qv_spectrum s : {qv_spectrum::thermal, qv_spectrum::visible, qv_spectrum::solar}) {
      EXPECT_EQ(matter->get_diffuse_reflexion(s), 0.4f);
      EXPECT_EQ(matter->get_direct_reflexion(s), 0.0f);
      EXPECT_EQ(matter->get_diffuse_transmission(s), 0.0f);
      EXPECT_EQ(matter->get_direct_transmission(s), 0.0f);
    }
  }
}

TEST_F(data_model, a_copy_has_the_defaults_and_not_the_values) {
  for (const class_row& row : read_table(qv_test::data_model)) {
    qv_item* item = make(row.type);
    qv_item* fresh = make(row.type);
    for (int i = 0; i < item->get_param_count(); ++i) {
      qv_param* param = item->get_param(i);
      param->store_float(77);
      param->store_int(1);
      param->store_string("changed");
      param->store_float_list({1, 2});
    }
    qv_item* copy = item->copy();
    ASSERT_NE(copy, nullptr) << row.type;
    EXPECT_TRUE(copy->has_exact_type(row.type));
    for (int i = 0; i < copy->get_param_count(); ++i)
      EXPECT_TRUE(copy->get_param(i)->has_same_value(*fresh->get_param(i)))
          << row.type << '.' << copy->get_param(i)->get_name();
    qv_item::destroy(copy);
  }
}

TEST_F(data_model, a_full_copy_has_the_values) {
  for (const class_row& row : read_table(qv_test::data_model)) {
    qv_item* item = make(row.type);
    item->set_name("original");
    for (int i = 0; i < item->get_param_count(); ++i) {
      item->get_param(i)->store_float(77);
      item->get_param(i)->store_string("changed");
    }
    qv_item* copy = item->full_copy();
    EXPECT_EQ(copy->get_name(), "original");
    for (int i = 0; i < copy->get_param_count(); ++i)
      EXPECT_TRUE(copy->get_param(i)->has_same_value(*item->get_param(i)))
          << row.type << '.' << copy->get_param(i)->get_name();
    EXPECT_TRUE(copy->is_similar_to(item, true)) << row.type;
    qv_item::destroy(copy);
  }
}

}  // namespace
