#pragma once

#include <set>
#include <string>

namespace qv {

/// A gbXML file with the polygons of some surfaces turned over.
struct qv_turned_gbxml {
  /// The file in UTF-8, byte for byte as it was but for the order of those polygons' points.
  std::string text;
  /// Number of surfaces turned. A surface without a PolyLoop in space has no order to turn.
  int count = 0;
};

/// Turns the polygons of the Surface elements with these ids, and of the openings in them: the
/// points of each PolyLoop in reverse order. `name` is the file in messages. Throws
/// `qv_input_error` (bad input) for bytes that are no XML.
qv_turned_gbxml qv_turn_gbxml_surfaces(const std::string& name, std::string bytes,
                                       const std::set<std::string>& ids);

}  // namespace qv
