#include "app/readers/qv_gbxml_windows.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "app/readers/qv_unique_ids.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_glass.h"
#include "bim/materials/qvi_opaque.h"

namespace {

using qv::qv_import_ledger;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;
using typology = qv::qvi_opening_composition::opening_composition_typology;

constexpr float upright = 90;  // degrees; the slope for which makers state U
// Of a stated U; a larger difference from that of the layers is worth a note.
constexpr double noted_difference = 0.1;
// Of a stated U; what a pane made from it may miss it by.
constexpr double reached = 1e-3;

std::string with_digits(double value) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.3g", value);
  return text.data();
}

float or_none(const std::optional<double>& value) {
  return value ? static_cast<float>(*value) : -1.0f;
}

void force(qv::qvi_opening_composition& composition, const qv::qv_opening_figures& figures) {
  composition.set_forced_U(or_none(figures.u));
  composition.set_forced_solar_factor(or_none(figures.solar_factor));
  composition.set_forced_visible_transmittance(or_none(figures.visible_transmittance));
}

// "U 2.5, solar factor 0.38"
std::string list_of(const qv::qv_opening_figures& figures) {
  std::string words;
  const auto add = [&words](const char* name, const std::optional<double>& value) {
    if (value) words += (words.empty() ? "" : ", ") + std::string(name) + " " + with_digits(*value);
  };
  add("U", figures.u);
  add("solar factor", figures.solar_factor);
  add("visible transmittance", figures.visible_transmittance);
  return words;
}

std::string missing_of(const qv::qv_opening_figures& figures) {
  std::string words;
  const auto add = [&words](const char* name, bool stated) {
    if (!stated) words += (words.empty() ? "" : ", ") + std::string(name);
  };
  add("U", figures.u.has_value());
  add("solar factor", figures.solar_factor.has_value());
  add("visible transmittance", figures.visible_transmittance.has_value());
  return words;
}

typology typology_of(int pane_count) {
  switch (pane_count) {
    case 1:
      return typology::single_glazing;
    case 2:
      return typology::double_glazing;
    case 3:
      return typology::triple_glazing;
    default:
      return typology::other;
  }
}

}  // namespace

namespace qv {

// --- reading ---

void qv_gbxml_windows::read(qv_xml_element root) {
  for (const qv_xml_element child : root)
    if (child.is("WindowType")) read_window_type(child);
}

void qv_gbxml_windows::read_window_type(qv_xml_element element) {
  window_type w;
  w.id = std::string(element.get_attribute("id"));
  const std::string_view name = element.get_child_text("Name");
  w.name = name.empty() ? w.id : std::string(name);
  w.entry = context_.add_entry(kind::window_type, element, outcome::kept, "");
  w.figures = qv_read_opening_figures(context_, element);
  for (const qv_xml_element child : element) {
    if (child.is("Glaze") || child.is("Gap"))
      w.layers.push_back(qv_read_glazing_layer(context_, child));
    if (child.is("Frame")) w.framed = true;
  }
  w.key = w.name + '|' + list_of(w.figures) + (w.framed ? "|frame|" : "|");
  for (const qv_glazing_layer_text& layer : w.layers) w.key += layer.get_key();

  const auto number = static_cast<int>(types_.size());
  const auto [slot, fresh] = type_by_id_.try_emplace(w.id, number);
  if (!fresh && !w.id.empty() && types_[static_cast<std::size_t>(slot->second)].key != w.key)
    context_.fail(element, "a second WindowType bears this id and says something else",
                  "give each WindowType an id of its own");
  const auto [same, first_of_kind] = type_by_key_.try_emplace(w.key, number);
  if (!first_of_kind) {
    w.same_as = same->second;
    context_.get_ledger().amend(
        w.entry, outcome::merged,
        "the same as WindowType " + qv_quoted_id(types_[static_cast<std::size_t>(w.same_as)].id));
  }
  types_.push_back(std::move(w));
}

qv_gbxml_windows::filling qv_gbxml_windows::read_filling(qv_xml_element opening,
                                                         qv_gbxml_opening_type type,
                                                         std::size_t entry) {
  qv_import_ledger& ledger = context_.get_ledger();
  filling f;
  f.air = type == qv_gbxml_opening_type::air;
  f.door = qv_choose_opening_type(type) == qvi_opening::opening_type::door;
  f.leaf = qv_is_leaf(type);
  const std::string_view window = opening.get_attribute("windowTypeIdRef");
  const std::string_view construction = opening.get_attribute("constructionIdRef");
  if (!window.empty()) {
    const auto found = type_by_id_.find(window);
    if (found != type_by_id_.end()) {
      f.window_type = found->second;
    } else {
      ledger.amend(entry, outcome::repaired,
                   "WindowType " + qv_quoted_id(window) + " is not in the file");
    }
  }
  if (!construction.empty()) {
    f.construction = constructions_.find(construction);
    if (f.construction >= 0) {
      f.construction = constructions_.get_first_alike(f.construction);
    } else {
      ledger.amend(entry, outcome::repaired,
                   "Construction " + qv_quoted_id(construction) + " is not in the file");
    }
  }
  f.own = qv_read_opening_figures(context_, opening);
  if (f.air) {
    ledger.amend(entry, outcome::kept, "nothing fills it");
  } else if (!f.is_said()) {
    ledger.amend(entry, outcome::kept, "the file does not say what fills it");
  }
  return f;
}

// --- items ---

void qv_gbxml_windows::make_items(qv_item* parent, qv_unique_ids& ids) {
  parent_ = parent;
  for (window_type& w : types_) {
    if (w.same_as >= 0) continue;
    w.item = add_composition(w.name);
    ids.give(w.item, w.id);
    fill_composition(w);
  }
}

qvi_opening_composition* qv_gbxml_windows::add_composition(const std::string& name) {
  auto* composition = new qvi_opening_composition;
  composition->set_name(name);
  parent_->add_child(composition, -1);
  return composition;
}

void qv_gbxml_windows::fill_composition(window_type& w) {
  qv_import_ledger& ledger = context_.get_ledger();
  const auto is_pane = [](const qv_glazing_layer_text& layer) { return !layer.is_gap; };
  const auto panes = std::count_if(w.layers.begin(), w.layers.end(), is_pane);
  if (panes == 0 && !w.layers.empty())
    ledger.amend(w.entry, outcome::repaired, "it has gaps without a pane: left out");
  if (panes > 0) {
    w.item->set_glazing(make_glazing(w));
    w.item->set_typology(typology_of(static_cast<int>(panes)));
  } else if (w.figures.all()) {
    w.item->set_glazing(make_pane(w));
  } else if (w.figures.any()) {
    force(*w.item, w.figures);
    ledger.amend(w.entry, outcome::kept,
                 list_of(w.figures) + " imposed; it does not say its " + missing_of(w.figures));
  } else {
    ledger.amend(w.entry, outcome::kept, "a name only: no layers and no figures");
  }
  if (!w.framed) return;
  if (w.figures.any()) {
    force(*w.item, w.figures);
    ledger.amend(w.entry, outcome::kept,
                 list_of(w.figures) + " imposed: those of the window with its frame");
  } else {
    ledger.amend(w.entry, outcome::kept, "its frame is left out");
  }
}

qvi_glazing* qv_gbxml_windows::make_glazing(window_type& w) {
  auto* glazing = new qvi_glazing;
  glazing->set_name(w.name);
  std::string assumptions;
  qv_list<qvi_glazing_layer*> layers;
  for (const qv_glazing_layer_text& text : w.layers) {
    qvi_glazing_layer* layer = qv_make_glazing_layer(text, assumptions);
    glazing->add_child(layer, -1);
    layers.append(layer);
  }
  glazing->set_layers(layers);
  if (glazing->check_glazing(false))
    assumptions += std::string(assumptions.empty() ? "" : "; ") +
                   "a gap had no pane on one side: a pane was added";
  parent_->add_child(glazing, -1);
  if (!assumptions.empty()) context_.get_ledger().amend(w.entry, outcome::repaired, assumptions);
  if (!w.framed) compare_with_stated(w, *glazing);
  return glazing;
}

void qv_gbxml_windows::compare_with_stated(const window_type& w, qvi_glazing& glazing) {
  if (!w.figures.u) return;
  glazing.precompute();
  const double u = glazing.get_U(upright);
  if (std::abs(u - *w.figures.u) > noted_difference * *w.figures.u)
    context_.get_ledger().amend(
        w.entry, outcome::kept,
        "its layers give U " + with_digits(u) + ", though it states " + with_digits(*w.figures.u));
}

qvi_glazing* qv_gbxml_windows::make_pane(window_type& w) {
  auto* glazing = new qvi_glazing;
  glazing->set_name(w.name);
  qvi_glazing_glass* pane = qv_make_pane_of_figures(w.figures);
  pane->set_name(w.name);
  glazing->add_child(pane, -1);
  qv_list<qvi_glazing_layer*> layers;
  layers.append(pane);
  glazing->set_layers(layers);
  parent_->add_child(glazing, -1);

  qv_import_ledger& ledger = context_.get_ledger();
  ledger.amend(w.entry, outcome::kept, "a pane of its " + list_of(w.figures));
  glazing->precompute();
  if (std::abs(glazing->get_U(upright) - *w.figures.u) > reached * *w.figures.u) {
    w.item->set_forced_U(or_none(w.figures.u));
    ledger.amend(w.entry, outcome::kept,
                 "its U is imposed, being more than the surfaces of a pane let through");
  }
  return glazing;
}

qv_gbxml_windows::filling_items qv_gbxml_windows::get_items(const filling& f) {
  if (f.air) return get_air();
  if (f.door && f.construction >= 0 && constructions_.get_panel(f.construction))
    return get_panel(f.construction);
  filling_items items;
  if (f.window_type >= 0) {
    const window_type* w = &types_[static_cast<std::size_t>(f.window_type)];
    if (w->same_as >= 0) w = &types_[static_cast<std::size_t>(w->same_as)];
    items = {w->item, w->item->get_glazing()};
    if (items.shader == nullptr && f.construction >= 0 && !w->figures.any())
      items = get_glazed_construction(f.construction);
  } else if (f.construction >= 0) {
    items = get_glazed_construction(f.construction);
  }
  if (f.leaf && items.shader == nullptr) items.shader = get_unknown_leaf();
  return items;
}

// A stack without layers lets everything through but for the air at both sides.
qv_gbxml_windows::filling_items qv_gbxml_windows::get_air() {
  if (air_.composition != nullptr) return air_;
  auto* glazing = new qvi_glazing;
  glazing->set_name("Air");
  parent_->add_child(glazing, -1);
  air_ = {add_composition("Air"), glazing};
  air_.composition->set_glazing(glazing);
  return air_;
}

qv_gbxml_windows::filling_items qv_gbxml_windows::get_panel(int construction) {
  for (const made_construction& made : panels_)
    if (made.construction == construction) return made.items;
  const auto panel = constructions_.get_panel(construction).value();
  const double thickness = panel.thickness > 0 ? panel.thickness : unknown_leaf_thickness;
  auto* opaque = new qvi_opaque;
  opaque->set_name(panel.name);
  opaque->set_thickness(static_cast<float>(thickness));
  opaque->set_conductivity(static_cast<float>(thickness / panel.resistance));
  parent_->add_child(opaque, -1);
  const filling_items items = {add_composition(panel.name), opaque};
  items.composition->set_opaque(opaque);
  items.composition->set_typology(typology::door);
  panels_.push_back({construction, items});
  return items;
}

qv_gbxml_windows::filling_items qv_gbxml_windows::get_glazed_construction(int construction) {
  for (const made_construction& made : glazed_)
    if (made.construction == construction) return made.items;
  filling_items items;
  items.composition = add_composition(constructions_.get_name(construction));
  if (const auto panel = constructions_.get_panel(construction))
    items.composition->set_forced_U(static_cast<float>(1 / panel->resistance));
  glazed_.push_back({construction, items});
  return items;
}

qvi_opaque* qv_gbxml_windows::get_unknown_leaf() {
  if (unknown_leaf_ != nullptr) return unknown_leaf_;
  unknown_leaf_ = new qvi_opaque;
  unknown_leaf_->set_name("Door leaf");
  parent_->add_child(unknown_leaf_, -1);
  return unknown_leaf_;
}

}  // namespace qv
