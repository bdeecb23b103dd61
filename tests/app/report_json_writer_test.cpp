#include "app/report/qv_json_writer.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstring>
#include <limits>
#include <nlohmann/json.hpp>
#include <random>

#include "tests/support/qv_comma_locale.h"

namespace {

using qv::qv_json_writer;
using qv::qv_report_value;

std::string text_of(const qv_report_value& value) {
  qv_json_writer json;
  json.begin_array(qv_json_writer::layout::one_line);
  json.value(value);
  json.end_array();
  return json.text();
}

TEST(qv_json_writer, writes_each_kind_of_value) {
  EXPECT_EQ(text_of(std::monostate{}), "[null]\n");
  EXPECT_EQ(text_of(true), "[true]\n");
  EXPECT_EQ(text_of(-12LL), "[-12]\n");
  EXPECT_EQ(text_of(0.1f), "[0.1]\n");
  EXPECT_EQ(text_of(0.1), "[0.1]\n");
  EXPECT_EQ(text_of(std::string("Pièce 1-1")), "[\"Pièce 1-1\"]\n");
  EXPECT_EQ(text_of(std::vector<float>{1.5f, 4.0f}), "[[1.5,4]]\n");
  EXPECT_EQ(text_of(std::vector<std::string>{"a", "b"}), "[[\"a\",\"b\"]]\n");
}

TEST(qv_json_writer, writes_null_for_what_is_not_finite) {
  EXPECT_EQ(text_of(std::numeric_limits<float>::infinity()), "[null]\n");
  EXPECT_EQ(text_of(std::numeric_limits<double>::quiet_NaN()), "[null]\n");
  EXPECT_EQ(text_of(std::vector<float>{std::nanf(""), 1.0f}), "[[null,1]]\n");
}

TEST(qv_json_writer, never_writes_a_negative_zero) {
  EXPECT_EQ(text_of(-0.0f), "[0]\n");
}

TEST(qv_json_writer, writes_floats_that_read_back_the_same) {
  const unsigned seed = 20;
  SCOPED_TRACE("seed " + std::to_string(seed));
  std::mt19937 bits(seed);
  int finite = 0;
  for (int count = 0; count < 20000; ++count) {
    const auto pattern = static_cast<std::uint32_t>(bits());
    float value = 0.0f;
    std::memcpy(&value, &pattern, sizeof value);
    if (!std::isfinite(value)) continue;
    ++finite;
    const auto read = nlohmann::json::parse(text_of(value)).at(0).get<double>();
    EXPECT_EQ(static_cast<float>(read), value);
  }
  EXPECT_GT(finite, 15000);
}

TEST(qv_json_writer, escapes_what_json_cannot_hold_as_it_is) {
  const std::string nasty = std::string("a\"b\\c\n\r\t\x01\x7f", 10) + std::string(1, '\0') + "é";
  EXPECT_EQ(nlohmann::json::parse(text_of(nasty)).at(0).get<std::string>(), nasty);
}

TEST(qv_json_writer, replaces_bytes_that_are_not_utf8) {
  EXPECT_EQ(text_of(std::string("Pi\xE8"
                                "ce")),
            "[\"Pi\xEF\xBF\xBD"
            "ce\"]\n");
}

TEST(qv_json_writer, puts_lines_and_one_line_records_where_asked) {
  qv_json_writer json;
  json.begin_object();
  json.member("a", 1LL);
  json.key("list");
  json.begin_array();
  for (long long number : {1LL, 2LL}) {
    json.begin_object(qv_json_writer::layout::one_line);
    json.member("n", number);
    json.key("empty");
    json.begin_array();
    json.end_array();
    json.end_object();
  }
  json.end_array();
  json.key("none");
  json.begin_array();
  json.end_array();
  json.end_object();
  EXPECT_EQ(json.text(),
            "{\n"
            "  \"a\": 1,\n"
            "  \"list\": [\n"
            "    {\"n\": 1, \"empty\": []},\n"
            "    {\"n\": 2, \"empty\": []}\n"
            "  ],\n"
            "  \"none\": []\n"
            "}\n");
}

TEST(qv_json_writer, keeps_the_point_in_a_locale_with_a_comma) {
  const qv_test::comma_locale comma;
  EXPECT_EQ(text_of(1234.5f) + text_of(1234567LL), "[1234.5]\n[1234567]\n");
}

}  // namespace
