#include "tests/support/qv_glazing_stacks.h"

#include <ostream>

#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"

namespace qv_test {

namespace {

using kind = standard_layer::kind;

// Float glass by its thickness, figures as data sheets state them.
standard_layer clear(double millimetres) {
  standard_layer pane;
  pane.thickness = millimetres / 1000;
  pane.solar = {0.89 - 0.014 * millimetres, 0.075, 0.075};
  pane.visible = {0.91 - 0.0035 * millimetres, 0.082, 0.082};
  return pane;
}

// Soft coating on the face towards the room.
standard_layer coated_back(double millimetres, double emissivity = 0.037) {
  standard_layer pane = clear(millimetres);
  pane.solar = {0.59, 0.27, 0.30};
  pane.visible = {0.885, 0.053, 0.045};
  pane.emissivity_back = emissivity;
  return pane;
}

// The same pane turned over.
standard_layer coated_front(double millimetres, double emissivity = 0.037) {
  standard_layer pane = coated_back(millimetres);
  pane.solar = {0.59, 0.30, 0.27};
  pane.visible = {0.885, 0.045, 0.053};
  pane.emissivity_front = emissivity;
  pane.emissivity_back = 0.837;
  return pane;
}

// Against the sun, coating towards the room.
standard_layer sun_control(double millimetres) {
  standard_layer pane = clear(millimetres);
  pane.solar = {0.26, 0.31, 0.42};
  pane.visible = {0.54, 0.15, 0.11};
  pane.emissivity_back = 0.02;
  return pane;
}

// Hard coating on both faces.
standard_layer coated_twice(double millimetres) {
  standard_layer pane = clear(millimetres);
  pane.solar = {0.66, 0.12, 0.11};
  pane.visible = {0.80, 0.11, 0.11};
  pane.emissivity_front = pane.emissivity_back = 0.17;
  return pane;
}

standard_layer interlayer() {
  standard_layer film;
  film.sort = kind::interlayer;
  film.thickness = 0.00038;
  film.conductivity = 0.2;
  film.solar = {0.85, 0, 0};
  film.visible = {0.92, 0, 0};
  film.emissivity_front = film.emissivity_back = 0;
  return film;
}

standard_layer photovoltaic() {
  standard_layer film;
  film.sort = kind::photovoltaic;
  film.thickness = 0.001;
  film.conductivity = 999;
  film.solar = {0.6, 0.05, 0.04};
  film.visible = {0.5, 0.06, 0.05};
  film.emissivity_front = film.emissivity_back = 0.837;
  return film;
}

standard_layer gap(double millimetres, const std::array<double, 5>& fractions) {
  standard_layer layer;
  layer.sort = kind::gap;
  layer.thickness = millimetres / 1000;
  layer.gas_fractions = fractions;
  return layer;
}
standard_layer air(double mm) {
  return gap(mm, {1, 0, 0, 0, 0});
}
standard_layer argon(double mm) {
  return gap(mm, {0, 1, 0, 0, 0});
}
standard_layer krypton(double mm) {
  return gap(mm, {0, 0, 1, 0, 0});
}
standard_layer xenon(double mm) {
  return gap(mm, {0, 0, 0, 1, 0});
}
standard_layer sf6(double mm) {
  return gap(mm, {0, 0, 0, 0, 1});
}
standard_layer argon_90(double mm) {
  return gap(mm, {0.1, 0.9, 0, 0, 0});
}
standard_layer argon_sf6(double mm) {
  return gap(mm, {0.02, 0.68, 0, 0, 0.3});
}
standard_layer krypton_xenon(double mm) {
  return gap(mm, {0, 0.1, 0.5, 0.4, 0});
}

}  // namespace

void PrintTo(const known_stack& stack, std::ostream* out) {
  *out << stack.name;
}

const std::vector<known_stack>& get_known_stacks() {
  static const std::vector<known_stack> stacks = {
      {"single_clear", {clear(4)}, 0, 0},
      {"single_coated_inside", {coated_back(6, 0.15)}, 0, 0},
      {"single_absorbing", {sun_control(8)}, 0, 0},
      {"laminated", {clear(4), interlayer(), clear(4)}, 0, -0.0691},
      {"laminated_photovoltaic", {clear(6), photovoltaic(), clear(6)}, 0, -0.1134},
      {"double_air_clear", {clear(4), air(12), clear(4)}, 0, 0.008},
      {"double_air_wide", {clear(4), air(50), clear(4)}, 0, 0.0142},
      {"double_air_thin", {clear(3), air(4), clear(3)}, 0, 0.0034},
      {"double_argon_coated_2", {coated_back(4), argon(16), clear(4)}, 0, 0.0003},
      {"double_argon_coated_3", {clear(4), argon(16), coated_front(4)}, 1.5188, 0.0015},
      {"double_argon_90_coated_2", {coated_back(6), argon_90(15), clear(4)}, 0, 0.0002},
      {"double_argon_coated_4", {clear(4), argon(16), coated_back(4, 0.15)}, -0.818, 0.0288},
      {"double_argon_coated_everywhere", {coated_twice(4), argon(16), coated_twice(4)}, 0, 0.0074},
      {"double_krypton_coated_2", {coated_back(4), krypton(10), clear(4)}, 0, 0.0002},
      {"double_xenon_coated_2", {coated_back(4), xenon(8), clear(4)}, 0, 0.0006},
      {"double_sf6", {clear(4), sf6(12), clear(6)}, 0, 0.0197},
      {"double_argon_and_sf6", {clear(8), argon_sf6(20), clear(6)}, 0, 0.0121},
      {"double_sun_control", {sun_control(6), argon(16), clear(4)}, 0, -0.0021},
      {"double_laminated_inside",
       {coated_back(4), argon(16), clear(3), interlayer(), clear(3)},
       0,
       -0.1493},
      {"triple_air_clear", {clear(4), air(12), clear(4), air(12), clear(4)}, 0, 0.0081},
      {"triple_air_narrow", {clear(4), air(6), clear(4), air(6), clear(4)}, 0, 0.0062},
      {"triple_argon_coated_2_and_5",
       {coated_back(4), argon(14), clear(4), argon(14), coated_front(4)},
       0.2878,
       0.0004},
      {"triple_argon_coated_2_and_4",
       {coated_back(4), argon(14), coated_back(4), argon(14), clear(4)},
       -0.0188,
       0.0002},
      {"triple_krypton_unlike_gaps",
       {sun_control(6), krypton(12), clear(4), argon_90(18), clear(6)},
       0.0402,
       -0.0099},
      {"triple_krypton_and_xenon",
       {coated_back(4), krypton_xenon(8), clear(2), krypton_xenon(8), clear(4)},
       0.0298,
       -0.0095},
      {"quadruple_argon",
       {coated_back(4), argon(10), clear(3), argon(10), clear(3), argon(10), clear(4)},
       0,
       0},
  };
  return stacks;
}

qv::qvi_glazing* make_glazing(const standard_stack& stack) {
  using namespace qv;
  auto* const glazing = new qvi_glazing;
  qv_list<qvi_glazing_layer*> layers;
  for (const standard_layer& layer : stack) {
    qvi_glazing_layer* item = nullptr;
    if (layer.is_gap()) {
      auto* const gas = new qvi_glazing_gaz;
      gas->set_gaz_type(qvi_glazing_gaz::gaz_type::other);
      qv_list<float> mixing;
      for (int i = 0; i < 5; ++i) {
        const double fraction = layer.gas_fractions[static_cast<std::size_t>(i)];
        mixing.append(static_cast<float>(fraction));
        if (fraction == 1) gas->set_gaz_type(static_cast<qvi_glazing_gaz::gaz_type>(i));
      }
      if (gas->get_gaz_type() == qvi_glazing_gaz::gaz_type::other) gas->set_gaz_mixing(mixing);
      item = gas;
    } else {
      qvi_glazing_glass* const pane = layer.sort == kind::interlayer ? new qvi_glazing_interlayer
                                      : layer.sort == kind::photovoltaic ? new qvi_glazing_pv
                                                                         : new qvi_glazing_glass;
      pane->set_conductivity(static_cast<float>(layer.conductivity));
      pane->set_solar_transmittance(static_cast<float>(layer.solar.transmittance));
      pane->set_solar_reflectance_front(static_cast<float>(layer.solar.reflectance_front));
      pane->set_solar_reflectance_back(static_cast<float>(layer.solar.reflectance_back));
      pane->set_visible_transmittance(static_cast<float>(layer.visible.transmittance));
      pane->set_visible_reflectance_front(static_cast<float>(layer.visible.reflectance_front));
      pane->set_visible_reflectance_back(static_cast<float>(layer.visible.reflectance_back));
      pane->set_thermal_emissivity_front(static_cast<float>(layer.emissivity_front));
      pane->set_thermal_emissivity_back(static_cast<float>(layer.emissivity_back));
      item = pane;
    }
    item->set_thickness(static_cast<float>(layer.thickness));
    glazing->add_child(item, -1);
    layers.append(item);
  }
  glazing->set_layers(layers);
  return glazing;
}

}  // namespace qv_test
