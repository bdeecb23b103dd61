#pragma once

#include <unordered_set>

#include "app/junctions/qv_psi_catalogue.h"

namespace qv {

class qv_scene;

/// Where the insulation of a wall's build-up lies, told from its layers.
///
/// A layer insulates when its conductivity is at most 0.065 W/(m·K) and its resistance at least
/// 0.5 m²·K/W. The structure is the layer of the largest mass per area among the others. All
/// insulating layers on its inner side: interior; all on its outer side: exterior; on both sides,
/// or without a structure of at least 50 kg/m²: integrated. Without an insulating layer it is
/// integrated where the structure itself resists at least 1 m²·K/W (a monolithic insulating wall),
/// and none otherwise. Layers run from the outside to the inside, those of a floor from the bottom
/// to the top.
qvi_composition::composition_insulation qv_find_insulation(qvi_composition& composition);

/// Gives the compositions of a scene that state no insulation the position that their layers tell.
void qv_place_insulation(qv_scene& scene);

/// The position of the insulation that counts for a connexion: that of the composition of its first
/// façade, or where no façade meets, of its first wall between a space and what is none; none when
/// that wall has no composition.
qvi_composition::composition_insulation qv_insulation_at(const qvi_connexion& connexion);

/// Gives every connexion of the scene the ψ that the catalogue has for its type and insulation.
/// Those for which it has none get 0 and are returned: their loss is not known. Call it once the
/// types are computed.
std::unordered_set<const qv_item*> qv_assign_psi(qv_scene& scene,
                                                 const qv_psi_catalogue& catalogue);

}  // namespace qv
