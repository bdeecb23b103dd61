#include "app/readers/qv_gbxml_walls.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "app/readers/qv_gbxml_faces.h"
#include "app/readers/qv_unique_ids.h"
#include "bim/hierarchy/qvi_campus.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/imported/qvi_bim_object.h"
#include "core/shapes/qvi_polygon.h"

namespace {

using qv::qv_double3;
using qv::qv_gbxml_surface;
using qv::qv_import_ledger;
using qv::qv_shell_evidence;
using outcome = qv_import_ledger::outcome;
using wall_type = qv::qvi_wall::wall_type;

// Vertical component of a normal from which on the type tells up from down.
constexpr double telling_slope = 0.5;
// Share of the surely judged faces that must have needed turning for the rest to be turned as well.
constexpr double convincing_share = 0.8;

// What speaks for or against a surface's direction.
struct opinion {
  qv_shell_evidence evidence = qv_shell_evidence::none;
  bool right = true;

  void hear(const qv::qv_face_verdict& verdict) {
    if (verdict.evidence <= evidence) return;
    evidence = verdict.evidence;
    right = verdict.right;
  }
};

}  // namespace

namespace qv {

qv_gbxml_walls::qv_gbxml_walls(qv_gbxml_context& context, qv_gbxml_site& site,
                               qv_gbxml_constructions& constructions, qv_gbxml_surfaces& surfaces)
    : context_(context), site_(site), constructions_(constructions), surfaces_(surfaces) {
  collect_faces();
}

void qv_gbxml_walls::collect_faces() {
  spaces_.resize(context_.get_model().spaces.size());
  std::vector<qv_gbxml_surface>& all = surfaces_.get_surfaces();
  for (std::size_t i = 0; i < all.size(); ++i) {
    qv_gbxml_surface& surface = all[i];
    if (!surface.becomes_wall()) continue;
    for (std::size_t k = 0; k < surface.shells.size(); ++k)
      surface.shells[k].part = &surface.polygon.parts[k];
    // A partition within one space opens and closes nothing.
    if (surface.spaces[0] < 0 || surface.spaces[0] == surface.spaces[1]) continue;
    for (std::size_t k = 0; k < surface.shells.size(); ++k) {
      add_face(surface.spaces[0], static_cast<int>(i), static_cast<int>(k), 1);
      if (surface.spaces[1] >= 0)
        add_face(surface.spaces[1], static_cast<int>(i), static_cast<int>(k), -1);
    }
  }
}

void qv_gbxml_walls::add_face(int space, int surface, int part, int side) {
  space_faces& target = spaces_[static_cast<std::size_t>(space)];
  const qv_gbxml_surface& source = surfaces_.get_surfaces()[static_cast<std::size_t>(surface)];
  target.faces.push_back({&source.shells[static_cast<std::size_t>(part)], side});
  target.places.push_back({surface, part});
}

void qv_gbxml_walls::turn_outwards() {
  std::vector<qv_gbxml_surface>& all = surfaces_.get_surfaces();
  std::vector<opinion> opinions(all.size());
  for (std::size_t s = 0; s < spaces_.size(); ++s) {
    space_faces& space = spaces_[s];
    space.verdict = qv_orient_shell(space.faces, surfaces_.get_points());
    for (std::size_t f = 0; f < space.faces.size(); ++f)
      opinions[static_cast<std::size_t>(space.places[f].surface)].hear(space.verdict.faces[f]);
  }
  double sure = 0;
  double wrong = 0;
  for (const opinion& o : opinions) {
    if (o.evidence < qv_shell_evidence::rays) continue;
    ++sure;
    if (!o.right) ++wrong;
  }
  const bool file_is_inverted = wrong > convincing_share * sure;
  for (std::size_t i = 0; i < all.size(); ++i) {
    qv_gbxml_surface& surface = all[i];
    if (!surface.becomes_wall() || surface.spaces[0] < 0 || surface.spaces[0] == surface.spaces[1])
      continue;
    opinion& o = opinions[i];
    if (o.evidence < qv_shell_evidence::rays && surface.get_space_count() == 1) {
      const double slope = surface.polygon.parts[0].normal.z * qv_get_expected_slope(surface.type);
      if (std::abs(slope) >= telling_slope) o = {qv_shell_evidence::patch, slope > 0};
    }
    if (o.evidence == qv_shell_evidence::none) o.right = !file_is_inverted;
    if (!o.right) turn(surface);
  }
  for (space_faces& space : spaces_)
    for (std::size_t f = 0; f < space.faces.size(); ++f)
      if (opinions[static_cast<std::size_t>(space.places[f].surface)].right !=
          space.verdict.faces[f].right)
        space.overruled = true;
}

void qv_gbxml_walls::turn(qv_gbxml_surface& surface) {
  for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) {
    qv_plane_part& part = surface.polygon.parts[k];
    part.normal = part.normal * -1;
    for (qv_loop& contour : part.contours) std::reverse(contour.begin(), contour.end());
    for (std::vector<int>& numbers : surface.shells[k].contours)
      std::reverse(numbers.begin(), numbers.end());
  }
  context_.get_ledger().amend(surface.entry, outcome::repaired,
                              "its polygon faced its first space and was turned");
  context_.get_model().flaws.push_back(
      {qv_source_flaw::kind::polygon_faces_its_space, surface.id, ""});
}

void qv_gbxml_walls::choose_types() {
  qv_import_ledger& ledger = context_.get_ledger();
  for (qv_gbxml_surface& surface : surfaces_.get_surfaces()) {
    if (!surface.is_kept()) continue;
    for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) {
      const qv_wall_choice choice = qv_choose_wall_type(surface.type, surface.get_space_count(),
                                                        surface.polygon.parts[k].normal.z);
      surface.wall_types.push_back(choice.type);
      ledger.amend(surface.entry, choice.reason.empty() ? outcome::kept : outcome::repaired,
                   choice.reason);
      constructions_.count_use(surface.construction, is_composition_reversed(surface, k),
                               static_cast<int>(choice.type));
    }
  }
}

// Layers run from the side that the normal points to; a floor wants them from the bottom.
bool qv_gbxml_walls::is_composition_reversed(const qv_gbxml_surface& surface,
                                             std::size_t part) const {
  return surface.get_space_count() == 2 && surface.wall_types[part] == wall_type::floor &&
         surface.polygon.parts[part].normal.z > 0;
}

void qv_gbxml_walls::measure_spaces() {
  for (std::size_t s = 0; s < spaces_.size(); ++s) {
    qv_source_space& space = context_.get_model().spaces[s];
    space.closed = spaces_[s].overruled
                       ? qv_is_shell_closed(spaces_[s].faces, surfaces_.get_points())
                       : spaces_[s].verdict.closed;
    space.enclosed_volume = qv_shell_volume(spaces_[s].faces);
    space.surface_count = 0;
    space.floor_area = 0;
  }
  for (const qv_gbxml_surface& surface : surfaces_.get_surfaces()) {
    if (!surface.becomes_wall() || surface.spaces[0] < 0) continue;
    const auto count = static_cast<int>(surface.polygon.parts.size());
    const auto at = [this](int number) -> qv_source_space& {
      return context_.get_model().spaces[static_cast<std::size_t>(number)];
    };
    at(surface.spaces[0]).surface_count += count;
    if (surface.spaces[1] >= 0 && surface.spaces[1] != surface.spaces[0])
      at(surface.spaces[1]).surface_count += count;
    for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) {
      if (surface.wall_types[k] != wall_type::floor) continue;
      const qv_plane_part& part = surface.polygon.parts[k];
      const int upper = part.normal.z > 0 ? surface.spaces[1] : surface.spaces[0];
      if (upper >= 0) at(upper).floor_area += part.area;
    }
  }
}

void qv_gbxml_walls::make_items(qv_unique_ids& ids) {
  for (qv_gbxml_surface& surface : surfaces_.get_surfaces()) {
    if (surface.becomes_object()) {
      make_object(surface, ids);
    } else if (surface.is_kept()) {
      for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) make_wall(surface, k, ids);
    }
  }
}

void qv_gbxml_walls::make_object(qv_gbxml_surface& surface, qv_unique_ids& ids) {
  auto* object = new qvi_bim_object;
  object->set_name(surface.name);
  ids.give(object, surface.id);
  object->set_source_id(surface.id);
  object->set_source_type(qv_get_surface_type_name(surface.type));
  object->set_bim_type(qvi_bim_object::bim_type::other);
  object->set_original_bim_type(qvi_bim_object::bim_type::other);
  site_.get_campus(surface.campus)->add_child(object, -1);
  for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) {
    const qv_plane_part& plane = surface.polygon.parts[k];
    qvi_polygon* const face = qv_make_face(plane, true, false);
    object->add_child(face, -1);
    context_.get_ledger().add_object_area(qv_measure_face(*face, plane.normal));
    // Openings need a wall to lie in.
    if (surface.has_openings) make_wall_of(surface, k, face, ids);
  }
}

void qv_gbxml_walls::make_wall(qv_gbxml_surface& surface, std::size_t part, qv_unique_ids& ids) {
  const qv_plane_part& plane = surface.polygon.parts[part];
  const bool bounds = surface.spaces[0] >= 0;
  qvi_polygon* const face = qv_make_face(plane, surface.type != qv_surface_type::air, bounds);
  qvi_wall* const wall = make_wall_of(surface, part, face, ids);
  wall->add_child(face, -1);
  if (surface.type == qv_surface_type::underground_wall)
    context_.get_model().underground_walls.push_back(wall);
  context_.get_ledger().add_wall_area(qv_measure_face(*face, plane.normal), !bounds);
}

qvi_wall* qv_gbxml_walls::make_wall_of(qv_gbxml_surface& surface, std::size_t part,
                                       qvi_polygon* face, qv_unique_ids& ids) {
  auto* wall = new qvi_wall;
  wall->set_name(surface.polygon.parts.size() > 1
                     ? surface.name + " (" + std::to_string(part + 1) + ")"
                     : surface.name);
  ids.give(wall, surface.id);
  qv_list<std::string> sources;
  sources.reserve(1 + static_cast<int>(surface.merged_ids.size()));
  if (!surface.id.empty()) sources.append(surface.id);
  for (const std::string& id : surface.merged_ids) sources.append(id);
  wall->set_source_ids(sources);
  wall->set_wall_type(surface.wall_types[part]);
  wall->set_normal(face->get_normal());
  const auto space = [this](int number) {
    return number < 0 ? nullptr
                      : context_.get_model().spaces[static_cast<std::size_t>(number)].item;
  };
  wall->set_space_0(space(surface.spaces[0]));
  wall->set_space_1(space(surface.spaces[1]));
  wall->set_composition(
      constructions_.get_composition(surface.construction, is_composition_reversed(surface, part)));
  wall->set_face_0(face);
  wall->set_face_1(face);
  site_.get_campus(surface.campus)->add_child(wall, -1);
  surface.walls.push_back(wall);
  return wall;
}

}  // namespace qv
