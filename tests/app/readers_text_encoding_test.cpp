#include "app/readers/qv_text_encoding.h"

#include <gtest/gtest.h>

#include "app/readers/qv_input_error.h"

namespace {

using qv::qv_to_utf8;

const std::string sample = "<?xml version=\"1.0\"?>\n<a>Bâtiment 建筑 😀</a>";

// UTF-16 of text below U+10000 given as code units.
std::string utf16(const std::u16string& text, bool big_endian, bool mark) {
  std::string bytes;
  const auto put = [&](char16_t unit) {
    const char high = static_cast<char>(unit >> 8U);
    const char low = static_cast<char>(unit & 0xFFU);
    bytes += big_endian ? high : low;
    bytes += big_endian ? low : high;
  };
  if (mark) put(0xFEFF);
  for (const char16_t unit : text) put(unit);
  return bytes;
}

std::string message_of(const std::string& bytes) {
  std::vector<std::string> warnings;
  try {
    qv_to_utf8("f.xml", bytes, warnings);
  } catch (const qv::qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), 3);
    return error.what();
  }
  return {};
}

}  // namespace

TEST(qv_to_utf8, takes_utf8_with_and_without_mark) {
  std::vector<std::string> warnings;
  EXPECT_EQ(qv_to_utf8("f.xml", sample, warnings), sample);
  EXPECT_EQ(qv_to_utf8("f.xml", "\xEF\xBB\xBF" + sample, warnings), sample);
  EXPECT_TRUE(warnings.empty());
}

TEST(qv_to_utf8, takes_utf16_of_both_orders_with_and_without_mark) {
  const std::u16string wide = u"<?xml version=\"1.0\"?>\n<a>Bâtiment 建筑 😀</a>";
  std::vector<std::string> warnings;
  for (const bool big_endian : {false, true})
    for (const bool mark : {false, true})
      EXPECT_EQ(qv_to_utf8("f.xml", utf16(wide, big_endian, mark), warnings), sample);
  EXPECT_TRUE(warnings.empty());
}

TEST(qv_to_utf8, takes_latin_1_and_windows_1252_as_declared) {
  std::vector<std::string> warnings;
  for (const char* name : {"ISO-8859-1", "windows-1252", "Latin1"})
    EXPECT_EQ(qv_to_utf8(
                  "f.xml",
                  "<?xml version=\"1.0\" encoding=\"" + std::string(name) + "\"?><a>B\xE2t\x80</a>",
                  warnings),
              "<?xml version=\"1.0\" encoding=\"" + std::string(name) + "\"?><a>Bât€</a>");
  EXPECT_EQ(
      qv_to_utf8("f.xml", "<?xml version='1.0' encoding='iso-8859-15'?><a>\xA4</a>", warnings),
      "<?xml version='1.0' encoding='iso-8859-15'?><a>€</a>");
  EXPECT_TRUE(warnings.empty());
}

TEST(qv_to_utf8, reads_eight_bit_text_declared_as_utf16_as_what_it_is) {
  std::vector<std::string> warnings;
  const std::string utf8 = "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>é</a>";
  EXPECT_EQ(qv_to_utf8("f.xml", utf8, warnings), utf8);
  ASSERT_EQ(warnings.size(), 1U);
  EXPECT_EQ(warnings[0],
            "f.xml, line 1: declares the encoding utf-16 but is 8-bit text; read as UTF-8");
  EXPECT_EQ(qv_to_utf8("f.xml", "<?xml version=\"1.0\" encoding=\"UTF-16\"?><a>\xE9</a>", warnings),
            utf8);
  EXPECT_EQ(warnings.size(), 2U);
}

TEST(qv_to_utf8, reads_an_unknown_encoding_only_when_the_bytes_are_utf8) {
  std::vector<std::string> warnings;
  const std::string head = "<?xml version=\"1.0\" encoding=\"GB2312\"?>";
  EXPECT_EQ(qv_to_utf8("f.xml", head + "<a>建</a>", warnings), head + "<a>建</a>");
  EXPECT_EQ(warnings.size(), 1U);
  EXPECT_EQ(
      message_of(head + "<a>\xBD\xA8</a>"),
      "f.xml, line 1: declares the encoding gb2312, which is not known; save the file as UTF-8");
}

TEST(qv_to_utf8, names_the_line_of_bytes_that_are_no_utf8) {
  // Each is unsound by a rule of its own: a lone continuation, an overlong form, a surrogate, a
  // value beyond the last character, a character cut short.
  for (const char* bytes : {"\x80", "\xC0\xAF", "\xED\xA0\x80", "\xF4\x90\x80\x80", "\xE2\x82"})
    EXPECT_EQ(message_of("<a>\n\n" + std::string(bytes) + "</a>").substr(0, 53),
              "f.xml, line 3: a byte sequence is not valid UTF-8; sa");
}

TEST(qv_to_utf8, refuses_what_is_plainly_no_xml) {
  EXPECT_EQ(message_of(""), "f.xml: is empty; export the model again");
  EXPECT_EQ(message_of(" \n\t"), "f.xml: is empty; export the model again");
  EXPECT_EQ(message_of("PK\x03\x04"),
            "f.xml, line 1: is not XML; check that it is the file you mean");
}

TEST(qv_to_utf8, refuses_zero_characters_and_broken_utf16) {
  EXPECT_NE(message_of(std::string("<a>\n\0</a>", 9)).find("line 2: holds a zero character"),
            std::string::npos);
  EXPECT_NE(message_of(utf16(u"<a/>", false, true) + "x").find("in the middle of a character"),
            std::string::npos);
  EXPECT_NE(message_of(utf16(std::u16string(u"<a>\n") + char16_t(0xDC00), true, true))
                .find("line 2: a UTF-16 surrogate stands alone"),
            std::string::npos);
}
