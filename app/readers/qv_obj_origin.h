#pragma once

#include <string>

#include "core/shapes/qv_double3.h"

namespace qv {

/// Takes a whole number of metres off the corners ("v" lines) of an OBJ text that lies so far from
/// its origin that single precision, in which it is read, would spoil it: town models in the
/// coordinates of their country. The first corner tells how many, for each axis on which it lies
/// farther out than 1.5 km. Returns what was taken off; a text that lies near stays as it is, byte
/// by byte, and so does every line that is no corner of three numbers.
qv_double3 qv_bring_obj_to_origin(std::string& text);

}  // namespace qv
