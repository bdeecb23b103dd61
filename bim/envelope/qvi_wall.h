#pragma once

#include <memory>

#include "bim/envelope/qv_solar_income.h"
#include "core/items/qv_accessors.h"

namespace qv {

class qv_polygon;
class qvi_composition;
class qvi_limit_condition;
class qvi_opening;
class qvi_polygon;
class qvi_space;

/// One plane element of the envelope or of a partition: a façade, an inner wall, a floor, a roof.
/// Item type "wall".
///
/// It joins at most two spaces and carries a layered composition. Its geometry lies in polygons
/// that it refers to: a face on either side, each also as a "pierced" one with the openings cut
/// out. A thin wall has a single "face" instead.
class qvi_wall : public qv_item, public qv_solar_income {
  QV_ITEM_CLASS(qvi_wall, qv_item, "wall")

  enum class wall_type : int { wall, floor, roof };
  QV_ENUM_LIST(wall_type, "wall", "floor", "roof")

  /// What a wall separates.
  enum class contact_type : int {
    outer_wall,          ///< wall between one space and outside
    inner_wall,          ///< wall between two spaces
    lower_floor,         ///< floor of a space over ground or outside
    intermediate_floor,  ///< floor between two spaces
    roof,                ///< roof or ceiling of a space under outside
    outside_wall,        ///< wall that bounds no space
    outside_slab         ///< slab that bounds no space
  };
  QV_ENUM_LIST(contact_type, "outer_wall", "inner_wall", "lower_floor", "intermediate_floor",
               "roof", "outside_wall", "outside_slab")

  /// Identifiers of the imported elements that the wall was built from.
  QV_PARAM_LIST(std::string, source_ids)
  QV_PARAM_ENUM(wall_type, wall_type, wall_type::floor)
  /// Derived by `precompute`.
  QV_PARAM_ENUM(contact_type, contact_type, contact_type::lower_floor)
  /// The space on the side opposite to the normal.
  QV_PARAM_ITEM(qvi_space, space_0)
  /// The space on the other side; null for an element of the envelope.
  QV_PARAM_ITEM(qvi_space, space_1)
  QV_PARAM_ITEM(qvi_composition, composition)
  /// The composition is laid from the other side.
  QV_PARAM(bool, composition_reverse, false)
  /// What lies on the far side where that is neither outside air nor a modelled space.
  QV_PARAM_ITEM(qvi_limit_condition, limit_condition)
  /// Outward normal, of length 1.
  QV_PARAM(qv_3dvector, normal, qv_3dvector(0.0f, 0.0f, 1.0f))
  /// The single face of a thin wall.
  QV_PARAM_ITEM(qvi_polygon, face)
  QV_PARAM_ITEM(qvi_polygon, pierced_face)
  /// The face on the side of space 0.
  QV_PARAM_ITEM(qvi_polygon, face_0)
  QV_PARAM_ITEM(qvi_polygon, pierced_face_0)
  /// The face on the side of space 1 or of the outside.
  QV_PARAM_ITEM(qvi_polygon, face_1)
  QV_PARAM_ITEM(qvi_polygon, pierced_face_1)

  // Found by the last `precompute`; empty and 0 before. Items that left the scene since stay listed
  // until the next one.

  /// The openings that name this wall, in scene order.
  const qv_list<qvi_opening*>& get_openings() const { return record_->openings; }
  /// Area through which the wall loses heat, openings cut out, m²; 0 without a face.
  float get_loss_area() const { return record_->loss_area; }

  /// Finds the openings, puts a lone space first, completes missing faces by their pierced twins
  /// and the other way round, derives the contact type and the loss surface, and gives the pierced
  /// faces the composition's first layer as front shader and its last as back shader. A contact
  /// type set by hand stays until the wall type or a face changes.
  void precompute() override;

  /// False between two spaces (inner wall, intermediate floor).
  bool can_have_limit_condition() const;
  /// True when the far side is the outside air: at most one space and no limit condition.
  bool is_exterior() const;
  /// Share of the sun on the outer surface that gets inside as heat: U × absorptance / 25, the
  /// absorptance being that of the outside face's front shader for solar radiation and 25
  /// W/(m²·K) the exchange coefficient of an outer surface. 0 without a composition, an outside
  /// face or its shader, and where nothing is absorbed.
  float get_solar_factor() const;

  /// Computes the sun that its outside face receives on the side of its normal; results in the
  /// getters of `qv_solar_income`. Rays, depth and error bounds as `qv_receiver` has them;
  /// Monte-Carlo rays are `direct_rays` × `montecarlo_factor`. Without a sun in the scene nothing
  /// changes. May run for several items at once.
  void compute_solar_income(int direct_rays, int montecarlo_factor, int ray_depth,
                            float direct_error, float diffuse_error);

  /// Turns the normal of a floor downwards and that of a roof or outside slab upwards, precomputing
  /// first, then `propagate_normal_orientation`.
  void check_normal_orientation();
  /// Turns the faces and the openings that look against the wall's normal. An opening at a right
  /// angle to the wall is turned too.
  void propagate_normal_orientation();

  /// Gives the wall one generated window that covers `ratio` of its face: the face's contour shrunk
  /// about the mean of its vertices, until the area is right to 0.1 % of the face. Both faces are
  /// pierced by it, the plain ones hidden. A window generated before is replaced; a ratio below
  /// 0.001 removes it and shows the plain faces again. `notify` false makes all changes in silence.
  ///
  /// Returns false, and does nothing, for a wall outside a scene, with a face missing or of other
  /// than one contour, a ratio above 0.99, and a wall with an opening that was not generated.
  bool create_opening(float ratio, bool notify);

  /// True when the wall is to be highlighted while `item` is selected: the wall, its composition, a
  /// matter of its layers, its limit condition. False for null.
  bool is_selection_related(qv_item* item) const;

  /// Type, spaces, composition and its sense, as a table in French.
  std::string get_html_information() override;

  /// Draws the wall's highlight when `selection` and the wall has to do with what is selected.
  void render_opengl(bool selection) override;
  /// Contour, normal and faces, seen through everything, in `color` without its alpha.
  void render_opengl_transparent(const qv_color& color);
  /// The single face, or else the two faces; the pierced ones where there are.
  qv_list<qvi_polygon*> get_drawn_faces() const;
  /// Contours of these faces.
  void draw_contour_raw();
  /// Their surfaces.
  void draw_face_raw();

 private:
  void find_openings();
  void normalise_spaces();
  void complete_faces();
  void update_contact_type();
  void update_loss_area();
  void update_face_shaders();
  void remove_piercing();
  void add_generated_opening(const qv_polygon& contour);

  // A copy-constructed wall shares its source's record.
  struct record {
    unsigned int date = 0;  // of the last complete computation; 0 never
    // Of the loss polygon. The polygon itself is the region that its face had at that time; models
    // have very many walls and nothing else of it is asked for, so it is not kept.
    float loss_area = 0;
    qv_list<qvi_opening*> openings;
  };
  std::shared_ptr<record> record_ = std::make_shared<record>();
};

}  // namespace qv
