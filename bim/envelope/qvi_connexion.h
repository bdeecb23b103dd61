#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_wall;

/// A thermal bridge: the segment along which two or more walls meet. Item type "connexion".
class qvi_connexion : public qv_item {
  QV_ITEM_CLASS(qvi_connexion, qv_item, "connexion")

  /// What meets along the segment; it is the key to the project's ψ values.
  enum class connexion_type : int {
    no_loss,
    unknown,
    facade_angle_outer,
    facade_angle_inner,
    facade_inner_wall,
    roof_roof,
    roof_roof_inner_wall,
    roof_facade,
    roof_facade_intermediate,
    roof_upper_facade,
    facade_intermediate,
    facade_balcony_intermediate,
    lower_floor_soil_facade,
    lower_floor_crawlspace_facade,
    lower_floor_air_facade,
    lower_floor_soil_inner_wall,
    lower_floor_crawlspace_inner_wall,
    lower_floor_air_inner_wall
  };
  QV_ENUM_LIST(connexion_type, "no_loss", "unknown", "facade_angle_outer", "facade_angle_inner",
               "facade_inner_wall", "roof_roof", "roof_roof_inner_wall", "roof_facade",
               "roof_facade_intermediate", "roof_upper_facade", "facade_intermediate",
               "facade_balcony_intermediate", "lower_floor_soil_facade",
               "lower_floor_crawlspace_facade", "lower_floor_air_facade",
               "lower_floor_soil_inner_wall", "lower_floor_crawlspace_inner_wall",
               "lower_floor_air_inner_wall")

  /// Ends of the segment, m.
  QV_PARAM(qv_3dvector, point_0, qv_3dvector(0.0f, 0.0f, 0.0f))
  QV_PARAM(qv_3dvector, point_1, qv_3dvector(0.0f, 0.0f, 0.0f))
  /// The walls that meet.
  QV_PARAM_ITEM_LIST(qvi_wall, walls)
  /// The direction in which each of "walls" leaves the segment. Models store it as
  /// "contour_vertices": the one parameter whose accessors bear another name.
  QV_PARAM_ACCESSORS((qv_list<qv_3dvector>), wall_directions)
 private:
  std::uint8_t wall_directions_param_ =
      qv_declare_empty<qv_list<qv_3dvector>>(this, [] { return "contour_vertices"; });

 public:
  /// Linear thermal transmittance ψ, W/(m·K).
  QV_PARAM(float, psi, 0.0f)
  QV_PARAM_ENUM(connexion_type, connexion_type, connexion_type::unknown)

  // Found by the last `precompute`; 0 and false before.

  /// Length of the segment, m.
  float get_length() const { return record_->length; }
  /// No wall that meets here is a floor or a roof.
  bool is_vertical() const { return record_->vertical; }
  /// The junction loses heat.
  bool is_lossy() const { return record_->lossy; }

  /// Measures the segment and derives the type from the walls that meet: their contact types, their
  /// directions, and the limit condition of the first lower floor among them. The type is `unknown`
  /// where no rule applies.
  void precompute() override;
  /// Draws nothing: who shows connexions calls `render_opengl_raw`.
  void render_opengl(bool selection) override;
  /// The segment as a line, in the current colour and width. Nothing when an end is not finite.
  void render_opengl_raw() override;

 private:
  bool is_up_to_date() const;

  // A copy-constructed connexion shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last computation; 0 never
    float length = 0;
    qv_3dvector direction;  // from point 0 to point 1, of length 1
    bool vertical = false;
    bool lossy = false;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
