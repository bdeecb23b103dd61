#include <gtest/gtest.h>

#include "app/check/qv_check.h"
#include "app/readers/qv_gbxml_turn.h"
#include "app/study/qv_study.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/qv_load_bim_items.h"
#include "tests/app/qv_gbxml_text.h"
#include "tests/app/qv_markdown_table.h"
#include "tests/app/qv_program.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_test_paths.h"

// Defects planted one at a time: each is found, and nothing else is.
namespace {

using qv::qv_check_report;
using qv::qv_finding;
using point = qv_gbxml_text::point;

qv_check_report check(const std::string& text) {
  const qv::qv_gbxml_model model = qv::qv_read_gbxml_bytes("test.xml", text);
  qv::qv_compute_model(model, {});
  return qv::qv_check_model(model);
}

std::string told(const std::vector<qv_finding>& findings) {
  std::string text;
  for (const qv_finding& f : findings) text += f.code + " " + f.id + ": " + f.message + "\n";
  return text;
}

class check_model : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    qv_load_bim_items();
    house_ = qv_file_content(QV_SOURCE_DIR "/samples/house.xml");
  }
  // The one finding of a model; an empty one, and a failure, when there is another number.
  static qv_finding find_one(const std::string& text) {
    const auto findings = check(text).findings;
    EXPECT_EQ(findings.size(), 1u) << told(findings);
    return findings.size() == 1 ? findings[0] : qv_finding{};
  }
  // The house with the first `old` after `where` replaced.
  static std::string house_with(const std::string& where, const std::string& old,
                                const std::string& replacement) {
    std::string text = house_;
    const std::size_t from = text.find(where);
    const std::size_t at = text.find(old, from);
    EXPECT_NE(from, std::string::npos) << where;
    EXPECT_NE(at, std::string::npos) << old;
    return text.replace(at, old.size(), replacement);
  }
  // The whole element of the house that begins with `start`.
  static std::string element(const std::string& start, const std::string& name) {
    const std::size_t from = house_.find(start);
    EXPECT_NE(from, std::string::npos) << start;
    const std::string end = "</" + name + ">";
    return house_.substr(from, house_.find(end, from) + end.size() - from);
  }
  static inline std::string house_;
};

// A room of 4 × 5 × 2.5 m with its lowest corner at `x`, 0, 0.
qv_gbxml_text& add_room(qv_gbxml_text& text, const std::string& id, double x = 0) {
  return text.box(id, {x, 0, 0}, {x + 4, 5, 2.5});
}
qv_gbxml_text room() {
  qv_gbxml_text text;
  return add_room(text, "room");
}
// The same without one of its surfaces.
std::string room_without(const std::string& surface) {
  std::string text = room().text();
  const std::size_t from = text.find("<Surface id=\"" + surface + "\"");
  return text.erase(from, text.find("</Surface>\n", from) + 11 - from);
}

TEST_F(check_model, finds_nothing_wrong_with_the_sample_house) {
  const qv_check_report report = check(house_);
  EXPECT_TRUE(report.findings.empty()) << told(report.findings);
  EXPECT_TRUE(report.leaking_shares.empty());
}

TEST_F(check_model, finds_nothing_wrong_with_a_plain_room) {
  const auto findings = check(room().text()).findings;
  EXPECT_TRUE(findings.empty()) << told(findings);
}

TEST_F(check_model, finds_a_wall_without_space) {
  qv_gbxml_text text = room();
  text.polygon("fence", "ExteriorWall", {}, {{8, 0, 0}, {9, 0, 0}, {9, 0, 1}, {8, 0, 1}});
  const qv_finding found = find_one(text.text());
  EXPECT_EQ(found.code, "wall-without-space");
  EXPECT_EQ(found.kind, "Surface");
  EXPECT_EQ(found.id, "fence");
  EXPECT_EQ(found.place, (std::vector<float>{8.5f, 0, 0.5f}));
  EXPECT_EQ(found.message, "it names no space");

  qv_gbxml_text lost = room();
  lost.polygon("fence", "ExteriorWall", {"nowhere"}, {{8, 0, 0}, {9, 0, 0}, {9, 0, 1}, {8, 0, 1}});
  EXPECT_EQ(find_one(lost.text()).message, "the space that it names is not in the file");

  qv_gbxml_text shaded = room();
  shaded.polygon("tree", "Shade", {}, {{8, 0, 0}, {9, 0, 0}, {9, 0, 1}, {8, 0, 1}});
  EXPECT_TRUE(check(shaded.text()).findings.empty());
}

TEST_F(check_model, finds_spaces_that_lack_surfaces) {
  qv_gbxml_text text = room();
  text.space("void");
  EXPECT_EQ(find_one(text.text()).code, "space-without-surfaces");
  const qv_finding floor = find_one(room_without("room-floor"));
  EXPECT_EQ(floor.code, "space-without-floor");
  EXPECT_EQ(floor.id, "room");
  EXPECT_EQ(find_one(room_without("room-roof")).code, "space-without-ceiling");
}

TEST_F(check_model, finds_a_leak_and_the_place_of_the_hole) {
  const qv_check_report report = check(room_without("room-east"));
  ASSERT_EQ(report.findings.size(), 1u) << told(report.findings);
  const qv_finding& found = report.findings[0];
  EXPECT_EQ(found.code, "leaking-space");
  EXPECT_EQ(found.id, "room");
  ASSERT_TRUE(found.place.has_value());
  EXPECT_NEAR((*found.place)[0], 4, 1e-4);  // in the plane of the missing wall
  EXPECT_GT((*found.place)[1], 0.5);
  EXPECT_LT((*found.place)[1], 4.5);
  ASSERT_EQ(report.leaking_shares.size(), 1u);
  // The wall is 12.5 of 85 m² and more of what its neighbours see.
  const double share = report.leaking_shares.begin()->second;
  EXPECT_GT(share, 0.1);
  EXPECT_LT(share, 0.3);
}

TEST_F(check_model, finds_the_leak_of_the_house_without_a_wall) {
  std::string text = house_;
  const std::string wall = element("<Surface id=\"su-06\"", "Surface");
  text.erase(text.find(wall), wall.size());
  const qv_finding found = find_one(text);
  EXPECT_EQ(found.code, "leaking-space");
  EXPECT_EQ(found.id, "salon");
}

TEST_F(check_model, finds_a_reversed_surface_and_how_rays_judge_it) {
  std::string whole = room().text();
  const std::string from = qv_gbxml_text::loop({{4, 0, 0}, {4, 5, 0}, {4, 5, 2.5}, {4, 0, 2.5}});
  const std::string to = qv_gbxml_text::loop({{4, 0, 2.5}, {4, 5, 2.5}, {4, 5, 0}, {4, 0, 0}});
  ASSERT_NE(whole.find(from), std::string::npos);
  whole.replace(whole.find(from), from.size(), to);
  const qv_finding found = find_one(whole);
  EXPECT_EQ(found.code, "reversed-normal");
  EXPECT_EQ(found.id, "room-east");
  EXPECT_EQ(found.message,
            "its polygon looks into Space \"room\": 50 % of the rays agree as it is drawn, 100 % "
            "when it is turned");

  const auto turned = qv::qv_turn_gbxml_surfaces("test.xml", whole, {"room-east"});
  EXPECT_EQ(turned.count, 1);
  EXPECT_TRUE(check(turned.text).findings.empty());
  EXPECT_EQ(turned.text, room().text());  // nothing else changed
}

TEST_F(check_model, finds_walls_that_lie_on_one_another) {
  qv_gbxml_text text = room();
  text.polygon("double", "ExteriorWall", {"room"},
               {{0, 0, 0}, {2, 0, 0}, {2, 0, 2.5}, {0, 0, 2.5}});  // half of the southern wall
  const qv_finding found = find_one(text.text());
  EXPECT_EQ(found.code, "overlapping-walls");
  EXPECT_EQ(found.id, "double");
  EXPECT_EQ(found.message, "5.00 m² of it lie on Surface \"room-south\"");
  EXPECT_EQ(found.place, (std::vector<float>{1, 0, 1.25f}));
}

TEST_F(check_model, finds_walls_that_should_be_shared) {
  qv_gbxml_text text = room();
  add_room(text, "neighbour", 4.1);
  const qv_finding found = find_one(text.text());
  EXPECT_EQ(found.code, "unshared-wall");
  EXPECT_EQ(found.id, "neighbour-west");
  EXPECT_NE(
      found.message.find("12.50 m² of it stand back to back with Surface \"room-east\", 100 mm"),
      std::string::npos)
      << found.message;
  qv_gbxml_text apart = room();
  add_room(apart, "neighbour", 4.5);
  EXPECT_TRUE(check(apart.text()).findings.empty());
}

TEST_F(check_model, finds_an_opening_that_reaches_beyond_its_wall) {
  struct window {
    qv::qv_3dvector low, high;  // in the southern wall, x from 0 to 4 and z from 0 to 2.5
    const char* message;        // null: nothing wrong
  };
  for (const window& w :
       {window{{1, 0, 1}, {2, 0, 2}, nullptr}, window{{0, 0, 0}, {4, 0, 2.5f}, nullptr},
        window{{3, 0, 1}, {5, 0, 2}, "1.00 of its 2.00 m² lie beyond Surface \"room-south\""},
        window{{1, -0.1f, 1},
               {2, -0.1f, 2},
               "it lies up to 100 mm off the plane of Surface \"room-south\""}}) {
    const qv::qv_gbxml_model model = room().read();
    auto* const opening = new qv::qvi_opening;
    opening->set_source_ids({"window"});
    for (qv::qv_item* wall : model.scene->get_items("wall"))
      if (static_cast<qv::qvi_wall*>(wall)->get_source_ids()[0] == "room-south")
        opening->set_wall(static_cast<qv::qvi_wall*>(wall));
    const auto& [a, b] = std::pair(w.low, w.high);
    qv_test::add_face(*opening, {a, {b.x, a.y, a.z}, b, {a.x, a.y, b.z}});
    model.scene->add_child(opening, -1);
    qv::qv_compute_model(model, {});
    const auto findings = qv::qv_check_model(model).findings;
    if (w.message == nullptr) {
      EXPECT_TRUE(findings.empty()) << told(findings);
      continue;
    }
    ASSERT_EQ(findings.size(), 1u) << told(findings);
    EXPECT_EQ(findings[0].code, "opening-outside-wall");
    EXPECT_EQ(findings[0].kind, "Opening");
    EXPECT_EQ(findings[0].id, "window");
    EXPECT_EQ(findings[0].message, w.message);
  }
}

TEST_F(check_model, finds_a_construction_that_is_a_name_only) {
  qv_gbxml_text text = room();
  text.head("<Construction id=\"c\"><Name>Mur</Name></Construction>");
  text.polygon("screen", "InteriorWall", {"room", "room"},
               {{1, 1, 0}, {3, 1, 0}, {3, 1, 2}, {1, 1, 2}}, "constructionIdRef=\"c\"");
  const qv_finding found = find_one(text.text());
  EXPECT_EQ(found.code, "composition-without-layers");
  EXPECT_EQ(found.id, "Mur");
}

TEST_F(check_model, finds_values_that_no_substance_has) {
  struct value {
    const char* element;
    const char* number;
  };
  for (const value& v :
       {value{"Conductivity", "0"}, value{"Conductivity", "-1"}, value{"Conductivity", "501"},
        value{"Density", "-5"}, value{"Density", "30000"}, value{"SpecificHeat", "-2"}}) {
    SCOPED_TRACE(std::string(v.element) + " " + v.number);
    qv_gbxml_text text = room();
    text.head(std::string("<Material id=\"m\"><Name>stuff</Name><R-value>1</R-value><") +
              v.element + ">" + v.number + "</" + v.element +
              "></Material><Layer id=\"l\"><MaterialId materialIdRef=\"m\"/></Layer>"
              "<Construction id=\"c\"><LayerId layerIdRef=\"l\"/></Construction>");
    text.polygon("screen", "InteriorWall", {"room", "room"},
                 {{1, 1, 0}, {3, 1, 0}, {3, 1, 2}, {1, 1, 2}}, "constructionIdRef=\"c\"");
    const qv_finding found = find_one(text.text());
    EXPECT_EQ(found.code, "impossible-material");
    EXPECT_NE(found.message.find(v.element), std::string::npos) << found.message;
  }
}

TEST_F(check_model, finds_sizes_far_from_those_that_the_file_states) {
  const auto stating = [](const std::string& area, const std::string& volume) {
    std::string text = room().text();
    const std::string empty = "<Space id=\"room\" ></Space>";
    EXPECT_NE(text.find(empty), std::string::npos);
    return text.replace(
        text.find(empty), empty.size(),
        "<Space id=\"room\"><Area>" + area + "</Area><Volume>" + volume + "</Volume></Space>");
  };
  EXPECT_TRUE(check(stating("20", "50")).findings.empty());
  EXPECT_TRUE(check(stating("17", "43")).findings.empty());  // inside the finishes
  const qv_finding area = find_one(stating("16", "50"));
  EXPECT_EQ(area.code, "area-not-as-stated");
  EXPECT_EQ(area.message, "20.00 m² measured, 16.00 m² stated");
  const qv_finding volume = find_one(stating("20", "70"));
  EXPECT_EQ(volume.code, "volume-not-as-stated");
  EXPECT_EQ(volume.message, "50.00 m³ measured, 70.00 m³ stated");
}

TEST_F(check_model, finds_a_polygon_that_is_not_plane) {
  qv_gbxml_text text = room();
  text.polygon("screen", "InteriorWall", {"room", "room"},
               {{1, 1, 0}, {3, 1, 0}, {3, 1.02, 2}, {1, 1, 2}});
  const qv_finding found = find_one(text.text());
  EXPECT_EQ(found.code, "polygon-not-plane");
  EXPECT_EQ(found.id, "screen");
}

TEST_F(check_model, finds_slivers_and_polygons_without_area) {
  qv_gbxml_text thin = room();
  thin.polygon("sliver", "InteriorWall", {"room", "room"},
               {{1, 1, 0}, {1.004, 1, 0}, {1.004, 1, 2}, {1, 1, 2}});
  const qv_finding found = find_one(thin.text());
  EXPECT_EQ(found.code, "sliver-polygon");
  EXPECT_EQ(found.id, "sliver");
  EXPECT_EQ(found.message, "it is 4.0 mm wide");
  qv_gbxml_text line = room();
  line.polygon("line", "InteriorWall", {"room", "room"}, {{1, 1, 0}, {2, 1, 0}, {3, 1, 0}});
  EXPECT_EQ(find_one(line.text()).code, "sliver-polygon");
}

TEST_F(check_model, tells_places_in_the_coordinates_of_the_file) {
  qv_gbxml_text text;
  text.box("room", {700000, 0, 0}, {700004, 5, 2.5});
  text.polygon("fence", "ExteriorWall", {},
               {{700008, 0, 0}, {700009, 0, 0}, {700009, 0, 1}, {700008, 0, 1}});
  const qv_finding found = find_one(text.text());
  ASSERT_TRUE(found.place.has_value());
  EXPECT_NEAR((*found.place)[0], 700008.5f, 0.1f);
}

TEST_F(check_model, has_a_line_in_its_page_for_each_code_and_the_other_way_round) {
  std::vector<std::string> listed;
  for (const auto& row : qv_markdown_rows(qv_file_content(QV_SOURCE_DIR "/docs/checks.md"), "code"))
    listed.push_back(row.at(0));
  std::vector<std::string> known;
  for (const auto& code : qv::qv_check_codes()) known.push_back("`" + std::string(code.code) + "`");
  EXPECT_EQ(listed, known);
}

}  // namespace
