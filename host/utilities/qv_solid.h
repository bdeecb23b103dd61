#pragma once

#include "utilities/qv_list.h"
#include "utilities/qv_polygon.h"

namespace qv {

/// A closed volume given by its plane faces, whose normals point outwards.
class qv_solid {
 public:
  qv_solid();
  qv_solid(const qv_solid&);
  qv_solid& operator=(const qv_solid&);
  virtual ~qv_solid();

  /// Becomes the prism that `base` sweeps along `direction`: the base, its copy at the other end,
  /// and one rectangle (in general a parallelogram) for each edge of each contour, holes included.
  /// Faces in this order: base, opposite, then the sides by contour and edge. Normals point
  /// outwards whichever side of the base the direction leaves. Contours that touch or cross are
  /// replaced by those of the region that they enclose. An empty base, a direction of length 0, one
  /// in the base's plane, or one that is not finite gives no faces.
  void extrusion(const qv_polygon& base, const qv_3dvector& direction);

  /// The faces; owned by the solid, valid until it changes.
  const qv_list<qv_polygon*>& get_faces() const;
  /// Adds a copy of `face`.
  void add_face(const qv_polygon& face);
  /// Removes all faces.
  void clear();
  /// Enclosed volume in m³ by the divergence theorem; negative when the faces point inwards, and
  /// without meaning when they do not close.
  double get_volume() const;

 private:
  qv_list<qv_polygon*> faces_;
};

}  // namespace qv
