#include "app/readers/qv_gbxml_surface_type.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

namespace {

using qv::qv_surface_type;
using wall_type = qv::qvi_wall::wall_type;

constexpr int type_count = static_cast<int>(qv_surface_type::unknown);

constexpr std::array<const char*, type_count + 1> type_names = {
    "InteriorWall", "ExteriorWall",       "UndergroundWall", "Roof",
    "Ceiling",      "UndergroundCeiling", "InteriorFloor",   "ExposedFloor",
    "RaisedFloor",  "SlabOnGrade",        "UndergroundSlab", "Air",
    "Shade",        "FreestandingColumn", "EmbeddedColumn",  "unknown"};

// Vertical components of unit normals: of a surface that surely lies (30° from level), that no
// longer counts as a floor (60°), and that is as steep as level (45°).
constexpr double surely_level = 0.866;
constexpr double least_floor = 0.5;
constexpr double half_level = 0.7071;

constexpr std::size_t largest_difference = 2;

std::string lower(std::string_view text) {
  std::string result(text);
  std::transform(result.begin(), result.end(), result.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return result;
}

// Number of letters to add, leave out or change between the texts (Levenshtein).
std::size_t difference(const std::string& a, const std::string& b) {
  std::vector<std::size_t> row(b.size() + 1);
  for (std::size_t j = 0; j <= b.size(); ++j) row[j] = j;
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min({row[j] + 1, row[j - 1] + 1, diagonal + (a[i - 1] == b[j - 1] ? 0 : 1)});
      diagonal = above;
    }
  }
  return row[b.size()];
}

bool is_wall(qv_surface_type type) {
  return type == qv_surface_type::interior_wall || type == qv_surface_type::exterior_wall ||
         type == qv_surface_type::underground_wall || type == qv_surface_type::embedded_column ||
         type == qv_surface_type::freestanding_column;
}

bool is_roof(qv_surface_type type) {
  return type == qv_surface_type::roof || type == qv_surface_type::ceiling ||
         type == qv_surface_type::underground_ceiling;
}

bool is_floor(qv_surface_type type) {
  return type == qv_surface_type::interior_floor || type == qv_surface_type::exposed_floor ||
         type == qv_surface_type::raised_floor || type == qv_surface_type::slab_on_grade ||
         type == qv_surface_type::underground_slab;
}

std::string said(qv_surface_type type) {
  return std::string("said ") + qv_get_surface_type_name(type);
}

qv::qv_wall_choice choose_between_spaces(qv_surface_type type, double level) {
  if (is_wall(type)) {
    if (level <= surely_level) return {wall_type::wall, {}};
    return {wall_type::floor, said(type) + " but lies level: a floor"};
  }
  if (is_roof(type) || is_floor(type)) {
    if (level < least_floor) return {wall_type::wall, said(type) + " but stands: a wall"};
    const bool between =
        type != qv_surface_type::roof && type != qv_surface_type::underground_ceiling;
    return {wall_type::floor, between ? "" : said(type) + " but lies between two spaces: a floor"};
  }
  return {level > half_level ? wall_type::floor : wall_type::wall, {}};
}

qv::qv_wall_choice choose_with_one_space(qv_surface_type type, double up) {
  const double level = std::abs(up);
  if (is_wall(type)) {
    if (level <= surely_level) return {wall_type::wall, {}};
    return up > 0 ? qv::qv_wall_choice{wall_type::roof,
                                       said(type) + " but lies level over its space: a roof"}
                  : qv::qv_wall_choice{wall_type::floor,
                                       said(type) + " but lies level under its space: a floor"};
  }
  if (is_roof(type)) {
    if (up > -least_floor) return {wall_type::roof, {}};
    return {wall_type::floor, said(type) + " but lies under its space: a floor"};
  }
  if (is_floor(type)) {
    if (level < least_floor) return {wall_type::wall, said(type) + " but stands: a wall"};
    if (up < 0) return {wall_type::floor, {}};
    return {wall_type::roof, said(type) + " but lies over its space: a roof"};
  }
  if (level <= half_level) return {wall_type::wall, {}};
  return {up > 0 ? wall_type::roof : wall_type::floor, {}};
}

}  // namespace

namespace qv {

qv_surface_type qv_find_surface_type(std::string_view text, bool& guessed) {
  guessed = false;
  constexpr std::size_t longest_type = 18;
  if (text.empty() || text.size() > longest_type + largest_difference)
    return qv_surface_type::unknown;
  for (int i = 0; i < type_count; ++i)
    if (text == type_names[static_cast<std::size_t>(i)]) return static_cast<qv_surface_type>(i);
  const std::string wanted = lower(text);
  std::size_t best = largest_difference + 1;
  int found = type_count;
  bool ambiguous = false;
  for (int i = 0; i < type_count; ++i) {
    const std::string name = lower(type_names[static_cast<std::size_t>(i)]);
    if (name == wanted) return static_cast<qv_surface_type>(i);
    // A difference of two letters turns "Air" into anything.
    if (name.size() <= 2 * largest_difference) continue;
    const std::size_t d = difference(wanted, name);
    if (d == best) ambiguous = true;
    if (d >= best) continue;
    best = d;
    found = i;
    ambiguous = false;
  }
  if (best > largest_difference || ambiguous) return qv_surface_type::unknown;
  guessed = true;
  return static_cast<qv_surface_type>(found);
}

const char* qv_get_surface_type_name(qv_surface_type type) {
  return type_names[static_cast<std::size_t>(type)];
}

bool qv_is_object_type(qv_surface_type type) {
  return type == qv_surface_type::shade || type == qv_surface_type::freestanding_column ||
         type == qv_surface_type::embedded_column;
}

int qv_get_expected_slope(qv_surface_type type) {
  if (type == qv_surface_type::interior_floor || type == qv_surface_type::ceiling) return 0;
  if (is_floor(type)) return -1;
  return is_roof(type) ? 1 : 0;
}

qv_wall_choice qv_choose_wall_type(qv_surface_type type, int space_count, double up) {
  if (space_count == 2) return choose_between_spaces(type, std::abs(up));
  if (space_count == 1) return choose_with_one_space(type, up);
  if (is_wall(type)) return {wall_type::wall, {}};
  if (is_roof(type)) return {wall_type::roof, {}};
  if (is_floor(type)) return {wall_type::floor, {}};
  return {std::abs(up) > half_level ? wall_type::floor : wall_type::wall, {}};
}

}  // namespace qv
