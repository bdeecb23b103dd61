#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <vector>

#include "core/items/qv_scene.h"
#include "tests/support/qv_comma_locale.h"
#include "tests/support/qv_probe_item.h"
#include "tests/support/qv_shapes.h"

// The panel and the plain text of items whose class has none of its own.

namespace {

using namespace qv;
using qv_test::probe_item;

class items_panel : public testing::Test {
 protected:
  items_panel() {
    item_->set_name("Sonde");
    other_->set_name("Autre");
    for (probe_item* item : {item_, other_}) scene_.add_child(item, -1);
  }
  // The value in the panel's row of that label.
  std::string get_row(const std::string& label) {
    const std::string html = item_->get_html_information();
    const std::string head = "<tr><td><b>" + label + "</b></td><td>";
    const std::size_t from = html.find(head);
    if (from == std::string::npos) return "no row";
    const std::size_t start = from + head.size();
    return html.substr(start, html.find("</td></tr>", start) - start);
  }
  qv_scene scene_;
  probe_item* item_ = new probe_item;
  probe_item* other_ = new probe_item;
};

TEST_F(items_panel, shows_name_type_and_every_parameter_in_declaration_order) {
  item_->set_link(other_);
  item_->set_links({other_, item_});
  item_->set_numbers({0.5f, -1});
  item_->set_counts({3, -4});
  item_->set_sizes({3, 4000000000U});
  item_->set_phases({probe_item::phase::vapour, probe_item::phase::solid});
  item_->set_texts({"a", "b"});
  item_->set_points({{1, 2, 3}, {4, 5, 6.5f}});
  const std::vector<std::pair<std::string, std::string>> rows = {
      {"type", "test_probe"},
      {"number", "1.5"},
      {"count", "7"},
      {"flag", "true"},
      {"phase", "liquid"},
      {"text", "abc"},
      {"point", "1 2 3"},
      {"color", "0.1 0.2 0.3 0.4"},
      {"matrix", "1 0 0 0 0 1 0 0 0 0 1 0 0 0 0 1"},
      {"link", "Autre"},
      {"links", "Autre, Sonde"},
      {"numbers", "0.5, -1"},
      {"counts", "3, -4"},
      {"sizes", "3, 4000000000"},
      {"phases", "vapour, solid"},
      {"texts", "a, b"},
      {"points", "1 2 3, 4 5 6.5"},
      {"roughly", "0"},
      {"ignored", "0"}};
  std::string html = "<h2>Sonde</h2><table width=100% border=0>";
  std::string text = "name: Sonde\n";
  for (const auto& [label, value] : rows) {
    html.append("<tr><td><b>").append(label).append("</b></td><td>").append(value);
    html.append("</td></tr>");
    text.append(label).append(": ").append(value).append("\n");
  }
  EXPECT_EQ(item_->get_html_information(), html + "</table>");
  EXPECT_EQ(item_->get_txt_information(), text);
}

TEST_F(items_panel, shows_the_parameters_of_a_derived_class_after_those_of_its_base) {
  const auto derived = qv_test::make_item<qv_test::derived_probe_item>();
  const std::string text = derived->get_txt_information();
  EXPECT_EQ(text.rfind("name: \ntype: test_derived_probe\nnumber: 1.5\n", 0), 0U) << text;
  const std::string end = "ignored: 0\nextra: 2\n";
  ASSERT_GE(text.size(), end.size());
  EXPECT_EQ(text.substr(text.size() - end.size()), end);
}

TEST_F(items_panel, writes_numbers_so_that_they_read_back_the_same) {
  for (const auto& [value, text] :
       {std::pair(0.1f, "0.1"), {1e-30f, "1e-30"}, {16777216.0f, "16777216"}, {-0.0f, "-0"}}) {
    item_->set_number(value);
    EXPECT_EQ(get_row("number"), text);
  }
  item_->set_number(std::numeric_limits<float>::infinity());
  EXPECT_EQ(get_row("number"), "inf");
}

TEST_F(items_panel, writes_the_same_numbers_in_a_locale_with_a_comma) {
  item_->set_count(1234567);
  const qv_test::comma_locale comma;
  EXPECT_EQ(get_row("count"), "1234567");
  EXPECT_EQ(get_row("number"), "1.5");
}

TEST_F(items_panel, keeps_markup_in_texts_from_being_taken_for_its_own) {
  item_->set_name("a<b> & \"c\"");
  item_->set_text("</table>");
  other_->set_name("<i>");
  item_->set_link(other_);
  EXPECT_EQ(item_->get_html_information().rfind("<h2>a&lt;b&gt; &amp; &quot;c&quot;</h2>", 0), 0U);
  EXPECT_EQ(get_row("text"), "&lt;/table&gt;");
  EXPECT_EQ(get_row("link"), "&lt;i&gt;");
  // Plain text has no markup.
  EXPECT_NE(item_->get_txt_information().find("\ntext: </table>\n"), std::string::npos);
}

TEST_F(items_panel, shows_nothing_where_nothing_is_set) {
  item_->set_text("");
  for (const char* label : {"text", "link", "links", "numbers", "texts", "points"})
    EXPECT_EQ(get_row(label), "") << label;
}

TEST_F(items_panel, shows_an_empty_entry_of_a_list_as_one) {
  item_->set_texts({"", "b", ""});
  EXPECT_EQ(get_row("texts"), ", b, ");
  other_->set_name("");
  item_->set_links({other_, nullptr, item_});
  EXPECT_EQ(get_row("links"), ", , Sonde");
}

TEST_F(items_panel, shows_a_value_without_a_label_as_its_number) {
  item_->set_phase(static_cast<enum probe_item::phase>(9));
  EXPECT_EQ(get_row("phase"), "9");
  item_->set_phases({static_cast<enum probe_item::phase>(-1), probe_item::phase::solid});
  EXPECT_EQ(get_row("phases"), "-1, solid");
}

}  // namespace
