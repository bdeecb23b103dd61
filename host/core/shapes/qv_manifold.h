#pragma once

namespace qv {
class qv_item;
}

/// Makes the faces of the shells below `item` (itself included) agree: every mesh, polygon and
/// solid below it is taken together, faces that share an edge (within a tolerance) are turned to
/// the same side, and each shell is then turned as a whole so that its faces point outwards
/// (positive enclosed volume). Nearly closed shells are decided like closed ones; a hole of a shell
/// bounds no side. Several shells are treated one by one; a shell inside another one is oriented
/// outwards by itself. Shells too open to enclose a volume are made consistent and keep the side of
/// most of their area. Faces are turned by `qvi_mesh::reverse`, dated and announced; faces that
/// need no turning are not touched. A polygon is one face, a solid is turned as a whole, a mesh
/// triangle by triangle (a mesh of which only some are wrong gets new "triangles"). Returns the
/// number of faces turned; 0 for null. `docs/orientation.md` tells how.
int qv_check_mesh_manifold_orientation(qv::qv_item* item);
