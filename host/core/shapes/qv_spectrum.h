#pragma once

namespace qv {

/// Bands of radiation for which a surface states its coefficients.
enum class qv_spectrum : int {
  thermal = 0,  ///< long-wave radiation of bodies near room temperature
  visible = 1,  ///< light, weighted by the eye
  solar = 2     ///< the whole of the sun's spectrum
};

/// Number of bands.
inline constexpr int qv_spectrum_count = 3;

}  // namespace qv
