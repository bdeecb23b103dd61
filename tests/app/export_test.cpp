#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <bit>
#include <cctype>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

#include "app/export/qv_export_gbxml.h"
#include "app/export/qv_export_gltf.h"
#include "app/export/qv_export_groups.h"
#include "app/export/qv_export_obj.h"
#include "app/export/qv_xml_writer.h"
#include "app/study/qv_study.h"
#include "app/study/qv_study_gather.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/qv_load_bim_items.h"
#include "core/light/qvi_schedule.h"
#include "tests/app/qv_gbxml_text.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_paths.h"

namespace {

namespace fs = std::filesystem;

const std::string house = QV_SOURCE_DIR "/samples/house.xml";

// In the model's own axes, as it is written.
qv::qv_gbxml_model compute(qv::qv_gbxml_model model) {
  qv::qv_study_options options;
  options.north = 0.0;
  qv::qv_compute_model(model, options);
  return model;
}

// m² and m³; of single precision in sums of a few hundred, and relative.
void expect_near(double a, double b, const std::string& what) {
  EXPECT_NEAR(a, b, 1e-5 * std::max(1.0, std::abs(a))) << what;
}

void expect_near(const std::optional<float>& a, const std::optional<float>& b,
                 const std::string& what) {
  ASSERT_EQ(a.has_value(), b.has_value()) << what;
  if (a) expect_near(*a, *b, what);
}

// What a usage is, where it is used, and when.
std::vector<std::string> describe(const std::vector<qv::qv_study_usage>& usages) {
  std::vector<std::string> all;
  for (const qv::qv_study_usage& usage : usages) {
    std::ostringstream text;
    text << usage.zone << '|' << usage.kind << '|' << usage.name << '|';
    for (const std::string& space : usage.spaces) text << space << ' ';
    for (const auto& word :
         {usage.unit_type, usage.schedule, usage.occupation_schedule, usage.heating_period,
          usage.heating_schedule, usage.cooling_period, usage.cooling_schedule})
      text << '|' << word.value_or("none");
    for (const auto& number : {usage.persons, usage.person_heat_gain, usage.power, usage.flow})
      text << '|' << number.value_or(-1);
    for (const auto& range : {usage.heating_range, usage.cooling_range})
      for (const float value : range) text << '|' << value;
    all.push_back(text.str());
  }
  std::sort(all.begin(), all.end());
  return all;
}

// Every schedule of the file has the same hours again.
void expect_same_schedules(const qv::qv_gbxml_model& model, const qv::qv_gbxml_model& again) {
  std::map<std::string, const qv::qvi_schedule*> schedules;
  for (const qv::qv_source_schedule& schedule : again.schedules)
    schedules[schedule.item->get_unique_id()] = schedule.item;
  ASSERT_EQ(again.schedules.size(), model.schedules.size());
  for (const qv::qv_source_schedule& schedule : model.schedules) {
    const std::string id = schedule.item->get_unique_id();
    ASSERT_TRUE(schedules.contains(id)) << id;
    EXPECT_EQ(schedules[id]->get_name(), schedule.item->get_name());
    EXPECT_TRUE(std::equal(schedule.item->get_values().begin(), schedule.item->get_values().end(),
                           schedules[id]->get_values().begin(), schedules[id]->get_values().end()))
        << id;
  }
}

// The study of the model beside that of what was written of it.
void expect_same_study(const std::string& path) {
  const qv::qv_gbxml_model model = compute(qv::qv_read_gbxml(path));
  if (model.scene->get_items("wall").is_empty()) {
    EXPECT_THROW(qv::qv_export_gbxml(model), qv::qv_input_error);
    return;
  }
  const qv::qv_gbxml_model again =
      compute(qv::qv_read_gbxml_bytes("again.xml", qv::qv_export_gbxml(model)));
  const qv::qv_study_results a = qv::qv_gather_study(model);
  const qv::qv_study_results b = qv::qv_gather_study(again);

  std::map<std::string, qv::qv_study_space> spaces;
  for (const qv::qv_source_space& space : again.spaces)
    for (const qv::qv_study_space& found : b.spaces)
      if (found.id == space.id) spaces[space.id] = found;
  ASSERT_EQ(a.spaces.size(), b.spaces.size());
  for (std::size_t i = 0; i < a.spaces.size(); ++i) {
    const std::string id = model.spaces.at(i).item->get_unique_id();
    ASSERT_TRUE(spaces.contains(id)) << id;
    const qv::qv_study_space& space = spaces[id];
    EXPECT_EQ(space.name, a.spaces[i].name);
    EXPECT_EQ(space.building, a.spaces[i].building);
    EXPECT_EQ(space.zone, a.spaces[i].zone);
    EXPECT_EQ(space.floor, a.spaces[i].floor);
    EXPECT_EQ(space.stated_area, a.spaces[i].stated_area);
    EXPECT_EQ(space.stated_volume, a.spaces[i].stated_volume);
    expect_near(space.area, a.spaces[i].area, "area of " + id);
    expect_near(space.volume, a.spaces[i].volume, "volume of " + id);
  }
  ASSERT_EQ(a.walls.size(), b.walls.size());
  for (std::size_t i = 0; i < a.walls.size(); ++i) {
    const std::string& id = a.walls[i].id;
    EXPECT_EQ(b.walls[i].name, a.walls[i].name) << id;
    EXPECT_EQ(b.walls[i].wall_type, a.walls[i].wall_type) << id;
    EXPECT_EQ(b.walls[i].contact_type, a.walls[i].contact_type) << id;
    EXPECT_EQ(b.walls[i].composition, a.walls[i].composition) << id;
    EXPECT_EQ(b.walls[i].limit_condition, a.walls[i].limit_condition) << id;
    expect_near(b.walls[i].area, a.walls[i].area, "area of " + id);
    expect_near(b.walls[i].u, a.walls[i].u, "U of " + id);
    if (a.walls[i].azimuth && b.walls[i].azimuth && a.walls[i].area > 0.1) {
      const double turn = *a.walls[i].azimuth - *b.walls[i].azimuth;
      EXPECT_NEAR(std::remainder(turn, 360.0), 0, 0.05) << id;
    }
    // Degrees: a sliver turns by that much when its corners are rounded to single precision.
    EXPECT_NEAR(b.walls[i].tilt.value_or(-1), a.walls[i].tilt.value_or(-1), 0.05) << id;
  }
  ASSERT_EQ(a.openings.size(), b.openings.size());
  for (std::size_t i = 0; i < a.openings.size(); ++i) {
    const std::string& id = a.openings[i].id;
    EXPECT_EQ(b.openings[i].name, a.openings[i].name) << id;
    EXPECT_EQ(b.openings[i].wall, a.openings[i].wall) << id;
    EXPECT_EQ(b.openings[i].opening_type, a.openings[i].opening_type) << id;
    expect_near(b.openings[i].full_area, a.openings[i].full_area, "area of " + id);
    expect_near(b.openings[i].opaque_area, a.openings[i].opaque_area, "panels of " + id);
    expect_near(b.openings[i].u, a.openings[i].u, "U of " + id);
    expect_near(b.openings[i].solar_factor, a.openings[i].solar_factor, "solar factor of " + id);
    expect_near(b.openings[i].visible_transmittance, a.openings[i].visible_transmittance,
                "light through " + id);
  }
  ASSERT_EQ(a.objects.size(), b.objects.size());
  for (std::size_t i = 0; i < a.objects.size(); ++i) {
    EXPECT_EQ(b.objects[i].name, a.objects[i].name);
    EXPECT_EQ(b.objects[i].kind, a.objects[i].kind);
    EXPECT_NEAR(b.objects[i].area, a.objects[i].area, 1e-5 * std::max(1.0, a.objects[i].area));
  }
  EXPECT_EQ(describe(b.usages), describe(a.usages));
  expect_same_schedules(model, again);
  ASSERT_EQ(a.thermal_bridges.size(), b.thermal_bridges.size());
  EXPECT_EQ(a.location.latitude, b.location.latitude);
  EXPECT_EQ(a.location.azimuth, b.location.azimuth);
}

// Numbers behind the keyword of each line of an OBJ text.
struct obj_text {
  std::vector<std::string> groups;
  std::vector<qv::qv_3dvector> vertices;
  std::vector<std::array<int, 3>> faces;
  std::map<std::string, double> area;  // by material

  explicit obj_text(const std::string& text) {
    std::istringstream lines(text);
    std::string material;
    for (std::string line; std::getline(lines, line);) {
      std::istringstream words(line);
      std::string keyword;
      words >> keyword;
      if (keyword == "g") {
        words >> groups.emplace_back();
      } else if (keyword == "usemtl") {
        words >> material;
      } else if (keyword == "v") {
        auto& v = vertices.emplace_back();
        words >> v.x >> v.y >> v.z;
      } else if (keyword == "f") {
        auto& f = faces.emplace_back();
        words >> f[0] >> f[1] >> f[2];
        const auto corner = [&](int k) {
          return vertices.at(static_cast<std::size_t>(f[static_cast<std::size_t>(k)] - 1));
        };
        area[material] += (corner(1) - corner(0)).cross(corner(2) - corner(0)).length() / 2;
      }
      EXPECT_FALSE(words.fail()) << line;
    }
  }
};

class export_house : public testing::Test {
 protected:
  static void SetUpTestSuite() {
    qv_load_bim_items();
    model_ = std::make_unique<qv::qv_gbxml_model>(compute(qv::qv_read_gbxml(house)));
  }
  static void TearDownTestSuite() { model_.reset(); }
  static inline std::unique_ptr<qv::qv_gbxml_model> model_;
};

TEST(export_gbxml, reads_the_house_back_to_the_same_study) {
  expect_same_study(house);
}

// A room with a window and a roof light of the first type and a window of the second.
std::string glazed_room(const std::string& first, const std::string& second) {
  const auto opening = [](const std::string& id, const std::string& type, const std::string& of,
                          const std::vector<qv_gbxml_text::point>& corners) {
    return "<Opening id=\"" + id + "\" openingType=\"" + type + "\" windowTypeIdRef=\"" + of +
           "\">" + qv_gbxml_text::planar(corners) + "</Opening>";
  };
  return qv_gbxml_text()
      .head("<WindowType id=\"first\"><Name>First</Name>" + first +
            "</WindowType><WindowType id=\"second\"><Name>Second</Name>" + second + "</WindowType>")
      .space("a")
      .surface(
          "wall", "ExteriorWall", {"a"},
          qv_gbxml_text::planar({{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}}) +
              opening("w1", "FixedWindow", "first", {{1, 0, 1}, {2, 0, 1}, {2, 0, 2}, {1, 0, 2}}) +
              opening("w2", "FixedWindow", "second",
                      {{3, 0, 1}, {3.5, 0, 1}, {3.5, 0, 2}, {3, 0, 2}}))
      .surface(
          "roof", "Roof", {"a"},
          qv_gbxml_text::planar({{0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 4, 3}}) +
              opening("r1", "FixedSkylight", "first", {{1, 1, 3}, {2, 1, 3}, {2, 2, 3}, {1, 2, 3}}))
      .text();
}

const std::string coated_double =
    "<Glaze id=\"g1\"><Name>Outer</Name><Thickness unit=\"Meters\">0.006</Thickness>"
    "<Conductivity unit=\"WPerMeterK\">0.9</Conductivity>"
    "<Transmittance unit=\"Fraction\" type=\"Solar\">0.55</Transmittance>"
    "<Transmittance unit=\"Fraction\" type=\"Visible\">0.83</Transmittance>"
    "<Transmittance unit=\"Fraction\" type=\"IR\">0</Transmittance>"
    "<Reflectance unit=\"Fraction\" type=\"ExtSolar\">0.21</Reflectance>"
    "<Reflectance unit=\"Fraction\" type=\"IntSolar\">0.24</Reflectance>"
    "<Reflectance unit=\"Fraction\" type=\"ExtVisible\">0.06</Reflectance>"
    "<Reflectance unit=\"Fraction\" type=\"IntVisible\">0.05</Reflectance>"
    "<Emittance unit=\"Fraction\" type=\"ExtIR\">0.84</Emittance>"
    "<Emittance unit=\"Fraction\" type=\"IntIR\">0.04</Emittance></Glaze>"
    "<Gap id=\"g2\" gas=\"Krypton\"><Thickness unit=\"Meters\">0.014</Thickness></Gap>"
    "<Glaze id=\"g3\"><Name>Inner</Name></Glaze>";

std::size_t count_of(const std::string& word, const std::string& text) {
  std::size_t found = 0;
  for (auto at = text.find(word); at != std::string::npos; at = text.find(word, at + 1)) ++found;
  return found;
}

void expect_same_glazings(const qv::qv_study_results& a, const qv::qv_study_results& b) {
  ASSERT_EQ(b.glazings.size(), a.glazings.size());
  for (std::size_t i = 0; i < a.glazings.size(); ++i) {
    ASSERT_EQ(b.glazings[i].layers.size(), a.glazings[i].layers.size());
    for (std::size_t k = 0; k < a.glazings[i].layers.size(); ++k) {
      const auto& before = a.glazings[i].layers[k];
      const auto& after = b.glazings[i].layers[k];
      EXPECT_EQ(after.name, before.name);
      EXPECT_EQ(after.kind, before.kind);
      EXPECT_EQ(after.gas, before.gas);
      expect_near(after.thickness, before.thickness, "thickness");
      expect_near(after.solar_reflectance_back, before.solar_reflectance_back, "reflectance");
      expect_near(after.emissivity_back, before.emissivity_back, "emissivity");
    }
  }
}

TEST(export_gbxml, writes_the_layers_of_a_glazing) {
  const std::string text = glazed_room(coated_double,
                                       "<U-value unit=\"WPerSquareMeterK\">2.5</U-value>"
                                       "<SolarHeatGainCoeff>0.6</SolarHeatGainCoeff>"
                                       "<Transmittance type=\"Visible\">0.7</Transmittance>");
  const auto model = compute(qv::qv_read_gbxml_bytes("glazed.xml", text));
  const std::string written = qv::qv_export_gbxml(model);
  // One type for the window and the roof light, and one of figures without a made-up pane.
  EXPECT_EQ(count_of("<WindowType ", written), 2U);
  EXPECT_EQ(count_of("<Glaze ", written), 2U);
  EXPECT_EQ(count_of("gas=\"Krypton\"", written), 1U);

  const auto again = compute(qv::qv_read_gbxml_bytes("again.xml", written));
  const auto a = qv::qv_gather_study(model);
  const auto b = qv::qv_gather_study(again);
  ASSERT_EQ(a.openings.size(), 3U);
  ASSERT_EQ(b.openings.size(), 3U);
  std::map<std::string, qv::qv_study_opening> found;
  for (const auto& opening : b.openings) found[opening.id] = opening;
  for (const auto& opening : a.openings) {
    expect_near(found.at(opening.id).u, opening.u, "U of " + opening.id);
    expect_near(found.at(opening.id).solar_factor, opening.solar_factor, "g of " + opening.id);
    expect_near(found.at(opening.id).visible_transmittance, opening.visible_transmittance,
                "light of " + opening.id);
  }
  EXPECT_NE(a.openings[0].u, a.openings[2].u);  // upright and level
  expect_same_glazings(a, b);
}

TEST(export_gbxml, writes_figures_where_they_were_imposed) {
  const std::string text = glazed_room(
      coated_double + "<Frame/><U-value unit=\"WPerSquareMeterK\">1.4</U-value>", coated_double);
  const auto model = compute(qv::qv_read_gbxml_bytes("framed.xml", text));
  const auto again = compute(qv::qv_read_gbxml_bytes("again.xml", qv::qv_export_gbxml(model)));
  const auto a = qv::qv_gather_study(model);
  const auto b = qv::qv_gather_study(again);
  for (std::size_t i = 0; i < 3; ++i) expect_near(b.openings[i].u, a.openings[i].u, "U");
  EXPECT_NEAR(*b.openings[0].u, 1.4, 1e-5);
}

class export_shared_data : public testing::TestWithParam<std::string> {};

TEST_P(export_shared_data, reads_back_to_the_same_study) {
  if (GetParam().empty()) GTEST_SKIP() << "no models of other tools";
  expect_same_study(GetParam());
}

// All but the largest, whose study takes longer than all others together.
std::vector<std::string> model_paths() {
  constexpr std::uintmax_t largest_size = 3'000'000;
  const char* named = std::getenv("QV_SHARED_DATA");
  const fs::path folder = fs::path(named != nullptr ? named : QV_SOURCE_DIR "/../shared/data");
  std::vector<std::string> paths;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(folder / "gbxml", ignored))
    if (entry.path().extension() == ".xml" && entry.file_size() < largest_size)
      paths.push_back(entry.path().string());
  std::sort(paths.begin(), paths.end());
  if (paths.empty()) paths.emplace_back();
  return paths;
}

INSTANTIATE_TEST_SUITE_P(models, export_shared_data, testing::ValuesIn(model_paths()),
                         [](const auto& instance) {
                           std::string name = fs::path(instance.param).stem().string();
                           for (char& c : name)
                             if (std::isalnum(static_cast<unsigned char>(c)) == 0) c = '_';
                           return name.empty() ? std::string("none") : name;
                         });

TEST_F(export_house, obj_has_a_group_for_each_item_and_the_areas_of_the_walls) {
  const obj_text obj(qv::qv_export_obj(*model_->scene));
  const qv::qv_study_results study = qv::qv_gather_study(*model_);
  std::map<std::string, double> area;
  for (const qv::qv_study_object& object : study.objects) area["object"] += object.area;
  for (const qv::qv_study_wall& wall : study.walls)
    if (wall.id != study.objects.at(0).id) area[wall.contact_type] += wall.area;  // the balcony's
  for (const auto& [contact, sum] : area) EXPECT_NEAR(obj.area.at(contact), sum, 1e-3) << contact;
  EXPECT_EQ(obj.groups.size(), qv::qv_collect_export_groups(*model_->scene).size());
  EXPECT_GE(obj.groups.size(), study.walls.size());
  for (const auto& face : obj.faces)
    for (const int index : face)
      EXPECT_TRUE(index >= 1 && index <= static_cast<int>(obj.vertices.size()));
}

// Readers take a second group of one name for more of the first.
TEST(export_obj, gives_items_of_one_name_groups_of_their_own) {
  qv_load_bim_items();
  qv_gbxml_text text;
  text.box("a", {0, 0, 0}, {4, 5, 3});
  double x = 10;
  for (const char* name : {"Slab-2", "Slab", "Slab", "Slab"}) {
    text.surface("shade-" + std::to_string(static_cast<int>(x)), "Shade", {},
                 "<Name>" + std::string(name) + "</Name>" +
                     qv_gbxml_text::planar({{x, 0, 0}, {x + 1, 0, 0}, {x + 1, 1, 0}, {x, 1, 0}}));
    x += 2;
  }
  const qv::qv_gbxml_model model = compute(text.read());
  const std::string obj = qv::qv_export_obj(*model.scene);
  std::map<std::string, int> groups;
  std::istringstream lines(obj);
  for (std::string line; std::getline(lines, line);)
    if (line.starts_with("g Slab")) ++groups[line];
  const std::map<std::string, int> expected = {
      {"g Slab-2", 1}, {"g Slab", 1}, {"g Slab-3", 1}, {"g Slab-4", 1}};
  EXPECT_EQ(groups, expected);
}

std::string from_base64(const std::string& text) {
  static const std::string digits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string bytes;
  unsigned bits = 0;
  int count = 0;
  for (const char c : text) {
    const auto value = digits.find(c);
    if (value == std::string::npos) break;
    bits = bits << 6U | static_cast<unsigned>(value);
    count += 6;
    if (count >= 8) bytes += static_cast<char>(bits >> static_cast<unsigned>(count -= 8) & 0xFFU);
  }
  return bytes;
}

TEST_F(export_house, gltf_is_sound_and_names_and_colours_every_item) {
  const auto document = nlohmann::json::parse(qv::qv_export_gltf(*model_->scene));
  EXPECT_EQ(document["asset"]["version"], "2.0");
  const std::string uri = document["buffers"][0]["uri"];
  const std::string bytes = from_base64(uri.substr(uri.find(',') + 1));
  ASSERT_EQ(bytes.size(), document["buffers"][0]["byteLength"].get<std::size_t>());
  const auto groups = qv::qv_collect_export_groups(*model_->scene);
  const auto& children = document["nodes"][0]["children"];
  ASSERT_EQ(children.size(), groups.size());
  for (std::size_t i = 0; i < groups.size(); ++i) {
    const auto& node = document["nodes"][children[i].get<std::size_t>()];
    EXPECT_EQ(node["name"], groups[i].name);
    EXPECT_EQ(node["extras"]["kind"], groups[i].kind);
    const auto& primitive = document["meshes"][node["mesh"].get<std::size_t>()]["primitives"][0];
    const auto& material = document["materials"][primitive["material"].get<std::size_t>()];
    EXPECT_EQ(material["name"], groups[i].kind);
    EXPECT_EQ(material["pbrMetallicRoughness"]["baseColorFactor"].size(), 4U);
    const auto& positions =
        document["accessors"][primitive["attributes"]["POSITION"].get<std::size_t>()];
    const auto& indices = document["accessors"][primitive["indices"].get<std::size_t>()];
    ASSERT_EQ(positions["count"], groups[i].triangles.vertices.get_count());
    ASSERT_EQ(indices["count"], groups[i].triangles.triangles.get_count());
    for (const auto& [accessor, size] : {std::pair(positions, 12), std::pair(indices, 4)}) {
      const auto& view = document["bufferViews"][accessor["bufferView"].get<std::size_t>()];
      EXPECT_EQ(view["byteLength"], accessor["count"].get<int>() * size);
      EXPECT_LE(view["byteOffset"].get<std::size_t>() + view["byteLength"].get<std::size_t>(),
                bytes.size());
    }
    // The first vertex as it stands in the buffer, least significant byte first.
    const auto offset =
        document["bufferViews"][positions["bufferView"].get<std::size_t>()]["byteOffset"]
            .get<std::size_t>();
    std::uint32_t word = 0;
    for (std::size_t k = 0; k < 4; ++k)
      word |= static_cast<std::uint32_t>(static_cast<unsigned char>(bytes[offset + k])) << 8 * k;
    EXPECT_EQ(std::bit_cast<float>(word), groups[i].triangles.vertices[0].x);
  }
}

TEST(export_command, writes_each_format) {
  const qv_temporary_folder folder;
  const qv_program_run json = qv_run(
      {"export", house, "--format", "json", "--out", (folder.path() / "house.json").string()});
  EXPECT_EQ(json.exit_code, 0) << json.errors;
  EXPECT_TRUE(nlohmann::json::accept(qv_file_content((folder.path() / "house.json").string())));
  const qv_program_run gbxml = qv_run(
      {"export", house, "--format", "gbxml", "--out", (folder.path() / "house.xml").string()});
  EXPECT_EQ(gbxml.exit_code, 0) << gbxml.errors;
  EXPECT_EQ(qv_run({"info", (folder.path() / "house.xml").string()}).exit_code, 0);
}

TEST(export_command, knows_its_formats_and_leaves_nothing_half_written) {
  const qv_temporary_folder folder;
  EXPECT_EQ(qv_run({"export", house, "--format", "dxf", "--out", (folder.path() / "x").string()})
                .exit_code,
            2);
  EXPECT_EQ(qv_run({"export", house, "--out", (folder.path() / "x").string()}).exit_code, 2);
  EXPECT_EQ(qv_run({"export", (folder.path() / "none.xml").string(), "--format", "obj", "--out",
                    (folder.path() / "x").string()})
                .exit_code,
            4);
  EXPECT_FALSE(fs::exists((folder.path() / "x").string()));
}

TEST(export_xml_writer, escapes_what_has_a_meaning_and_drops_what_xml_cannot_hold) {
  qv::qv_xml_writer xml;
  xml.begin("a", {{"id", "<\"&>"}, {"none", ""}});
  xml.leaf("b", "x\x01y\xFFz & <");
  xml.end();
  EXPECT_EQ(xml.text(),
            "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n"
            "<a id=\"&lt;&quot;&amp;&gt;\">\n  <b>x y\xEF\xBF\xBDz &amp; &lt;</b>\n</a>\n");
}

}  // namespace
