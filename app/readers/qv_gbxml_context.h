#pragma once

#include <array>
#include <cstddef>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/readers/qv_gbxml_reader.h"
#include "app/readers/qv_units.h"
#include "app/readers/qv_xml_document.h"

namespace qv {

/// What the steps of reading a gbXML file share: the document, the model under construction, the
/// units, and how to complain with a place.
class qv_gbxml_context {
 public:
  qv_gbxml_context(const qv_xml_document& document, qv_gbxml_model& model);

  const qv_xml_document& get_document() const { return document_; }
  qv_gbxml_model& get_model() { return model_; }
  qv_import_ledger& get_ledger() { return model_.ledger; }

  /// Takes the units of the root element. A unit that is missing is said in a warning and taken as
  /// metres (or what the length unit makes of it); one that is not known ends the reading.
  void read_root_units();

  /// The number in `text`, with a point whatever the locale; nothing when it is not one, or not
  /// finite.
  static std::optional<double> parse_number(std::string_view text);
  /// The element's number in the model's unit, by its own attribute "unit" or the root's (SI for
  /// quantities that the root has no unit for). Nothing for a null element, and, with a warning,
  /// for a text that is no number.
  std::optional<double> read_measure(qv_xml_element element, qv_quantity quantity);
  /// The unit of an element that bears an attribute "unit" or inherits the root's. An unknown one
  /// is said in a warning and counts as the root's.
  qv_unit get_unit(qv_xml_element element, qv_quantity quantity);

  /// "line 12, Surface "su-3"", with the file in front.
  qv_input_place get_place(qv_xml_element element) const;
  [[noreturn]] void fail(qv_xml_element element, const std::string& problem,
                         const std::string& advice) const;
  /// Keeps a warning with the element's place. Of the same words only the first place is kept, and
  /// the number of further places.
  void warn(qv_xml_element element, const std::string& words);
  /// Writes the warnings into the model, in the order in which they first came, and into the
  /// ledger's entries their lines and, where nothing is to be said, that they stand as they are.
  void finish();

  /// Opens a ledger entry for the element.
  std::size_t add_entry(qv_import_ledger::kind kind, qv_xml_element element,
                        qv_import_ledger::outcome outcome, std::string reason, double area = 0);

 private:
  struct warning {
    std::string place;
    std::string words;
    int count = 0;
  };

  // Names of units that elements bear, as found; a file has few.
  struct known_unit {
    qv_quantity quantity;
    std::string name;
    qv_unit unit;
  };

  const qv_xml_document& document_;
  qv_gbxml_model& model_;
  std::array<qv_unit, 4> root_units_;  // length, area, volume, temperature
  std::vector<known_unit> known_units_;
  std::vector<warning> warnings_;
  std::vector<std::size_t> entry_offsets_;  // in the document, one for each ledger entry
  std::unordered_map<std::string, std::size_t> warning_by_words_;
};

}  // namespace qv
