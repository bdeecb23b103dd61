#include <gtest/gtest.h>

#include <map>

#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_recorders.h"
#include "utilities/qv_date.h"

using namespace qv;
using qv_test::probe_item;

namespace {

// A value that equals nothing and remembers which date the parameter bore when it was stored.
struct date_probe {
  unsigned int* date_at_storing;
};

}  // namespace

template <>
struct qv::qv_param_traits<date_probe> {
  static constexpr bool accepts(int) { return true; }
  static bool equals(const qv_param&, const date_probe&) { return false; }
  static void store(qv_param& p, const date_probe& v) { *v.date_at_storing = p.get_date(); }
};

namespace {

const qv_param::param_type all_kinds[] = {
    qv_param::type_float,       qv_param::type_int,       qv_param::type_bool,
    qv_param::type_3dvector,    qv_param::type_color,     qv_param::type_matrix,
    qv_param::type_string,      qv_param::type_enum,      qv_param::type_item,
    qv_param::type_float_list,  qv_param::type_int_list,  qv_param::type_3dvector_list,
    qv_param::type_string_list, qv_param::type_enum_list, qv_param::type_item_list};

// Declares parameter `name` of a fresh probe anew as each kind and runs `set`: it must work for
// the kinds of `accepted`, and do nothing at all for the others.
template <class Set, class Read>
void expect_accepted(const char* name, const std::vector<qv_param::param_type>& accepted, Set set,
                     Read has_new_value) {
  for (qv_param::param_type kind : all_kinds) {
    auto* item = new probe_item;
    int heard = 0;
    item->when_changed = [&](qv_item*, const std::string&) { ++heard; };
    qv_param* param = item->param(name);
    param->redeclare(kind);
    const unsigned int date = param->get_date();
    const unsigned int counter = qv_get_date();
    set(*item);
    const bool expected = std::find(accepted.begin(), accepted.end(), kind) != accepted.end();
    SCOPED_TRACE(std::string(name) + " declared as kind " + std::to_string(kind));
    EXPECT_EQ(has_new_value(*item), expected);
    EXPECT_EQ(param->get_date() > date, expected);
    EXPECT_EQ(qv_get_date() > counter, expected);
    EXPECT_EQ(heard, expected ? 1 : 0);
    qv_item::destroy(item);
  }
}

TEST(items_setter_kinds, uses_the_codes_of_saved_scenes) {
  const std::map<const char*, int> codes = {
      {"number", 0},  {"count", 2},  {"flag", 4},    {"point", 5},    {"color", 6},  {"matrix", 7},
      {"text", 8},    {"phase", 9},  {"link", 10},   {"numbers", 11}, {"sizes", 12}, {"counts", 13},
      {"points", 16}, {"texts", 17}, {"phases", 18}, {"links", 19},   {"roughly", 0}};
  probe_item item_on_stack;
  for (const auto& [name, code] : codes)
    EXPECT_EQ(item_on_stack.param(name)->get_param_type(), code) << name;
}

TEST(items_setter_kinds, a_scalar_setter_does_nothing_on_another_kind) {
  expect_accepted(
      "number", {qv_param::type_float}, [](probe_item& i) { i.set_number(9); },
      [](probe_item& i) { return i.get_number() == 9; });
  expect_accepted(
      "flag", {qv_param::type_bool}, [](probe_item& i) { i.set_flag(false); },
      [](probe_item& i) { return !i.get_flag(); });
  expect_accepted(
      "text", {qv_param::type_string}, [](probe_item& i) { i.set_text("new"); },
      [](probe_item& i) { return i.get_text() == "new"; });
  expect_accepted(
      "point", {qv_param::type_3dvector},
      [](probe_item& i) {
        i.set_point({7, 8, 9});
      },
      [](probe_item& i) { return i.get_point() == qv_3dvector(7, 8, 9); });
  expect_accepted(
      "color", {qv_param::type_color},
      [](probe_item& i) {
        i.set_color({1, 1, 1, 1});
      },
      [](probe_item& i) { return i.get_color() == qv_color(1, 1, 1, 1); });
  expect_accepted(
      "link", {qv_param::type_item}, [](probe_item& i) { i.set_link(&i); },
      [](probe_item& i) { return i.get_link() == &i; });
}

TEST(items_setter_kinds, integer_and_enumeration_setters_accept_either_kind) {
  expect_accepted(
      "count", {qv_param::type_int, qv_param::type_enum}, [](probe_item& i) { i.set_count(2); },
      [](probe_item& i) { return i.get_count() == 2; });
  expect_accepted(
      "phase", {qv_param::type_int, qv_param::type_enum},
      [](probe_item& i) { i.set_phase(probe_item::phase::solid); },
      [](probe_item& i) { return i.get_phase() == probe_item::phase::solid; });
  expect_accepted(
      "counts", {qv_param::type_int_list, qv_param::type_enum_list},
      [](probe_item& i) { i.set_counts({4}); },
      [](probe_item& i) { return i.get_counts() == qv_list<int>{4}; });
  expect_accepted(
      "phases", {qv_param::type_int_list, qv_param::type_enum_list},
      [](probe_item& i) { i.set_phases({probe_item::phase::vapour}); },
      [](probe_item& i) { return i.get_phases().get_count() == 1; });
}

TEST(items_setter_kinds, a_list_setter_does_nothing_on_another_kind) {
  expect_accepted(
      "numbers", {qv_param::type_float_list}, [](probe_item& i) { i.set_numbers({4}); },
      [](probe_item& i) { return i.get_numbers().get_count() == 1; });
  expect_accepted(
      "texts", {qv_param::type_string_list}, [](probe_item& i) { i.set_texts({"x"}); },
      [](probe_item& i) { return i.get_texts().get_count() == 1; });
  expect_accepted(
      "points", {qv_param::type_3dvector_list},
      [](probe_item& i) {
        i.set_points({{1, 1, 1}});
      },
      [](probe_item& i) { return i.get_points().get_count() == 1; });
  expect_accepted(
      "links", {qv_param::type_item_list}, [](probe_item& i) { i.set_links({&i}); },
      [](probe_item& i) { return i.get_links().get_count() == 1; });
}

TEST(items_setter_kinds, a_getter_reads_the_value_whatever_the_declared_kind) {
  probe_item item;
  item.set_numbers({1, 2});
  item.param("number")->redeclare(qv_param::type_string);
  item.param("numbers")->redeclare(qv_param::type_bool);
  EXPECT_EQ(item.get_number(), 1.5f);
  EXPECT_EQ(item.get_numbers(), (qv_list<float>{1, 2}));
}

TEST(items_setter_kinds, writes_the_date_before_the_value) {
  probe_item item;
  qv_param* param = item.param("number");
  const unsigned int before = qv_get_date();
  unsigned int date_at_storing = 0;
  item.set_param_value(param, date_probe{&date_at_storing});
  EXPECT_GT(date_at_storing, before);
  EXPECT_EQ(date_at_storing, param->get_date());
}

TEST(items_setter_kinds, a_name_declared_twice_is_one_parameter) {
  probe_item item;
  qv_param* first = item.param("number");
  EXPECT_EQ(item.add_param_float("number", 12.0f), first);
  EXPECT_EQ(item.get_param_count(), 18);
}

TEST(items_setter_kinds, reading_another_kind_in_place_gives_its_empty_value) {
  probe_item item;
  EXPECT_EQ(item.param("text")->get_float(), 0.0f);
  EXPECT_EQ(item.param("number")->get_string(), "");
  EXPECT_EQ(item.param("number")->get_item(), nullptr);
  EXPECT_EQ(item.param("number")->get_item_list().get_count(), 0);
  item.param("number")->store_string("no");
  item.param("text")->store_float(3);
  EXPECT_EQ(item.get_number(), 1.5f);
  EXPECT_EQ(item.get_text(), "abc");
}

TEST(items_setter_kinds, labels_belong_to_enumerations) {
  probe_item item;
  ASSERT_NE(item.param("phase")->get_labels(), nullptr);
  EXPECT_EQ(*item.param("phase")->get_labels(),
            (qv_list<std::string>{"solid", "liquid", "vapour"}));
  EXPECT_EQ(*item.param("phases")->get_labels(), probe_item::get_phase_list());
  EXPECT_EQ(item.param("count")->get_labels(), nullptr);
}

TEST(items_setter_kinds, labels_stay_when_the_given_list_goes) {
  auto* item = new qv_item;
  auto* other = new qv_item;
  {
    const qv_list<std::string> labels{"first label of the list", "second label of the list"};
    item->add_param_enum("choice", labels, 1);
    item->add_param_enum_list("choices", labels);
    const qv_list<std::string> others{"the other item's only label"};
    other->add_param_enum("choice", others, 0);
  }
  const qv_list<std::string> expected{"first label of the list", "second label of the list"};
  EXPECT_EQ(*item->find_param("choice")->get_labels(), expected);
  EXPECT_EQ(*item->find_param("choices")->get_labels(), expected);
  EXPECT_NE(item->get_txt_information().find("choice: second label of the list\n"),
            std::string::npos);
  EXPECT_NE(other->get_txt_information().find("choice: the other item's only label\n"),
            std::string::npos);
  qv_item::destroy(item);
  qv_item::destroy(other);
}

TEST(items_setter_kinds, label_lists_are_made_once) {
  EXPECT_EQ(&probe_item::get_phase_list(), &probe_item::get_phase_list());
  EXPECT_EQ(probe_item::get_phase_list().get_count(), 3);
}

}  // namespace
