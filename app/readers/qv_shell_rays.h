#pragma once

#include <span>
#include <vector>

#include "app/readers/qv_space_shell.h"

namespace qv {

/// Decides the direction of faces for which `verdicts` has no certain evidence yet: a ray from a
/// point of the face to either side crosses the other faces an odd number of times where it starts
/// inside the shell. Where one side is odd and the other even the verdict becomes that of the rays;
/// elsewhere it stays. Works on shells with gaps and overlaps as long as most rays miss them.
void qv_ask_rays(std::span<const qv_shell_face> faces, std::vector<qv_face_verdict>& verdicts);

/// True when face `face` lies inside the volume that the faces marked in `others` (one entry for
/// each face) enclose together. The face itself is never counted.
bool qv_is_face_enclosed(std::span<const qv_shell_face> faces, std::size_t face,
                         const std::vector<bool>& others);

}  // namespace qv
