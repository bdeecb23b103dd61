#include "app/readers/qv_import_ledger.h"

#include <array>
#include <cmath>
#include <limits>
#include <utility>

namespace qv {

const char* qv_import_ledger::get_kind_name(kind value) {
  static constexpr std::array<const char*, kind_count> names = {
      "Space", "Surface",  "Opening", "WindowType", "Construction",
      "Layer", "Material", "Zone",    "Object"};
  return names[static_cast<std::size_t>(value)];
}

const char* qv_import_ledger::get_outcome_name(outcome value) {
  static constexpr std::array<const char*, outcome_count> names = {"kept", "repaired", "merged",
                                                                   "dropped", "not read yet"};
  return names[static_cast<std::size_t>(value)];
}

std::size_t qv_import_ledger::add(entry element) {
  entries_.push_back(std::move(element));
  return entries_.size() - 1;
}

void qv_import_ledger::amend(std::size_t position, outcome result, const std::string& reason) {
  entry& element = entries_.at(position);
  if (result > element.result) element.result = result;
  if (reason.empty() || element.reason.find(reason) != std::string::npos) return;
  if (!element.reason.empty()) element.reason += "; ";
  element.reason += reason;
}

std::size_t qv_import_ledger::get_count(kind what, outcome result) const {
  std::size_t count = 0;
  for (const entry& element : entries_)
    if (element.what == what && element.result == result) ++count;
  return count;
}

std::size_t qv_import_ledger::get_count(kind what) const {
  std::size_t count = 0;
  for (const entry& element : entries_)
    if (element.what == what) ++count;
  return count;
}

double qv_import_ledger::get_area(kind what, outcome result) const {
  double area = 0;
  for (const entry& element : entries_)
    if (element.what == what && element.result == result) area += element.area;
  return area;
}

double qv_import_ledger::get_area(kind what) const {
  double area = 0;
  for (const entry& element : entries_)
    if (element.what == what) area += element.area;
  return area;
}

void qv_import_ledger::add_wall_area(double area, bool shades_only) {
  walls_ += area;
  if (shades_only) shading_ += area;
}

namespace {

double relative_error(double difference, double source) {
  if (difference == 0) return 0;
  return source == 0 ? std::numeric_limits<double>::infinity() : difference / source;
}

}  // namespace

double qv_import_ledger::area_balance::get_relative_error() const {
  return relative_error(walls + objects + merged + dropped - source, source);
}

bool qv_import_ledger::area_balance::is_balanced() const {
  return std::abs(get_relative_error()) <= largest_relative_error;
}

qv_import_ledger::area_balance qv_import_ledger::get_balance() const {
  return {get_area(kind::surface),
          walls_,
          shading_,
          objects_,
          get_area(kind::surface, outcome::merged),
          get_area(kind::surface, outcome::dropped)};
}

double qv_import_ledger::opening_balance::get_relative_error() const {
  return relative_error(openings + merged + dropped + cut - source, source);
}

bool qv_import_ledger::opening_balance::is_balanced() const {
  return std::abs(get_relative_error()) <= largest_opening_error;
}

qv_import_ledger::opening_balance qv_import_ledger::get_opening_balance() const {
  opening_balance result = {get_area(kind::opening), openings_,
                            get_area(kind::opening, outcome::merged),
                            get_area(kind::opening, outcome::dropped), 0};
  for (const entry& element : entries_)
    if (element.what == kind::opening && element.result <= outcome::repaired)
      result.cut += element.cut;
  return result;
}

}  // namespace qv
