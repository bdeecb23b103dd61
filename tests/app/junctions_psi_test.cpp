#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <fstream>

#include "app/junctions/qv_bridge_values.h"
#include "app/junctions/qv_connexions.h"
#include "app/readers/qv_input_error.h"
#include "bim/materials/qvi_material.h"
#include "core/items/qv_scene.h"
#include "tests/app/qv_program.h"
#include "tests/app/qv_temporary_folder.h"
#include "tests/support/qv_test_buildings.h"
#include "tests/support/qv_test_paths.h"

namespace {

using namespace qv;
using type = qvi_connexion::connexion_type;
using insulation = qvi_composition::composition_insulation;
using testing::HasSubstr;

std::string complaint_about(const std::string& text) {
  try {
    qv_parse_psi_catalogue("psi.txt", text);
  } catch (const qv_input_error& error) {
    return error.what();
  }
  return "none";
}

TEST(qv_psi_catalogue, reads_numbers_positions_and_what_is_not_known) {
  const auto psi = qv_parse_psi_catalogue("psi.json", R"({"name": "Mine", "psi_w_per_mk": {
      "roof_roof": 0.05, "facade_intermediate": {"interior": 0.9, "any": 0.5}, "unknown": null}})");
  EXPECT_EQ(psi.name, "Mine");
  EXPECT_EQ(psi.find(type::roof_roof, insulation::exterior), 0.05f);
  EXPECT_EQ(psi.find(type::facade_intermediate, insulation::interior), 0.9f);
  EXPECT_EQ(psi.find(type::facade_intermediate, insulation::none), 0.5f);
  EXPECT_FALSE(psi.find(type::unknown, insulation::none).has_value());
  EXPECT_FALSE(psi.find(type::roof_facade, insulation::none).has_value());
}

TEST(qv_psi_catalogue, reads_a_table) {
  const auto psi = qv_parse_psi_catalogue("psi.csv",
                                          "# "
                                          "mine\r\ntype,insulation,psi\r\nroof_roof,,0."
                                          "05\r\n\r\nfacade_intermediate,interior,-0.1\r\n");
  EXPECT_EQ(psi.find(type::roof_roof, insulation::integrated), 0.05f);
  EXPECT_EQ(psi.find(type::facade_intermediate, insulation::interior), -0.1f);
  EXPECT_FALSE(psi.find(type::facade_intermediate, insulation::none).has_value());
}

TEST(qv_psi_catalogue, says_what_is_wrong_and_where) {
  EXPECT_THAT(complaint_about("{\n\"psi_w_per_mk\": {\n"),
              HasSubstr("psi.txt, line 3: is no JSON"));
  EXPECT_THAT(complaint_about("{\"psi_w_per_mk\": {\n\"roof_roof\": 0.1,\n\"roof_roof\": 0.2\n}}"),
              HasSubstr("psi.txt, line 3: gives \"roof_roof\" twice; keep one of them"));
  EXPECT_THAT(complaint_about("{}"), HasSubstr("has no object \"psi_w_per_mk\""));
  EXPECT_THAT(complaint_about("[]"), HasSubstr("is no catalogue"));
  EXPECT_THAT(complaint_about(R"({"psi_w_per_mk": {"roof": 1}})"),
              HasSubstr("no thermal bridge type \"roof\""));
  EXPECT_THAT(complaint_about(R"({"psi_w_per_mk": {"roof_roof": "x"}})"),
              HasSubstr("is no number"));
  EXPECT_THAT(complaint_about(R"({"psi_w_per_mk": {"roof_roof": {"out": 1}}})"),
              HasSubstr("no position of insulation \"out\""));
  EXPECT_THAT(complaint_about(R"({"psi_w_per_mk": {"roof_roof": 1e300}})"), HasSubstr("finite"));
  EXPECT_THAT(complaint_about(""), HasSubstr("holds no ψ value"));
  EXPECT_THAT(complaint_about("type,insulation,psi\nroof_roof,0.1\n"),
              HasSubstr("line 2: has 2 cells"));
  EXPECT_THAT(complaint_about("type,insulation,psi\nroof_roof,,\"0,1\"\n"), HasSubstr("line 2"));
  EXPECT_THAT(complaint_about("type,insulation,psi\nroof_roof,,0.1\nroof_roof,,0.2\n"),
              HasSubstr("line 3: ψ of \"roof_roof\" is given twice"));
}

// A study names its catalogue.
TEST(qv_psi_catalogue, is_called_like_its_file_when_it_has_no_name) {
  const qv_temporary_folder place;
  const std::string file = place.path() / "psi.csv";
  std::ofstream(file) << "type,insulation,psi\nroof_roof,,0.1\n";
  EXPECT_EQ(qv_read_psi_catalogue(file).name, file);
  std::ofstream(file) << R"({"name": "Ours", "psi_w_per_mk": {"roof_roof": 0.1}})";
  EXPECT_EQ(qv_read_psi_catalogue(file).name, "Ours");
}

TEST(qv_psi_catalogue, has_indicative_values_for_all_but_unknown_junctions) {
  const qv_psi_catalogue& psi = qv_indicative_psi_catalogue();
  EXPECT_THAT(psi.name, HasSubstr("Indicative"));
  for (int t = 0; t < qv_psi_catalogue::type_count; ++t) {
    for (int i = 0; i < qv_psi_catalogue::insulation_count; ++i) {
      const auto value = psi.find(static_cast<type>(t), static_cast<insulation>(i));
      EXPECT_EQ(value.has_value(), static_cast<type>(t) != type::unknown) << t;
      EXPECT_TRUE(value.value_or(0.0f) >= 0.0f && value.value_or(0.0f) <= 1.0f) << t;
    }
  }
  EXPECT_EQ(psi.find(type::no_loss, insulation::none), 0.0f);
}

class layered {
 public:
  layered& add(float thickness, float conductivity, float density) {
    auto* material = new qvi_material;
    material->set_thickness(thickness);
    material->set_conductivity(conductivity);
    material->set_resistance(thickness / conductivity);
    material->set_density(density);
    scene.add_child(material, -1);
    qv_list<qvi_matter*> layers = composition->get_layers();
    layers.append(material);
    composition->set_layers(layers);
    return *this;
  }
  layered& concrete() { return add(0.2f, 2.0f, 2300); }
  layered& wool() { return add(0.1f, 0.04f, 30); }
  layered& board() { return add(0.013f, 0.25f, 900); }
  insulation find() const { return qv_find_insulation(*composition); }

  qv_scene scene;
  qvi_composition* composition = [this] {
    auto* made = new qvi_composition;
    scene.add_child(made, -1);
    return made;
  }();
};

TEST(qv_find_insulation, tells_the_side_of_the_structure) {
  EXPECT_EQ(layered().find(), insulation::none);
  EXPECT_EQ(layered().concrete().board().find(), insulation::none);
  EXPECT_EQ(layered().concrete().wool().board().find(), insulation::interior);
  EXPECT_EQ(layered().wool().concrete().board().find(), insulation::exterior);
  EXPECT_EQ(layered().wool().concrete().wool().find(), insulation::integrated);
  EXPECT_EQ(layered().board().wool().board().find(), insulation::integrated);  // a light frame
  EXPECT_EQ(layered().wool().find(), insulation::integrated);
  EXPECT_EQ(layered().add(0.365f, 0.09f, 600).board().find(), insulation::integrated);
  EXPECT_EQ(layered().concrete().add(0.01f, 0.04f, 30).find(), insulation::none);  // too thin
}

TEST(qv_assign_psi, gives_each_bridge_the_value_of_its_type_and_facade) {
  qv_scene scene;
  const qv_test::box_room room = qv_test::add_box_room(scene, {0, 0, 0}, {4, 5, 2.5f}, 0);
  auto* inside = new qvi_composition;
  inside->set_insulation(insulation::interior);
  scene.add_child(inside, -1);
  for (qvi_wall* side : room.sides) side->set_composition(inside);
  qv_add_connexions(scene);
  scene.precompute();
  const auto catalogue = qv_parse_psi_catalogue("psi", R"({"psi_w_per_mk": {
      "facade_angle_outer": {"interior": 0.02, "exterior": 0.1},
      "roof_facade": {"exterior": 0.3}}})");
  const auto without = qv_assign_psi(scene, catalogue);
  EXPECT_EQ(without.size(), 8u);  // roof edges and floor edges
  for (qv_item* item : scene.get_items("connexion")) {
    const auto& connexion = static_cast<const qvi_connexion&>(*item);
    const bool corner = connexion.get_connexion_type() == type::facade_angle_outer;
    EXPECT_EQ(connexion.get_psi(), corner ? 0.02f : 0.0f);
    EXPECT_EQ(without.contains(item), !corner);
    EXPECT_EQ(qv_insulation_at(connexion), insulation::interior);
  }
}

TEST(qv_study_command, takes_psi_from_a_file) {
  const std::string sample = QV_SOURCE_DIR "/samples/house.xml";
  const auto bad = qv_run({"study", sample, "--out", "/tmp", "--psi", sample});
  EXPECT_EQ(bad.exit_code, 3);
  EXPECT_THAT(bad.errors, HasSubstr("is no catalogue"));
  const auto missing = qv_run({"study", sample, "--out", "/tmp", "--psi", "/nowhere.json"});
  EXPECT_EQ(missing.exit_code, 4);
}

}  // namespace
