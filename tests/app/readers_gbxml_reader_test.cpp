#include "app/readers/qv_gbxml_reader.h"

#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <filesystem>
#include <fstream>
#include <random>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/app/qv_gbxml_text.h"
#include "tests/app/qv_temporary_folder.h"

namespace {

using qv::qv_input_error;

// The message of reading `path`; the exit code must be `exit_code`, and the message one line.
std::string message_of_file(const std::string& path, int exit_code) {
  try {
    qv::qv_read_gbxml(path);
  } catch (const qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), exit_code);
    EXPECT_EQ(std::string(error.what()).find('\n'), std::string::npos);
    return error.what();
  }
  ADD_FAILURE() << "no error";
  return {};
}

std::string message_of(const std::string& text) {
  try {
    qv::qv_read_gbxml_bytes("m.xml", text);
  } catch (const qv_input_error& error) {
    EXPECT_EQ(error.get_exit_code(), 3);
    return error.what();
  }
  return {};
}

std::string room() {
  return qv_gbxml_text().box("pièce", {0, 0, 0}, {4, 3, 2.5}).text();
}

std::string replaced(std::string text, const std::string& what, const std::string& with) {
  for (std::size_t at = text.find(what); at != std::string::npos;
       at = text.find(what, at + with.size()))
    text.replace(at, what.size(), with);
  return text;
}

}  // namespace

TEST(qv_read_gbxml, a_missing_file_and_a_directory_cannot_be_read) {
  const qv_temporary_folder folder;
  const std::string missing = (folder.path() / "missing.xml").string();
  EXPECT_EQ(message_of_file(missing, 4), missing + ": there is no such file; check the path");
  EXPECT_EQ(message_of_file(folder.path().string(), 4),
            folder.path().string() + ": is a directory; name a gbXML file in it");
}

TEST(qv_read_gbxml, an_empty_file_a_truncated_one_and_another_xml_are_bad_input) {
  const qv_temporary_folder folder;
  const auto write = [&folder](const std::string& content) {
    std::string path = (folder.path() / "m.xml").string();
    std::ofstream(path, std::ios::binary) << content;
    return path;
  };
  std::string path = write("");
  EXPECT_EQ(message_of_file(path, 3), path + ": is empty; export the model again");
  const std::string text = room();
  for (std::size_t length = 1; length + 2 < text.size(); length += 37) {
    write(text.substr(0, length));
    EXPECT_NE(message_of_file(path, 3), "") << length;
  }
  write("<?xml version=\"1.0\"?>\n<osm:osm xmlns:osm=\"x\"/>");
  EXPECT_EQ(message_of_file(path, 3),
            path + ", line 2, osm: is not gbXML: its root is <osm:osm>; export the model as gbXML");
}

TEST(qv_read_gbxml, two_hundred_megabytes_of_nonsense_end_soon) {
  constexpr std::size_t size = 200'000'000;
  const auto begin = std::chrono::steady_clock::now();
  EXPECT_NE(message_of(std::string(size, 'x')), "");
  EXPECT_NE(message_of("<" + std::string(size, '<')), "");
  EXPECT_NE(message_of("<gbXML>" + std::string(size, '\xFF')), "");
  EXPECT_NE(message_of("<gbXML>" + std::string(size, 'y')), "");
  const std::chrono::duration<double> spent = std::chrono::steady_clock::now() - begin;
  // Not a measure of speed: a hang would take hours.
  EXPECT_LT(spent.count(), 300);
}

TEST(qv_read_gbxml, a_model_without_surfaces_is_bad_input) {
  EXPECT_EQ(
      message_of(qv_gbxml_text().space("a").text()),
      "m.xml, line 2, gbXML: holds no Surface; export the model with its analytical surfaces");
}

TEST(qv_read_gbxml, an_unknown_unit_at_the_root_is_bad_input) {
  EXPECT_EQ(
      message_of(
          qv_gbxml_text().root("lengthUnit=\"Cubits\"").box("a", {0, 0, 0}, {1, 1, 1}).text()),
      "m.xml, line 2, gbXML: lengthUnit=\"Cubits\" is no known unit; write one of gbXML's units, "
      "for example Meters, SquareMeters, CubicMeters, C");
}

TEST(qv_read_gbxml, missing_units_are_assumed_with_a_warning) {
  const auto model = qv_gbxml_text().root("").box("a", {0, 0, 0}, {1, 1, 1}).read();
  ASSERT_EQ(model.warnings.size(), 4U);
  EXPECT_EQ(model.warnings[0], "test.xml, line 2, gbXML: has no lengthUnit; metres are assumed");
  EXPECT_NEAR(model.spaces[0].enclosed_volume, 1, 1e-9);
}

TEST(qv_read_gbxml, reads_the_same_model_from_every_encoding) {
  const std::string text = room();
  const auto plain = qv::qv_read_gbxml_bytes("m.xml", text);
  const std::string body = text.substr(text.find("?>") + 2);
  std::string utf16 = "\xFF\xFE";
  std::string latin = "<?xml version=\"1.0\" encoding=\"ISO-8859-1\"?>";
  for (std::size_t i = 0; i < body.size(); ++i) {
    // "è" is the only letter beyond ASCII.
    const bool accent = body[i] == '\xC3';
    if (accent) ++i;
    utf16 += accent ? '\xE8' : body[i];
    utf16 += '\0';
    latin += accent ? '\xE8' : body[i];
  }
  for (const std::string& bytes :
       {"\xEF\xBB\xBF" + text, utf16, utf16.substr(2), latin, replaced(text, "UTF-8", "UTF-16")}) {
    const auto model = qv::qv_read_gbxml_bytes("m.xml", bytes);
    ASSERT_EQ(model.spaces.size(), 1U);
    EXPECT_EQ(model.spaces[0].id, "pièce");
    EXPECT_EQ(model.spaces[0].enclosed_volume, plain.spaces[0].enclosed_volume);
  }
}

TEST(qv_read_gbxml, reads_prefixed_elements_and_passes_over_unknown_ones) {
  std::string text = room();
  text = replaced(text, "</", "</gb:");
  text = replaced(text, "<", "<gb:");
  text = replaced(text, "<gb:/gb:", "</gb:");
  text = replaced(text, "<gb:?", "<?");
  text = replaced(text, "<gb:gbXML ", "<gb:gbXML xmlns:gb=\"http://www.gbxml.org/schema\" ");
  text = replaced(text, "<gb:Campus", "<gb:Novelty><gb:Surface/></gb:Novelty><gb:Campus");
  const auto model = qv::qv_read_gbxml_bytes("m.xml", text);
  EXPECT_EQ(model.root->collect("wall").get_count(), 6);
  EXPECT_TRUE(model.spaces[0].closed);
}

TEST(qv_read_gbxml, keeps_names_in_any_script) {
  const auto model = qv_gbxml_text()
                         .space("s", "<Name>会议室 &amp; Büro « été »</Name>")
                         .polygon("w", "Roof", {"s"}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})
                         .read();
  EXPECT_EQ(model.spaces[0].item->get_name(), "会议室 & Büro « été »");
}

TEST(qv_read_gbxml, gives_every_item_the_id_of_its_source_and_each_its_own) {
  const auto model = qv_gbxml_text()
                         .space("same")
                         .polygon("same", "Roof", {"same"}, {{0, 0, 0}, {1, 0, 0}, {0, 1, 0}})
                         .read();
  EXPECT_EQ(model.spaces[0].item->get_unique_id(), "same");
  EXPECT_EQ(qv::qv_collect<qv::qvi_wall>(model.root, "wall")[0]->get_unique_id(), "same-2");
}

TEST(qv_read_gbxml, says_what_wrote_the_file) {
  const auto model =
      qv_gbxml_text()
          .head(
              "<DocumentHistory><ProgramInfo><ProductName>Sketcher</ProductName><Version>3.1"
              "</Version></ProgramInfo></DocumentHistory>")
          .box("a", {0, 0, 0}, {1, 1, 1})
          .read();
  EXPECT_EQ(model.program, "Sketcher 3.1");
}

TEST(qv_read_gbxml, the_scene_measures_what_the_reader_says) {
  auto model = qv_gbxml_text().box("a", {0, 0, 0}, {4, 3, 2.5}).read();
  model.scene->precompute();
  EXPECT_NEAR(model.spaces[0].item->get_area(), model.spaces[0].floor_area, 1e-4);
  EXPECT_NEAR(model.spaces[0].item->get_volume(), model.spaces[0].enclosed_volume, 1e-3);
}

TEST(qv_read_gbxml, damaged_files_are_refused_or_read_in_balance) {
  constexpr unsigned seed = 4711;
  SCOPED_TRACE(seed);
  std::mt19937 random(seed);
  const auto below = [&random](std::size_t limit) {
    return std::uniform_int_distribution<std::size_t>(0, limit - 1)(random);
  };
  const std::string sound =
      qv_gbxml_text()
          .head(
              "<Material id=\"m\"><R-value>1</R-value></Material><Layer id=\"l\">"
              "<MaterialId materialIdRef=\"m\"/></Layer><Construction id=\"c\">"
              "<LayerId layerIdRef=\"l\"/></Construction>")
          .box("a", {0, 0, 0}, {4, 3, 2.5})
          .box("b", {4, 0, 0}, {8, 3, 2.5})
          .text();
  // A corner that the damage moves far away is rounded more coarsely in single precision.
  constexpr double coarse_rounding = 1e-5;
  int read = 0;
  for (int round = 0; round < 3000; ++round) {
    std::string text = sound;
    for (std::size_t hits = 1 + below(4); hits > 0; --hits) {
      const std::size_t at = below(text.size());
      switch (below(4)) {
        case 0:
          text[at] = static_cast<char>(below(256));
          break;
        case 1:
          text.erase(at, 1 + below(40));
          break;
        case 2:
          text.insert(at, text.substr(below(text.size()), below(200)));
          break;
        default:
          // Numbers matter most: a digit, a sign, an exponent, another digit.
          text[text.find_first_of("0123456789", at) != std::string::npos
                   ? text.find_first_of("0123456789", at)
                   : at] = "0123456789-e."[below(13)];
      }
    }
    try {
      const auto model = qv::qv_read_gbxml_bytes("m.xml", text);
      ++read;
      EXPECT_LE(std::abs(model.ledger.get_balance().get_relative_error()), coarse_rounding) << text;
    } catch (const qv_input_error& error) {
      EXPECT_EQ(error.get_exit_code(), 3);
    }
  }
  EXPECT_GT(read, 300);
}
