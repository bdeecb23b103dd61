#include "app/report/qv_utf8.h"

#include <gtest/gtest.h>

namespace {

using qv::qv_display_width;
using qv::qv_fit_to_width;
using qv::qv_valid_utf8;

constexpr const char* sign = "\xEF\xBF\xBD";  // U+FFFD

TEST(qv_valid_utf8, keeps_valid_text_of_every_length) {
  const std::string text = "a é 房 \xF0\x9F\x8F\xA0";
  EXPECT_EQ(qv_valid_utf8(text), text);
}

TEST(qv_valid_utf8, replaces_each_byte_that_belongs_to_no_letter) {
  EXPECT_EQ(qv_valid_utf8("\xFF"), sign);
  EXPECT_EQ(qv_valid_utf8("\xC3"), sign);                                     // cut short
  EXPECT_EQ(qv_valid_utf8("\xC0\xAF"), std::string(sign) + sign);             // overlong
  EXPECT_EQ(qv_valid_utf8("\xE0\x80\x80"), std::string(sign) + sign + sign);  // overlong
  EXPECT_EQ(qv_valid_utf8("\xED\xA0\x80"), std::string(sign) + sign + sign);  // surrogate
  EXPECT_EQ(qv_valid_utf8("\xF5\x80\x80\x80").size(), 12u);                   // above U+10FFFF
  EXPECT_EQ(qv_valid_utf8("\xF4\x90\x80\x80").size(), 12u);                   // above U+10FFFF
}

TEST(qv_display_width, counts_columns_not_bytes) {
  EXPECT_EQ(qv_display_width("Pièce"), 5u);
  EXPECT_EQ(qv_display_width("房间"), 4u);
  EXPECT_EQ(qv_display_width("e\xCC\x81"), 1u);  // combining accent
  EXPECT_EQ(qv_display_width(""), 0u);
}

TEST(qv_fit_to_width, cuts_with_a_sign_and_keeps_what_fits) {
  EXPECT_EQ(qv_fit_to_width("salon", 5), "salon");
  EXPECT_EQ(qv_fit_to_width("salons", 5), "salo…");
  EXPECT_EQ(qv_fit_to_width("房间房间", 5), "房间…");
  EXPECT_EQ(qv_fit_to_width("abc", 0), "");
}

TEST(qv_fit_to_width, keeps_a_name_on_one_line) {
  EXPECT_EQ(qv_fit_to_width("a\nb\x1b[31m", 20), "a b [31m");
}

}  // namespace
