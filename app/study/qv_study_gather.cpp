#include "app/study/qv_study_gather.h"

#include <cmath>
#include <numbers>
#include <unordered_map>
#include <unordered_set>

#include "app/junctions/qv_bridge_values.h"
#include "app/study/qv_study_gather_openings.h"
#include "app/study/qv_study_gather_usages.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/imported/qvi_bim_object.h"
#include "bim/materials/qvi_composition.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/materials/qvi_material.h"
#include "core/shapes/qvi_mesh.h"

namespace qv {
namespace {

// Horizontal part of a unit normal under which a wall is level: 0.06° from the vertical, less than
// what rounding of coordinates to millimetres turns a floor of one metre by.
constexpr double largest_level_part = 1e-3;

// Total resistance up to which a composition has no U value of its own, m².K/W.
constexpr float smallest_resistance = 0.001f;

// Gives each item an id that no other item of its kind has.
class id_maker {
 public:
  explicit id_maker(const char* kind) : kind_(kind) {}

  const std::string& make(const qv_item* item, const qv_list<std::string>& source_ids) {
    ++rank_;
    std::string id = source_ids.is_empty() ? std::string() : source_ids[0];
    if (id.empty()) id = kind_ + "-" + std::to_string(rank_);
    const std::string base = id;
    for (int copy = 2; !taken_.insert(id).second; ++copy) id = base + "#" + std::to_string(copy);
    return ids_[item] = id;
  }

  std::optional<std::string> find(const qv_item* item) const {
    const auto found = ids_.find(item);
    if (found == ids_.end()) return std::nullopt;
    return found->second;
  }

 private:
  std::string kind_;
  int rank_ = 0;
  std::unordered_set<std::string> taken_;
  std::unordered_map<const qv_item*, std::string> ids_;
};

std::optional<std::string> name_of(const qv_item* item) {
  if (item == nullptr) return std::nullopt;
  return item->get_name();
}

// A physical quantity whose 0 stands for "not given".
std::optional<float> known(float value) {
  if (!std::isfinite(value) || value <= 0.0f) return std::nullopt;
  return value;
}

template <class T>
std::string label(const qv_list<std::string>& labels, T value) {
  const int index = static_cast<int>(value);
  return index >= 0 && index < labels.get_count() ? labels[index] : std::string();
}

qv_study_layer gather_layer(qvi_composition& composition, int index) {
  qvi_matter* matter = composition.get_layers()[index];
  qv_study_layer layer;
  if (matter == nullptr) return layer;
  layer.name = matter->get_name();
  const float thickness = composition.get_layer_thickness(index);
  layer.thickness = known(thickness);
  layer.conductivity = known(matter->get_conductivity());
  if (matter->has_type("material")) {
    layer.resistance = known(static_cast<qvi_material*>(matter)->get_resistance());
  } else if (layer.conductivity.has_value()) {
    layer.resistance = known(thickness / *layer.conductivity);
  }
  return layer;
}

std::optional<float> u_of(qvi_composition* composition) {
  if (composition == nullptr || composition->get_layers().is_empty()) return std::nullopt;
  const float resistance = composition->get_resistance();
  if (!std::isfinite(resistance) || resistance <= smallest_resistance) return std::nullopt;
  return composition->get_U();
}

qv_study_composition gather_composition(qvi_composition& composition) {
  qv_study_composition result;
  result.name = composition.get_name();
  result.typology =
      label(qvi_composition::get_composition_typology_list(), composition.get_typology());
  result.u = u_of(&composition);
  result.resistance = known(composition.get_resistance());
  result.thickness = known(composition.get_thickness());
  for (int index = 0; index < composition.get_layers().get_count(); ++index) {
    result.layers.push_back(gather_layer(composition, index));
  }
  return result;
}

qv_study_building gather_building(const qvi_building& building, const id_maker& space_ids) {
  qv_study_building result;
  result.name = building.get_name();
  result.status = label(qvi_building::get_building_status_list(), building.get_building_status());
  // A building without spaces has one level of no meaning.
  if (!building.get_spaces().is_empty()) {
    const qv_list<float>& floors = building.get_floors();
    result.floors.assign(floors.begin(), floors.end());
  }
  result.space_count = static_cast<std::size_t>(building.get_spaces().get_count());
  result.area = building.get_area();
  result.volume = building.get_volume();
  for (const qvi_zone* zone : building.get_zones()) {
    qv_study_zone& gathered = result.zones.emplace_back();
    gathered.name = zone->get_name();
    for (const qvi_space* space : zone->get_spaces()) {
      if (const auto id = space_ids.find(space)) gathered.spaces.push_back(*id);
    }
  }
  return result;
}

qv_study_space gather_space(qvi_space& space, const std::string& id,
                            const qv_source_space* source) {
  qv_study_space result;
  result.id = id;
  result.name = space.get_name();
  result.building = name_of(space.get_building());
  result.zone = name_of(space.get_zone());
  if (space.get_floor() >= 0) result.floor = space.get_floor();
  result.area = space.get_area();
  result.volume = space.get_volume();
  result.html = space.get_html_information();
  if (source != nullptr) {
    result.stated_area = source->stated_area;
    result.stated_volume = source->stated_volume;
  }
  return result;
}

// What lies beyond the wall, as seen from its first space.
std::string boundary_of(const qvi_wall& wall) {
  const qvi_limit_condition* condition = wall.get_limit_condition();
  if (condition == nullptr)
    return wall.get_space_0() != nullptr && wall.get_space_1() != nullptr ? "space" : "outside";
  return label(qvi_limit_condition::get_limit_condition_typology_list(), condition->get_typology());
}

qv_study_wall gather_wall(qvi_wall& wall, const std::string& id, const id_maker& space_ids) {
  qv_study_wall result;
  result.id = id;
  result.name = wall.get_name();
  result.wall_type = label(qvi_wall::get_wall_type_list(), wall.get_wall_type());
  result.contact_type = label(qvi_wall::get_contact_type_list(), wall.get_contact_type());
  result.space_0 = space_ids.find(wall.get_space_0());
  result.space_1 = space_ids.find(wall.get_space_1());
  result.area = wall.get_loss_area();
  const qv_wall_direction direction = qv_direction_of(wall.get_normal());
  result.azimuth = direction.azimuth;
  result.tilt = direction.tilt;
  result.u = u_of(wall.get_composition());
  result.composition = name_of(wall.get_composition());
  result.limit_condition = name_of(wall.get_limit_condition());
  result.boundary = boundary_of(wall);
  if (result.u.has_value()) {
    const bool is_between_rooms = result.space_0.has_value() && result.space_1.has_value();
    const double surfaces = is_between_rooms ? qv_inner_surface_resistances(result.tilt)
                                             : qv_surface_resistances(result.tilt);
    result.u_with_surfaces = static_cast<float>(qv_u_with_surfaces(*result.u, surfaces));
  }
  return result;
}

qv_study_thermal_bridge gather_bridge(const qvi_connexion& connexion, const std::string& id,
                                      const id_maker& wall_ids, bool psi_known) {
  qv_study_thermal_bridge result;
  result.id = id;
  result.type = label(qvi_connexion::get_connexion_type_list(), connexion.get_connexion_type());
  result.length = connexion.get_length();
  if (psi_known) {
    result.psi = connexion.get_psi();
    result.loss = static_cast<double>(result.length) * *result.psi;
  }
  for (const qvi_wall* wall : connexion.get_walls()) {
    if (const auto wall_id = wall_ids.find(wall)) result.walls.push_back(*wall_id);
  }
  const qv_3dvector& a = connexion.get_point_0();
  const qv_3dvector& b = connexion.get_point_1();
  result.point_0 = {a.x, a.y, a.z};
  result.point_1 = {b.x, b.y, b.z};
  result.insulation =
      label(qvi_composition::get_composition_insulation_list(), qv_insulation_at(connexion));
  return result;
}

// The windows and doors of the walls that lose heat; theirs is a U with surface resistances.
std::vector<qv_loss_surface> loss_openings(const qv_study_results& study) {
  std::unordered_map<std::string, const qv_study_wall*> walls;
  for (const qv_study_wall& wall : study.walls) walls[wall.id] = &wall;
  std::vector<qv_loss_surface> surfaces;
  for (const qv_study_opening& opening : study.openings) {
    if (!opening.loses_heat || !opening.wall.has_value()) continue;
    const qv_study_wall& wall = *walls.at(*opening.wall);
    surfaces.push_back(
        {opening.opening_type, wall.boundary, opening.full_area, opening.u, opening.u});
  }
  return surfaces;
}

std::vector<qv_loss_surface> loss_walls(const std::vector<qv_study_wall>& walls) {
  std::vector<qv_loss_surface> surfaces;
  for (const qv_study_wall& wall : walls) {
    if (!wall.is_loss()) continue;
    surfaces.push_back({wall.contact_type, wall.boundary, wall.area, wall.u, wall.u_with_surfaces});
  }
  return surfaces;
}

std::vector<qv_loss_bridge> loss_bridges(const std::vector<qv_study_thermal_bridge>& bridges) {
  std::vector<qv_loss_bridge> result;
  result.reserve(bridges.size());
  for (const auto& bridge : bridges) result.push_back({bridge.type, bridge.length, bridge.psi});
  return result;
}

qv_study_object gather_object(const qvi_bim_object& item, id_maker& ids) {
  qv_study_object object;
  qv_list<std::string> sources;
  if (!item.get_source_id().empty()) sources.append(item.get_source_id());
  object.id = ids.make(&item, sources);
  object.name = item.get_name();
  object.kind = item.get_source_type();
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(&item, "mesh"))
    if (!mesh->get_raytracing_layers().contains("footprint"))
      object.area += static_cast<double>(mesh->get_area());
  return object;
}

}  // namespace

qv_wall_direction qv_direction_of(const qv_3dvector& normal) {
  const double x = normal.x;
  const double y = normal.y;
  const double z = normal.z;
  const double length = std::sqrt(x * x + y * y + z * z);
  if (!std::isfinite(length) || length == 0.0) return {};
  constexpr double degrees = 180.0 / std::numbers::pi;
  const double level_part = std::hypot(x, y) / length;
  qv_wall_direction direction;
  direction.tilt = static_cast<float>(std::atan2(level_part, z / length) * degrees);
  if (level_part > largest_level_part) {
    double azimuth = std::atan2(x, y) * degrees;
    if (azimuth < 0.0) azimuth += 360.0;
    const auto rounded = static_cast<float>(azimuth);
    direction.azimuth = rounded < 360.0f ? rounded : 0.0f;
  }
  return direction;
}

qv_study_location qv_gather_location(const qv_gbxml_model& model) {
  qv_study_location location;
  if (model.locations.empty()) return location;
  const qv_site_location& site = model.locations.front();
  if (!site.name.empty()) location.name = site.name;
  location.latitude = site.latitude;
  location.longitude = site.longitude;
  location.elevation = site.elevation;
  location.azimuth = site.model_azimuth;
  return location;
}

qv_study_ledger qv_gather_ledger(const qv_import_ledger& ledger) {
  qv_study_ledger result;
  for (int what = 0; what < qv_import_ledger::kind_count; ++what) {
    const auto kind = static_cast<qv_import_ledger::kind>(what);
    for (int end = 0; end < qv_import_ledger::outcome_count; ++end) {
      const auto outcome = static_cast<qv_import_ledger::outcome>(end);
      result.tallies.push_back({qv_import_ledger::get_kind_name(kind),
                                qv_import_ledger::get_outcome_name(outcome),
                                ledger.get_count(kind, outcome)});
    }
  }
  const qv_import_ledger::area_balance sums = ledger.get_balance();
  result.balance = {sums.source,  sums.walls,         sums.shading, sums.merged,
                    sums.dropped, sums.is_balanced(), sums.objects};
  const qv_import_ledger::opening_balance openings = ledger.get_opening_balance();
  result.opening_balance = {openings.source,  openings.openings, openings.merged,
                            openings.dropped, openings.cut,      openings.is_balanced()};
  for (const qv_import_ledger::entry& entry : ledger.get_entries()) {
    qv_study_fate& fate = result.fates.emplace_back();
    fate.kind = qv_import_ledger::get_kind_name(entry.what);
    fate.id = entry.id;
    fate.outcome = qv_import_ledger::get_outcome_name(entry.result);
    fate.reason = entry.reason;
    const bool has_area = entry.what == qv_import_ledger::kind::surface ||
                          entry.what == qv_import_ledger::kind::opening || entry.area > 0.0;
    if (has_area) fate.area = entry.area;
    if (entry.what == qv_import_ledger::kind::opening) fate.cut = entry.cut;
  }
  return result;
}

qv_study_results qv_gather_study(const qv_gbxml_model& model, const qv_model_findings& findings) {
  qv_study_results study;
  qv_scene& scene = *model.scene;
  std::unordered_map<const qv_item*, const qv_source_space*> sources;
  for (const qv_source_space& source : model.spaces) {
    sources[source.item] = &source;
    if (source.closed) ++study.closed_space_count;
  }
  id_maker space_ids("space");
  for (qv_item* item : scene.get_items("space")) {
    auto& space = static_cast<qvi_space&>(*item);
    const auto source = sources.find(item);
    study.spaces.push_back(gather_space(space, space_ids.make(item, space.get_source_ids()),
                                        source == sources.end() ? nullptr : source->second));
  }
  for (qv_item* item : scene.get_items("building")) {
    study.buildings.push_back(gather_building(static_cast<qvi_building&>(*item), space_ids));
  }
  id_maker wall_ids("wall");
  for (qv_item* item : scene.get_items("wall")) {
    auto& wall = static_cast<qvi_wall&>(*item);
    study.walls.push_back(gather_wall(wall, wall_ids.make(item, wall.get_source_ids()), space_ids));
  }
  for (qv_item* item : scene.get_items("composition")) {
    study.compositions.push_back(gather_composition(static_cast<qvi_composition&>(*item)));
  }
  id_maker object_ids("object");
  for (qv_item* item : scene.get_items("bim_object")) {
    auto& object = static_cast<qvi_bim_object&>(*item);
    study.objects.push_back(gather_object(object, object_ids));
  }
  study.usages = qv_gather_usages(
      scene, [&space_ids](const qvi_space* space) { return space_ids.find(space); });
  id_maker bridge_ids("bridge");
  for (qv_item* item : scene.get_items("connexion")) {
    const bool psi_known = !findings.bridges_without_psi.contains(item);
    study.thermal_bridges.push_back(gather_bridge(static_cast<qvi_connexion&>(*item),
                                                  bridge_ids.make(item, {}), wall_ids, psi_known));
  }
  study.generation = findings.generation;
  study.changes = findings.changes;
  study.location = qv_gather_location(model);
  constexpr double north = 0.0;  // azimuth of +Y in a model that stands on its site
  id_maker opening_ids("opening");
  qv_gather_openings(
      scene, north, [&wall_ids](const qvi_wall* wall) { return wall_ids.find(wall); },
      [&opening_ids](const qvi_opening& opening) {
        return opening_ids.make(&opening, opening.get_source_ids());
      },
      study);
  qv_gather_facades(scene, north, study);
  study.heat_loss = qv_sum_heat_loss(loss_walls(study.walls), loss_openings(study),
                                     loss_bridges(study.thermal_bridges));
  study.ledger = qv_gather_ledger(model.ledger);
  return study;
}

}  // namespace qv
