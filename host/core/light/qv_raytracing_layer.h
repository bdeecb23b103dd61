#pragma once

#include <memory>
#include <string>
#include <unordered_set>

#include "core/items/qv_scene_observer.h"
#include "core/light/qv_raytracer.h"

namespace qv {

/// Keeps a scene's ray tracer over one layer in step with the scene: the meshes whose ray-tracing
/// layers contain the layer's name, in scene order.
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
  std::string layer_name_;
  std::unordered_set<qvi_mesh*> members_;
  bool membership_changed_ = true;
  std::unique_ptr<qv_raytracer> raytracer_;
};

}  // namespace qv
