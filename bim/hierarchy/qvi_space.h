#pragma once

#include <memory>

#include "bim/hierarchy/qvi_xspace.h"

namespace qv {

class qvi_building;
class qvi_campus;
class qvi_polygon;
class qvi_usage_internal_gains;
class qvi_usage_lighting;
class qvi_wall;
class qvi_zone;

/// A room. Item type "space", a kind of "xspace". A new one is inside ("outside" is false).
///
/// Walls name the two spaces that they separate; a space does not list its walls but finds them.
class qvi_space : public qvi_xspace {
  QV_ITEM_CLASS(qvi_space, qvi_xspace, "space")

  QV_PARAM_ITEM(qvi_building, building)
  QV_PARAM_ITEM(qvi_zone, zone)
  /// Storey, counted from 0 at the bottom; −1 when not assigned.
  QV_PARAM(int, floor, -1)
  /// Floor area imposed by the user, m²; negative when the measured one counts.
  QV_PARAM(float, forced_area, -1.0f)
  /// Volume imposed by the user, m³; negative when the measured one counts.
  QV_PARAM(float, forced_volume, -1.0f)
  QV_PARAM_ITEM(qvi_usage_lighting, usage_lighting)
  QV_PARAM_ITEM(qvi_usage_internal_gains, usage_internal_gains)

  // Walls found by the last `precompute`, in scene order; empty before. Those that left the scene
  // since stay listed until the next one.

  /// Every wall that bounds the space.
  const qv_list<qvi_wall*>& get_walls() const { return record_->walls; }
  /// Vertical walls with a space on both sides.
  const qv_list<qvi_wall*>& get_inner_walls() const { return record_->inner_walls; }
  /// Vertical walls with a space on one side only.
  const qv_list<qvi_wall*>& get_outer_walls() const { return record_->outer_walls; }
  /// Horizontal walls under the space.
  const qv_list<qvi_wall*>& get_floors() const { return record_->floors; }
  /// Horizontal walls and roofs over the space.
  const qv_list<qvi_wall*>& get_ceilings() const { return record_->ceilings; }

  /// Floor area in m²: the forced one when it is not negative, else the measured one, which counts
  /// where the free height exceeds 1.8 m.
  float get_area() const;
  /// Volume in m³: the forced one when it is not negative, else the measured one.
  float get_volume() const;
  /// The site of the space's building, or null.
  qvi_campus* get_campus() const;

  /// Prepares the meshes below the space (orientation, layers) when they changed; when a wall of
  /// the scene changed since the last time, precomputes the walls, sorts those of this space,
  /// copies their faces as its shell unless it has polygons of its own, and measures area and
  /// volume: from 100 points on each floor a ray goes up to the scene's surfaces of layer "bim".
  void precompute() override;
  /// Measures the space inside its own shell: from a grid of 5 cm on each shell polygon that looks
  /// down, rays go up to the shell. `area` counts where they run farther than `min_height` m.
  /// Polygons of spaces below this one are left out. Nothing is kept.
  void compute_size_from_shell_geometry(float min_height, float& area, float& volume);

  /// Bounds of the space's walls and of the polygons below it, kept until the space changes.
  qv_box get_local_bounding_box() override;
  /// The bounds of its walls and polygons as they are now, found each time; those of
  /// `get_local_bounding_box` are kept until the space itself changes.
  qv_box find_bounds();
  /// When `draw` is true, the spaces directly below, then this one when the mouse is over it or it,
  /// its zone, its building or its campus is selected.
  void render_opengl(bool draw) override;
  /// The shell's contours and surfaces, or else those of the walls' faces on this side, seen
  /// through everything, in `color` without its alpha.
  void render_opengl_transparent(const qv_color& color);

 private:
  void precompute_geometry();
  void take_building_of_zone();
  qv_list<qvi_wall*> find_walls() const;
  void sort_walls();
  void make_shell_polygons();
  void measure();
  qv_list<qvi_polygon*> get_drawn_faces() const;

  // A copy-constructed space shares its source's record.
  struct record {
    unsigned int date = 0;           // of the last computation; 0 never
    unsigned int geometry_date = 0;  // of the last preparation of the meshes; 0 never
    float area = 0;
    float volume = 0;
    qv_box bounding_box;
    unsigned int bounding_box_date = 0;  // 0 never
    qv_list<qvi_wall*> walls;
    qv_list<qvi_wall*> inner_walls;
    qv_list<qvi_wall*> outer_walls;
    qv_list<qvi_wall*> floors;
    qv_list<qvi_wall*> ceilings;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
