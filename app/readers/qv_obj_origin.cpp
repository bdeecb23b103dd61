#include "app/readers/qv_obj_origin.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <cmath>
#include <optional>
#include <string_view>
#include <utility>

#include "app/readers/qv_source_polygon.h"

namespace qv {
namespace {

// m; farther out neighbouring floats lie more than 0.1 mm apart.
constexpr double largest_distance = 1500;

bool is_blank(char c) {
  return c == ' ' || c == '\t';
}

/// The three numbers of a corner, and what of its line follows them.
struct corner {
  qv_double3 place;
  std::string_view rest;
};

std::optional<corner> read_corner(std::string_view line) {
  const auto skip_blanks = [&line] {
    while (!line.empty() && is_blank(line.front())) line.remove_prefix(1);
  };
  skip_blanks();
  if (line.size() < 2 || line[0] != 'v' || !is_blank(line[1])) return std::nullopt;
  line.remove_prefix(1);
  std::array<double, 3> numbers{};
  for (double& number : numbers) {
    skip_blanks();
    if (!line.empty() && line.front() == '+') line.remove_prefix(1);
    const auto end = std::from_chars(line.data(), line.data() + line.size(), number);
    if (end.ec != std::errc() || !std::isfinite(number)) return std::nullopt;
    line.remove_prefix(static_cast<std::size_t>(end.ptr - line.data()));
  }
  return corner{{numbers[0], numbers[1], numbers[2]}, line};
}

void append_number(std::string& text, double value) {
  std::array<char, 32> digits{};
  const auto end =
      std::to_chars(digits.data(), digits.data() + digits.size(), static_cast<float>(value)).ptr;
  text += ' ';
  text.append(digits.data(), end);
}

// Calls `visit` with each line, without its end.
template <class Visit>
void for_each_line(std::string_view text, const Visit& visit) {
  while (!text.empty()) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    if (!visit(text.substr(0, end))) return;
    text.remove_prefix(std::min(end + 1, text.size()));
  }
}

// What to take off, by the first corner that is somewhere.
qv_double3 find_origin(std::string_view text) {
  qv_double3 origin;
  for_each_line(text, [&origin](std::string_view line) {
    const std::optional<corner> found = read_corner(line);
    if (!found) return true;
    const auto whole = [](double c) {
      return std::abs(c) > largest_distance ? std::round(c) : 0.0;
    };
    const qv_double3& p = found->place;
    constexpr double limit = polygon_limits::largest_coordinate;
    if (std::abs(p.x) > limit || std::abs(p.y) > limit || std::abs(p.z) > limit) return true;
    origin = {whole(p.x), whole(p.y), whole(p.z)};
    return false;
  });
  return origin;
}

}  // namespace

qv_double3 qv_bring_obj_to_origin(std::string& text) {
  const qv_double3 origin = find_origin(text);
  if (origin == qv_double3()) return origin;
  std::string moved;
  moved.reserve(text.size());
  for_each_line(text, [&](std::string_view line) {
    if (const std::optional<corner> found = read_corner(line)) {
      const qv_double3 p = found->place - origin;
      moved += 'v';
      for (const double c : {p.x, p.y, p.z}) append_number(moved, c);
      moved += found->rest;
    } else {
      moved += line;
    }
    moved += '\n';
    return true;
  });
  text = std::move(moved);
  return origin;
}

}  // namespace qv
