#include "app/readers/qv_gbxml_openings.h"
#include "app/readers/qv_unique_ids.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/materials/qvi_opening_shader.h"
#include "core/shapes/qvi_polygon.h"

namespace {

// What was traced and drawn as the whole face is now so as what is left of it.
void show_instead(qv::qvi_polygon& face, qv::qvi_polygon& pierced) {
  pierced.set_raytracing_layers(face.get_raytracing_layers());
  pierced.set_rendering_layers(face.get_rendering_layers());
  face.set_raytracing_layers({});
  face.set_rendering_layers({});
  face.set_rendering_visibility(false);
}

// Light passes where nothing is.
qv::qv_list<std::string> without_shadow(const qv::qv_list<std::string>& layers) {
  qv::qv_list<std::string> rest;
  for (const std::string& layer : layers)
    if (layer != "simulation") rest.append(layer);
  return rest;
}

float or_none(const std::optional<double>& value) {
  return value ? static_cast<float>(*value) : -1.0f;
}

}  // namespace

namespace qv {

void qv_gbxml_openings::make_items(qv_unique_ids& ids) {
  // Before the walls' faces are hidden, whose layers the openings take.
  for (const opening& o : openings_)
    for (std::size_t rank = 0; rank < o.pieces.size(); ++rank) make_opening(o, rank, ids);
  for (pierced_face& face : faces_) make_pierced_face(face);
}

void qv_gbxml_openings::make_pierced_face(pierced_face& face) {
  const qv_gbxml_surface& surface =
      surfaces_.get_surfaces()[static_cast<std::size_t>(face.surface)];
  qvi_wall* wall = surface.walls[static_cast<std::size_t>(face.part)];
  auto* pierced = new qvi_polygon;
  pierced->load_from_polygon(&face.rest);
  pierced->set_normal(wall->get_normal());
  show_instead(*wall->get_face_0(), *pierced);
  wall->add_child(pierced, -1);
  wall->set_pierced_face_0(pierced);
  wall->set_pierced_face_1(pierced);
}

void qv_gbxml_openings::make_opening(const opening& o, std::size_t rank, qv_unique_ids& ids) {
  const piece& place = o.pieces[rank];
  const qv_gbxml_surface& surface = surfaces_.get_surfaces()[static_cast<std::size_t>(o.surface)];
  qvi_wall* wall = surface.walls[static_cast<std::size_t>(place.part)];
  const bool several = o.pieces.size() > 1;

  auto* item = new qvi_opening;
  item->set_name(several ? o.name + " (" + std::to_string(rank + 1) + ")" : o.name);
  ids.give(item, o.id);
  qv_list<std::string> sources;
  sources.reserve(1 + static_cast<int>(o.merged_ids.size()));
  if (!o.id.empty()) sources.append(o.id);
  for (const std::string& id : o.merged_ids) sources.append(id);
  item->set_source_ids(sources);
  item->set_opening_type(qv_choose_opening_type(o.type));
  item->set_wall(wall);
  item->set_normal(wall->get_normal());
  item->set_forced_U(or_none(o.filling.own.u));
  item->set_forced_solar_factor(or_none(o.filling.own.solar_factor));
  item->set_forced_visible_transmittance(or_none(o.filling.own.visible_transmittance));

  const qv_gbxml_windows::filling_items filling = windows_.get_items(o.filling);
  item->set_composition(filling.composition);
  auto* outline = new qvi_polygon;
  outline->load_from_polygon(&place.region);
  outline->set_normal(wall->get_normal());
  const qv_list<std::string>& layers = wall->get_face_0()->get_raytracing_layers();
  outline->set_raytracing_layers(o.filling.air ? without_shadow(layers) : layers);
  outline->set_rendering_layers(wall->get_face_0()->get_rendering_layers());
  outline->set_front_shader(filling.shader);
  outline->set_back_shader(filling.shader);
  item->add_child(outline, -1);
  wall->get_parent()->add_child(item, -1);
  context_.get_ledger().add_opening_area(outline->get_area());
}

}  // namespace qv
