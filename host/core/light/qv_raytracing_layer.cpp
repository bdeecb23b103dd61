#include "core/light/qv_raytracing_layer.h"

#include <array>
#include <string_view>
#include <utility>

#include "core/items/qv_scene.h"
#include "core/shapes/qvi_mesh_instance.h"

namespace qv {

namespace {

constexpr std::string_view layers_name = "raytracing_layers";
constexpr std::string_view instance_mesh_name = "mesh";
/// The parameters that shape meshes, polygons, solids and instances.
constexpr std::array<std::string_view, 8> geometry_names = {
    "vertices",   "triangles",    "contour_sizes",    "normal",
    "face_sizes", "face_normals", instance_mesh_name, "matrix"};

bool is_geometry(std::string_view name) {
  for (std::string_view geometry_name : geometry_names)
    if (name == geometry_name) return true;
  return false;
}

qvi_mesh* as_mesh(qv_item* item) {
  return item->has_type("mesh") ? static_cast<qvi_mesh*>(item) : nullptr;
}

bool is_instance(const qvi_mesh* mesh) {
  return mesh->has_type("mesh_instance");
}

}  // namespace

/// The layer's tracer: its update asks the layer, which knows what changed.
class qv_raytracing_layer::tracer : public qv_raytracer {
 public:
  explicit tracer(qv_raytracing_layer* layer) : qv_raytracer(qv_list<qvi_mesh*>()), layer_(layer) {}
  void update() override {
    layer_->refresh_members();
    layer_->refresh_geometry();
  }

 private:
  qv_raytracing_layer* layer_;
};

qv_raytracing_layer::qv_raytracing_layer(const std::string& layer_name)
    : layer_name_(layer_name), tracer_(std::make_unique<tracer>(this)) {}

qv_raytracing_layer::~qv_raytracing_layer() = default;

qv_raytracer* qv_raytracing_layer::get_raytracer() {
  refresh_members();
  return tracer_.get();
}

void qv_raytracing_layer::item_arrived(qv_item* item) {
  qvi_mesh* mesh = as_mesh(item);
  if (mesh == nullptr) return;
  if (instances_of_.count(mesh) != 0) instances_changed_ = true;
  if (belongs(mesh)) enter(mesh);
}

void qv_raytracing_layer::item_left(qv_item* item) {
  qvi_mesh* mesh = as_mesh(item);
  if (mesh == nullptr) return;
  if (instances_of_.count(mesh) != 0) instances_changed_ = true;
  leave(mesh);
}

void qv_raytracing_layer::item_changed(qv_item* item, const std::string& name) {
  if (name == layers_name) {
    qvi_mesh* mesh = as_mesh(item);
    if (mesh == nullptr) return;
    if (belongs(mesh)) {
      enter(mesh);
    } else {
      leave(mesh);
    }
  } else if (is_geometry(name)) {
    qvi_mesh* mesh = as_mesh(item);
    if (mesh == nullptr) return;
    note_changed(mesh);
    const auto shown = instances_of_.find(mesh);
    if (shown == instances_of_.end()) return;
    for (qvi_mesh* instance : shown->second) note_changed(instance);
    if (name == instance_mesh_name) instances_changed_ = true;
  }
}

bool qv_raytracing_layer::belongs(const qvi_mesh* mesh) const {
  return mesh->get_raytracing_layers().contains(layer_name_);
}

void qv_raytracing_layer::enter(qvi_mesh* mesh) {
  const auto [entry, fresh] = members_.try_emplace(mesh);
  if (!fresh) return;
  membership_changed_ = true;
  // The tracer may hold what a mesh was before it left and came back.
  mark_changed(*entry);
  entry->second.is_instance = is_instance(mesh);
  if (!entry->second.is_instance) return;
  instances_.insert(mesh);
  instances_changed_ = true;
}

void qv_raytracing_layer::leave(qvi_mesh* mesh) {
  if (members_.erase(mesh) == 0) return;
  membership_changed_ = true;
  if (instances_.erase(mesh) != 0) instances_changed_ = true;
}

void qv_raytracing_layer::note_changed(qvi_mesh* mesh) {
  const auto entry = members_.find(mesh);
  if (entry == members_.end()) return;
  mark_changed(*entry);
  if (entry->second.is_instance) instances_changed_ = true;
}

void qv_raytracing_layer::mark_changed(member_map::value_type& entry) {
  if (entry.second.changed) return;
  // Meshes that come and go between two updates would fill the list.
  if (changed_.size() > 2 * members_.size())
    for (qvi_mesh* mesh : take_changed()) mark_changed(*members_.find(mesh));
  entry.second.changed = true;
  changed_.push_back(entry.first);
}

// The members among the changed meshes, which are unchanged from now on.
qv_list<qvi_mesh*> qv_raytracing_layer::take_changed() {
  qv_list<qvi_mesh*> changed;
  changed.reserve(static_cast<int>(changed_.size()));
  for (qvi_mesh* mesh : std::exchange(changed_, {})) {
    const auto entry = members_.find(mesh);
    if (entry != members_.end() && std::exchange(entry->second.changed, false))
      changed.append(mesh);
  }
  return changed;
}

/// Finds out again what the instances show; all of them may show something else now.
void qv_raytracing_layer::follow_instances() {
  instances_changed_ = false;
  instances_of_.clear();
  untold_.clear();
  for (qvi_mesh* member : instances_) {
    mark_changed(*members_.find(member));
    bool told = true;
    std::unordered_set<const qvi_mesh*> chain = {member};
    const qvi_mesh* link = member;
    while (is_instance(link)) {
      link = static_cast<const qvi_mesh_instance*>(link)->get_mesh();
      if (link == nullptr || !chain.insert(link).second) break;
      instances_of_[link].push_back(member);
      told = told && link->get_scene() == member->get_scene();
    }
    if (!told) untold_.push_back(member);
  }
}

void qv_raytracing_layer::refresh_members() {
  if (!membership_changed_) return;
  membership_changed_ = false;
  qv_list<qvi_mesh*> meshes;
  if (!members_.empty()) {
    meshes.reserve(static_cast<int>(members_.size()));
    for (qv_item* item : members_.begin()->first->get_scene()->get_items("mesh")) {
      auto* mesh = static_cast<qvi_mesh*>(item);
      if (members_.count(mesh) != 0) meshes.append(mesh);
    }
  }
  tracer_->set_meshes(meshes);
  set_pending_ = true;
}

void qv_raytracing_layer::refresh_geometry() {
  if (instances_changed_) follow_instances();
  if (changed_.empty() && untold_.empty() && !set_pending_) return;
  qv_list<qvi_mesh*> changed = take_changed();
  for (qvi_mesh* mesh : untold_) changed.append(mesh);
  tracer_->update_changed(changed);
  set_pending_ = false;
}

}  // namespace qv
