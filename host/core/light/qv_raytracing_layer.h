#pragma once

#include <memory>
#include <string>
#include <unordered_map>
#include <unordered_set>
#include <vector>

#include "core/items/qv_scene_observer.h"
#include "core/light/qv_raytracer.h"

namespace qv {

/// Keeps a scene's ray tracer over one layer in step with the scene: the meshes whose ray-tracing
/// layers contain the layer's name, in scene order.
///
/// The notifications tell which members came, went or changed, so that an update of an unchanged
/// layer costs nothing, however much else happens in the scene between two updates. An instance
/// also follows the mesh that it shows, in the layer or not. Only instances of meshes that are in
/// no scene, of which nobody tells, are asked at each update.
class qv_raytracing_layer : public qv_scene_observer {
 public:
  explicit qv_raytracing_layer(const std::string& layer_name);
  ~qv_raytracing_layer() override;

  /// The tracer, with the layer's present meshes; call `update()` on it before tracing.
  qv_raytracer* get_raytracer();

  void item_arrived(qv_item* item) override;
  void item_left(qv_item* item) override;
  void item_changed(qv_item* item, const std::string& name) override;

 private:
  class tracer;
  struct membership {
    bool changed = false;  // and listed in `changed_`
    bool is_instance = false;
  };
  using member_map = std::unordered_map<qvi_mesh*, membership>;

  bool belongs(const qvi_mesh* mesh) const;
  void enter(qvi_mesh* mesh);
  void leave(qvi_mesh* mesh);
  void note_changed(qvi_mesh* mesh);
  void mark_changed(member_map::value_type& entry);
  qv_list<qvi_mesh*> take_changed();
  void follow_instances();
  void refresh_members();
  void refresh_geometry();

  std::string layer_name_;
  member_map members_;
  bool membership_changed_ = true;           // since the tracer was given its set
  bool set_pending_ = false;                 // the tracer was given a set and not yet updated
  std::unordered_set<qvi_mesh*> instances_;  // members that show another mesh
  bool instances_changed_ = false;
  // Instances that show a mesh, directly or through other instances, by that mesh.
  std::unordered_map<const qvi_mesh*, std::vector<qvi_mesh*>> instances_of_;
  std::vector<qvi_mesh*> untold_;   // instances of meshes that are in no scene
  std::vector<qvi_mesh*> changed_;  // since the last update; some are no members any more
  std::unique_ptr<tracer> tracer_;
};

}  // namespace qv
