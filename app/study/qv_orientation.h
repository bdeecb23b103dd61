#pragma once

#include <array>
#include <optional>

namespace qv {

/// The quarter that a façade looks to.
enum class qv_orientation : int { north, east, south, west };
inline constexpr std::array<qv_orientation, 4> qv_orientations = {
    qv_orientation::north, qv_orientation::east, qv_orientation::south, qv_orientation::west};

/// "north", "east", "south", "west".
const char* qv_orientation_name(qv_orientation orientation);

/// The quarter of an outward normal's azimuth, degrees clockwise from north: north from 315°
/// (included) to 45° (excluded), and so on. Nothing without an azimuth: what lies looks up or down.
std::optional<qv_orientation> qv_orientation_of(std::optional<double> azimuth);

}  // namespace qv
