#include "app/readers/qv_gbxml_constructions.h"

#include <algorithm>
#include <cmath>
#include <cstdio>
#include <cstring>
#include <utility>

#include "app/readers/qv_unique_ids.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_material.h"

namespace {

using qv::qv_import_ledger;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;

// Of the stated R-value; a larger difference from thickness / conductivity is worth a note.
constexpr double noted_difference = 0.02;

std::string with_digits(double value) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.4g", value);
  return text.data();
}

// The same for values that are the same in the items, which hold single precision.
std::string key_of(std::initializer_list<std::optional<double>> values) {
  std::string key;
  for (const auto& value : values) {
    const auto number = static_cast<float>(value.value_or(0));
    std::array<char, sizeof number> bytes{};
    std::memcpy(bytes.data(), &number, sizeof number);
    key += value ? '=' : '-';
    key.append(bytes.data(), bytes.size());
  }
  return key;
}

std::string name_or_id(qv::qv_xml_element element) {
  const std::string_view name = element.get_child_text("Name");
  return std::string(name.empty() ? element.get_attribute("id") : name);
}

}  // namespace

namespace qv {

void qv_gbxml_constructions::read(qv_xml_element root) {
  // Whatever the order in the file: materials before the layers that name them, and so on.
  for (const qv_xml_element child : root)
    if (child.is("Material")) read_material(child);
  for (const qv_xml_element child : root)
    if (child.is("Layer")) read_layer(child);
  for (const qv_xml_element child : root)
    if (child.is("Construction")) read_construction(child);
  for (layer& l : layers_)
    if (!l.used) context_.get_ledger().amend(l.entry, outcome::dropped, "no construction names it");
}

void qv_gbxml_constructions::read_material(qv_xml_element element) {
  material m;
  m.id = std::string(element.get_attribute("id"));
  m.name = name_or_id(element);
  m.entry = context_.add_entry(kind::material, element, outcome::kept, "");
  std::vector<std::string> impossible;
  const auto positive = [&](const char* name, qv_quantity quantity) {
    auto value = context_.read_measure(element.get_child(name), quantity);
    if (value && *value <= 0) {
      if (*value < 0 || quantity == qv_quantity::conductivity)
        impossible.push_back("its " + std::string(name) + " is " + with_digits(*value));
      if (*value < 0)
        context_.get_ledger().amend(m.entry, outcome::repaired,
                                    std::string(name) + " is negative and was left out");
      value.reset();
    }
    return value;
  };
  m.thickness = positive("Thickness", qv_quantity::length);
  m.conductivity = positive("Conductivity", qv_quantity::conductivity);
  m.density = positive("Density", qv_quantity::density);
  m.specific_heat = positive("SpecificHeat", qv_quantity::specific_heat);
  m.resistance = positive("R-value", qv_quantity::thermal_resistance);
  for (std::string& words : impossible)
    context_.get_model().flaws.push_back(
        {qv_source_flaw::kind::impossible_value, m.id, std::move(words)});
  complete_resistance(m);
  m.key = key_of({m.thickness, m.conductivity, m.density, m.specific_heat, m.resistance}) + m.name;

  const std::string id = m.id;
  const auto known = material_by_id_.find(id);
  if (!id.empty() && known != material_by_id_.end() &&
      materials_[static_cast<std::size_t>(known->second)].key != m.key)
    context_.fail(element, "a second Material bears this id and says something else",
                  "give each Material an id of its own");
  const int number = share_material(std::move(m));
  if (!id.empty()) material_by_id_.try_emplace(id, number);
}

void qv_gbxml_constructions::complete_resistance(material& m) {
  std::optional<double> derived;
  if (m.thickness && m.conductivity) derived = *m.thickness / *m.conductivity;
  qv_import_ledger& ledger = context_.get_ledger();
  if (!m.resistance) {
    m.resistance = derived;
    ledger.amend(m.entry, outcome::kept,
                 derived ? "resistance from thickness and conductivity"
                         : "no R-value and no conductivity with a thickness: resistance unknown");
    return;
  }
  if (derived && std::abs(*derived - *m.resistance) > noted_difference * *m.resistance) {
    ledger.amend(m.entry, outcome::kept,
                 "R-value " + with_digits(*m.resistance) +
                     " kept, though thickness and conductivity give " + with_digits(*derived));
  } else {
    ledger.amend(m.entry, outcome::kept, derived ? "" : "R-value only");
  }
}

int qv_gbxml_constructions::share_material(material m) {
  const auto number = static_cast<int>(materials_.size());
  const auto [slot, fresh] = material_by_key_.try_emplace(m.key, number);
  if (!fresh) {
    const material& first = materials_[static_cast<std::size_t>(slot->second)];
    context_.get_ledger().amend(m.entry, outcome::merged,
                                "the same as Material " + qv_quoted_id(first.id));
    return slot->second;
  }
  materials_.push_back(std::move(m));
  return number;
}

void qv_gbxml_constructions::read_layer(qv_xml_element element) {
  layer l;
  l.id = std::string(element.get_attribute("id"));
  l.entry = context_.add_entry(kind::layer, element, outcome::kept, "");
  qv_import_ledger& ledger = context_.get_ledger();
  for (const qv_xml_element child : element) {
    if (!child.is("MaterialId")) continue;
    const std::string_view reference = child.get_attribute("materialIdRef");
    const auto found = material_by_id_.find(reference);
    if (found != material_by_id_.end()) {
      l.materials.push_back(found->second);
    } else {
      ledger.amend(l.entry, outcome::repaired,
                   "Material " + qv_quoted_id(reference) + " is not in the file");
    }
  }
  if (l.materials.empty()) ledger.amend(l.entry, outcome::repaired, "it has no material");
  const auto number = static_cast<int>(layers_.size());
  const auto [slot, fresh] = layer_by_id_.try_emplace(l.id, number);
  if (!fresh && !l.id.empty()) {
    if (layers_[static_cast<std::size_t>(slot->second)].materials != l.materials)
      context_.fail(element, "a second Layer bears this id and says something else",
                    "give each Layer an id of its own");
    ledger.amend(l.entry, outcome::merged, "said twice");
    return;
  }
  layers_.push_back(std::move(l));
}

void qv_gbxml_constructions::read_construction(qv_xml_element element) {
  construction c;
  c.id = std::string(element.get_attribute("id"));
  c.name = name_or_id(element);
  c.entry = context_.add_entry(kind::construction, element, outcome::kept, "");
  qv_import_ledger& ledger = context_.get_ledger();
  for (const qv_xml_element child : element) {
    if (!child.is("LayerId")) continue;
    const std::string_view reference = child.get_attribute("layerIdRef");
    const auto found = layer_by_id_.find(reference);
    if (found == layer_by_id_.end()) {
      ledger.amend(c.entry, outcome::repaired,
                   "Layer " + qv_quoted_id(reference) + " is not in the file");
      continue;
    }
    layer& l = layers_[static_cast<std::size_t>(found->second)];
    l.used = true;
    c.materials.insert(c.materials.end(), l.materials.begin(), l.materials.end());
  }
  c.transmittance =
      context_.read_measure(element.get_child("U-value"), qv_quantity::thermal_transmittance);
  if (c.transmittance && *c.transmittance <= 0) c.transmittance.reset();
  complete_without_layers(c);

  const auto number = static_cast<int>(constructions_.size());
  const auto [slot, fresh] = construction_by_id_.try_emplace(c.id, number);
  if (!fresh && !c.id.empty()) {
    const construction& first = constructions_[static_cast<std::size_t>(slot->second)];
    if (first.materials != c.materials || first.name != c.name)
      context_.fail(element, "a second Construction bears this id and says something else",
                    "give each Construction an id of its own");
  }
  constructions_.push_back(std::move(c));
  share_construction(number);
}

void qv_gbxml_constructions::complete_without_layers(construction& c) {
  const auto has_resistance = [this](int number) {
    return materials_[static_cast<std::size_t>(number)].resistance.has_value();
  };
  const auto known = std::count_if(c.materials.begin(), c.materials.end(), has_resistance);
  qv_import_ledger& ledger = context_.get_ledger();
  if (known > 0) {
    ledger.amend(c.entry, outcome::kept,
                 known == static_cast<std::ptrdiff_t>(c.materials.size())
                     ? ""
                     : "the resistance of some of its layers is not known");
    return;
  }
  if (!c.transmittance) {
    ledger.amend(c.entry, outcome::kept,
                 c.materials.empty() ? "a name only: no layers and no U-value"
                                     : "no resistance and no U-value: U unknown");
    return;
  }
  material whole;
  whole.name = c.name;
  whole.entry = c.entry;
  whole.resistance = 1 / *c.transmittance;
  double thickness = 0;
  for (const int number : c.materials)
    thickness += materials_[static_cast<std::size_t>(number)].thickness.value_or(0);
  if (thickness > 0) {
    whole.thickness = thickness;
    whole.conductivity = thickness / *whole.resistance;
  }
  whole.key = key_of({whole.thickness, whole.conductivity, {}, {}, whole.resistance}) + whole.name;
  ledger.amend(c.entry, outcome::repaired,
               std::string(c.materials.empty() ? "no layers" : "no layer with a resistance") +
                   ": one layer of the stated U-value " + with_digits(*c.transmittance));
  const auto known_whole = material_by_key_.find(whole.key);
  if (known_whole != material_by_key_.end()) {
    c.materials = {known_whole->second};
  } else {
    c.materials = {share_material(std::move(whole))};
  }
}

void qv_gbxml_constructions::share_construction(int number) {
  construction& c = constructions_[static_cast<std::size_t>(number)];
  std::string key;
  for (const int m : c.materials) key += std::to_string(m) + '|';
  key += c.name;
  const auto [slot, fresh] = construction_by_key_.try_emplace(key, number);
  if (fresh) return;
  c.same_as = slot->second;
  context_.get_ledger().amend(
      c.entry, outcome::merged,
      "the same as Construction " +
          qv_quoted_id(constructions_[static_cast<std::size_t>(slot->second)].id));
}

int qv_gbxml_constructions::find(std::string_view id) const {
  const auto found = construction_by_id_.find(id);
  return found == construction_by_id_.end() ? -1 : found->second;
}

void qv_gbxml_constructions::count_use(int number, bool reversed, int wall_type) {
  if (number < 0) return;
  construction* c = &constructions_[static_cast<std::size_t>(number)];
  if (c->same_as >= 0) c = &constructions_[static_cast<std::size_t>(c->same_as)];
  ++c->uses[reversed ? 1 : 0][static_cast<std::size_t>(wall_type)];
}

void qv_gbxml_constructions::make_items(qv_item* parent, qv_unique_ids& ids) {
  for (material& m : materials_) {
    m.item = new qvi_material;
    m.item->set_name(m.name);
    ids.give(m.item, m.id);
    m.item->set_thickness(static_cast<float>(m.thickness.value_or(0)));
    m.item->set_conductivity(static_cast<float>(m.conductivity.value_or(0)));
    m.item->set_density(static_cast<float>(m.density.value_or(0)));
    m.item->set_specific_heat(static_cast<float>(m.specific_heat.value_or(0)));
    m.item->set_resistance(static_cast<float>(m.resistance.value_or(0)));
    parent->add_child(m.item, -1);
  }
  for (construction& c : constructions_) {
    if (c.same_as >= 0) continue;
    const auto total = [&c](std::size_t side) {
      return c.uses[side][0] + c.uses[side][1] + c.uses[side][2];
    };
    const bool symmetric = std::equal(c.materials.begin(), c.materials.end(), c.materials.rbegin());
    if (symmetric)
      for (std::size_t type = 0; type < 3; ++type) c.uses[0][type] += c.uses[1][type];
    if (symmetric || total(0) > 0 || total(1) == 0) make_composition(parent, ids, c, false);
    if (symmetric) {
      c.items[1] = c.items[0];
    } else if (total(1) > 0) {
      make_composition(parent, ids, c, true);
    }
  }
}

void qv_gbxml_constructions::make_composition(qv_item* parent, qv_unique_ids& ids, construction& c,
                                              bool reversed) {
  auto* item = new qvi_composition;
  item->set_name(c.name);
  ids.give(item, c.id);
  qv_list<qvi_matter*> layers;
  qv_list<float> thicknesses;
  const auto add = [&](int number) {
    qvi_material* m = materials_[static_cast<std::size_t>(number)].item;
    layers.append(m);
    thicknesses.append(m->get_thickness());
  };
  if (reversed) {
    std::for_each(c.materials.rbegin(), c.materials.rend(), add);
  } else {
    std::for_each(c.materials.begin(), c.materials.end(), add);
  }
  const auto& uses = c.uses[reversed ? 1 : 0];
  const auto most = std::max_element(uses.begin(), uses.end()) - uses.begin();
  item->set_typology(static_cast<qvi_composition::composition_typology>(most));
  parent->add_child(item, -1);
  item->set_layers(layers);
  item->set_layer_thicknesses(thicknesses);
  c.items[reversed ? 1 : 0] = item;
}

std::optional<qv_gbxml_constructions::panel> qv_gbxml_constructions::get_panel(int number) const {
  const construction& c = constructions_[static_cast<std::size_t>(number)];
  panel whole;
  whole.name = c.name;
  for (const int m : c.materials) {
    whole.thickness += materials_[static_cast<std::size_t>(m)].thickness.value_or(0);
    whole.resistance += materials_[static_cast<std::size_t>(m)].resistance.value_or(0);
  }
  if (whole.resistance <= 0) return std::nullopt;
  return whole;
}

qvi_composition* qv_gbxml_constructions::get_composition(int number, bool reversed) const {
  if (number < 0) return nullptr;
  const construction* c = &constructions_[static_cast<std::size_t>(number)];
  if (c->same_as >= 0) c = &constructions_[static_cast<std::size_t>(c->same_as)];
  return c->items[reversed ? 1 : 0];
}

}  // namespace qv
