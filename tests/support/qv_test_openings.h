#pragma once

#include "bim/envelope/qvi_opening.h"
#include "core/shapes/qvi_polygon.h"
#include "utilities/qv_polygon.h"

namespace qv {
class qvi_glazing;
class qvi_shader;
}  // namespace qv

namespace qv_test {

/// An opening in a façade that faces −y, without any piece yet, under `parent`.
qv::qvi_opening* add_opening(qv::qv_item& parent);

/// The rectangle from (x0, z0) to (x1, z1) in the plane y = `y`, facing −y.
qv::qv_polygon facade_rectangle(float x0, float z0, float x1, float z1, float y = 0);

/// A piece of an opening: a polygon under `opening` with this front shader, which may be null.
qv::qvi_polygon* add_piece(qv::qvi_opening& opening, const qv::qv_polygon& shape,
                           qv::qvi_shader* shader);

/// A new item of class T under `parent`.
template <class T>
T* add_new(qv::qv_item& parent) {
  auto* const item = new T;
  parent.add_child(item, -1);
  return item;
}

/// A glazing under `parent` of one pane of this solar and visible transmittance, which absorbs
/// nothing and conducts like 5 mm of glass: its U depends on the pane's conductivity alone.
qv::qvi_glazing* add_single_glazing(qv::qv_item& parent, float transmittance,
                                    float conductivity = 0.05f);

/// Two default panes about 16 mm of a gas that convects more the flatter it lies, under `parent`.
qv::qvi_glazing* add_double_glazing(qv::qv_item& parent);

}  // namespace qv_test
