#pragma once

#include <memory>
#include <string>
#include <string_view>

#include "bim/materials/qvi_glazing.h"

namespace qv {

class qvi_glazing_glass;
class qvi_glazing_layer;

/// An item that nobody owns yet, freed with its subtree.
struct qv_item_destroyer {
  void operator()(qv_item* item) const { qv_item::destroy(item); }
};
using qv_owned_glazing = std::unique_ptr<qvi_glazing, qv_item_destroyer>;

// The short notation of a glazing: its layers from the outside to the inside, separated by "/",
// each a thickness in millimetres and what it is: "4 / 16 argon / 4 low-e".
//
//   pane        4   6 clear   4 low-e   6 sun-control   then, for a coating, front, back or both
//   gap         16 air   12 argon   16 argon 90%   10 krypton 60% xenon 40%   (the rest is air)
//   film        0.76 interlayer   1 pv
//
// A coating lies on the back of the pane before a gap and of a single pane, on the front of any
// other: in the gap, where it is protected. docs/guide/glazing.md tells the figures of each pane.

/// The glazing, named as `text` is written, with its layers as children. Throws `qv_input_error`
/// that names the layer.
qv_owned_glazing qv_read_glazing_notation(const std::string& text);

/// One layer of the notation, a new item that is named after what it is. `behind_gap`: whether a
/// gap lies somewhere before it, on which the side of a coating depends. `place` is named in
/// errors.
qvi_glazing_layer* qv_read_glazing_layer_notation(std::string_view text, bool behind_gap,
                                                  const std::string& place);

/// Becomes clear float glass of this thickness, m: its optical figures follow from Fresnel's
/// reflexion at both faces and Bouguer's law between them (docs/guide/glazing.md).
void qv_set_clear_glass(qvi_glazing_glass& pane, float thickness);

}  // namespace qv
