#include "utilities/qv_plane_region.h"

#include <algorithm>
#include <cmath>
#include <utility>

#include "utilities/qv_contour_contacts.h"
#include "utilities/qv_log.h"
#include "utilities/qv_polygon_overlay.h"
#include "utilities/qv_tolerances.h"

namespace qv::plane {

namespace {

// Contacts between edges that a normalisation takes on: a fixed number plus some for each edge,
// since contours that share all their edges touch three times at each.
constexpr std::size_t most_contacts = 20'000;
constexpr std::size_t most_contacts_per_edge = 8;

double perimeter(const ring& contour) {
  double sum = 0;
  for (std::size_t i = 0; i < contour.size(); ++i) {
    const point& p = contour[i];
    const point& q = contour[i + 1 == contour.size() ? 0 : i + 1];
    sum += std::sqrt((q.a - p.a) * (q.a - p.a) + (q.b - p.b) * (q.b - p.b));
  }
  return sum;
}

bool is_sliver(double sliver_area, double sliver_perimeter) {
  return sliver_area < tolerance::sliver_area ||
         2 * sliver_area < tolerance::sliver_width * sliver_perimeter;
}

bool is_before(const point& p, const point& q) {
  return p.a != q.a ? p.a < q.a : p.b < q.b;
}

// The contour from its first point in lexicographic order on, counter-clockwise, and which way it
// ran: equal for the same points whatever their start and direction.
struct canonical_contour {
  ring points;
  bool was_clockwise;
};

canonical_contour get_canonical(const ring& contour) {
  canonical_contour result{contour, signed_area(contour) < 0};
  ring& points = result.points;
  if (result.was_clockwise) std::reverse(points.begin(), points.end());
  std::rotate(points.begin(), std::min_element(points.begin(), points.end(), is_before),
              points.end());
  return result;
}

void drop_repeated_contours(std::vector<ring>& contours) {
  std::vector<canonical_contour> canonical;
  std::vector<std::size_t> order(contours.size());
  canonical.reserve(contours.size());
  for (std::size_t i = 0; i < contours.size(); ++i) {
    canonical.push_back(get_canonical(contours[i]));
    order[i] = i;
  }
  const auto compare = [&](std::size_t i, std::size_t j) {
    return std::lexicographical_compare(canonical[i].points.begin(), canonical[i].points.end(),
                                        canonical[j].points.begin(), canonical[j].points.end(),
                                        is_before);
  };
  std::stable_sort(order.begin(), order.end(), compare);

  std::vector<bool> kept(contours.size(), true);
  for (std::size_t first = 0; first < order.size();) {
    std::size_t end = first + 1;
    bool both_directions = false;
    while (end < order.size() && !compare(order[first], order[end])) {
      both_directions |=
          canonical[order[end]].was_clockwise != canonical[order[first]].was_clockwise;
      kept[order[end++]] = false;
    }
    if (both_directions) kept[order[first]] = false;
    first = end;
  }
  std::size_t next = 0;
  std::erase_if(contours, [&](const ring&) { return !kept[next++]; });
}

// Contours that stay clear of each other: each is an outer one or a hole by how many hold it.
region nest(std::vector<ring> contours) {
  const std::size_t count = contours.size();
  std::vector<double> areas(count);
  std::vector<std::size_t> order(count);
  for (std::size_t i = 0; i < count; ++i) {
    const double signed_value = signed_area(contours[i]);
    if (signed_value < 0) std::reverse(contours[i].begin(), contours[i].end());
    areas[i] = std::fabs(signed_value);
    order[i] = i;
  }
  std::vector<bounds> boxes;
  boxes.reserve(count);
  for (const ring& contour : contours) boxes.push_back(get_bounds(contour));

  region result;
  std::vector<std::vector<std::size_t>> holes(count);
  std::vector<bool> is_outer(count);
  for (std::size_t i = 0; i < count; ++i) {
    const point& p = contours[i].front();
    std::size_t depth = 0;
    std::size_t holder = i;
    for (std::size_t j = 0; j < count; ++j) {
      const bounds& box = boxes[j];
      if (j == i || areas[j] <= areas[i] || p.a < box.min_a || p.a > box.max_a || p.b < box.min_b ||
          p.b > box.max_b || !is_inside(contours[j], p.a, p.b))
        continue;
      ++depth;
      if (holder == i || areas[j] < areas[holder]) holder = j;
    }
    is_outer[i] = depth % 2 == 0;
    if (!is_outer[i]) holes[holder].push_back(i);
  }
  for (std::size_t i = 0; i < count; ++i) {
    if (!is_outer[i] || areas[i] == 0) continue;
    part piece;
    for (const std::size_t hole : holes[i]) {
      std::reverse(contours[hole].begin(), contours[hole].end());
      piece.holes.push_back(std::move(contours[hole]));
    }
    piece.outer = std::move(contours[i]);
    result.push_back(std::move(piece));
  }
  return result;
}

}  // namespace

double signed_area(const ring& contour) {
  if (contour.size() < 3) return 0;
  const point& first = contour.front();
  double sum = 0;
  for (std::size_t i = 1; i + 1 < contour.size(); ++i) {
    const point& p = contour[i];
    const point& q = contour[i + 1];
    sum += (p.a - first.a) * (q.b - first.b) - (p.b - first.b) * (q.a - first.a);
  }
  return sum / 2;
}

double area(const part& piece) {
  double sum = std::fabs(signed_area(piece.outer));
  for (const ring& hole : piece.holes) sum -= std::fabs(signed_area(hole));
  return sum;
}

double area(const region& pieces) {
  double sum = 0;
  for (const part& piece : pieces) sum += area(piece);
  return sum;
}

bounds get_bounds(const ring& contour) {
  bounds box{contour[0].a, contour[0].b, contour[0].a, contour[0].b};
  for (const point& p : contour) {
    box.min_a = std::min(box.min_a, p.a);
    box.min_b = std::min(box.min_b, p.b);
    box.max_a = std::max(box.max_a, p.a);
    box.max_b = std::max(box.max_b, p.b);
  }
  return box;
}

bounds get_bounds(const region& pieces) {
  bounds box = get_bounds(pieces[0].outer);
  for (const part& piece : pieces) {
    const bounds other = get_bounds(piece.outer);
    box.min_a = std::min(box.min_a, other.min_a);
    box.min_b = std::min(box.min_b, other.min_b);
    box.max_a = std::max(box.max_a, other.max_a);
    box.max_b = std::max(box.max_b, other.max_b);
  }
  return box;
}

bool is_inside(const ring& contour, double a, double b) {
  bool inside = false;
  for (std::size_t i = 0, j = contour.size() - 1; i < contour.size(); j = i++) {
    const point& p = contour[i];
    const point& q = contour[j];
    if ((p.b > b) != (q.b > b) && a < (q.a - p.a) * (b - p.b) / (q.b - p.b) + p.a) inside = !inside;
  }
  return inside;
}

bool is_inside(const std::vector<ring>& contours, double a, double b) {
  bool inside = false;
  for (const ring& contour : contours) inside ^= is_inside(contour, a, b);
  return inside;
}

region normalise(std::vector<ring> contours) {
  if (contours.empty()) return {};
  if (contours.size() == 1 && is_convex(contours[0])) {
    ring& contour = contours[0];
    if (signed_area(contour) < 0) std::reverse(contour.begin(), contour.end());
    region result(1);
    result[0].outer = std::move(contour);
    return result;
  }
  if (count_contacts(contours, 0) == 0) return nest(std::move(contours));

  drop_repeated_contours(contours);
  std::size_t edges = 0;
  for (const ring& contour : contours) edges += contour.size();
  const std::size_t limit = most_contacts + most_contacts_per_edge * edges;
  const std::size_t contacts = count_contacts(contours, limit);
  if (contacts == 0) return nest(std::move(contours));
  if (contacts > limit) {
    qv_log_thread_safe("polygon left out: its %zu edges cross each other more than %zu times",
                       edges, limit);
    return {};
  }
  region result = overlay_even_odd(contours);
  drop_slivers(result);
  return result;
}

void drop_slivers(region& pieces) {
  for (part& piece : pieces) {
    std::erase_if(piece.holes, [](const ring& hole) {
      return is_sliver(std::fabs(signed_area(hole)), perimeter(hole));
    });
  }
  std::erase_if(pieces, [](const part& piece) {
    double around = perimeter(piece.outer);
    for (const ring& hole : piece.holes) around += perimeter(hole);
    return is_sliver(area(piece), around);
  });
}

}  // namespace qv::plane
