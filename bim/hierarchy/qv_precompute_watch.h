#pragma once

#include <cstdint>
#include <vector>

#include "core/items/qv_scene_observer.h"

namespace qv {

class qv_scene;

/// Knows whether anything happened to a scene since its walls, spaces or zones were last
/// precomputed together.
///
/// A space precomputes every wall of the scene before it reads its own, a building every space and
/// every zone. Done literally this costs spaces × walls calls, nearly all of which return at once.
/// Each kind has a flag here instead, raised by whatever may change the outcome of a member's
/// `precompute`; the members are gone through while the flag is up and skipped while it is down,
/// when every one of those calls would find nothing to do. The flag is lowered before its members
/// are gone through, so that what they change themselves is followed up by the next caller.
class qv_precompute_watch : public qv_scene_observer {
 public:
  /// Precomputes every wall of `scene`, in scene order, unless nothing that a wall reads changed
  /// since the last time: walls, their openings, compositions, shaders and faces.
  static void precompute_walls(qv_scene* scene);
  /// Precomputes every space of `scene`, in scene order, unless since the last time no wall
  /// changed, no space came and nothing moved in the meshes below a space.
  static void precompute_spaces(qv_scene* scene);
  /// Precomputes every zone of `scene`, in scene order, unless since the last time no zone came
  /// and nothing that a zone sums up changed.
  static void precompute_zones(qv_scene* scene);

  void item_arrived(qv_item* item) override;
  void item_left(qv_item* item) override;
  void item_changed(qv_item* item, const std::string& name) override;

 private:
  std::uint8_t get_kinds(const qv_item* item);
  void note_membership(qv_item* item);

  bool walls_changed_ = true;
  bool spaces_changed_ = true;
  bool zones_changed_ = true;
  std::vector<std::uint8_t> kinds_by_type_;  // by type index; 0 not asked yet
};

}  // namespace qv
