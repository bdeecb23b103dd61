#include "core/light/qv_receiver.h"

#include "core/items/qv_scene.h"
#include "core/light/qvi_sun.h"

namespace qv {

namespace {

qvi_sun* first_sun(qv_scene* scene) {
  if (scene == nullptr) return nullptr;
  const qv_list<qv_item*>& suns = scene->get_items("sun");
  return suns.is_empty() ? nullptr : static_cast<qvi_sun*>(suns[0]);
}

}  // namespace

qv_receiver::qv_receiver(qv_scene* scene, qvi_sun* sun, const std::string& layer_name)
    : scene_(scene), sun_(sun != nullptr ? sun : first_sun(scene)), layer_name_(layer_name) {}

qv_receiver::~qv_receiver() = default;

}  // namespace qv
