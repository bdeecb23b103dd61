#pragma once

#include <vector>

#include "core/shapes/qv_face_links.h"

namespace qv {

/// For each face, whether it must be turned for the faces of each shell to agree and to point
/// outwards. `triangles` name `face_count` faces; `links` are those of `qv_link_faces`.
///
/// Faces that are linked, surest links first, form a shell; a link that contradicts surer ones is
/// left out (a Möbius strip keeps one seam). The outside is found from the generalised winding
/// number (A. Jacobson, L. Kavan, O. Sorkine-Hornung, Robust Inside-Outside Segmentation using
/// Generalized Winding Numbers, 2013) on the faces themselves, which is 1/2 everywhere on a closed
/// shell that points outwards, −1/2 on one that points inwards, and shrinks gently with what is
/// missing. A shell whose mean over its area is less than half of that keeps the side of most of
/// its area; when both halves are equal, that of its first face. A face without a sound triangle is
/// never turned. Time linear in the number of triangles.
std::vector<bool> qv_find_faces_to_turn(const std::vector<qv_face_triangle>& triangles,
                                        int face_count, const std::vector<qv_face_link>& links);

}  // namespace qv
