#include "app/readers/qv_gbxml_context.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <cstdint>
#include <utility>

namespace {

// Spellings of units that are remembered; more is no building model.
constexpr std::size_t most_known_units = 32;

// Adds the digits that begin at `at` to those in `digits`; returns where they end.
const char* read_digits(const char* at, const char* end, std::int64_t& digits) {
  for (; at != end; ++at) {
    const auto digit = static_cast<unsigned>(*at - '0');
    if (digit > 9) break;
    digits = digits * 10 + static_cast<std::int64_t>(digit);
  }
  return at;
}

// Reads a number of at most 15 digits without exponent, which is what models are made of. Its
// digits and the power of ten are exact in double precision, so that their quotient is the number
// nearest to the text, as `from_chars` gives it. False for anything else.
bool read_plain_number(std::string_view text, double& value) {
  constexpr std::size_t most_digits = 15;
  constexpr std::array<double, most_digits + 1> power = {
      1, 1e1, 1e2, 1e3, 1e4, 1e5, 1e6, 1e7, 1e8, 1e9, 1e10, 1e11, 1e12, 1e13, 1e14, 1e15};
  if (text.size() > most_digits + 2) return false;
  const char* const end = text.data() + text.size();
  const bool negative = text.starts_with('-');
  const char* const first = text.data() + (negative ? 1 : 0);
  std::int64_t digits = 0;
  const char* at = read_digits(first, end, digits);
  auto count = static_cast<std::size_t>(at - first);
  std::size_t behind_point = 0;
  if (at != end && *at == '.') {
    const char* const point = at;
    at = read_digits(point + 1, end, digits);
    behind_point = static_cast<std::size_t>(at - point) - 1;
    count += behind_point;
  }
  if (at != end || count == 0 || count > most_digits) return false;
  const double size = static_cast<double>(digits) / power[behind_point];
  value = negative ? -size : size;
  return true;
}

}  // namespace

namespace qv {

qv_gbxml_context::qv_gbxml_context(const qv_xml_document& document, qv_gbxml_model& model)
    : document_(document), model_(model) {}

void qv_gbxml_context::read_root_units() {
  const qv_xml_element root = document_.get_root();
  const auto take = [&](const char* attribute, qv_quantity quantity, std::string& written,
                        qv_unit without) {
    written = std::string(root.get_attribute(attribute));
    qv_unit& unit = root_units_[static_cast<std::size_t>(quantity)];
    unit = without;
    if (written.empty()) return false;
    const auto found = qv_find_unit(quantity, written);
    if (!found)
      fail(root, std::string(attribute) + "=\"" + qv_one_line(written, 60) + "\" is no known unit",
           "write one of gbXML's units, for example Meters, SquareMeters, CubicMeters, C");
    unit = *found;
    return true;
  };
  if (!take("lengthUnit", qv_quantity::length, model_.units.length, {}))
    warn(root, "has no lengthUnit; metres are assumed");
  const double length = root_units_[0].factor;
  if (!take("areaUnit", qv_quantity::area, model_.units.area, {length * length}))
    warn(root, "has no areaUnit; the square of the length unit is assumed");
  if (!take("volumeUnit", qv_quantity::volume, model_.units.volume, {length * length * length}))
    warn(root, "has no volumeUnit; the cube of the length unit is assumed");
  if (!take("temperatureUnit", qv_quantity::temperature, model_.units.temperature, {}))
    warn(root, "has no temperatureUnit; degrees Celsius are assumed");
}

std::optional<double> qv_gbxml_context::parse_number(std::string_view text) {
  double plain = 0;
  if (read_plain_number(text, plain)) return plain;
  if (text.starts_with('+')) text.remove_prefix(1);
  double value = 0;
  const auto [end, fault] = std::from_chars(text.data(), text.data() + text.size(), value);
  if (fault != std::errc() || end != text.data() + text.size() || !std::isfinite(value))
    return std::nullopt;
  return value;
}

qv_unit qv_gbxml_context::get_unit(qv_xml_element element, qv_quantity quantity) {
  const auto index = static_cast<std::size_t>(quantity);
  const qv_unit inherited = index < root_units_.size() ? root_units_[index] : qv_unit{};
  const std::string_view own = element.get_attribute("unit");
  if (own.empty()) return inherited;
  for (const known_unit& known : known_units_)
    if (known.quantity == quantity && known.name == own) return known.unit;
  if (const auto found = qv_find_unit(quantity, own)) {
    if (known_units_.size() < most_known_units)
      known_units_.push_back({quantity, std::string(own), *found});
    return *found;
  }
  warn(element, "the unit \"" + qv_one_line(std::string(own), 60) + "\" of a " +
                    std::string(element.get_name()) + " is not known; " +
                    (index < root_units_.size() ? "the file's own" : "SI") + " is assumed");
  return inherited;
}

std::optional<double> qv_gbxml_context::read_measure(qv_xml_element element, qv_quantity quantity) {
  if (!element) return std::nullopt;
  const std::string_view text = element.get_text();
  const auto number = parse_number(text);
  if (!number) {
    if (!text.empty())
      warn(element, "\"" + qv_one_line(std::string(text), 40) + "\" is no number for a " +
                        std::string(element.get_name()) + "; ignored");
    return std::nullopt;
  }
  return get_unit(element, quantity).to_model(*number);
}

qv_input_place qv_gbxml_context::get_place(qv_xml_element element) const {
  return {document_.get_name(), document_.get_line(element), std::string(element.get_name()),
          std::string(element.get_attribute("id"))};
}

void qv_gbxml_context::fail(qv_xml_element element, const std::string& problem,
                            const std::string& advice) const {
  throw qv_input_error(qv_input_error::kind::bad_input, get_place(element), problem, advice);
}

void qv_gbxml_context::warn(qv_xml_element element, const std::string& words) {
  const auto [slot, fresh] = warning_by_words_.try_emplace(words, warnings_.size());
  if (fresh) warnings_.push_back({qv_describe_place(get_place(element)), words, 0});
  ++warnings_[slot->second].count;
}

void qv_gbxml_context::finish() {
  for (const warning& w : warnings_) {
    std::string text = w.place + ": " + w.words;
    if (w.count > 1) text += " (and at " + std::to_string(w.count - 1) + " further places)";
    model_.warnings.push_back(qv_one_line(text, 1000));
  }
  for (std::size_t entry = 0; entry < entry_offsets_.size(); ++entry) {
    model_.ledger.set_line(entry, document_.get_line(entry_offsets_[entry]));
    if (model_.ledger.get_entries()[entry].reason.empty())
      model_.ledger.amend(entry, qv_import_ledger::outcome::kept, "as it stands");
  }
}

std::size_t qv_gbxml_context::add_entry(qv_import_ledger::kind kind, qv_xml_element element,
                                        qv_import_ledger::outcome outcome, std::string reason,
                                        double area) {
  entry_offsets_.push_back(element.get_offset());
  return model_.ledger.add(
      {kind, std::string(element.get_attribute("id")), outcome, std::move(reason), area, 0});
}

}  // namespace qv
