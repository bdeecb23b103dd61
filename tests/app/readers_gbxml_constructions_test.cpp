#include "app/readers/qv_gbxml_constructions.h"

#include <gtest/gtest.h>

#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"
#include "tests/app/qv_gbxml_text.h"

namespace {

using kind = qv::qv_import_ledger::kind;
using outcome = qv::qv_import_ledger::outcome;

std::string material(const std::string& id, const std::string& name, const std::string& content) {
  return "<Material id=\"" + id + "\"><Name>" + name + "</Name>" + content + "</Material>\n";
}

std::string layer(const std::string& id, const std::vector<std::string>& materials) {
  std::string text = "<Layer id=\"" + id + "\">";
  for (const std::string& m : materials) text += "<MaterialId materialIdRef=\"" + m + "\"/>";
  return text + "</Layer>\n";
}

std::string construction(const std::string& id, const std::vector<std::string>& layers,
                         const std::string& content = {}) {
  std::string text = "<Construction id=\"" + id + "\"><Name>name of " + id + "</Name>" + content;
  for (const std::string& l : layers) text += "<LayerId layerIdRef=\"" + l + "\"/>";
  return text + "</Construction>\n";
}

const std::string concrete = material(
    "concrete", "Béton",
    "<Thickness unit=\"Meters\">0.2</Thickness><Conductivity unit=\"WPerMeterK\">2</Conductivity>"
    "<Density unit=\"KgPerCubicM\">2300</Density><SpecificHeat "
    "unit=\"JPerKgK\">880</SpecificHeat>");
const std::string wool = material(
    "wool", "Laine",
    "<R-value unit=\"SquareMeterKPerW\">2.5</R-value><Thickness unit=\"Meters\">0.1</Thickness>"
    "<Conductivity unit=\"WPerMeterK\">0.04</Conductivity>");
const std::string felt =
    material("felt", "Feutre", "<R-value unit=\"SquareMeterKPerW\">0.01</R-value>");

// A room whose south wall has the construction "c".
qv::qv_gbxml_model read_with(const std::string& head) {
  qv_gbxml_text text;
  text.head(head).space("s");
  text.polygon("w", "ExteriorWall", {"s"}, {{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}},
               "constructionIdRef=\"c\"");
  return text.read();
}

qv::qvi_composition* composition_of(const qv::qv_gbxml_model& model) {
  const auto walls = qv::qv_collect<qv::qvi_wall>(model.root, "wall");
  EXPECT_EQ(walls.get_count(), 1);
  return walls[0]->get_composition();
}

std::string layer_names(const qv::qvi_composition* composition) {
  std::string names;
  for (const qv::qvi_matter* m : composition->get_layers()) names += m->get_name() + " ";
  return names;
}

std::string reason_of(const qv::qv_gbxml_model& model, kind what, const std::string& id) {
  return qv_find_entry(model.ledger, what, id).reason;
}

}  // namespace

TEST(qv_gbxml_constructions, lays_layers_and_their_materials_from_outside_to_inside) {
  const auto model = read_with(concrete + wool + felt + layer("l1", {"felt", "wool"}) +
                               layer("l2", {"concrete"}) + construction("c", {"l1", "l2"}));
  qv::qvi_composition* composition = composition_of(model);
  ASSERT_NE(composition, nullptr);
  EXPECT_EQ(composition->get_name(), "name of c");
  EXPECT_EQ(layer_names(composition), "Feutre Laine Béton ");
  composition->precompute();
  // 0.01 + 2.5 + 0.2 / 2.
  EXPECT_NEAR(composition->get_resistance(), 2.61, 1e-6);
  EXPECT_NEAR(composition->get_thickness(), 0.3, 1e-6);
}

TEST(qv_gbxml_constructions, keeps_every_property_of_a_material) {
  const auto model = read_with(concrete + layer("l", {"concrete"}) + construction("c", {"l"}));
  auto* m = static_cast<qv::qvi_material*>(composition_of(model)->get_layers()[0]);
  EXPECT_FLOAT_EQ(m->get_thickness(), 0.2F);
  EXPECT_FLOAT_EQ(m->get_conductivity(), 2);
  EXPECT_FLOAT_EQ(m->get_density(), 2300);
  EXPECT_FLOAT_EQ(m->get_specific_heat(), 880);
  EXPECT_FLOAT_EQ(m->get_resistance(), 0.1F);
  EXPECT_EQ(reason_of(model, kind::material, "concrete"),
            "resistance from thickness and conductivity");
}

TEST(qv_gbxml_constructions, takes_imperial_units) {
  // 8 in of 0.5 Btu/(h·ft·°F): 0.2032 m at 0.86537 W/(m·K).
  const auto model = read_with(material("m", "m",
                                        "<Thickness unit=\"Inches\">8</Thickness>"
                                        "<Conductivity unit=\"BtuPerHourFtF\">0.5</Conductivity>") +
                               layer("l", {"m"}) + construction("c", {"l"}));
  auto* m = static_cast<qv::qvi_material*>(composition_of(model)->get_layers()[0]);
  EXPECT_NEAR(m->get_thickness(), 0.2032, 1e-7);
  EXPECT_NEAR(m->get_resistance(), 0.2032 / 0.8653673, 1e-6);
}

TEST(qv_gbxml_constructions, keeps_a_stated_resistance_and_says_when_it_does_not_fit) {
  const auto model =
      read_with(material("m", "m",
                         "<R-value unit=\"SquareMeterKPerW\">1.5</R-value><Thickness "
                         "unit=\"Meters\">0.1</Thickness>"
                         "<Conductivity unit=\"WPerMeterK\">0.1</Conductivity>") +
                layer("l", {"m"}) + construction("c", {"l"}));
  auto* m = static_cast<qv::qvi_material*>(composition_of(model)->get_layers()[0]);
  EXPECT_FLOAT_EQ(m->get_resistance(), 1.5F);
  EXPECT_EQ(reason_of(model, kind::material, "m"),
            "R-value 1.5 kept, though thickness and conductivity give 1");
}

TEST(qv_gbxml_constructions, makes_one_layer_of_a_stated_u_value_without_layers) {
  const auto model =
      read_with(construction("c", {}, "<U-value unit=\"WPerSquareMeterK\">0.25</U-value>"));
  qv::qvi_composition* composition = composition_of(model);
  ASSERT_EQ(composition->get_layers().get_count(), 1);
  composition->precompute();
  EXPECT_FLOAT_EQ(composition->get_U(), 0.25F);
  const auto entry = qv_find_entry(model.ledger, kind::construction, "c");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_EQ(entry.reason, "no layers: one layer of the stated U-value 0.25");
}

TEST(qv_gbxml_constructions, makes_one_layer_of_the_u_value_when_no_layer_has_a_resistance) {
  const auto model = read_with(
      material("m", "m", "<Thickness unit=\"Meters\">0.3</Thickness>") + layer("l", {"m"}) +
      construction("c", {"l"}, "<U-value unit=\"WPerSquareMeterK\">0.5</U-value>"));
  qv::qvi_composition* composition = composition_of(model);
  composition->precompute();
  EXPECT_FLOAT_EQ(composition->get_U(), 0.5F);
  EXPECT_FLOAT_EQ(composition->get_thickness(), 0.3F);
}

TEST(qv_gbxml_constructions, a_name_only_makes_an_empty_composition) {
  const auto model = read_with(construction("c", {}));
  EXPECT_EQ(composition_of(model)->get_layers().get_count(), 0);
  EXPECT_EQ(reason_of(model, kind::construction, "c"), "a name only: no layers and no U-value");
}

TEST(qv_gbxml_constructions, a_wall_without_construction_or_with_one_that_is_not_there_has_none) {
  const auto model = read_with({});
  EXPECT_EQ(composition_of(model), nullptr);
  const auto entry = qv_find_entry(model.ledger, kind::surface, "w");
  EXPECT_EQ(entry.result, outcome::repaired);
  EXPECT_EQ(entry.reason, "Construction \"c\" is not in the file");
}

TEST(qv_gbxml_constructions, says_which_references_dangle) {
  const auto model =
      read_with(concrete + layer("l", {"concrete", "gone"}) + construction("c", {"l", "lost"}));
  EXPECT_EQ(layer_names(composition_of(model)), "Béton ");
  EXPECT_EQ(qv_find_entry(model.ledger, kind::layer, "l").result, outcome::repaired);
  EXPECT_EQ(reason_of(model, kind::layer, "l"), "Material \"gone\" is not in the file");
  EXPECT_EQ(qv_find_entry(model.ledger, kind::construction, "c").result, outcome::repaired);
}

TEST(qv_gbxml_constructions, shares_materials_and_compositions_of_the_same_name_and_values) {
  std::string twin = concrete;
  twin.replace(twin.find("\"concrete\""), 10, "\"twin\"");
  const std::string same_name =
      "<Construction id=\"d\"><Name>name of c</Name><LayerId layerIdRef=\"k\"/></Construction>";
  const auto model = read_with(concrete + twin + layer("l", {"concrete"}) + layer("k", {"twin"}) +
                               construction("c", {"l"}) + same_name);
  EXPECT_EQ(model.root->collect("material").get_count(), 1);
  EXPECT_EQ(model.root->collect("composition").get_count(), 1);
  EXPECT_EQ(qv_find_entry(model.ledger, kind::material, "twin").result, outcome::merged);
  EXPECT_EQ(reason_of(model, kind::construction, "d"), "the same as Construction \"c\"");
}

TEST(qv_gbxml_constructions, does_not_share_what_differs_in_name_or_value) {
  std::string thicker = concrete;
  thicker.replace(thicker.find("\"concrete\""), 10, "\"thicker\"");
  thicker.replace(thicker.find(">0.2<"), 5, ">0.3<");
  const auto model =
      read_with(concrete + thicker + layer("l", {"concrete"}) + layer("k", {"thicker"}) +
                construction("c", {"l"}) + construction("d", {"k"}) + construction("e", {"l"}));
  EXPECT_EQ(model.root->collect("material").get_count(), 2);
  EXPECT_EQ(model.root->collect("composition").get_count(), 3);
}

TEST(qv_gbxml_constructions, drops_a_layer_that_no_construction_names) {
  const auto model = read_with(concrete + layer("l", {"concrete"}));
  EXPECT_EQ(qv_find_entry(model.ledger, kind::layer, "l").result, outcome::dropped);
}

TEST(qv_gbxml_constructions, leaves_out_negative_values_and_says_so) {
  const auto model = read_with(material("m", "m", "<Density unit=\"KgPerCubicM\">-5</Density>"));
  const auto materials = qv::qv_collect<qv::qvi_material>(model.root, "material");
  ASSERT_EQ(materials.get_count(), 1);
  EXPECT_EQ(materials[0]->get_density(), 0);
  EXPECT_EQ(qv_find_entry(model.ledger, kind::material, "m").result, outcome::repaired);
}

TEST(qv_gbxml_constructions, an_id_given_twice_is_an_error_unless_it_says_the_same) {
  EXPECT_NO_THROW(read_with(concrete + concrete + layer("l", {"concrete"}) +
                            layer("l", {"concrete"}) + construction("c", {"l"}) +
                            construction("c", {"l"})));
  EXPECT_THROW(read_with(felt + material("felt", "other", "")), qv::qv_input_error);
  EXPECT_THROW(read_with(felt + wool + layer("l", {"felt"}) + layer("l", {"wool"})),
               qv::qv_input_error);
  EXPECT_THROW(
      read_with(felt + layer("l", {"felt"}) + construction("c", {"l"}) + construction("c", {})),
      qv::qv_input_error);
}

TEST(qv_gbxml_constructions, a_floor_whose_outside_is_on_top_gets_its_layers_bottom_first) {
  qv_gbxml_text text;
  text.head(concrete + wool + layer("l", {"concrete", "wool"}) + construction("c", {"l"}));
  text.space("low").space("high");
  const std::vector<qv_gbxml_text::point> upwards = {{0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 4, 3}};
  const std::vector<qv_gbxml_text::point> downwards = {
      {9, 0, 3}, {9, 4, 3}, {13, 4, 3}, {13, 0, 3}};
  const std::string attribute = "constructionIdRef=\"c\"";
  text.polygon("up", "Ceiling", {"low", "high"}, upwards, attribute);
  text.polygon("down", "InteriorFloor", {"high", "low"}, downwards, attribute);
  const auto model = text.read();
  const auto walls = qv::qv_collect<qv::qvi_wall>(model.root, "wall");
  ASSERT_EQ(walls.get_count(), 2);
  EXPECT_EQ(layer_names(walls[0]->get_composition()), "Laine Béton ");
  EXPECT_EQ(layer_names(walls[1]->get_composition()), "Béton Laine ");
  using typology = qv::qvi_composition::composition_typology;
  EXPECT_EQ(walls[0]->get_composition()->get_typology(), typology::floor);
  EXPECT_EQ(walls[1]->get_composition()->get_typology(), typology::floor);
}

TEST(qv_gbxml_constructions, layers_that_read_alike_both_ways_make_one_composition) {
  qv_gbxml_text text;
  text.head(concrete + layer("l", {"concrete"}) + construction("c", {"l"}));
  text.space("low").space("high");
  text.polygon("up", "Ceiling", {"low", "high"}, {{0, 0, 3}, {4, 0, 3}, {4, 4, 3}, {0, 4, 3}},
               "constructionIdRef=\"c\"");
  text.polygon("wall", "ExteriorWall", {"low"}, {{0, 0, 0}, {4, 0, 0}, {4, 0, 3}, {0, 0, 3}},
               "constructionIdRef=\"c\"");
  EXPECT_EQ(text.read().root->collect("composition").get_count(), 1);
}
