#include "app/readers/qv_glazing_json.h"

#include <fmt/format.h>

#include <array>
#include <cmath>
#include <initializer_list>
#include <nlohmann/json.hpp>
#include <numeric>
#include <string_view>

#include "app/readers/qv_file.h"
#include "app/readers/qv_input_error.h"
#include "app/readers/qv_json_text.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_glazing_interlayer.h"
#include "bim/materials/qvi_glazing_pv.h"

namespace qv {
namespace {

using nlohmann::json;

/// A key whose number becomes the parameter of the same name.
struct number_key {
  const char* name;
  bool is_fraction;  // 0 … 1; else above 0
};
/// More was meant as millimetres, m.
constexpr double thickest = 1;
/// Of a pane that resists next to nothing between the air at its two sides, W/(m².K).
constexpr float largest_pane_u = 6;
constexpr float share_tolerance = 0.01f;

constexpr number_key layer_keys[] = {{"thickness", false}, {"conductivity", false}};
constexpr number_key pane_keys[] = {
    {"solar_transmittance", true},       {"solar_reflectance_front", true},
    {"solar_reflectance_back", true},    {"visible_transmittance", true},
    {"visible_reflectance_front", true}, {"visible_reflectance_back", true},
    {"thermal_transmittance", true},     {"thermal_emissivity_front", true},
    {"thermal_emissivity_back", true},
};
constexpr number_key gas_keys[] = {
    {"viscosity", false}, {"specific_heat", false}, {"volumic_mass", false}};

class glazing_reader {
 public:
  explicit glazing_reader(const std::string& path) : path_(path) {}

  qv_owned_glazing read(const std::string& text) {
    qv_expect_json(path_, text);
    const json root = json::parse(text);
    if (!root.is_object()) fail("is no JSON object", "write {\"layers\": [...]}");
    expect_keys(root, {"name", "supplier", "model", "layers"});
    if (!root.contains("layers") || !root["layers"].is_array() || root["layers"].empty())
      fail("has no list of layers", "write \"layers\": [\"4\", \"16 argon\", \"4\"]");
    qv_owned_glazing glazing(new qvi_glazing);
    glazing->set_name(qv_one_line(text_of(root, "name", path_)));
    glazing->set_supplier(text_of(root, "supplier", ""));
    glazing->set_model(text_of(root, "model", ""));
    qv_list<qvi_glazing_layer*> layers;
    bool behind_gap = false;
    for (const json& entry : root["layers"]) {
      number_ = layers.get_count() + 1;
      qvi_glazing_layer* const layer =
          entry.is_string()
              ? qv_read_glazing_layer_notation(entry.get<std::string>(), behind_gap, path_)
              : read_layer(entry);
      glazing->add_child(layer, -1);
      layers.append(layer);
      behind_gap = behind_gap || layer->has_type("glazing_gaz");
    }
    glazing->set_layers(layers);
    return glazing;
  }

 private:
  [[noreturn]] void fail(const std::string& problem, const std::string& advice) const {
    const bool in_layer = number_ > 0;
    throw qv_input_error(
        qv_input_error::kind::bad_input,
        {path_, 0, in_layer ? "layer" : "", in_layer ? std::to_string(number_) : ""}, problem,
        advice);
  }

  template <class Keys>
  void expect_keys(const json& object, const Keys& known) const {
    for (const auto& [key, value] : object.items()) {
      if (std::find(std::begin(known), std::end(known), key) != std::end(known)) continue;
      std::string list;
      for (const auto& name : known) list += (list.empty() ? "" : ", ") + std::string(name);
      fail("has an unknown key \"" + qv_one_line(key) + "\"", "use " + list);
    }
  }
  void expect_keys(const json& object, std::initializer_list<std::string> known) const {
    expect_keys<std::initializer_list<std::string>>(object, known);
  }

  std::string text_of(const json& object, const char* key, const std::string& otherwise) const {
    if (!object.contains(key)) return otherwise;
    if (!object[key].is_string())
      fail(fmt::format("has a \"{}\" that is no text", key), "quote it");
    return object[key].get<std::string>();
  }

  float number_of(const json& value, const number_key& key) const {
    const double number = value.is_number() ? value.get<double>() : std::nan("");
    const bool fits = key.is_fraction ? number >= 0 && number <= 1 : number > 0;
    if (!fits || !std::isfinite(number))
      fail(fmt::format("has a \"{}\" that is no number {}", key.name,
                       key.is_fraction ? "from 0 to 1" : "above 0"),
           key.is_fraction ? "give a fraction" : "give it in SI units (thickness in m)");
    if (key.name == std::string_view("thickness") && number > thickest)
      fail("is more than a metre thick", "give the thickness in metres, 0.004 for 4 mm");
    return static_cast<float>(number);
  }

  template <std::size_t Count>
  void take_numbers(const json& object, const number_key (&keys)[Count], qv_item& layer) const {
    for (const number_key& key : keys)
      if (object.contains(key.name))
        layer.set_param_value<float>(layer.find_param(key.name), number_of(object[key.name], key));
  }

  template <std::size_t Count>
  static void append_names(std::vector<std::string>& names, const number_key (&keys)[Count]) {
    for (const number_key& key : keys) names.emplace_back(key.name);
  }

  qvi_glazing_layer* read_layer(const json& object) const {
    if (!object.is_object())
      fail("is no text and no object", "write \"4 low-e\" or {\"type\": ...}");
    const std::string type = text_of(object, "type", "");
    std::unique_ptr<qvi_glazing_layer, qv_item_destroyer> layer;
    std::vector<std::string> known = {"type", "name"};
    append_names(known, layer_keys);
    if (type == "gas") {
      append_names(known, gas_keys);
      known.insert(known.end(), {"gas", "mixture"});
      layer.reset(new qvi_glazing_gaz);
    } else if (type == "glass" || type == "interlayer" || type == "pv") {
      append_names(known, pane_keys);
      if (type == "glass") known.insert(known.end(), {"supplier", "model", "data_sheet"});
      layer.reset(type == "glass" ? new qvi_glazing_glass
                  : type == "interlayer"
                      ? static_cast<qvi_glazing_glass*>(new qvi_glazing_interlayer)
                      : new qvi_glazing_pv);
    } else {
      fail("is of no known type", "write \"type\": \"glass\", \"gas\", \"interlayer\" or \"pv\"");
    }
    expect_keys(object, known);
    if (type == "glass") start_glass(object, static_cast<qvi_glazing_glass&>(*layer));
    take_numbers(object, layer_keys, *layer);
    if (type == "gas") {
      fill_gas(object, static_cast<qvi_glazing_gaz&>(*layer));
    } else {
      take_numbers(object, pane_keys, *layer);
      expect_balance(static_cast<const qvi_glazing_glass&>(*layer));
    }
    layer->set_name(qv_one_line(text_of(object, "name", type)));
    return layer.release();
  }

  // A data sheet's pane, or clear glass of the thickness; the keys that follow write over it.
  void start_glass(const json& object, qvi_glazing_glass& pane) const {
    pane.set_supplier(text_of(object, "supplier", ""));
    pane.set_model(text_of(object, "model", ""));
    if (!object.contains("data_sheet")) {
      if (!object.contains("thickness")) fail("has no thickness", "give it in metres");
      qv_set_clear_glass(pane, number_of(object["thickness"], layer_keys[0]));
      return;
    }
    const json& sheet = object["data_sheet"];
    const number_key figures[] = {
        {"u", false}, {"solar_factor", true}, {"visible_transmittance", true}};
    float values[3];
    for (int i = 0; i < 3; ++i) {
      if (!sheet.is_object() || !sheet.contains(figures[i].name))
        fail("has a data sheet without its three figures",
             "write {\"u\": 1.1, \"solar_factor\": 0.6, \"visible_transmittance\": 0.7}");
      values[i] = number_of(sheet[figures[i].name], figures[i]);
    }
    if (values[0] > largest_pane_u)
      fail("has a data sheet with a U that is more than the surfaces of a pane let through",
           fmt::format("give {:g} at most", largest_pane_u));
    pane.build_from_global_data(values[0], values[1], values[2]);
  }

  void expect_no_properties(const json& object) const {
    for (const char* own : {"conductivity", "viscosity", "specific_heat", "volumic_mass"})
      if (object.contains(own))
        fail(fmt::format("gives the \"{}\" of a gas that is known by its name", own),
             "leave it out, or write \"gas\": \"by hand\"");
  }

  void fill_gas(const json& object, qvi_glazing_gaz& gap) const {
    if (!object.contains("thickness")) fail("has no thickness", "give it in metres");
    const auto& gases = qvi_glazing_gaz::get_gaz_type_list();
    const int pure_count = static_cast<int>(qvi_glazing_gaz::gaz_type::other);
    if (object.contains("mixture")) {
      const json& mixture = object["mixture"];
      if (!mixture.is_object()) fail("has a mixture that is no object", "write {\"argon\": 0.9}");
      if (object.contains("gas")) fail("has both a gas and a mixture", "leave one out");
      expect_no_properties(object);
      expect_keys(mixture, {"air", "argon", "krypton", "xenon", "sf6"});
      qv_list<float> shares;
      for (int i = 0; i < pure_count; ++i)
        shares.append(mixture.contains(gases[i])
                          ? number_of(mixture[gases[i]], {gases[i].c_str(), true})
                          : 0.0f);
      const float sum = std::accumulate(shares.begin(), shares.end(), 0.0f);
      if (sum > 1 + share_tolerance)
        fail(fmt::format("has a mixture of which the shares add up to {:g}", sum),
             "let them add up to 1");
      // As in the notation, air fills it up.
      if (sum < 1) shares[static_cast<int>(qvi_glazing_gaz::gaz_type::air)] += 1 - sum;
      gap.set_gaz_type(qvi_glazing_gaz::gaz_type::other);
      gap.set_gaz_mixing(shares);
      return;
    }
    const std::string gas = text_of(object, "gas", "air");
    const int index = gases.find(gas);
    if (index >= 0 && index < pure_count) {
      expect_no_properties(object);
      gap.set_gaz_type(static_cast<qvi_glazing_gaz::gaz_type>(index));
      return;
    }
    if (gas != "by hand")
      fail("holds no known gas", "write air, argon, krypton, xenon, sf6 or \"by hand\"");
    for (const char* needed : {"conductivity", "viscosity", "specific_heat", "volumic_mass"})
      if (!object.contains(needed))
        fail(fmt::format("has a gas by hand without its \"{}\"", needed),
             "give all four properties");
    gap.set_gaz_type(qvi_glazing_gaz::gaz_type::by_hand);
    take_numbers(object, gas_keys, gap);
  }

  void expect_balance(const qvi_glazing_glass& pane) const {
    if (pane.get_solar_transmittance() < 0)
      fail("would transmit less than nothing of the sun",
           "give a solar factor above what an absorbing pane gives off inwards, some 0.2");
    constexpr float rounding = 1e-5f;
    const float solar =
        std::max(pane.get_solar_reflectance_front(), pane.get_solar_reflectance_back()) +
        pane.get_solar_transmittance();
    const float visible =
        std::max(pane.get_visible_reflectance_front(), pane.get_visible_reflectance_back()) +
        pane.get_visible_transmittance();
    if (solar > 1 + rounding || visible > 1 + rounding)
      fail("transmits and reflects more than arrives",
           "let transmittance and reflectance add up to 1 at most");
  }

  const std::string& path_;
  int number_ = 0;  // of the present layer from 1; 0 outside of the list
};

}  // namespace

qv_owned_glazing qv_parse_glazing_json(const std::string& text, const std::string& path) {
  return glazing_reader(path).read(text);
}

qv_owned_glazing qv_read_glazing_json(const std::string& path) {
  return qv_parse_glazing_json(qv_read_file(path, "a JSON file of layers"), path);
}

}  // namespace qv
