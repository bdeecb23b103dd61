// Real files of other programs, where they are at hand: beside the project in ../shared/data, or
// where QV_SHARED_DATA points.

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <map>
#include <nlohmann/json.hpp>
#include <set>

#include "app/readers/qv_gbxml_reader.h"
#include "app/readers/qv_gbxml_surface_type.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/project/qvi_bim_root.h"
#include "core/shapes/qvi_polygon.h"
#include "tests/support/qv_test_paths.h"

namespace {

namespace fs = std::filesystem;
using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;

fs::path shared_folder() {
  const char* named = std::getenv("QV_SHARED_DATA");
  const fs::path data =
      named != nullptr ? fs::path(named) : fs::path(QV_SOURCE_DIR) / "../shared/data";
  return data / "gbxml";
}

std::vector<fs::path> shared_files() {
  std::vector<fs::path> files;
  std::error_code ignored;
  for (const auto& entry : fs::directory_iterator(shared_folder(), ignored))
    if (entry.path().extension() == ".xml") files.push_back(entry.path());
  std::sort(files.begin(), files.end());
  return files;
}

nlohmann::json read_reference() {
  nlohmann::json reference;
  std::ifstream(shared_folder() / "reference.json") >> reference;
  return reference;
}

// What is left of each wall's face and its openings add up to the face; so do openings and ledger.
void expect_openings_in_their_walls(const qv::qv_gbxml_model& model) {
  std::map<qv::qvi_wall*, double> areas;
  std::set<std::string> made;
  for (qv::qvi_opening* opening : qv::qv_collect<qv::qvi_opening>(model.root, "opening")) {
    ASSERT_NE(opening->get_wall(), nullptr);
    for (qv::qvi_polygon* outline : qv::qv_collect<qv::qvi_polygon>(opening, "polygon"))
      areas[opening->get_wall()] += outline->get_area();
    for (const std::string& id : opening->get_source_ids()) made.insert(id);
  }
  for (qv::qvi_wall* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall")) {
    const double face = wall->get_face_0()->get_area();
    qv::qvi_polygon* pierced = wall->get_pierced_face_0();
    EXPECT_EQ(pierced != nullptr, areas.contains(wall)) << wall->get_name();
    if (pierced == nullptr) continue;
    EXPECT_NEAR(pierced->get_area() + areas[wall], face, 1e-5 * face) << wall->get_name();
  }
  const auto balance = model.ledger.get_opening_balance();
  EXPECT_TRUE(balance.is_balanced()) << balance.get_relative_error();
  EXPECT_EQ(model.ledger.get_count(kind::opening, outcome::not_read), 0U);
  EXPECT_EQ(model.ledger.get_count(kind::window_type, outcome::not_read), 0U);
  for (const auto& entry : model.ledger.get_entries())
    if (entry.what == kind::opening) {
      EXPECT_EQ(entry.result != outcome::dropped, made.contains(entry.id)) << entry.id;
    }
}

class shared_data : public testing::Test {
 protected:
  void SetUp() override {
    if (shared_files().empty()) GTEST_SKIP() << "no files in " << shared_folder();
  }
};

}  // namespace

TEST_F(shared_data, every_file_reads_with_a_balanced_ledger_and_a_reason_for_everything) {
  for (const fs::path& path : shared_files()) {
    SCOPED_TRACE(path.filename().string());
    const auto model = qv::qv_read_gbxml(path.string());
    const auto balance = model.ledger.get_balance();
    EXPECT_TRUE(balance.is_balanced()) << balance.get_relative_error();
    for (const auto& entry : model.ledger.get_entries()) {
      EXPECT_NE(entry.reason, "") << entry.id;
      EXPECT_NE(entry.line, 0U) << entry.id;
    }
    // The walls of the scene have the area that the ledger says.
    double area = 0;
    for (const qv::qvi_wall* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall")) {
      area += wall->get_face_0()->get_area();
      EXPECT_NEAR(wall->get_normal().length(), 1, 1e-5);
    }
    EXPECT_NEAR(area, balance.walls, 1e-6 * balance.walls + 1e-9);
    expect_openings_in_their_walls(model);
  }
}

TEST_F(shared_data, counts_and_areas_are_those_of_the_reference) {
  const nlohmann::json reference = read_reference();
  for (const auto& [name, figures] : reference.items()) {
    const nlohmann::json& expected = figures;
    SCOPED_TRACE(name);
    const auto model = qv::qv_read_gbxml((shared_folder() / name).string());
    const auto count = [&](const char* what) {
      return expected["counts"].value(what, std::size_t{0});
    };
    for (int k = 0; k < qv::qv_import_ledger::kind_count; ++k) {
      const auto what = static_cast<kind>(k);
      EXPECT_EQ(model.ledger.get_count(what), count(qv::qv_import_ledger::get_kind_name(what)))
          << qv::qv_import_ledger::get_kind_name(what);
    }
    double expected_area = 0;
    for (const auto& [type, area] : expected["surfaceArea_m2_byType"].items())
      expected_area += area.get<double>();
    const double rounding =
        0.05 * static_cast<double>(expected["surfaceArea_m2_byType"].size()) + 0.01;
    EXPECT_NEAR(model.ledger.get_area(kind::surface), expected_area, rounding);
    ASSERT_EQ(model.spaces.size(), expected["spaces"].size());
    for (std::size_t i = 0; i < model.spaces.size(); ++i) {
      const auto& space = expected["spaces"][i];
      EXPECT_EQ(model.spaces[i].id, space["id"].get<std::string>());
      const double area = space["area"].get<double>();
      EXPECT_NEAR(model.spaces[i].stated_area.value_or(0), area, 1e-6 * area + 1e-9);
      const double volume = space["vol"].get<double>();
      EXPECT_NEAR(model.spaces[i].stated_volume.value_or(0), volume, 1e-6 * volume + 1e-9);
      if (space.contains("shellvol")) {
        const double shell = space["shellvol"].get<double>();
        EXPECT_NEAR(model.spaces[i].shell_volume.value_or(0), shell, 1e-4 * std::abs(shell) + 1e-6)
            << model.spaces[i].id;
      }
    }
  }
}

TEST_F(shared_data, surfaces_that_close_enclose_what_the_reference_says) {
  // Files whose surfaces all keep the direction of the file: the reference adds them up as they
  // stand.
  const nlohmann::json reference = read_reference();
  for (const auto& [name, expected] : reference.items()) {
    SCOPED_TRACE(name);
    const auto model = qv::qv_read_gbxml((shared_folder() / name).string());
    bool as_it_stands = true;
    for (const auto& entry : model.ledger.get_entries())
      if (entry.what == kind::surface &&
          (entry.reason.find("was turned") != std::string::npos || entry.result == outcome::merged))
        as_it_stands = false;
    double volume = 0;
    bool all_closed = true;
    for (const qv::qv_source_space& space : model.spaces) {
      volume += space.enclosed_volume;
      all_closed = all_closed && space.closed;
    }
    const double expected_volume = expected["surfVolume"]["Vs"].get<double>();
    if (as_it_stands && all_closed) {
      EXPECT_NEAR(volume, expected_volume, 0.1 + 1e-4 * volume);
    }
    if (all_closed && !model.spaces.empty()) {
      EXPECT_GT(volume, 0);
    }
  }
}

TEST_F(shared_data, a_closed_space_of_a_file_with_shells_on_the_surfaces_has_the_shells_volume) {
  for (const char* name :
       {"A00.xml", "Villa.xml", "8-a_TAS.xml", "rectangular-20x50x4.xml", "Roofs.xml"}) {
    SCOPED_TRACE(name);
    const auto model = qv::qv_read_gbxml((shared_folder() / name).string());
    for (const qv::qv_source_space& space : model.spaces) {
      if (!space.closed) continue;
      EXPECT_NEAR(space.enclosed_volume, space.shell_volume.value(), 1e-3 * space.enclosed_volume)
          << space.id;
    }
  }
}

TEST_F(shared_data, an_inverted_file_comes_out_right) {
  const auto model =
      qv::qv_read_gbxml((shared_folder() / "NewBuilding_BHoM_badopenings.xml").string());
  for (const qv::qv_source_space& space : model.spaces)
    EXPECT_GT(space.enclosed_volume, 0) << space.id;
}

TEST_F(shared_data, no_surface_of_two_spaces_loses_one) {
  // Counted in the file's own text, apart from the reader: surfaces with two different
  // AdjacentSpaceId of spaces that exist, by id.
  for (const fs::path& path : shared_files()) {
    SCOPED_TRACE(path.filename().string());
    const auto model = qv::qv_read_gbxml(path.string());
    std::set<std::string> with_two;
    for (const qv::qvi_wall* wall : qv::qv_collect<qv::qvi_wall>(model.root, "wall"))
      if (wall->get_space_0() != nullptr && wall->get_space_1() != nullptr)
        for (const std::string& id : wall->get_source_ids()) with_two.insert(id);
    std::ifstream file(path, std::ios::binary);
    std::string text((std::istreambuf_iterator<char>(file)), {});
    if (text.starts_with("\xFF\xFE")) std::erase(text, '\0');
    std::size_t two = 0;
    for (std::size_t at = text.find("<Surface "); at != std::string::npos;
         at = text.find("<Surface ", at + 1)) {
      const std::string surface = text.substr(at, text.find("</Surface>", at) - at);
      std::size_t references = 0;
      for (std::size_t r = surface.find("<AdjacentSpaceId"); r != std::string::npos;
           r = surface.find("<AdjacentSpaceId", r + 1))
        ++references;
      const std::size_t id = surface.find(" id=\"") + 5;
      const std::string name = surface.substr(id, surface.find('"', id) - id);
      bool dropped = false;
      if (references < 2) continue;
      for (const auto& entry : model.ledger.get_entries())
        dropped = dropped || (entry.what == kind::surface && entry.id == name &&
                              entry.result == outcome::dropped);
      if (dropped) continue;
      ++two;
      EXPECT_TRUE(with_two.contains(name)) << name;
    }
    EXPECT_EQ(two, with_two.size());
  }
}
