#include <gtest/gtest.h>

#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"

using namespace qv;
using insulation = qvi_composition::composition_insulation;
using typology = qvi_composition::composition_typology;

namespace {

class qvi_composition_panel : public ::testing::Test {
 protected:
  qvi_composition_panel() {
    concrete_.set_name("Béton");
    concrete_.set_conductivity(2.0f);
    insulant_.set_name("Laine");
    insulant_.set_conductivity(0.04f);
    board_.set_name("BA13");
    board_.set_thickness(0.0131f);
    board_.set_resistance(0.05f);
    composition_.set_name("Mur 1");
  }
  ~qvi_composition_panel() override { composition_.set_layers({}); }
  void set_layers(const qv_list<qvi_matter*>& layers, const qv_list<float>& thicknesses) {
    composition_.set_layers(layers);
    composition_.set_layer_thicknesses(thicknesses);
    composition_.precompute();
  }
  // The panel from the caption of the layers on.
  std::string get_layers() {
    const std::string panel = composition_.get_html_information();
    return panel.substr(panel.find("Liste des couches"));
  }
  qvi_matter concrete_;
  qvi_matter insulant_;
  qvi_material board_;
  qvi_composition composition_;
};

const std::string table_head =
    "<table width=100% border=2><tr><td><b>Matériau</b></td>"
    "<td align=right><b>Ep. (mm)</b></td><td align=right><b>R (K.m²/W)</b></td></tr>";

TEST_F(qvi_composition_panel, shows_a_wall_from_the_outside_to_the_inside) {
  set_layers({&concrete_, &insulant_, &board_}, {0.2f, 0.1f, 0.0131f});
  composition_.set_insulation(insulation::interior);
  // R = 0.2 / 2 + 0.1 / 0.04 + 0.05 = 2.65, U = 0.377, thickness 313.1 mm
  EXPECT_EQ(composition_.get_html_information(),
            "<h2>Mur 1</h2><table width=100% border=0>"
            "<tr><td><b>Typologie :<b></td><td>Mur</td></tr>"
            "<tr><td><b>Typologie :<b></td><td>Intérieure</td></tr>"
            "<tr><td><b>Epaisseur :<b></td><td>313 mm</td></tr>"
            "<tr><td><b>Résistance :<b></td><td>2.650 K.m<sup>2</sup>/W</td></tr>"
            "<tr><td><b>U :<b></td><td>0.377 W/m/K</td></tr>"
            "</table>"
            "Liste des couches de l'extérieur vers l'intérieur :" +
                table_head +
                "<tr><td>Béton</td><td align=right>200</td><td align=right>0.100</td></tr>"
                "<tr><td>Laine</td><td align=right>100</td><td align=right>2.500</td></tr>"
                "<tr><td>BA13</td><td align=right>13</td><td align=right>0.050</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>313</b></td>"
                "<td align=right><b>2.650</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, shows_a_floor_from_the_top_down) {
  composition_.set_typology(typology::floor);
  set_layers({&concrete_, &insulant_}, {0.2f, 0.1f});
  EXPECT_EQ(get_layers(),
            "Liste des couches du haut vers le bas :" + table_head +
                "<tr><td>Laine</td><td align=right>100</td><td align=right>2.500</td></tr>"
                "<tr><td>Béton</td><td align=right>200</td><td align=right>0.100</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>300</b></td>"
                "<td align=right><b>2.600</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, shows_a_roof_as_it_is_stored) {
  composition_.set_typology(typology::roof);
  set_layers({&concrete_, &insulant_}, {0.2f, 0.1f});
  EXPECT_EQ(get_layers(),
            "Liste des couches du haut vers le bas :" + table_head +
                "<tr><td>Béton</td><td align=right>200</td><td align=right>0.100</td></tr>"
                "<tr><td>Laine</td><td align=right>100</td><td align=right>2.500</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>300</b></td>"
                "<td align=right><b>2.600</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, leaves_a_floor_of_one_layer_as_it_is) {
  composition_.set_typology(typology::floor);
  set_layers({&concrete_}, {0.2f});
  EXPECT_EQ(get_layers(),
            "Liste des couches du haut vers le bas :" + table_head +
                "<tr><td>Béton</td><td align=right>200</td><td align=right>0.100</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>200</b></td>"
                "<td align=right><b>0.100</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, shows_nothing_much_of_an_empty_one) {
  composition_.precompute();
  // U = 999, so that its inverse shows as 0.001.
  EXPECT_EQ(composition_.get_html_information(),
            "<h2>Mur 1</h2><table width=100% border=0>"
            "<tr><td><b>Typologie :<b></td><td>Mur</td></tr>"
            "<tr><td><b>Typologie :<b></td><td>Aucune</td></tr>"
            "<tr><td><b>Epaisseur :<b></td><td>0 mm</td></tr>"
            "<tr><td><b>Résistance :<b></td><td>0.001 K.m<sup>2</sup>/W</td></tr>"
            "<tr><td><b>U :<b></td><td>999.000 W/m/K</td></tr>"
            "</table>"
            "Liste des couches de l'extérieur vers l'intérieur :" +
                table_head +
                "<tr><td><b>Total :</b></td><td align=right><b>0</b></td>"
                "<td align=right><b>0.000</b></td></tr></table>");
}

// The head shows what was last computed, the rows what the layers are now.
TEST_F(qvi_composition_panel, shows_its_layers_before_anything_is_computed) {
  composition_.set_layers({&insulant_, &board_});
  composition_.set_layer_thicknesses({0.1f, 9});
  const std::string text = composition_.get_html_information();
  EXPECT_NE(text.find("<tr><td><b>Epaisseur :<b></td><td>0 mm</td></tr>"), std::string::npos);
  EXPECT_EQ(get_layers(),
            "Liste des couches de l'extérieur vers l'intérieur :" + table_head +
                "<tr><td>Laine</td><td align=right>100</td><td align=right>2.500</td></tr>"
                "<tr><td>BA13</td><td align=right>13</td><td align=right>0.050</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>113</b></td>"
                "<td align=right><b>2.550</b></td></tr></table>");
}

// The sum of the rows is cut, not the sum of the cut rows: 10.6 + 10.6 = 21.2 mm.
TEST_F(qvi_composition_panel, cuts_each_thickness_once) {
  set_layers({&concrete_, &concrete_}, {0.0106f, 0.0106f});
  EXPECT_EQ(get_layers(),
            "Liste des couches de l'extérieur vers l'intérieur :" + table_head +
                "<tr><td>Béton</td><td align=right>10</td><td align=right>0.005</td></tr>"
                "<tr><td>Béton</td><td align=right>10</td><td align=right>0.005</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>21</b></td>"
                "<td align=right><b>0.011</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, shows_a_resistance_of_999_where_hardly_any_heat_passes) {
  const auto get_head = [&](float resistance) {
    board_.set_resistance(resistance);
    set_layers({&board_}, {});
    const std::string panel = composition_.get_html_information();
    const std::size_t from = panel.find("<tr><td><b>Résistance");
    return panel.substr(from, panel.find("</table>") - from);
  };
  const auto rows = [](const std::string& resistance, const std::string& U) {
    return "<tr><td><b>Résistance :<b></td><td>" + resistance +
           " K.m<sup>2</sup>/W</td></tr><tr><td><b>U :<b></td><td>" + U + " W/m/K</td></tr>";
  };
  EXPECT_EQ(get_head(800), rows("800.000", "0.001"));
  EXPECT_EQ(get_head(1000), rows("999.000", "0.001"));  // U is not more than 0.001
  EXPECT_EQ(get_head(2000),
            rows("999.000", "0.001"));  // U = 0.0005, a little above in single precision
  EXPECT_EQ(get_head(4000), rows("999.000", "0.000"));
  EXPECT_EQ(get_head(0.0005f), rows("0.001", "999.000"));
}

TEST_F(qvi_composition_panel, shows_a_layer_that_is_gone_as_an_empty_row) {
  set_layers({nullptr, &insulant_}, {0.2f, 0.1f});
  EXPECT_EQ(get_layers(),
            "Liste des couches de l'extérieur vers l'intérieur :" + table_head +
                "<tr><td></td><td align=right>0</td><td align=right>0.000</td></tr>"
                "<tr><td>Laine</td><td align=right>100</td><td align=right>2.500</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>100</b></td>"
                "<td align=right><b>2.500</b></td></tr></table>");
}

TEST_F(qvi_composition_panel, deliberately_captions_the_insulation_as_typology) {
  const std::pair<insulation, const char*> labels[] = {{insulation::none, "Aucune"},
                                                       {insulation::interior, "Intérieure"},
                                                       {insulation::exterior, "Extérieure"},
                                                       {insulation::integrated, "Intégrée"}};
  for (const auto& [value, label] : labels) {
    composition_.set_insulation(value);
    EXPECT_NE(composition_.get_html_information().find(
                  std::string("<td>Mur</td></tr><tr><td><b>Typologie :<b></td><td>") + label +
                  "</td></tr>"),
              std::string::npos)
        << label;
  }
}

TEST_F(qvi_composition_panel, names_the_typologies) {
  const std::pair<typology, const char*> labels[] = {
      {typology::wall, "Mur"}, {typology::floor, "Plancher"}, {typology::roof, "Toiture"}};
  for (const auto& [value, label] : labels) {
    composition_.set_typology(value);
    EXPECT_NE(composition_.get_html_information().find(
                  std::string("border=0><tr><td><b>Typologie :<b></td><td>") + label + "</td>"),
              std::string::npos)
        << label;
  }
}

TEST_F(qvi_composition_panel, shows_an_infinite_resistance_as_999_above_and_as_it_is_below) {
  concrete_.set_conductivity(0);
  set_layers({&concrete_}, {0.2f});
  const std::string panel = composition_.get_html_information();
  EXPECT_NE(panel.find("<td>999.000 K.m<sup>2</sup>/W</td>"), std::string::npos) << panel;
  EXPECT_NE(panel.find("<td>0.000 W/m/K</td>"), std::string::npos) << panel;
  EXPECT_NE(panel.find("<td align=right>200</td><td align=right>inf</td>"), std::string::npos);
}

TEST_F(qvi_composition_panel, shows_no_thickness_where_none_is_listed_yet) {
  composition_.set_layers({&concrete_, &insulant_});
  composition_.set_layer_thicknesses({0.2f});  // not precomputed since
  EXPECT_NE(get_layers().find("<td>Laine</td><td align=right>0</td><td align=right>0.000</td>"),
            std::string::npos);
}

TEST_F(qvi_composition_panel, shows_each_reversed_matter_with_its_own_thickness) {
  composition_.set_typology(typology::floor);
  set_layers({&concrete_, &board_, &insulant_}, {0.25f, 0.0131f, 0.05f});
  EXPECT_EQ(get_layers(),
            "Liste des couches du haut vers le bas :" + table_head +
                "<tr><td>Laine</td><td align=right>50</td><td align=right>1.250</td></tr>"
                "<tr><td>BA13</td><td align=right>13</td><td align=right>0.050</td></tr>"
                "<tr><td>Béton</td><td align=right>250</td><td align=right>0.125</td></tr>"
                "<tr><td><b>Total :</b></td><td align=right><b>313</b></td>"
                "<td align=right><b>1.425</b></td></tr></table>");
}

}  // namespace
