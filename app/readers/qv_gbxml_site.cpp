#include "app/readers/qv_gbxml_site.h"

#include <utility>

#include "app/readers/qv_gbxml_geometry.h"
#include "app/readers/qv_unique_ids.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"

namespace {

using qv::qv_import_ledger;
using qv::qv_quantity;
using qv::qv_xml_element;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;

std::string id_of(qv_xml_element element) {
  return std::string(element.get_attribute("id"));
}

std::string name_or(qv_xml_element element, const std::string& otherwise) {
  const std::string_view name = element.get_child_text("Name");
  return name.empty() ? otherwise : std::string(name);
}

}  // namespace

namespace qv {

void qv_gbxml_site::read(qv_xml_element root) {
  for (const qv_xml_element child : root) {
    const std::string_view name = child.get_name();
    if (name == "Campus") {
      read_campus(child);
    } else if (name == "Zone") {
      read_zone(child);
    } else if (name == "Building") {
      context_.warn(child, "stands outside a Campus");
      read_building(child, add_campus({}));
    } else if (name == "Surface") {
      context_.warn(child, "stands outside a Campus");
      surfaces_.push_back({child, add_campus({})});
    }
  }
  link_zones();
}

// The campus of an element, or for a null element the last one, made when there is none.
int qv_gbxml_site::add_campus(qv_xml_element element) {
  if (element || campuses_.empty())
    campuses_.push_back({id_of(element), name_or(element, id_of(element))});
  return static_cast<int>(campuses_.size()) - 1;
}

void qv_gbxml_site::read_campus(qv_xml_element element) {
  const int campus = add_campus(element);
  for (const qv_xml_element child : element) {
    const std::string_view name = child.get_name();
    if (name == "Location") {
      read_location(child, id_of(element));
    } else if (name == "Building") {
      read_building(child, campus);
    } else if (name == "Surface") {
      surfaces_.push_back({child, campus});
    } else if (name == "Space") {
      read_space(child, campus, -1);
    } else if (name == "Zone") {
      read_zone(child);
    } else if (name == "BuildingStorey") {
      read_storey(child, {});
    }
  }
}

void qv_gbxml_site::read_location(qv_xml_element element, const std::string& campus_id) {
  qv_site_location location;
  location.campus_id = campus_id;
  location.name = std::string(element.get_child_text("Name"));
  const auto number = [&](const char* name) {
    return qv_gbxml_context::parse_number(element.get_child_text(name));
  };
  location.latitude = number("Latitude");
  location.longitude = number("Longitude");
  location.elevation = context_.read_measure(element.get_child("Elevation"), qv_quantity::length);
  location.model_azimuth = number("CADModelAzimuth");
  context_.get_model().locations.push_back(std::move(location));
}

void qv_gbxml_site::read_building(qv_xml_element element, int campus) {
  const auto number = static_cast<int>(buildings_.size());
  const std::string id = id_of(element);
  if (!id.empty() && !building_by_id_.try_emplace(id, number).second)
    context_.fail(element, "a second Building bears this id",
                  "give each Building an id of its own");
  const std::string numbered = "Bâtiment " + std::to_string(number + 1);
  buildings_.push_back({id, name_or(element, id.empty() ? numbered : id), campus});
  ++context_.get_model().building_count;
  for (const qv_xml_element child : element) {
    const std::string_view name = child.get_name();
    if (name == "Space") {
      read_space(child, campus, number);
    } else if (name == "BuildingStorey") {
      read_storey(child, id);
    } else if (name == "Surface") {
      surfaces_.push_back({child, campus});
    } else if (name == "Zone") {
      read_zone(child);
    }
  }
}

void qv_gbxml_site::read_storey(qv_xml_element element, const std::string& building_id) {
  context_.get_model().storeys.push_back(
      {id_of(element), name_or(element, id_of(element)), building_id,
       context_.read_measure(element.get_child("Level"), qv_quantity::length)});
}

void qv_gbxml_site::read_space(qv_xml_element element, int campus, int building) {
  const auto number = static_cast<int>(spaces_.size());
  qv_source_space source;
  source.id = id_of(element);
  if (!source.id.empty() && !space_by_id_.try_emplace(source.id, number).second)
    context_.fail(element, "a second Space bears this id", "give each Space an id of its own");
  source.storey_id = std::string(element.get_attribute("buildingStoreyIdRef"));
  source.condition = std::string(element.get_attribute("conditionType"));
  space_record s;
  s.element = element;
  s.name = source.id;
  s.campus = campus;
  s.building = building;
  for (const qv_xml_element child : element) {
    const std::string_view name = child.get_name();
    if (name == "Name") {
      if (!child.get_text().empty()) s.name = std::string(child.get_text());
    } else if (name == "Area") {
      source.stated_area = context_.read_measure(child, qv_quantity::area);
    } else if (name == "Volume") {
      source.stated_volume = context_.read_measure(child, qv_quantity::volume);
    } else if (name == "ShellGeometry") {
      read_shell(child, source);
    } else if (name == "SpaceBoundary") {
      ++source.boundary_count;
    }
  }
  s.entry =
      context_.add_entry(kind::space, element, outcome::kept, "", source.stated_area.value_or(0));
  if (source.id.empty())
    context_.get_ledger().amend(s.entry, outcome::repaired, "it has no id: no surface can name it");
  if (building < 0)
    context_.get_ledger().amend(s.entry, outcome::repaired, "it stands in no Building");
  context_.get_model().spaces.push_back(std::move(source));
  spaces_.push_back(std::move(s));
}

void qv_gbxml_site::read_shell(qv_xml_element element, qv_source_space& source) {
  const double factor = context_.get_unit(element, qv_quantity::length).factor;
  qv_loop points;
  for (const qv_xml_element shell : element) {
    if (!shell.is("ClosedShell")) continue;
    double volume = 0;
    qv_double3 apex;
    bool has_apex = false;
    for (const qv_xml_element loop : shell) {
      if (!loop.is("PolyLoop")) continue;
      points.clear();
      if (const std::string fault = qv_read_poly_loop(loop, factor, points); !fault.empty()) {
        context_.warn(element, "a loop of its shell was left out: " + fault);
        continue;
      }
      if (points.empty()) continue;
      if (!has_apex) apex = points[0];
      has_apex = true;
      volume += qv_cone_volume(points, apex);
    }
    if (has_apex) source.shell_volume = source.shell_volume.value_or(0) + volume;
  }
}

void qv_gbxml_site::read_zone(qv_xml_element element) {
  zone_record z;
  z.element = element;
  z.id = id_of(element);
  z.name = name_or(element, z.id);
  z.entry = context_.add_entry(kind::zone, element, outcome::kept, "");
  if (!z.id.empty() && !zone_by_id_.try_emplace(z.id, static_cast<int>(zones_.size())).second)
    context_.fail(element, "a second Zone bears this id", "give each Zone an id of its own");
  context_.get_model().zones.push_back(
      {z.id, z.name,
       context_.read_measure(element.get_child("DesignHeatT"), qv_quantity::temperature),
       context_.read_measure(element.get_child("DesignCoolT"), qv_quantity::temperature)});
  zones_.push_back(std::move(z));
}

// Zones stand behind the spaces in most files.
void qv_gbxml_site::link_zones() {
  qv_import_ledger& ledger = context_.get_ledger();
  std::vector<char> named(zones_.size(), 0);
  for (space_record& s : spaces_) {
    const std::string_view reference = s.element.get_attribute("zoneIdRef");
    if (const auto found = zone_by_id_.find(reference); found != zone_by_id_.end()) {
      s.zone = found->second;
      named[static_cast<std::size_t>(s.zone)] = 1;
    } else if (!reference.empty()) {
      ledger.amend(s.entry, outcome::repaired,
                   "Zone " + qv_quoted_id(reference) + " is not in the file");
    }
    ledger.amend(s.entry, outcome::kept, s.zone < 0 ? "in no zone of the file" : "");
  }
  for (std::size_t i = 0; i < zones_.size(); ++i)
    ledger.amend(zones_[i].entry, outcome::kept, named[i] != 0 ? "" : "no space names it");
}

int qv_gbxml_site::find_space(std::string_view id) const {
  const auto found = space_by_id_.find(id);
  return found == space_by_id_.end() ? -1 : found->second;
}

void qv_gbxml_site::check_boundaries(
    const std::unordered_map<std::string_view, int>& surface_by_id) {
  for (std::size_t i = 0; i < spaces_.size(); ++i) {
    qv_source_space& source = context_.get_model().spaces[i];
    if (source.boundary_count == 0) continue;
    for (const qv_xml_element child : spaces_[i].element)
      if (child.is("SpaceBoundary") && !surface_by_id.contains(child.get_attribute("surfaceIdRef")))
        ++source.dangling_boundary_count;
  }
}

void qv_gbxml_site::make_items(qv_item* root_item, qv_unique_ids& ids) {
  for (campus_record& c : campuses_) {
    c.item = new qvi_campus;
    c.item->set_name(c.name);
    ids.give(c.item, c.id);
    root_item->add_child(c.item, -1);
  }
  for (building_record& b : buildings_) {
    b.item = new qvi_building;
    b.item->set_name(b.name);
    ids.give(b.item, b.id);
    get_campus(b.campus)->add_child(b.item, -1);
  }
  const auto home = [this](const space_record& s) -> qv_item* { return get_campus(s.campus); };
  for (const space_record& s : spaces_)
    if (s.zone >= 0)
      get_zone_item(zones_[static_cast<std::size_t>(s.zone)], s.building, home(s), ids);
  for (zone_record& z : zones_)
    if (z.items.empty() && !campuses_.empty())
      get_zone_item(z, buildings_.size() == 1 ? 0 : -1, get_campus(0), ids);
  for (std::size_t i = 0; i < spaces_.size(); ++i) {
    const space_record& s = spaces_[i];
    qv_source_space& source = context_.get_model().spaces[i];
    auto* item = new qvi_space;
    item->set_name(s.name);
    ids.give(item, source.id);
    item->set_source_type("gbXML Space");
    if (!source.id.empty()) item->set_source_ids({source.id});
    if (s.building >= 0) item->set_building(buildings_[static_cast<std::size_t>(s.building)].item);
    if (s.zone >= 0) {
      item->set_zone(
          get_zone_item(zones_[static_cast<std::size_t>(s.zone)], s.building, home(s), ids));
    } else if (s.building >= 0) {
      item->set_zone(get_rest_zone(s.building, home(s)));
    }
    home(s)->add_child(item, -1);
    source.item = item;
  }
}

// A zone whose spaces stand in several buildings becomes one item in each of them.
qvi_zone* qv_gbxml_site::get_zone_item(zone_record& z, int building, qv_item* parent,
                                       qv_unique_ids& ids) {
  qvi_zone*& item = z.items[building];
  if (item != nullptr) return item;
  if (z.items.size() > 1)
    context_.get_ledger().amend(z.entry, outcome::repaired,
                                "its spaces stand in several buildings: a zone in each");
  item = new qvi_zone;
  item->set_name(z.name);
  ids.give(item, z.id);
  if (building >= 0) item->set_building(buildings_[static_cast<std::size_t>(building)].item);
  parent->add_child(item, -1);
  return item;
}

qvi_zone* qv_gbxml_site::get_rest_zone(int building, qv_item* parent) {
  qvi_zone*& item = buildings_[static_cast<std::size_t>(building)].rest;
  if (item != nullptr) return item;
  item = new qvi_zone;
  item->set_name("Zone " + std::to_string(building + 1) + "-1");
  item->set_building(buildings_[static_cast<std::size_t>(building)].item);
  parent->add_child(item, -1);
  return item;
}

void qv_gbxml_site::visit(
    const std::function<void(qv_xml_element, qvi_space&, const qv_source_space&)>& use,
    const std::function<void(qv_xml_element, qvi_zone&)>& use_zone) {
  for (std::size_t i = 0; i < spaces_.size(); ++i) {
    const qv_source_space& source = context_.get_model().spaces[i];
    use(spaces_[i].element, *source.item, source);
  }
  for (const zone_record& z : zones_) {
    for (const auto& [building, item] : z.items) use_zone(z.element, *item);
  }
}

qvi_campus* qv_gbxml_site::get_campus(int number) const {
  return campuses_[static_cast<std::size_t>(number)].item;
}

}  // namespace qv
