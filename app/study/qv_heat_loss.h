#pragma once

#include <optional>
#include <string>
#include <vector>

namespace qv {

// Transmission heat loss of a building, as sums over plain values. Areas in m², lengths in m, U in
// W/(m².K), ψ in W/(m.K), losses in W per kelvin between the inside and what lies beyond.

/// A wall, or an opening in one, between a space and what is no space.
struct qv_loss_surface {
  /// Contact type of the wall, or type of the opening.
  std::string type;
  /// What lies beyond: "outside", or the typology of the wall's limit condition ("soil",
  /// "crawlspace", "adiabatic", "regulated").
  std::string boundary = "outside";
  double area = 0.0;
  /// Absent when not known.
  std::optional<double> u;
  std::optional<double> u_with_surfaces;
};

struct qv_loss_bridge {
  std::string type;
  double length = 0.0;
  std::optional<double> psi;  // absent when not known
};

/// Surfaces of one type towards one boundary.
struct qv_surface_loss {
  std::string type;
  std::string boundary;
  std::size_t count = 0;
  double area = 0.0;
  /// Part of the area whose U is not known; it is in no loss and no mean.
  double unknown_area = 0.0;
  double loss = 0.0;
  double loss_with_surfaces = 0.0;

  std::optional<double> get_mean_u() const;
  std::optional<double> get_mean_u_with_surfaces() const;
};

/// Thermal bridges of one type.
struct qv_bridge_loss {
  std::string type;
  std::size_t count = 0;
  double length = 0.0;
  double unknown_length = 0.0;  // whose ψ is not known
  double loss = 0.0;

  std::optional<double> get_mean_psi() const;
};

/// Sums of a study.
///
///     H_T = Σ A·U + Σ l·ψ   (EN ISO 13789, all reduction factors 1, without adiabatic boundaries)
///     mean U = H_T / A      (A the loss surface whose U is known, adiabatic parts left out)
struct qv_heat_loss {
  std::vector<qv_surface_loss> walls;       // by contact type and boundary
  std::vector<qv_surface_loss> openings;    // by opening type and boundary
  std::vector<qv_bridge_loss> bridges;      // by type
  std::vector<qv_surface_loss> boundaries;  // walls and openings by boundary; type is empty
  double bridge_loss = 0.0;

  /// Of walls and openings whose loss counts in H_T.
  double area = 0.0;
  double unknown_area = 0.0;
  double h_t = 0.0;
  double h_t_with_surfaces = 0.0;

  std::optional<double> get_mean_u() const;
  std::optional<double> get_mean_u_with_surfaces() const;
};

/// Boundary across which nothing is lost.
inline constexpr const char* qv_adiabatic_boundary = "adiabatic";

/// Sums; each list in the order in which its types (and within them boundaries) first come.
qv_heat_loss qv_sum_heat_loss(const std::vector<qv_loss_surface>& walls,
                              const std::vector<qv_loss_surface>& openings,
                              const std::vector<qv_loss_bridge>& bridges);

/// Sum of the surface resistances on both sides of a wall, m².K/W (EN ISO 6946): outside 0.04,
/// inside 0.10 for heat that flows upwards, 0.13 horizontally, 0.17 downwards. `tilt` is that of
/// the outward normal, degrees from the upward vertical; flows within 30° of the horizontal count
/// as horizontal, and so does one whose direction is not known.
double qv_surface_resistances(std::optional<double> tilt);
/// The same of a wall between two rooms, where both surfaces are inside.
double qv_inner_surface_resistances(std::optional<double> tilt);

/// U of a wall whose layers alone have the transmittance `u`, with the resistance of its surfaces.
double qv_u_with_surfaces(double u, double surface_resistances);

}  // namespace qv
