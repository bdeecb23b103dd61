#pragma once

#include <vector>

#include "app/pictures/qv_picture_geometry.h"
#include "app/pictures/qv_picture_key.h"
#include "app/pictures/qv_picture_subject.h"

namespace qv {

/// What the colours of a picture tell.
enum class qv_picture_color : int {
  contact_type,    ///< what walls separate; openings by whether one sees through them
  u,               ///< U values, as a colour bar
  zone,            ///< zone of the room behind
  storey,          ///< storey of the room behind
  type,            ///< wall, floor, roof; window, door, …
  material,        ///< composition
  thermal_bridges  ///< lines by the type of the junction, over a pale model
};

/// Colours of the parts of a geometry, and their key.
struct qv_coloring {
  std::vector<qv_color> colors;  // one for each part; alpha below 1 is seen through
  qv_picture_key key;
};

/// Colours `geometry` of `subject`. Categories come in a fixed order, so that the same model looks
/// the same in every view; those that are not there are left out of the key. Counts are those of
/// the surfaces drawn; of the rooms for zone and storey; metres for thermal bridges.
qv_coloring qv_color_parts(const qv_picture_subject& subject, const qv_picture_geometry& geometry,
                           qv_picture_color what);

/// The smallest round number that is at least `value`: 1, 1.5, 2, 2.5, 3, 4, 5, 6 or 8 times a
/// power of ten; 1 for a value that is not positive and finite.
double qv_round_up(double value);

}  // namespace qv
