#pragma once

#include <string>

namespace qv {

class qv_item;

/// Keeps something derived from a scene in step with it: an index, a ray tracer, a flag that says
/// what must be computed again. The scene tells it of each item that arrives, leaves or changes.
class qv_scene_observer {
 public:
  virtual ~qv_scene_observer() = default;
  /// `item` is now in the scene; called for each item of an added subtree, parents first.
  virtual void item_arrived(qv_item* item) = 0;
  /// `item` is about to be out of the scene; called for each item of a removed subtree.
  virtual void item_left(qv_item* item) = 0;
  /// Parameter `name` of `item` changed.
  virtual void item_changed(qv_item* item, const std::string& name) = 0;
};

}  // namespace qv
