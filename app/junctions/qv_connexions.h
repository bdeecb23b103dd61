#pragma once

#include "app/junctions/qv_junction_finder.h"

namespace qv {

class qv_scene;
class qvi_wall;

/// The outline by which a wall meets others: its "face", or without one its "face_0" or "face_1";
/// one with the openings cut out serves only a wall that has no whole face. Empty for a wall
/// without any face.
qv_wall_outline qv_outline_of(const qvi_wall& wall);

/// Adds a connexion "Liaison N" for each junction of the scene's walls (`qv_find_junctions`), with
/// its ends, walls and directions, below the campus of its first wall, or below the scene without
/// one. Walls that bound a space stand first in it, since the first wall tells the building. Types
/// follow from the scene's next `precompute`. Returns how many were added.
///
/// Balconies, canopies and fins that stand in the scene as objects take part: each flat face
/// (`qvi_polygon`) of an object along which it meets a wall that bounds a space becomes a wall of
/// no space too, below the object's campus, with the object's own polygon as its face.
///
/// Connexions that are there already stay; the caller removes those of an earlier call.
int qv_add_connexions(qv_scene& scene);

}  // namespace qv
