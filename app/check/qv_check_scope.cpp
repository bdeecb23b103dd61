#include "app/check/qv_check_scope.h"

#include "app/readers/qv_input_error.h"
#include "core/shapes/qvi_polygon.h"

namespace qv {
namespace {

template <class Item>
std::string source_id(const Item* item) {
  const qv_list<std::string>& ids = item->get_source_ids();
  return ids.is_empty() || ids[0].empty() ? item->get_name() : ids[0];
}

}  // namespace

qv_check_scope::qv_check_scope(const qv_gbxml_model& model) : model_(model) {
  for (qv_item* item : model.scene->get_items("space"))
    spaces_.push_back(static_cast<qvi_space*>(item));
  qv_list<qvi_mesh*> faces;
  for (qv_item* item : model.scene->get_items("wall")) {
    auto* const wall = static_cast<qvi_wall*>(item);
    walls_.push_back(wall);
    if (wall->get_space_0() != nullptr) walls_of_[wall->get_space_0()].push_back(wall);
    if (wall->get_space_1() != nullptr && wall->get_space_1() != wall->get_space_0())
      walls_of_[wall->get_space_1()].push_back(wall);
    for (const std::string& id : wall->get_source_ids()) wall_by_id_.try_emplace(id, wall);
    if (qvi_polygon* const face = get_face(wall)) faces.append(face);
  }
  for (const qv_source_space& source : model.spaces) sources_[source.item] = &source;
  rays_ = std::make_unique<qv_raytracer>(faces);
  rays_->update();
}

const std::vector<qvi_wall*>& qv_check_scope::get_walls_of(const qvi_space* space) const {
  static const std::vector<qvi_wall*> none;
  const auto found = walls_of_.find(space);
  return found == walls_of_.end() ? none : found->second;
}

const qv_source_space* qv_check_scope::find_source(const qvi_space* space) const {
  const auto found = sources_.find(space);
  return found == sources_.end() ? nullptr : found->second;
}

qvi_wall* qv_check_scope::find_wall(const std::string& id) const {
  const auto found = wall_by_id_.find(id);
  return found == wall_by_id_.end() ? nullptr : found->second;
}

qvi_polygon* qv_check_scope::get_face(const qvi_wall* wall) {
  return wall->get_face_0() != nullptr ? wall->get_face_0() : wall->get_face();
}

std::string qv_check_scope::id_of(const qvi_wall* wall) {
  return source_id(wall);
}

std::string qv_check_scope::id_of(const qvi_space* space) {
  return source_id(space);
}

std::string qv_check_scope::quoted(const qvi_space* space) {
  return "Space \"" + qv_one_line(id_of(space)) + "\"";
}

void qv_check_scope::add(const char* code, const char* kind, const std::string& id,
                         const std::string& message) {
  report.findings.push_back({code, kind, id, std::nullopt, message});
}

void qv_check_scope::add(const char* code, const char* kind, const std::string& id,
                         const std::string& message, const qv_3dvector& place) {
  add(code, kind, id, message);
  const double* const origin = model_.origin;
  report.findings.back().place = {static_cast<float>(place.x + origin[0]),
                                  static_cast<float>(place.y + origin[1]),
                                  static_cast<float>(place.z + origin[2])};
}

void qv_check_scope::add(const char* code, const qvi_wall* wall, const std::string& message) {
  qvi_polygon* const face = get_face(wall);
  if (face == nullptr) return add(code, "Surface", id_of(wall), message);
  add(code, "Surface", id_of(wall), message, face->get_local_bounding_box().get_center());
}

}  // namespace qv
