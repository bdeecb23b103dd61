#include "bim/imported/qvi_bim_object.h"

#include <algorithm>
#include <cmath>
#include <memory>
#include <vector>

#include "core/shapes/qvi_mesh.h"
#include "utilities/qv_date.h"

namespace qv {

namespace {

constexpr float same_direction_cosine = 0.99f;

}  // namespace

QV_ITEM_CLASS_IMPLEMENTATION(qvi_bim_object)

void qvi_bim_object::precompute() {
  qv_item::precompute();
  if (record_->date != 0 && record_->date >= get_visibility_date()) return;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) {
    const qv_list<std::string>& layers = mesh->get_raytracing_layers();
    if (layers.contains("unpierced")) continue;
    qv_list<std::string> changed;
    for (const std::string& layer : layers) {
      if (get_visibility() || layer != "picking") changed.append(layer);
    }
    if (get_visibility() && !changed.contains("picking")) changed.append("picking");
    mesh->set_raytracing_layers(changed);
  }
  record_->date = qv_get_date();
}

void qvi_bim_object::render_opengl(bool selection) {
  if (get_visibility()) qv_item::render_opengl(selection);
}

qv_3dvector qvi_bim_object::find_main_normal() {
  if (record_->main_normal_date != 0 && record_->main_normal_date >= get_date()) {
    return record_->main_normal;
  }
  struct direction_group {
    qv_3dvector direction;
    float area;
  };
  std::vector<direction_group> groups;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) {
    for (qv_polygon* raw : mesh->build_raw_polygons()) {
      const std::unique_ptr<qv_polygon> owned(raw);
      const qv_3dvector normal = raw->get_normal();
      const auto known =
          std::find_if(groups.begin(), groups.end(), [&normal](const direction_group& group) {
            return std::fabs(normal.dot(group.direction)) >= same_direction_cosine;
          });
      if (known == groups.end()) {
        groups.push_back({normal, raw->get_area()});
      } else {
        known->area += raw->get_area();
      }
    }
  }
  const auto largest = std::max_element(
      groups.begin(), groups.end(),
      [](const direction_group& a, const direction_group& b) { return a.area < b.area; });
  record_->main_normal = largest == groups.end() ? qv_3dvector() : largest->direction;
  record_->main_normal_date = qv_get_date();
  return record_->main_normal;
}

qv_list<qvi_mesh*> qvi_bim_object::get_layer_meshes(const std::string& layer) {
  qv_list<qvi_mesh*> meshes;
  for (qvi_mesh* mesh : qv_collect<qvi_mesh>(this, "mesh")) {
    if (mesh->get_raytracing_layers().contains(layer)) meshes.append(mesh);
  }
  return meshes;
}

qvi_bim_object* qvi_bim_object::root_ascendant(qv_item* item) {
  qvi_bim_object* topmost = nullptr;
  for (; item != nullptr; item = item->get_parent()) {
    if (item->has_type("bim_object")) topmost = static_cast<qvi_bim_object*>(item);
  }
  return topmost;
}

bool qvi_bim_object::is_in_envelop(qvi_mesh* mesh) {
  const qvi_bim_object* const object = root_ascendant(mesh);
  if (object == nullptr) return false;
  switch (object->get_bim_type()) {
    case bim_type::wall:
    case bim_type::slab:
    case bim_type::roof:
    case bim_type::curtain_wall:
      return true;
    default:
      return false;
  }
}

}  // namespace qv
