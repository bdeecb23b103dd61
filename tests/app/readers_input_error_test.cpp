#include "app/readers/qv_input_error.h"

#include <gtest/gtest.h>

using qv::qv_input_error;

TEST(qv_input_error, says_file_place_fault_and_remedy_on_one_line) {
  const qv_input_error error(qv_input_error::kind::bad_input, {"house.xml", 12, "Surface", "su-3"},
                             "it names no space", "name one");
  EXPECT_STREQ(error.what(), "house.xml, line 12, Surface \"su-3\": it names no space; name one");
  EXPECT_EQ(error.get_exit_code(), 3);
}

TEST(qv_input_error, leaves_out_what_is_not_known) {
  const qv_input_error error(qv_input_error::kind::no_access, {"house.xml", 0, "", ""},
                             "there is no such file", "");
  EXPECT_STREQ(error.what(), "house.xml: there is no such file");
  EXPECT_EQ(error.get_exit_code(), 4);
}

TEST(qv_input_error, line_breaks_in_an_id_do_not_break_the_line) {
  const qv_input_error error(qv_input_error::kind::bad_input, {"a.xml", 1, "Space", "x\n\x1b[31m"},
                             "odd", "mend it");
  EXPECT_STREQ(error.what(), "a.xml, line 1, Space \"x  [31m\": odd; mend it");
}

TEST(qv_one_line, cuts_long_text_between_characters) {
  EXPECT_EQ(qv::qv_one_line("ééé", 2), "é…");
  EXPECT_EQ(qv::qv_one_line("ééé", 3), "éé…");
  EXPECT_EQ(qv::qv_one_line("abc", 3), "abc");
}
