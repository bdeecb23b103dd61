#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <fstream>

#include "app/pictures/qv_canvas.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/pictures/qv_picture_comparison.h"

namespace {

constexpr std::uint32_t white = 0xffffff;

qv::qv_pixels blank(int width, int height) {
  return {width, height,
          std::vector<std::uint32_t>(static_cast<std::size_t>(width * height), white)};
}

std::size_t count_of_ink(const qv::qv_pixels& picture) {
  return static_cast<std::size_t>(
      std::count_if(picture.rows.begin(), picture.rows.end(),
                    [](std::uint32_t pixel) { return qv_test::red(pixel) < 128; }));
}

TEST(qv_canvas, keeps_the_picture_that_it_is_given) {
  qv::qv_pixels picture = blank(3, 2);
  picture.rows = {0x000000, 0xff0000, 0x00ff00, 0x0000ff, 0x123456, 0xffffff};
  EXPECT_EQ(qv::qv_canvas(picture).get_pixels().rows, picture.rows);
}

TEST(qv_canvas, writes_a_png_that_reads_back_the_same) {
  qv::qv_pixels picture = blank(5, 3);
  for (std::size_t i = 0; i < picture.rows.size(); ++i)
    picture.rows[i] = static_cast<std::uint32_t>(i * 1000003) & white;
  const qv_temporary_folder place;
  const std::string path = place.path() / "x.png";
  std::ofstream(path, std::ios::binary) << qv::qv_encode_png(picture);
  const qv::qv_pixels back = qv_test::read_png(path);
  EXPECT_EQ(back.width, 5);
  EXPECT_EQ(back.rows, picture.rows);
}

TEST(qv_canvas, fills_and_strokes_where_told) {
  qv::qv_canvas canvas(blank(20, 20));
  const std::array<qv::qv_pixel_point, 4> square = {{{2, 2}, {10, 2}, {10, 10}, {2, 10}}};
  canvas.fill(square, {1, 0, 0, 1});
  const std::array<qv::qv_pixel_point, 2> line = {{{0, 15}, {20, 15}}};
  canvas.stroke(line, false, 2, {0, 0, 1, 1});
  const qv::qv_pixels picture = canvas.get_pixels();
  EXPECT_EQ(picture.at(5, 5), 0xff0000U);
  EXPECT_EQ(picture.at(11, 5), white);
  EXPECT_EQ(picture.at(8, 14), 0x0000ffU);
  EXPECT_EQ(picture.at(8, 18), white);
}

TEST(qv_canvas, writes_any_text_within_the_width_that_it_has) {
  const std::string texts[] = {
      "plain",
      "",
      std::string(10000, 'W'),
      "Chambre d’été – 1ᵉʳ",
      "\xd7\x97\xd7\x93\xd7\xa8 \xd7\xa9\xd7\x99\xd7\xa0\xd7\x94",                    // Hebrew
      "\xd8\xba\xd8\xb1\xd9\x81\xd8\xa9 \xd8\xa7\xd9\x84\xd9\x86\xd9\x88\xd9\x85 1",  // Arabic
      "会议室",
      "two\nlines\r\nand\ttab\x01\x02",
      std::string("zero\0inside", 11),
      "broken \xff\xfe\xc3",
      "\xe2\x80\xae"
      "turned over",  // right-to-left override
      "a\xe2\x80\xa8"
      "b\xe2\x80\xa9"
      "c",  // separators of lines and paragraphs
      "<b>&amp;</b> %s %n",
      "e\xcc\x81\xcc\x81\xcc\x81\xcc\x81\xcc\x81"};
  qv::qv_canvas canvas(blank(400, 60));
  const double line = canvas.measure("Äg", {14}).height;
  for (const std::string& text : texts) {
    SCOPED_TRACE(text.substr(0, 40));
    const qv::qv_text_style style{14, false, 120};
    const qv::qv_text_size size = canvas.measure(text, style);
    EXPECT_LE(size.width, 121);
    EXPECT_LT(size.height, 2.2 * line);
    qv::qv_canvas fresh(blank(400, 60));
    fresh.write(text, {100, 20}, style, true);
    const qv::qv_pixels picture = fresh.get_pixels();
    EXPECT_EQ(count_of_ink(picture) > 10u, !text.empty());
    for (int x : {60, 260}) {  // well outside of its place
      for (int y = 0; y < 60; ++y) EXPECT_EQ(picture.at(x, y), white);
    }
  }
}

TEST(qv_canvas, shortens_text_that_is_too_long_and_no_other) {
  const qv::qv_canvas canvas(blank(4, 4));
  const double whole = canvas.measure("Salle de bains", {14}).width;
  EXPECT_EQ(canvas.measure("Salle de bains", {14, false, whole + 1}).width, whole);
  EXPECT_LE(canvas.measure("Salle de bains", {14, false, whole / 2}).width, whole / 2 + 1);
  EXPECT_GT(canvas.measure("Salle de bains", {14, true}).width, whole);
}

}  // namespace
