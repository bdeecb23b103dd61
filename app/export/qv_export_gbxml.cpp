#include "app/export/qv_export_gbxml.h"

#include <algorithm>
#include <limits>
#include <unordered_map>
#include <utility>

#include "app/export/qv_export_constructions.h"
#include "app/export/qv_export_glazing.h"
#include "app/export/qv_export_usages.h"
#include "app/export/qv_xml_writer.h"
#include "app/readers/qv_gbxml_opening_type.h"
#include "app/readers/qv_gbxml_surface_type.h"
#include "app/report/qv_report_value.h"
#include "app/study/qv_study_gather.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_building.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/imported/qvi_bim_object.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_limit_condition.h"
#include "bim/project/qvi_bim_root.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

using contour = std::vector<qv_3dvector>;

qv_3dvector area_vector(const contour& points) {
  qv_3dvector sum;
  for (std::size_t i = 2; i < points.size(); ++i)
    sum += (points[i - 1] - points[0]).cross(points[i] - points[0]);
  return sum;
}

// Leads `outer` to the hole and back along a seam between the two corners that lie nearest.
void lead_to_hole(contour& outer, const contour& hole) {
  std::size_t from = 0;
  std::size_t to = 0;
  float nearest = std::numeric_limits<float>::infinity();
  for (std::size_t i = 0; i < outer.size(); ++i)
    for (std::size_t k = 0; k < hole.size(); ++k)
      if (const float distance = (outer[i] - hole[k]).length(); distance < nearest) {
        nearest = distance;
        from = i;
        to = k;
      }
  contour way(hole.begin() + static_cast<std::ptrdiff_t>(to), hole.end());
  way.insert(way.end(), hole.begin(), hole.begin() + static_cast<std::ptrdiff_t>(to) + 1);
  way.push_back(outer[from]);
  outer.insert(outer.begin() + static_cast<std::ptrdiff_t>(from) + 1, way.begin(), way.end());
}

// The face as contours without holes. An outer contour runs counter-clockwise about the normal and
// its holes, which run clockwise, follow it.
std::vector<contour> list_contours(const qvi_polygon& face) {
  std::vector<contour> contours;
  const qv_list<qv_3dvector>& vertices = face.get_vertices();
  int first = 0;
  for (const unsigned int size : face.get_contour_sizes()) {
    const int last = std::min(first + static_cast<int>(size), vertices.get_count());
    contour points(vertices.begin() + first, vertices.begin() + last);
    first = last;
    if (points.size() < 3) continue;
    if (!contours.empty() && area_vector(points).dot(face.get_normal()) < 0) {
      lead_to_hole(contours.back(), points);
    } else {
      contours.push_back(std::move(points));
    }
  }
  return contours;
}

std::vector<contour> list_triangles(qvi_mesh& mesh) {
  std::vector<contour> triangles;
  const qv_triangulation all = mesh.copy_triangles();
  for (int i = 0; i + 2 < all.triangles.get_count(); i += 3) {
    const contour points = {all.vertices[all.triangles[i]], all.vertices[all.triangles[i + 1]],
                            all.vertices[all.triangles[i + 2]]};
    if (area_vector(points).length() > 0) triangles.push_back(points);
  }
  return triangles;
}

const qvi_polygon* find_face(const qvi_wall& wall) {
  for (const qvi_polygon* face : {wall.get_face_0(), wall.get_face_1(), wall.get_face()})
    if (face != nullptr) return face;
  return nullptr;
}

// Light passes where nothing is: such a face is in no layer of the simulation.
bool is_air(const qvi_polygon& face) {
  return !face.get_raytracing_layers().contains("simulation");
}

// The word that made the object, "Shade" for one that comes from elsewhere.
const char* choose_object_type(const qvi_bim_object& object) {
  bool guessed = false;
  const qv_surface_type type = qv_find_surface_type(object.get_source_type(), guessed);
  const bool known = !guessed && qv_is_object_type(type);
  return qv_get_surface_type_name(known ? type : qv_surface_type::shade);
}

// The word from which the reader makes the same type of wall.
qv_surface_type choose_surface_type(const qvi_wall& wall, const qvi_polygon& face) {
  using type = qv_surface_type;
  const int spaces =
      (wall.get_space_0() != nullptr ? 1 : 0) + (wall.get_space_1() != nullptr ? 1 : 0);
  const auto up = static_cast<double>(wall.get_normal().z);
  const bool soil = wall.get_limit_condition() != nullptr &&
                    wall.get_limit_condition()->get_typology() ==
                        qvi_limit_condition::limit_condition_typology::soil;
  std::vector<type> candidates;
  if (is_air(wall.get_pierced_face_0() != nullptr ? *wall.get_pierced_face_0() : face))
    candidates.push_back(type::air);
  if (spaces == 0) candidates.push_back(type::shade);
  switch (wall.get_wall_type()) {
    case qvi_wall::wall_type::wall:
      candidates.push_back(spaces == 2 ? type::interior_wall
                           : soil      ? type::underground_wall
                                       : type::exterior_wall);
      break;
    case qvi_wall::wall_type::floor:
      candidates.push_back(spaces == 2 ? type::interior_floor
                           : soil      ? type::slab_on_grade
                                       : type::exposed_floor);
      break;
    case qvi_wall::wall_type::roof:
      candidates.push_back(type::roof);
      break;
  }
  for (const type candidate : candidates)
    if (qv_choose_wall_type(candidate, spaces, up).type == wall.get_wall_type()) return candidate;
  return candidates.back();
}

// The word from which the reader makes the same type of opening with the same filling.
qv_gbxml_opening_type choose_opening_type(const qvi_opening& opening, const qvi_polygon& outline) {
  using type = qv_gbxml_opening_type;
  switch (opening.get_opening_type()) {
    case qvi_opening::opening_type::skylight:
      return type::fixed_skylight;
    case qvi_opening::opening_type::door:
      if (is_air(outline)) return type::air;
      return opening.get_opaque_area() > 0 ? type::non_sliding_door : type::sliding_door;
    case qvi_opening::opening_type::window:
    case qvi_opening::opening_type::curtain_wall:
      break;
  }
  return type::fixed_window;
}

class exporter {
 public:
  exporter(const qv_gbxml_model& model, const qv_study_results& study)
      : model_(model), scene_(*model.scene), constructions_(scene_), usages_(model) {
    for (const qv_source_space& space : model.spaces) sources_[space.item] = &space;
    const qv_list<qv_item*>& openings = scene_.get_items("opening");
    for (int i = 0; i < openings.get_count(); ++i)
      openings_[openings[i]] = &study.openings.at(static_cast<std::size_t>(i));
  }

  std::string run() {
    xml_.begin("gbXML", {{"xmlns", "http://www.gbxml.org/schema"},
                         {"version", "6.01"},
                         {"temperatureUnit", "C"},
                         {"lengthUnit", "Meters"},
                         {"areaUnit", "SquareMeters"},
                         {"volumeUnit", "CubicMeters"},
                         {"useSIUnitsForResults", "true"}});
    write_campuses();
    constructions_.write(xml_);
    write_window_types();
    usages_.write_schedules(xml_);
    write_zones();
    xml_.end();
    return xml_.text();
  }

 private:
  // Items without a campus of their own stand in the first one.
  bool stands_in(const qv_item* item, const qvi_campus* campus, bool first) const {
    for (const qv_item* above = item->get_parent(); above != nullptr; above = above->get_parent()) {
      if (above == campus) return true;
      if (above->has_type("campus")) return false;
    }
    return first;
  }

  void write_campuses() {
    const qv_list<qv_item*> campuses = scene_.get_items("campus");
    for (int i = 0; i < std::max(campuses.get_count(), 1); ++i) {
      auto* const campus = campuses.is_empty() ? nullptr : static_cast<qvi_campus*>(campuses[i]);
      xml_.begin("Campus", {{"id", campus == nullptr ? "campus" : campus->get_unique_id()}});
      if (campus != nullptr) xml_.leaf("Name", campus->get_name());
      if (static_cast<std::size_t>(i) < model_.locations.size())
        write_location(model_.locations[static_cast<std::size_t>(i)]);
      for (qv_item* building : scene_.get_items("building"))
        if (home_of(static_cast<const qvi_building*>(building)) == campus ||
            (i == 0 && home_of(static_cast<const qvi_building*>(building)) == nullptr))
          write_building(static_cast<qvi_building&>(*building));
      for (qv_item* item : scene_.get_items("space")) {
        auto& space = static_cast<qvi_space&>(*item);
        if (space.get_building() == nullptr && stands_in(item, campus, i == 0)) write_space(space);
      }
      for (qv_item* item : scene_.get_items("wall"))
        if (stands_in(item, campus, i == 0)) write_wall(static_cast<qvi_wall&>(*item));
      for (qv_item* item : scene_.get_items("bim_object"))
        if (stands_in(item, campus, i == 0)) write_object(static_cast<qvi_bim_object&>(*item));
      xml_.end();
    }
  }

  // The campus of a building that was grouped from spaces is theirs.
  const qv_item* home_of(const qvi_building* building) const {
    const qv_item* const start =
        building->get_parent() != nullptr && building->get_parent()->has_type("campus") ? building
        : building->get_spaces().is_empty()
            ? nullptr
            : static_cast<const qv_item*>(building->get_spaces()[0]);
    const qv_item* above = start == nullptr ? nullptr : start->get_parent();
    while (above != nullptr && !above->has_type("campus")) above = above->get_parent();
    return above;
  }

  void write_location(const qv_site_location& site) {
    xml_.begin("Location");
    const auto number = [this](const char* name, const std::optional<double>& value) {
      if (value) xml_.leaf(name, qv_number_text(*value));
    };
    number("Longitude", site.longitude);
    number("Latitude", site.latitude);
    number("Elevation", site.elevation);
    number("CADModelAzimuth", site.model_azimuth);
    if (!site.name.empty()) xml_.leaf("Name", site.name);
    xml_.end();
  }

  void write_building(qvi_building& building) {
    const std::string id = building.get_unique_id();
    xml_.begin("Building", {{"id", id}, {"buildingType", "Unknown"}});
    xml_.leaf("Name", building.get_name());
    for (const qv_storey_level& storey : model_.storeys) {
      if (storey.building_id != id && !(storeys_left_ && model_.building_count == 0)) continue;
      xml_.begin("BuildingStorey", {{"id", storey.id}});
      if (!storey.name.empty()) xml_.leaf("Name", storey.name);
      if (storey.level) xml_.leaf("Level", qv_number_text(*storey.level));
      xml_.end();
    }
    storeys_left_ = false;
    for (qv_item* item : scene_.get_items("space")) {
      auto& space = static_cast<qvi_space&>(*item);
      if (space.get_building() == &building) write_space(space);
    }
    xml_.end();
  }

  void write_space(qvi_space& space) {
    const auto found = sources_.find(&space);
    const qv_source_space* const source = found == sources_.end() ? nullptr : found->second;
    const qv_space_schedules schedules = usages_.get_schedules(space);
    xml_.begin("Space",
               {{"id", space.get_unique_id()},
                {"zoneIdRef", space.get_zone() == nullptr ? "" : space.get_zone()->get_unique_id()},
                {"lightScheduleIdRef", schedules.light},
                {"equipmentScheduleIdRef", schedules.equipment},
                {"peopleScheduleIdRef", schedules.people},
                {"conditionType", source == nullptr ? "" : source->condition},
                {"buildingStoreyIdRef", source == nullptr ? "" : source->storey_id}});
    xml_.leaf("Name", space.get_name());
    if (source != nullptr && source->stated_area)
      xml_.leaf("Area", qv_number_text(*source->stated_area));
    if (source != nullptr && source->stated_volume)
      xml_.leaf("Volume", qv_number_text(*source->stated_volume));
    usages_.write(space, source, xml_);
    xml_.end();
  }

  // A wall that shows an object's face is written with the object.
  void write_wall(qvi_wall& wall) {
    const qvi_polygon* const face = find_face(wall);
    if (face == nullptr || qvi_bim_object::root_ascendant(wall.get_face_0()) != nullptr) return;
    const char* const type = qv_get_surface_type_name(choose_surface_type(wall, *face));
    int count = 0;
    for (const contour& points : list_contours(*face)) {
      begin_surface(wall, ++count, type, constructions_.get_id(wall));
      for (const qvi_space* space : {wall.get_space_0(), wall.get_space_1()}) {
        if (space == nullptr) continue;
        xml_.begin("AdjacentSpaceId", {{"spaceIdRef", space->get_unique_id()}});
        xml_.end();
      }
      write_geometry(points, wall.get_normal());
      if (count == 1)
        for (qvi_opening* opening : wall.get_openings()) write_opening(*opening);
      xml_.end();
    }
  }

  // The flat faces of an object, or the triangles of what has none, bound nothing.
  void write_object(qvi_bim_object& object) {
    const char* const type = choose_object_type(object);
    int count = 0;
    for (qvi_mesh* mesh : qv_collect<qvi_mesh>(&object, "mesh")) {
      if (mesh->get_raytracing_layers().contains("footprint")) continue;
      const qv_list<qv_item*> walls = scene_.get_referrers("wall", "face_0", mesh);
      const qvi_wall* wall = walls.is_empty() ? nullptr : static_cast<qvi_wall*>(walls[0]);
      bool first = true;
      for (const contour& points : mesh->has_type("polygon")
                                       ? list_contours(static_cast<qvi_polygon&>(*mesh))
                                       : list_triangles(*mesh)) {
        begin_surface(object, ++count, type, wall == nullptr ? "" : constructions_.get_id(*wall));
        write_geometry(points, area_vector(points));
        if (first && wall != nullptr)
          for (qvi_opening* opening : wall->get_openings()) write_opening(*opening);
        first = false;
        xml_.end();
      }
    }
  }

  // The surface of an item; `part` counts from 1 where it has several.
  void begin_surface(qv_item& item, int part, const char* type, const std::string& construction) {
    const std::string number = part == 1 ? "" : "-part-" + std::to_string(part);
    xml_.begin("Surface", {{"id", item.get_unique_id() + number},
                           {"surfaceType", type},
                           {"constructionIdRef", construction}});
    xml_.leaf("Name", item.get_name());
  }

  void write_opening(qvi_opening& opening) {
    for (const qvi_polygon* outline : qv_collect<qvi_polygon>(&opening, "polygon")) {
      const qv_gbxml_opening_type type = choose_opening_type(opening, *outline);
      const std::vector<contour> contours = list_contours(*outline);
      for (std::size_t i = 0; i < contours.size(); ++i) {
        const std::string number = i == 0 ? "" : "-part-" + std::to_string(i + 1);
        const bool air = type == qv_gbxml_opening_type::air;
        xml_.begin("Opening", {{"id", opening.get_unique_id() + number},
                               {"openingType", qv_get_opening_type_name(type)},
                               {"windowTypeIdRef", air ? "" : window_type_of(opening)}});
        xml_.leaf("Name", opening.get_name());
        write_geometry(contours[i], opening.get_normal());
        if (!air && layers_of(opening) == nullptr) write_figures(*openings_.at(&opening));
        xml_.end();
      }
    }
  }

  // The glazing whose layers say all of the opening; null where figures were imposed, or where its
  // layers are such as the format cannot say.
  const qvi_glazing* layers_of(const qvi_opening& opening) const {
    const qvi_opening_composition* const composition = opening.get_composition();
    if (composition == nullptr || openings_.at(&opening)->opaque_area > 0) return nullptr;
    for (const float imposed :
         {opening.get_forced_U(), opening.get_forced_solar_factor(),
          opening.get_forced_visible_transmittance(), composition->get_forced_U(),
          composition->get_forced_solar_factor(), composition->get_forced_visible_transmittance()})
      if (imposed >= 0) return nullptr;
    qvi_glazing* const glazing = composition->get_glazing();
    return glazing != nullptr && qv_has_gbxml_layers(*glazing) ? glazing : nullptr;
  }

  // What the opening lets through, whatever it is made of.
  void write_figures(const qv_study_opening& opening) {
    if (opening.u) xml_.leaf("U-value", qv_number_text(*opening.u), {{"unit", "WPerSquareMeterK"}});
    if (opening.solar_factor)
      xml_.leaf("SolarHeatGainCoeff", qv_number_text(*opening.solar_factor),
                {{"solarIncidentAngle", "0"}, {"unit", "Fraction"}});
    if (opening.visible_transmittance)
      xml_.leaf("Transmittance", qv_number_text(*opening.visible_transmittance),
                {{"type", "Visible"}, {"unit", "Fraction"}});
  }

  // Openings of the same composition share a WindowType, which bears the name and the layers of the
  // glazing; without layers those that have the same figures too. That of a panel says no more than
  // its name: with three figures it would be taken for a pane.
  std::string window_type_of(const qvi_opening& opening) {
    const qv_study_opening& known = *openings_.at(&opening);
    if (opening.get_composition() == nullptr) return {};
    const auto number = [](const std::optional<float>& value) {
      return value ? qv_number_text(*value) : std::string("-");
    };
    const bool opaque = known.opaque_area > 0;
    const qvi_glazing* const layers = layers_of(opening);
    std::string key = opening.get_composition()->get_unique_id();
    if (layers == nullptr)
      key += (opaque ? " panel " : " pane ") + number(known.u) + ' ' + number(known.solar_factor) +
             ' ' + number(known.visible_transmittance);
    const auto next = "window-" + std::to_string(window_types_.size() + 1);
    const auto [slot, fresh] = window_type_ids_.try_emplace(key, next);
    if (fresh) window_types_.push_back({&known, opening.get_composition()->get_name(), layers});
    return slot->second;
  }

  void write_window_types() {
    for (std::size_t i = 0; i < window_types_.size(); ++i) {
      const window_type& type = window_types_[i];
      const std::string id = "window-" + std::to_string(i + 1);
      xml_.begin("WindowType", {{"id", id}});
      xml_.leaf("Name", type.name);
      if (type.layers != nullptr) {
        qv_write_gbxml_layers(*type.layers, id, xml_);
      } else if (type.first->opaque_area <= 0) {
        write_figures(*type.first);
      }
      xml_.end();
    }
  }

  void write_geometry(const contour& points, const qv_3dvector& normal) {
    xml_.begin("PlanarGeometry");
    write_loop(points, area_vector(points).dot(normal) < 0);
    xml_.end();
  }

  void write_loop(const contour& points, bool backwards) {
    xml_.begin("PolyLoop");
    const auto write = [this](const qv_3dvector& p) {
      xml_.begin("CartesianPoint");
      const float coordinates[] = {p.x, p.y, p.z};
      for (std::size_t k = 0; k < 3; ++k) {
        xml_.leaf("Coordinate", model_.origin[k] == 0
                                    ? qv_number_text(coordinates[k])
                                    : qv_number_text(coordinates[k] + model_.origin[k]));
      }
      xml_.end();
    };
    if (backwards) {
      std::for_each(points.rbegin(), points.rend(), write);
    } else {
      std::for_each(points.begin(), points.end(), write);
    }
    xml_.end();
  }

  void write_zones() {
    for (qv_item* item : scene_.get_items("zone")) {
      const auto* const zone = static_cast<const qvi_zone*>(item);
      xml_.begin("Zone", {{"id", zone->get_unique_id()},
                          {"heatSchedIdRef", usages_.get_heating_schedule(*zone)},
                          {"coolSchedIdRef", usages_.get_cooling_schedule(*zone)},
                          {"outsideAirSchedIdRef", usages_.get_air_schedule(*zone)}});
      xml_.leaf("Name", zone->get_name());
      const auto source =
          std::find_if(model_.zones.begin(), model_.zones.end(),
                       [zone](const qv_source_zone& z) { return z.id == zone->get_unique_id(); });
      if (source != model_.zones.end()) {
        if (source->heating_temperature)
          xml_.leaf("DesignHeatT", qv_number_text(*source->heating_temperature), {{"unit", "C"}});
        if (source->cooling_temperature)
          xml_.leaf("DesignCoolT", qv_number_text(*source->cooling_temperature), {{"unit", "C"}});
      }
      usages_.write(*zone, xml_);
      xml_.end();
    }
  }

  struct window_type {
    const qv_study_opening* first;  // of those that have it
    std::string name;
    const qvi_glazing* layers;
  };

  const qv_gbxml_model& model_;
  qv_scene& scene_;
  qv_construction_export constructions_;
  qv_usage_export usages_;
  qv_xml_writer xml_;
  std::unordered_map<const qv_item*, const qv_source_space*> sources_;
  std::unordered_map<const qv_item*, const qv_study_opening*> openings_;
  std::unordered_map<std::string, std::string> window_type_ids_;
  std::vector<window_type> window_types_;
  bool storeys_left_ = true;
};

}  // namespace

std::string qv_export_gbxml(const qv_gbxml_model& model) {
  if (model.scene->get_items("wall").is_empty())
    throw qv_input_error(qv_input_error::kind::bad_input, {model.root->get_name(), 0, {}, {}},
                         "holds no surface that bounds anything, which gbXML cannot do without",
                         "choose another format");
  const qv_study_results study = qv_gather_study(model);
  return exporter(model, study).run();
}

}  // namespace qv
