#pragma once

#include <memory>
#include <vector>

#include "bim/envelope/qv_solar_income.h"
#include "bim/envelope/qvi_opening_part.h"
#include "core/items/qv_accessors.h"
#include "utilities/qv_polygon.h"

namespace qv {

class qvi_glazing;
class qvi_opening_composition;
class qvi_polygon;
class qvi_wall;

/// A window, a door, a curtain wall or a roof light in a wall. Item type "opening". Its geometry
/// lies in the meshes below it, whose front shaders tell panes, panels and frames apart.
class qvi_opening : public qv_item, public qv_solar_income {
  QV_ITEM_CLASS(qvi_opening, qv_item, "opening")

  enum class opening_type : int { window, door, curtain_wall, skylight };
  QV_ENUM_LIST(opening_type, "window", "door", "curtain_wall", "skylight")

  /// Identifiers of the imported elements that the opening was built from.
  QV_PARAM_LIST(std::string, source_ids)
  QV_PARAM_ENUM(opening_type, opening_type, opening_type::window)
  /// The wall that holds the opening.
  QV_PARAM_ITEM(qvi_wall, wall)
  /// The catalogue entry of the opening.
  QV_PARAM_ITEM(qvi_opening_composition, composition)
  /// Outward normal, of length 1.
  QV_PARAM(qv_3dvector, normal, qv_3dvector(0.0f, 0.0f, 1.0f))

  // Imposed by the user; negative when the computed value counts.
  /// W/(m²·K).
  QV_PARAM(float, forced_U, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_solar_factor, -1.0f)
  /// 0 … 1.
  QV_PARAM(float, forced_visible_transmittance, -1.0f)

  /// Brings areas, U, solar factor and light transmittance up to date.
  void precompute() override;

  // Each is the opening's forced value when that is not negative; else its composition's forced
  // value when that is not negative; else what the last `precompute` found: the mean over the parts
  // weighted by their areas (not finite for an opening without area).
  /// W/(m²·K).
  float get_U() const;
  /// 0 … 1.
  float get_solar_factor() const;
  /// 0 … 1.
  float get_visible_transmittance() const;

  /// Splits the opening into glazing, panels and frame: the polygons below it, by their front
  /// shader, in one plane through its outermost vertices. A panel hides the glazing behind it, a
  /// frame hides both. An opening made of one polygon whose source is an imported object takes
  /// panes and panels from that object's meshes instead, clipped to the polygon.
  void compute_geometry();
  /// Gives a glazing to the meshes that have none of their own, then weighs the parts. The glazing
  /// is the composition's; without one, the first glazing among the scene's children, made when
  /// there is none.
  void compute_physical();

  /// Computes the sun that its full face receives on the side of its normal; results in the getters
  /// of `qv_solar_income`. Rays, depth and error bounds as `qv_receiver` has them; Monte-Carlo rays
  /// are `direct_rays` × `montecarlo_factor`. Without a sun in the scene nothing changes. May run
  /// for several items at once.
  void compute_solar_income(int direct_rays, int montecarlo_factor, int ray_depth,
                            float direct_error, float diffuse_error);

  std::string get_html_information() override;
  /// As highlight (`selection`): the opening in yellow under the mouse, in red while it or its
  /// composition is selected.
  void render_opengl(bool selection) override;
  void render_opengl_raw() override;

  // The opening in the plane of its outermost points, as found by the last `precompute`; empty and
  // 0 before. What lies behind a frame or a panel counts once.

  /// m².
  float get_glazing_area() const { return record_->glazing_area; }
  float get_opaque_area() const { return record_->opaque_area; }
  float get_frame_area() const { return record_->frame_area; }
  float get_full_area() const { return record_->full_area; }
  const qv_polygon& get_glazing_face() const { return record_->glazing_face; }
  const qv_polygon& get_opaque_face() const { return record_->opaque_face; }
  const qv_polygon& get_frame_face() const { return record_->frame_face; }
  const qv_polygon& get_full_face() const { return record_->full_face; }
  /// One for each front shader among the meshes, in the order in which the meshes bring them.
  const std::vector<qvi_opening_part>& get_parts() const { return record_->parts; }

 private:
  /// The imported object that the opening was made from, or null.
  const qv_item* get_imported_source() const;
  void compute_geometry_from_bim_object(qvi_polygon& mesh_of_outline);
  void compute_geometry_from_meshes(const qv_list<qvi_mesh*>& meshes);
  qvi_opening_part& get_part_of(qvi_opening_shader* shader);
  void scale_parts_to_visible_areas();
  bool is_physically_up_to_date() const;
  qvi_glazing* choose_glazing();
  bool hand_out_glazing();
  float get_effective(float own, float of_composition, float computed) const;
  bool is_highlighted_by_mouse() const;
  bool is_highlighted_by_selection() const;

  // A copy-constructed opening shares its source's record.
  struct record {
    unsigned int physical_date = 0;  // 0 never
    unsigned int geometry_date = 0;  // 0 never
    std::vector<qvi_opening_part> parts;
    // What the geometry was computed from; compared, never read.
    qv_list<qvi_mesh*> meshes;
    const qv_item* source = nullptr;  // the imported object, where its meshes counted
    float U = 0;
    float solar_factor = 0;
    float visible_transmittance = 0;
    float glazing_area = 0;
    float opaque_area = 0;
    float frame_area = 0;
    float full_area = 0;
    qv_polygon glazing_face;
    qv_polygon opaque_face;
    qv_polygon frame_face;
    qv_polygon full_face;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
