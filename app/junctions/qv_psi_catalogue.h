#pragma once

#include <array>
#include <optional>
#include <string>

#include "bim/envelope/qvi_connexion.h"
#include "bim/materials/qvi_composition.h"

namespace qv {

/// Linear thermal transmittances ψ by type of thermal bridge and by where the insulation of the
/// façade lies, W/(m·K).
struct qv_psi_catalogue {
  static constexpr int type_count = 18;
  static constexpr int insulation_count = 4;

  /// What the catalogue calls itself, the file's name when it does not, and what it says of its
  /// values.
  std::string name;
  std::string note;
  /// By type, then by position of the insulation, in the order of their enumerations. Absent where
  /// the catalogue has no value: the bridge then counts as unknown, not as 0.
  std::array<std::array<std::optional<float>, insulation_count>, type_count> values;

  std::optional<float> find(qvi_connexion::connexion_type type,
                            qvi_composition::composition_insulation insulation) const;
};

/// The catalogue that comes with the program (`app/data/psi-indicative.json`), indicative values
/// for a first estimate.
const qv_psi_catalogue& qv_indicative_psi_catalogue();

/// Reads a catalogue: JSON, or a table of text with commas.
///
///     {"name": "…", "note": "…", "psi_w_per_mk": {
///        "roof_roof": 0.05,
///        "facade_intermediate": {"interior": 0.9, "exterior": 0.05, "any": 0.5},
///        "unknown": null}}
///
///     type,insulation,psi
///     roof_roof,,0.05
///     facade_intermediate,interior,0.9
///
/// A number alone, "any", or an empty insulation holds for the positions that have no value of
/// their own. Types that are missing, or null, have no value. Lines of a table that begin with "#"
/// are remarks.
///
/// Throws `qv_input_error`: no access for a file that cannot be read, bad input for one that is no
/// catalogue, with its line where there is one.
qv_psi_catalogue qv_read_psi_catalogue(const std::string& path);
/// As `qv_read_psi_catalogue` for a text; `name` stands for the file in messages.
qv_psi_catalogue qv_parse_psi_catalogue(const std::string& name, const std::string& text);

}  // namespace qv
