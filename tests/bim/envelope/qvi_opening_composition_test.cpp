#include "bim/envelope/qvi_opening_composition.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "bim/envelope/qvi_opening.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_opaque.h"
#include "core/items/qv_scene.h"

namespace {

using namespace qv;
using typology = qvi_opening_composition::opening_composition_typology;

// "Calculé" and "Calculée" have their é as one byte of Windows-1252, also in a panel whose other
// text is UTF-8.
const std::string computed = "Calcul\xE9";
const std::string computed_transmission =
    "Calcul\xE9"
    "e";

// The panel as it is required, with "<b>" in the place of "</b>".
std::string panel(const std::string& name, const std::string& label, const std::string& U,
                  const std::string& solar_factor, const std::string& transmission) {
  return "<h2>" + name + "</h2><table width=100% border=0><tr><td><b>Typologie :<b></td><td>" +
         label + "</td></tr><tr><td><b>U :<b></td><td>" + U +
         "</td></tr><tr><td><b>Facteur solaire :<b></td><td>" + solar_factor +
         "</td></tr><tr><td><b>Transmission lumineuse :<b></td><td>" + transmission +
         "</td></tr></table>";
}

TEST(qvi_opening_composition, describes_itself_byte_for_byte) {
  qvi_opening_composition window;
  window.set_name("Fenêtre à deux vantaux");
  EXPECT_EQ(window.get_html_information(),
            panel("Fenêtre à deux vantaux", "Autre", computed, computed, computed_transmission));
  window.set_typology(typology::double_glazing);
  window.set_forced_U(1.3567f);
  window.set_forced_solar_factor(0.456f);
  window.set_forced_visible_transmittance(0.789f);
  EXPECT_EQ(window.get_html_information(), panel("Fenêtre à deux vantaux", "Double vitrage",
                                                 "1.357 W/m<sup>2</sup>/K", "45 %", "78 %"));
}

TEST(qvi_opening_composition, writes_the_words_for_what_is_computed_in_single_bytes) {
  qvi_opening_composition window;
  const std::string text = window.get_html_information();
  int single_bytes = 0;
  for (const char c : text) {
    single_bytes += c == '\xE9' ? 1 : 0;
    EXPECT_NE(c, '\xC3');  // no é in two bytes
  }
  EXPECT_EQ(single_bytes, 3);
  EXPECT_NE(text.find("Calcul\xE9</td>"), std::string::npos);
  EXPECT_NE(text.find("Calcul\xE9"
                      "e</td>"),
            std::string::npos);
}

TEST(qvi_opening_composition, has_a_label_for_each_typology) {
  const char* const labels[] = {"Simple vitrage", "Double vitrage", "Striple vitrage",
                                "Porte",          "Lanterneau",     "Autre"};
  qvi_opening_composition kind;
  ASSERT_EQ(qvi_opening_composition::get_opening_composition_typology_list().get_count(), 6);
  for (int i = 0; i < 6; ++i) {
    kind.set_typology(static_cast<typology>(i));
    EXPECT_EQ(kind.get_html_information(),
              panel("", labels[i], computed, computed, computed_transmission));
  }
}

TEST(qvi_opening_composition, names_its_typologies_in_one_list) {
  const auto& names = qvi_opening_composition::get_opening_composition_typology_list();
  EXPECT_EQ(names, (qv_list<std::string>{"single_glazing", "double_glazing", "triple_glazing",
                                         "door", "skylight", "other"}));
  EXPECT_EQ(&names, &qvi_opening_composition::get_opening_composition_typology_list());
}

TEST(qvi_opening_composition, takes_a_forced_value_of_nothing_for_forced) {
  qvi_opening_composition kind;
  kind.set_forced_U(0.0f);
  kind.set_forced_solar_factor(0.0f);
  kind.set_forced_visible_transmittance(0.0f);
  EXPECT_EQ(kind.get_html_information(),
            panel("", "Autre", "0.000 W/m<sup>2</sup>/K", "0 %", "0 %"));
  kind.set_forced_U(-0.5f);  // any negative value counts as not forced
  EXPECT_EQ(kind.get_html_information(), panel("", "Autre", computed, "0 %", "0 %"));
}

// 0.29 is a little less in single precision, its hundredfold is 29 again.
TEST(qvi_opening_composition, takes_a_hundred_times_a_factor_in_single_precision) {
  qvi_opening_composition kind;
  for (const auto& [factor, text] : {std::pair(0.29f, "29 %"),
                                     {0.57f, "57 %"},
                                     {0.999f, "99 %"},
                                     {1.0f, "100 %"},
                                     {12.345f, "1234 %"}}) {
    kind.set_forced_solar_factor(factor);
    kind.set_forced_visible_transmittance(factor);
    EXPECT_EQ(kind.get_html_information(), panel("", "Autre", computed, text, text));
  }
}

TEST(qvi_opening_composition, shows_a_factor_that_is_no_number_as_computed) {
  constexpr float nan = std::numeric_limits<float>::quiet_NaN();
  qvi_opening_composition kind;
  kind.set_forced_U(nan);
  kind.set_forced_solar_factor(nan);
  EXPECT_EQ(kind.get_html_information(),
            panel("", "Autre", computed, computed, computed_transmission));
}

// Deliberate: the transmission is shown as forced when the solar factor is.
TEST(qvi_opening_composition, shows_its_transmission_when_the_solar_factor_is_forced) {
  qvi_opening_composition kind;
  kind.set_forced_visible_transmittance(0.7f);
  EXPECT_EQ(kind.get_html_information(),
            panel("", "Autre", computed, computed, computed_transmission));
  kind.set_forced_visible_transmittance(-1.0f);
  kind.set_forced_solar_factor(0.5f);
  EXPECT_EQ(kind.get_html_information(), panel("", "Autre", computed, "50 %", "-100 %"));
}

TEST(qvi_opening_composition, counts_the_openings_that_use_it) {
  qv_scene scene;
  auto* const kind = new qvi_opening_composition;
  EXPECT_EQ(kind->get_opening_count(), 0);
  const auto add_opening = [&](qvi_opening_composition* composition) {
    auto* const opening = new qvi_opening;
    opening->set_composition(composition);
    scene.add_child(opening, -1);
    return opening;
  };
  qvi_opening* const first = add_opening(kind);
  EXPECT_EQ(kind->get_opening_count(), 0);  // still in no scene
  scene.add_child(kind, -1);
  add_opening(kind);
  add_opening(nullptr);
  auto* const other = new qvi_opening_composition;
  scene.add_child(other, -1);
  add_opening(other);
  EXPECT_EQ(kind->get_opening_count(), 2);
  first->set_composition(other);
  EXPECT_EQ(kind->get_opening_count(), 1);
  EXPECT_EQ(other->get_opening_count(), 2);
}

TEST(qvi_opening_composition, may_lack_everything) {
  qvi_opening_composition kind;
  EXPECT_EQ(kind.get_glazing(), nullptr);
  EXPECT_EQ(kind.get_opaque(), nullptr);
  EXPECT_EQ(kind.get_opening_count(), 0);
}

}  // namespace
