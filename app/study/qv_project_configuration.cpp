#include "app/study/qv_project_configuration.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <map>
#include <nlohmann/json.hpp>
#include <unordered_map>

#include "app/readers/qv_input_error.h"
#include "app/readers/qv_json_text.h"
#include "app/report/qv_report_value.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_opaque.h"
#include "bim/project/qvi_bim_configuration.h"
#include "core/items/qv_item_type.h"
#include "core/items/qv_scene.h"
#include "core/shapes/qvi_mesh.h"

namespace qv {

namespace {

using json = nlohmann::ordered_json;
using param_type = qv_param::param_type;

constexpr const char* format_name = "qv-configuration";
constexpr int format_version = 1;

/// References that are kept with an item: of which type it is, its parameter, and what that names.
struct reference {
  const char* owner;
  const char* param;
  const char* target;
};
constexpr std::array<reference, 4> references = {{{"composition", "layers", "matter"},
                                                  {"opening_composition", "glazing", "glazing"},
                                                  {"opening_composition", "opaque", "opaque"},
                                                  {"glazing", "layers", "glazing_layer"}}};

const reference* find_reference(const qv_item& item, const std::string& param) {
  for (const reference& r : references) {
    if (item.has_type(r.owner) && param == r.param) return &r;
  }
  return nullptr;
}

/// The double that prints as shortly as the float does.
double to_double(float value) {
  const std::string text = qv_number_text(value);
  double result = value;
  std::from_chars(text.data(), text.data() + text.size(), result);
  return result;
}

// --- writing ---

/// Writes items and what they refer to, each once.
class item_writer {
 public:
  /// The number of the item in the file.
  int write(const qv_item& item);
  json take_items() { return std::move(items_); }

 private:
  json value_of(const qv_param& param);

  std::unordered_map<const qv_item*, int> numbers_;
  json items_ = json::array();
};

json item_writer::value_of(const qv_param& param) {
  switch (param.get_param_type()) {
    case qv_param::type_float:
      return to_double(param.get_float());
    case qv_param::type_int:
      return param.get_int();
    case qv_param::type_bool:
      return param.get_bool();
    case qv_param::type_string:
      return param.get_string();
    case qv_param::type_enum: {
      const qv_list<std::string>& labels = *param.get_labels();
      const int value = param.get_int();
      return value >= 0 && value < labels.get_count() ? json(labels[value]) : json();
    }
    case qv_param::type_color: {
      const qv_color& c = param.get_color();
      return {to_double(c.r), to_double(c.g), to_double(c.b), to_double(c.a)};
    }
    case qv_param::type_float_list: {
      json list = json::array();
      for (const float value : param.get_float_list()) list.push_back(to_double(value));
      return list;
    }
    case qv_param::type_item:
      return param.get_item() == nullptr ? json() : json(write(*param.get_item()));
    case qv_param::type_item_list: {
      json list = json::array();
      for (const qv_item* item : param.get_item_list()) {
        list.push_back(item == nullptr ? json() : json(write(*item)));
      }
      return list;
    }
    default:
      return {};
  }
}

int item_writer::write(const qv_item& item) {
  if (const auto known = numbers_.find(&item); known != numbers_.end()) return known->second;
  const int number = static_cast<int>(items_.size());
  numbers_[&item] = number;
  items_.push_back(nullptr);
  qv_item* const plain = item.get_item_type()->create_item();
  json params = json::object();
  for (int i = 0; i < item.get_param_count(); ++i) {
    const qv_param& param = *item.get_param(i);
    const bool refers = param.get_param_type() == qv_param::type_item ||
                        param.get_param_type() == qv_param::type_item_list;
    if (refers && find_reference(item, param.get_name()) == nullptr) continue;
    const qv_param* usual = plain == nullptr ? nullptr : plain->find_param(param.get_name());
    if (usual != nullptr && usual->has_same_value(param)) continue;
    json value = value_of(param);
    if (!value.is_null()) params[param.get_name()] = std::move(value);
  }
  qv_item::destroy(plain);
  items_[static_cast<std::size_t>(number)] = {{"number", number},
                                              {"type", item.get_item_type()->get_name()},
                                              {"name", item.get_name()},
                                              {"params", std::move(params)}};
  return number;
}

// --- reading ---

class configuration_reader {
 public:
  configuration_reader(std::string file, qvi_bim_configuration& configuration)
      : file_(std::move(file)), configuration_(configuration) {}
  void read(const std::string& text);

 private:
  [[noreturn]] void fail(const std::string& problem) const {
    throw qv_input_error(qv_input_error::kind::bad_input, {file_, 0, "", ""}, problem,
                         "write configurations with `qv configure save`");
  }
  void make_items(const json& items);
  void fill(qv_item& item, const json& params);
  void set(qv_item& item, qv_param& param, const json& value);
  qv_item* find_item(const json& number, const char* type) const;
  const json& array_of(const json& document, const char* key) const;
  int find_label(const qv_list<std::string>& labels, const json& record, const char* key) const;
  float number_of(const json& value) const;

  std::string file_;
  qvi_bim_configuration& configuration_;
  std::map<int, qv_item*> items_;
};

const json& configuration_reader::array_of(const json& document, const char* key) const {
  static const json none = json::array();
  const auto found = document.find(key);
  if (found == document.end()) return none;
  if (!found->is_array()) fail(std::string("\"") + key + "\" is no list");
  return *found;
}

float configuration_reader::number_of(const json& value) const {
  if (!value.is_number()) fail("has " + qv_one_line(value.dump(), 40) + " where a number belongs");
  return value.get<float>();
}

qv_item* configuration_reader::find_item(const json& number, const char* type) const {
  if (number.is_null()) return nullptr;
  const auto found = number.is_number_integer() ? items_.find(number.get<int>()) : items_.end();
  if (found == items_.end() || !found->second->has_type(type)) {
    fail("has no " + std::string(type) + " of number " + qv_one_line(number.dump(), 40));
  }
  return found->second;
}

int configuration_reader::find_label(const qv_list<std::string>& labels, const json& record,
                                     const char* key) const {
  const auto found = record.is_object() ? record.find(key) : record.end();
  const std::string label = record.is_object() && found != record.end() && found->is_string()
                                ? found->get<std::string>()
                                : "";
  const int index = labels.find(label);
  if (index < 0) fail(std::string("knows no ") + key + " \"" + qv_one_line(label, 40) + "\"");
  return index;
}

void configuration_reader::set(qv_item& item, qv_param& param, const json& value) {
  switch (param.get_param_type()) {
    case qv_param::type_float:
      return item.set_param_value(&param, number_of(value));
    case qv_param::type_int:
      if (!value.is_number_integer()) fail("has no whole number for " + param.get_name());
      return item.set_param_value(&param, value.get<int>());
    case qv_param::type_bool:
      if (!value.is_boolean()) fail("has neither true nor false for " + param.get_name());
      return item.set_param_value(&param, value.get<bool>());
    case qv_param::type_string:
      if (!value.is_string()) fail("has no text for " + param.get_name());
      return item.set_param_value(&param, value.get<std::string>());
    case qv_param::type_enum:
      return item.set_param_value(
          &param,
          find_label(*param.get_labels(), {{param.get_name(), value}}, param.get_name().c_str()));
    case qv_param::type_color:
      if (!value.is_array() || value.size() != 4) fail("has no colour for " + param.get_name());
      return item.set_param_value(&param, qv_color(number_of(value[0]), number_of(value[1]),
                                                   number_of(value[2]), number_of(value[3])));
    case qv_param::type_float_list: {
      if (!value.is_array()) fail("has no list for " + param.get_name());
      qv_list<float> list;
      for (const json& entry : value) list.append(number_of(entry));
      return item.set_param_value(&param, list);
    }
    case qv_param::type_item:
      if (const reference* r = find_reference(item, param.get_name())) {
        item.set_param_value(&param, find_item(value, r->target));
      }
      return;
    case qv_param::type_item_list:
      if (const reference* r = find_reference(item, param.get_name())) {
        if (!value.is_array()) fail("has no list for " + param.get_name());
        qv_list<qv_item*> list;
        for (const json& entry : value) list.append(find_item(entry, r->target));
        item.set_param_value(&param, list);
      }
      return;
    default:
      return;
  }
}

void configuration_reader::fill(qv_item& item, const json& params) {
  for (const auto& [name, value] : params.items()) {
    qv_param* param = item.find_param(name);
    if (param == nullptr) {
      fail("has a " + item.get_item_type()->get_name() + " with \"" + qv_one_line(name, 40) +
           "\", which it does not know");
    }
    set(item, *param, value);
  }
}

void configuration_reader::make_items(const json& records) {
  constexpr std::array<const char*, 5> kept = {"composition", "opening_composition", "matter",
                                               "opening_shader", "glazing_layer"};
  for (const json& record : records) {
    const auto get = [&](const char* key) -> const json& {
      const auto found = record.is_object() ? record.find(key) : record.end();
      if (!record.is_object() || found == record.end()) {
        fail(std::string("has an item without \"") + key + "\"");
      }
      return *found;
    };
    const json& number = get("number");
    const json& type_name = get("type");
    if (!number.is_number_integer() || !type_name.is_string() || !get("name").is_string() ||
        !get("params").is_object()) {
      fail("has an item that is none");
    }
    const qv_item_type* type = qv_item_type::find(type_name.get<std::string>());
    const bool known = type != nullptr && std::any_of(kept.begin(), kept.end(), [&](const char* k) {
                         return type->derives_from(std::string(k));
                       });
    qv_item* item = known ? type->create_item() : nullptr;
    if (item == nullptr) fail("has an item of no known type");
    item->set_name(get("name").get<std::string>());
    configuration_.add_child(item, -1);
    if (!items_.emplace(number.get<int>(), item).second) fail("has two items of one number");
  }
  for (const json& record : records) {
    fill(*items_.at(record["number"].get<int>()), record["params"]);
  }
}

void configuration_reader::read(const std::string& text) {
  qv_expect_json(file_, text);
  const json document = json::parse(text);
  const auto format = document.is_object() ? document.find("format") : document.end();
  if (!document.is_object() || format == document.end() || *format != format_name) {
    fail("is no configuration");
  }
  if (document.value("version", json()) != format_version) fail("is of another version");
  make_items(array_of(document, "items"));

  qv_list<qvi_wall::contact_type> contact_types;
  qv_list<qvi_composition*> compositions;
  for (const json& row : array_of(document, "walls")) {
    contact_types.append(static_cast<qvi_wall::contact_type>(
        find_label(qvi_wall::get_contact_type_list(), row, "contact_type")));
    compositions.append(
        static_cast<qvi_composition*>(find_item(row.value("composition", json()), "composition")));
  }
  configuration_.set_contact_types(contact_types);
  configuration_.set_wall_compositions(compositions);

  qv_list<qvi_opening::opening_type> opening_types;
  qv_list<qvi_opening_composition*> opening_compositions;
  for (const json& row : array_of(document, "openings")) {
    opening_types.append(static_cast<qvi_opening::opening_type>(
        find_label(qvi_opening::get_opening_type_list(), row, "opening_type")));
    opening_compositions.append(static_cast<qvi_opening_composition*>(
        find_item(row.value("composition", json()), "opening_composition")));
  }
  configuration_.set_opening_types(opening_types);
  configuration_.set_opening_compositions(opening_compositions);

  qv_list<qvi_connexion::connexion_type> connexion_types;
  qv_list<float> values;
  for (const json& row : array_of(document, "connexions")) {
    connexion_types.append(static_cast<qvi_connexion::connexion_type>(
        find_label(qvi_connexion::get_connexion_type_list(), row, "type")));
    values.append(number_of(row.value("psi", json())));
  }
  configuration_.set_connexion_types(connexion_types);
  configuration_.set_connexion_values(values);
}

// --- applying ---

template <class Element>
qv_list<Element*> elements_of(qv_scene& scene, const char* type) {
  qv_list<Element*> elements;
  for (qv_item* item : scene.get_items(type)) elements.append(static_cast<Element*>(item));
  return elements;
}

template <class Element>
std::string id_of(const Element& element) {
  const qv_list<std::string>& ids = element.get_source_ids();
  return ids.is_empty() ? element.get_name() : ids[0];
}

/// The compositions of walls or openings before a change.
template <class Element>
class composition_watch {
 public:
  composition_watch(const char* kind, const qv_list<Element*>& elements) : kind_(kind) {
    for (Element* element : elements) before_.push_back({element, element->get_composition()});
  }
  void report(std::vector<qv_study_change>& changes) const {
    std::map<std::pair<const qv_item*, const qv_item*>, bool> differences;
    for (const auto& [element, before] : before_) {
      const qv_item* const after = element->get_composition();
      const auto [known, is_new] = differences.try_emplace({before, after}, false);
      if (is_new) known->second = text_of(before) != text_of(after);
      if (known->second)
        changes.push_back({kind_, id_of(*element), "composition", name_of(before), name_of(after)});
    }
  }

 private:
  // Everything that a composition is made of: one of the same name may have other layers.
  static std::string text_of(const qv_item* composition) {
    item_writer items;
    if (composition != nullptr) items.write(*composition);
    return items.take_items().dump(-1, ' ', false, json::error_handler_t::replace);
  }
  static std::optional<std::string> name_of(const qv_item* composition) {
    if (composition == nullptr) return std::nullopt;
    return composition->get_name();
  }

  const char* kind_;
  std::vector<std::pair<Element*, const qv_item*>> before_;
};

/// Fills an opening with what its composition is made of. Glazings an opening hands out itself, to
/// what is glazed; but a panel in it stays where a composition has another one, or a glazing in its
/// place. A composition of figures alone leaves the filling as it is.
void fill(qvi_opening& opening) {
  const qvi_opening_composition* composition = opening.get_composition();
  if (composition == nullptr) return;
  qvi_opaque* const panel = composition->get_opaque();
  qvi_glazing* const glazing = composition->get_glazing();
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(&opening, "mesh")) {
    const qvi_shader* present = mesh->get_front_shader();
    const bool is_panel = present != nullptr && present->has_type("opaque");
    const bool is_glazed = present == nullptr || present->has_type("glazing");
    qvi_shader* filling = nullptr;
    if (panel != nullptr && (is_panel || (is_glazed && glazing == nullptr))) filling = panel;
    if (panel == nullptr && is_panel) filling = glazing;
    if (filling == nullptr) continue;
    mesh->set_front_shader(filling);
    mesh->set_back_shader(filling);
  }
}

}  // namespace

qv_project_configuration::qv_project_configuration(const std::string& name, const std::string& text)
    : configuration_(new qvi_bim_configuration) {
  try {
    configuration_reader(name, *configuration_).read(text);
  } catch (...) {
    qv_item::destroy(configuration_);
    throw;
  }
}

qv_project_configuration::~qv_project_configuration() {
  qv_item::destroy(configuration_);
}

std::vector<qv_study_change> qv_project_configuration::apply_constructions(qv_scene& scene) {
  const auto walls = elements_of<qvi_wall>(scene, "wall");
  const auto openings = elements_of<qvi_opening>(scene, "opening");
  const composition_watch<qvi_wall> wall_watch("wall", walls);
  const composition_watch<qvi_opening> opening_watch("opening", openings);
  configuration_->apply_walls_to_scene(&scene, walls, true);
  configuration_->apply_openings_to_scene(&scene, openings, true);
  const auto types = configuration_->get_opening_types();
  const auto choices = configuration_->get_opening_compositions();
  const auto has_choice = [&](qvi_opening::opening_type type) {
    const int slot = types.find(type);
    return slot >= 0 && choices[slot] != nullptr;
  };
  for (qvi_opening* opening : openings)
    if (has_choice(opening->get_opening_type())) fill(*opening);
  std::vector<qv_study_change> changes;
  wall_watch.report(changes);
  opening_watch.report(changes);
  return changes;
}

std::vector<qv_study_change> qv_project_configuration::apply_psi(
    qv_scene& scene, std::unordered_set<const qv_item*>& without) {
  const auto connexions = elements_of<qvi_connexion>(scene, "connexion");
  std::vector<float> before;
  for (const qvi_connexion* connexion : connexions) before.push_back(connexion->get_psi());
  // Spaces of no building are meant as well.
  qv_list<qvi_building*> buildings = elements_of<qvi_building>(scene, "building");
  buildings.append(nullptr);
  configuration_->apply_connexions_to_scene(&scene, buildings, true);
  const auto types = configuration_->get_connexion_types();
  std::vector<qv_study_change> changes;
  for (int i = 0; i < connexions.get_count(); ++i) {
    const qvi_connexion& connexion = *connexions[i];
    if (types.find(connexion.get_connexion_type()) < 0) continue;
    const float old = before[static_cast<std::size_t>(i)];
    const bool was_known = without.erase(connexions[i]) == 0;
    if (was_known && old == connexion.get_psi()) continue;
    changes.push_back({"thermal_bridge", connexion.get_name(), "psi",
                       was_known ? std::optional<std::string>(qv_number_text(old)) : std::nullopt,
                       qv_number_text(connexion.get_psi())});
  }
  return changes;
}

std::string qv_save_configuration(qv_scene& scene, const std::string& source) {
  auto* configuration = new qvi_bim_configuration;
  configuration->load_walls_from_scene(&scene, nullptr);
  configuration->load_openings_from_scene(&scene, nullptr);
  configuration->load_connexions_from_scene(&scene, nullptr);
  item_writer items;
  json walls = json::array();
  json openings = json::array();
  json connexions = json::array();
  const auto contact_types = configuration->get_contact_types();
  for (int i = 0; i < contact_types.get_count(); ++i) {
    const qvi_composition* choice = configuration->get_wall_compositions()[i];
    if (choice == nullptr) continue;
    const int type = static_cast<int>(contact_types[i]);
    walls.push_back({{"contact_type", qvi_wall::get_contact_type_list()[type]},
                     {"composition", items.write(*choice)}});
  }
  const auto opening_types = configuration->get_opening_types();
  for (int i = 0; i < opening_types.get_count(); ++i) {
    const qvi_opening_composition* choice = configuration->get_opening_compositions()[i];
    if (choice == nullptr) continue;
    const int type = static_cast<int>(opening_types[i]);
    openings.push_back({{"opening_type", qvi_opening::get_opening_type_list()[type]},
                        {"composition", items.write(*choice)}});
  }
  const auto connexion_types = configuration->get_connexion_types();
  for (int i = 0; i < connexion_types.get_count(); ++i) {
    const float psi = configuration->get_connexion_values()[i];
    if (!(psi > 0)) continue;
    const int type = static_cast<int>(connexion_types[i]);
    connexions.push_back(
        {{"type", qvi_connexion::get_connexion_type_list()[type]}, {"psi", to_double(psi)}});
  }
  qv_item::destroy(configuration);
  json document = {{"format", format_name},
                   {"version", format_version},
                   {"source", source},
                   {"walls", std::move(walls)},
                   {"openings", std::move(openings)},
                   {"connexions", std::move(connexions)}};
  document["items"] = items.take_items();
  return document.dump(2, ' ', false, json::error_handler_t::replace) + "\n";
}

}  // namespace qv
