#include "app/readers/qv_xml_document.h"

#include <gtest/gtest.h>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_xml_check.h"

namespace {

using qv::qv_xml_document;
using qv::qv_xml_element;

std::string message_of(const std::string& text) {
  try {
    const qv_xml_document document("f.xml", text);
  } catch (const qv::qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), 3);
    return error.what();
  }
  return {};
}

std::string nested(std::size_t depth) {
  std::string text;
  for (std::size_t i = 0; i < depth; ++i) text += "<a>";
  for (std::size_t i = 0; i < depth; ++i) text += "</a>";
  return text;
}

}  // namespace

TEST(qv_xml_document, looks_at_local_names_whatever_the_prefix) {
  const qv_xml_document document(
      "f.xml",
      "<gb:gbXML xmlns:gb=\"u\"><gb:Space gb:id=\"s\">\n x &amp; y </gb:Space></gb:gbXML>");
  EXPECT_TRUE(document.get_root().is("gbXML"));
  EXPECT_EQ(document.get_root_name(), "gb:gbXML");
  const qv_xml_element space = document.get_root().get_child("Space");
  EXPECT_EQ(space.get_attribute("id"), "s");
  EXPECT_EQ(space.get_text(), "x & y");
  EXPECT_EQ(space.get_attribute("name"), "");
}

TEST(qv_xml_document, drops_prefixes_wherever_they_stand) {
  const qv_xml_document document("f.xml",
                                 "<r xmlns:xsi=\"x\" xsi:a='1'>a: b:c=d "
                                 "<e f:id='3'/><g.h-i:j k='4'>12:30</g.h-i:j></r>");
  EXPECT_EQ(document.get_root_name(), "r");
  EXPECT_EQ(document.get_root().get_child("e").get_attribute("id"), "3");
  const qv_xml_element last = document.get_root().get_child("j");
  EXPECT_EQ(last.get_attribute("k"), "4");
  EXPECT_EQ(last.get_text(), "12:30");
  EXPECT_EQ(document.get_line(last), 1U);
}

TEST(qv_xml_document, gives_each_attribute_once) {
  const qv_xml_document document("f.xml", "<r a=' 1 ' b=''/>");
  std::string all;
  document.get_root().for_each_attribute([&all](std::string_view name, std::string_view value) {
    all += std::string(name) + "=" + std::string(value) + ";";
  });
  EXPECT_EQ(all, "a=1;b=;");
}

TEST(qv_xml_document, goes_over_elements_only) {
  const qv_xml_document document("f.xml", "<r>t<!-- c --><a/><?p i?><b><![CDATA[1<2]]></b>u</r>");
  std::string names;
  for (const qv_xml_element child : document.get_root()) names += child.get_name();
  EXPECT_EQ(names, "ab");
  EXPECT_EQ(document.get_root().get_child_text("b"), "1<2");
  EXPECT_FALSE(document.get_root().get_child("c"));
}

TEST(qv_xml_document, a_null_element_has_nothing) {
  const qv_xml_element none;
  EXPECT_FALSE(none);
  EXPECT_EQ(none.get_text(), "");
  EXPECT_EQ(none.get_child("a").get_child_text("b"), "");
  EXPECT_EQ(none.begin(), none.end());
}

TEST(qv_xml_document, knows_the_line_of_every_element_in_any_order) {
  const qv_xml_document document("f.xml", "<r>\r\n<a/>\r\n\r\n<b>\r\n\r\nx</b><c/></r>");
  const qv_xml_element root = document.get_root();
  EXPECT_EQ(document.get_line(root.get_child("c")), 6U);
  EXPECT_EQ(document.get_line(root.get_child("a")), 2U);
  EXPECT_EQ(document.get_line(root.get_child("b")), 4U);
  EXPECT_EQ(document.get_line(root), 1U);
}

TEST(qv_xml_check, counts_characters_of_every_length_of_text) {
  std::string text;
  std::size_t breaks = 0;
  for (int i = 0; i < 100; ++i) {
    EXPECT_EQ(qv::qv_count_characters(text, '\n'), breaks);
    // Neighbours of the line feed and of the high bit, which a careless count takes for it.
    text += i % 3 == 0 ? '\n' : i % 3 == 1 ? '\x0B' : '\x8A';
    if (i % 3 == 0) ++breaks;
  }
  // More in a column than one byte can count.
  EXPECT_EQ(qv::qv_count_characters(std::string(20'000, '\n'), '\n'), 20'000U);
}

TEST(qv_xml_check, a_file_cut_short_names_the_open_element) {
  EXPECT_EQ(message_of("<gbXML>\n<Surface id=\"a\">\n<Name>"),
            "f.xml, line 3: ends inside <Name> of line 3; the file is cut short: export or copy it "
            "again");
  EXPECT_EQ(message_of("<gbXML>\n<Surface id=\"a"),
            "f.xml, line 2: the tag <Surface> is not closed; the file is cut short or damaged: "
            "export it again");
  EXPECT_NE(message_of("<gbXML><!-- x").find("\"-->\" is missing"), std::string::npos);
}

TEST(qv_xml_check, wants_one_root_and_nothing_around_it) {
  EXPECT_EQ(
      message_of("<a/>\n<b/>"),
      "f.xml, line 2: a second root element <b> follows the first; keep one model in the file");
  EXPECT_NE(message_of("<a/>\nx").find("line 2: text stands outside the root element"),
            std::string::npos);
  EXPECT_NE(message_of("<?xml version=\"1.0\"?>\n<!-- x -->").find("holds no XML element"),
            std::string::npos);
  EXPECT_NE(message_of("</a>").find("</a> closes what was never opened"), std::string::npos);
  EXPECT_EQ(message_of("<!-- x --><a/>\n<!-- y --><?z?>\n"), "");
}

TEST(qv_xml_check, refuses_an_attribute_given_twice) {
  EXPECT_EQ(message_of("<a>\n<b id=\"1\" x='>' id='2'/></a>"),
            "f.xml, line 2: <b> has the attribute id twice; keep one of them");
  EXPECT_EQ(message_of("<a><b id=\"1\" gb:id='2' idx=\"id\"/></a>"), "");
  std::string many = "<a><b/><c><d/></c>\n<e";
  for (int i = 0; i < 100; ++i) many += " a" + std::to_string(i) + "=''";
  EXPECT_EQ(message_of(many + "/></a>"), "");
  EXPECT_EQ(message_of(many + " a70=''/></a>"),
            "f.xml, line 2: <e> has the attribute a70 twice; keep one of them");
}

TEST(qv_xml_check, refuses_entity_declarations) {
  std::string bomb = "<?xml version=\"1.0\"?>\n<!DOCTYPE lolz [\n<!ENTITY lol \"lol\">\n";
  bomb += "<!ENTITY lol2 \"&lol;&lol;&lol;&lol;&lol;\">\n]>\n<gbXML>&lol2;</gbXML>";
  EXPECT_EQ(message_of(bomb),
            "f.xml, line 3: declares an XML entity, which no building model needs; remove the "
            "DOCTYPE section");
  EXPECT_EQ(message_of("<!DOCTYPE gbXML SYSTEM \"x.dtd\" [ <!ELEMENT a ANY> ]><gbXML/>"), "");
}

TEST(qv_xml_check, limits_the_depth) {
  EXPECT_EQ(message_of(nested(qv::largest_xml_depth)), "");
  EXPECT_NE(message_of(nested(qv::largest_xml_depth + 1)).find("nested more than 256 deep"),
            std::string::npos);
  EXPECT_NE(message_of(nested(1000000)).find("nested more than 256 deep"), std::string::npos);
  EXPECT_NE(message_of("<a><b/><c/>" + nested(256) + "<d/></a>").find("nested more than 256 deep"),
            std::string::npos);
}

TEST(qv_xml_document, says_where_the_parser_stumbles) {
  EXPECT_EQ(message_of("<a>\n<b></c>\n</a>").substr(0, 42),
            "f.xml, line 2: is not well-formed XML: Sta");
}
