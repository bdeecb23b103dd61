#include "app/readers/qv_gbxml_openings.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <utility>

#include "app/readers/qv_further_loops.h"
#include "app/readers/qv_gbxml_geometry.h"
#include "app/readers/qv_gbxml_opening_rectangle.h"
#include "app/readers/qv_opening_cutter.h"

namespace {

using qv::qv_double3;
using qv::qv_import_ledger;
using qv::qv_loop;
using qv::qv_plane_part;
using qv::qv_polygon;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;
namespace limits = qv::polygon_limits;

// Of a rectangle's area; a place that holds less of it is not the one that is meant.
constexpr double nearly_all = 0.99;

std::string millimetres(double distance) {
  std::array<char, 40> text{};
  std::snprintf(text.data(), text.size(), "%.0f mm", distance * 1000);
  return text.data();
}

qv::qv_3dvector to_single(const qv_double3& v) {
  return {static_cast<float>(v.x), static_cast<float>(v.y), static_cast<float>(v.z)};
}

// The part moved by `onto`, a function of its points, as a polygon with the normal `normal`.
template <class moved>
qv_polygon to_polygon(const qv_plane_part& part, const qv_double3& normal, const moved& onto) {
  qv_polygon polygon(to_single(onto(part.contours[0][0])), to_single(normal));
  for (const qv_loop& contour : part.contours) {
    qv::qv_list<qv::qv_3dvector> corners;
    corners.reserve(static_cast<int>(contour.size()));
    for (const qv_double3& p : contour) corners.append(to_single(onto(p)));
    polygon.add_contour(corners);
  }
  return polygon;
}

qv_polygon to_polygon(const qv_plane_part& part) {
  return to_polygon(part, part.normal, [](const qv_double3& p) { return p; });
}

qv_polygon project(const qv_plane_part& part, const qv_plane_part& face) {
  const qv_double3 on_face = face.contours[0][0];
  return to_polygon(part, face.normal, [&](const qv_double3& p) {
    return p - face.normal * (p - on_face).dot(face.normal);
  });
}

// Largest distance of the part's corners from the face's plane, m.
double distance_from(const qv_plane_part& part, const qv_plane_part& face) {
  double largest = 0;
  for (const qv_loop& contour : part.contours)
    for (const qv_double3& p : contour)
      largest = std::max(largest, std::abs((p - face.contours[0][0]).dot(face.normal)));
  return largest;
}

double perimeter(const std::vector<qv_plane_part>& parts) {
  double sum = 0;
  for (const qv_plane_part& part : parts)
    for (const qv_loop& contour : part.contours)
      for (std::size_t i = 0; i < contour.size(); ++i)
        sum += (contour[(i + 1) % contour.size()] - contour[i]).length();
  return sum;
}

// Middle and diagonal of the part's box.
struct part_box {
  explicit part_box(const qv_plane_part& part) {
    const qv_double3 first = part.contours[0][0];
    qv_double3 low = first;
    qv_double3 high = first;
    for (const qv_double3& p : part.contours[0]) {
      low = {std::min(low.x, p.x), std::min(low.y, p.y), std::min(low.z, p.z)};
      high = {std::max(high.x, p.x), std::max(high.y, p.y), std::max(high.z, p.z)};
    }
    middle = (low + high) * 0.5;
    diagonal = (high - low).length();
  }
  qv_double3 middle;
  double diagonal = 0;
};

// Whether it is worth comparing the regions: two that share nine tenths have their middles close
// together, apart from the reveal between their planes.
bool may_be_same(const qv_plane_part& a, const qv_plane_part& b) {
  const part_box box_a(a);
  const part_box box_b(b);
  const qv_double3 way = box_b.middle - box_a.middle;
  const double across = way.dot(a.normal);
  if (std::abs(across) > qv::qv_gbxml_openings::largest_distance) return false;
  constexpr double farthest_share = 0.25;
  return (way - a.normal * across).length() <= farthest_share * box_a.diagonal;
}

}  // namespace

namespace qv {

// --- reading ---

void qv_gbxml_openings::read() {
  std::vector<qv_gbxml_surface>& all = surfaces_.get_surfaces();
  std::vector<std::vector<std::size_t>> by_surface(all.size());
  for (std::size_t i = 0; i < all.size(); ++i) {
    for (const qv_xml_element child : all[i].element) {
      if (!child.is("Opening")) continue;
      const int host = all[i].merged_into >= 0 ? all[i].merged_into : static_cast<int>(i);
      read_opening(child, host);
      all[static_cast<std::size_t>(host)].has_openings = true;
      if (!openings_.back().parts.empty())
        by_surface[static_cast<std::size_t>(host)].push_back(openings_.size() - 1);
    }
  }
  for (std::vector<std::size_t>& numbers : by_surface) {
    if (numbers.empty()) continue;
    merge_same(numbers);
    cut_surface(numbers);
  }
}

void qv_gbxml_openings::read_opening(qv_xml_element element, int surface) {
  opening& o = openings_.emplace_back();
  o.id = std::string(element.get_attribute("id"));
  const std::string_view name = element.get_child_text("Name");
  o.name = name.empty() ? o.id : std::string(name);
  o.surface = surface;
  o.entry = context_.add_entry(kind::opening, element, outcome::kept, "");
  read_type(element, o);
  o.filling = windows_.read_filling(element, o.type, o.entry);
  read_polygon(element, o);
  context_.get_ledger().set_area(o.entry, o.area);
}

void qv_gbxml_openings::read_type(qv_xml_element element, opening& o) {
  const std::string_view text = element.get_attribute("openingType");
  bool guessed = false;
  o.type = qv_find_opening_type(text, guessed);
  if (guessed)
    context_.get_ledger().amend(o.entry, outcome::repaired,
                                "openingType " + qv_quoted_id(text) + " is none; read as " +
                                    qv_get_opening_type_name(o.type));
}

void qv_gbxml_openings::read_polygon(qv_xml_element element, opening& o) {
  bool has_polygon = false;
  for (const qv_xml_element child : element)
    has_polygon = has_polygon || (child.get_name().starts_with("Planar") &&
                                  child.get_child("PolyLoop").get_child("CartesianPoint"));
  if (!has_polygon) {
    read_rectangle(element, o);
    return;
  }
  qv_import_ledger& ledger = context_.get_ledger();
  qv_read_polygon raw = qv_read_surface_polygon(context_, element);
  if (!raw.repair.empty()) ledger.amend(o.entry, outcome::repaired, raw.repair);
  if (!raw.fault.empty()) return drop(o, raw.fault);
  const double* origin = context_.get_model().origin;
  const auto move = [origin](qv_loop& loop) {
    for (qv_double3& p : loop) p = p - qv_double3{origin[0], origin[1], origin[2]};
  };
  move(raw.points);
  qv_source_polygon polygon = qv_clean_polygon(std::move(raw.points));
  for (qv_loop& loop : raw.further) move(loop);
  qv_add_further_loops(polygon, raw.further, {});
  for (const std::string& repair : polygon.repairs)
    ledger.amend(o.entry, outcome::repaired, repair);
  o.area = polygon.area;
  o.parts = std::move(polygon.parts);
  if (o.parts.empty()) drop(o, polygon.fault);
}

void qv_gbxml_openings::read_rectangle(qv_xml_element element, opening& o) {
  const auto rectangle = qv_read_opening_rectangle(context_, element);
  if (!rectangle)
    return drop(o, element.get_child("RectangularGeometry")
                       ? "it has no PlanarGeometry, and its RectangularGeometry lacks a value"
                       : "it has no geometry");
  o.area = rectangle->width * rectangle->height;
  const auto& faces = surfaces_.get_surfaces()[static_cast<std::size_t>(o.surface)].polygon.parts;
  const double* origin = context_.get_model().origin;
  const char* words = "";
  for (const qv_plane_part& face : faces) {
    const qv_polygon region = to_polygon(face);
    for (const qv_rectangle_place& place :
         qv_place_opening_rectangle(*rectangle, face, {origin[0], origin[1], origin[2]})) {
      qv_source_polygon polygon = qv_clean_polygon(place.corners);
      if (polygon.parts.empty()) return drop(o, polygon.fault);
      const bool in_plane = distance_from(polygon.parts[0], face) <= largest_distance;
      qv_polygon inside = project(polygon.parts[0], face);
      inside.intersects(region);
      const bool meant = in_plane && inside.get_area() >= nearly_all * o.area;
      // The first place stands where none fits.
      if (o.parts.empty() || meant) {
        o.parts = std::move(polygon.parts);
        words = place.words;
      }
      if (meant) break;
    }
    if (!o.parts.empty() && faces.size() == 1) break;
  }
  if (o.parts.empty()) return;
  context_.get_ledger().amend(o.entry, outcome::repaired,
                              std::string("built from its RectangularGeometry: ") + words);
}

void qv_gbxml_openings::drop(opening& o, const std::string& reason) {
  o.parts.clear();
  o.pieces.clear();
  context_.get_ledger().amend(o.entry, outcome::dropped, reason);
}

// --- geometry ---

// An opening of the same place and size as an earlier one is that one, said once more.
void qv_gbxml_openings::merge_same(std::vector<std::size_t>& numbers) {
  std::vector<std::size_t> kept;
  for (const std::size_t number : numbers) {
    opening& later = openings_[number];
    const auto said_by = std::find_if(kept.begin(), kept.end(), [&](std::size_t candidate) {
      const opening& earlier = openings_[candidate];
      return earlier.parts.size() == 1 && later.parts.size() == 1 &&
             may_be_same(earlier.parts[0], later.parts[0]) &&
             distance_from(later.parts[0], earlier.parts[0]) <= largest_distance &&
             qv_is_same_opening(to_polygon(earlier.parts[0]),
                                project(later.parts[0], earlier.parts[0]));
    });
    if (said_by == kept.end()) {
      kept.push_back(number);
      continue;
    }
    opening& earlier = openings_[*said_by];
    if (!earlier.filling.is_said()) earlier.filling = later.filling;
    if (!later.id.empty() && later.id != earlier.id) earlier.merged_ids.push_back(later.id);
    context_.get_ledger().amend(
        later.entry, outcome::merged,
        "said twice: Opening " + qv_quoted_id(earlier.id) + " of the same wall stands for both");
  }
  numbers = std::move(kept);
}

void qv_gbxml_openings::cut_surface(const std::vector<std::size_t>& numbers) {
  const int surface_number = openings_[numbers[0]].surface;
  const qv_gbxml_surface& surface =
      surfaces_.get_surfaces()[static_cast<std::size_t>(surface_number)];
  if (!surface.is_kept()) {
    for (const std::size_t number : numbers)
      drop(openings_[number], "its Surface was dropped: there is no wall to hold it");
    return;
  }
  std::vector<loss> losses(numbers.size());
  for (std::size_t k = 0; k < surface.polygon.parts.size(); ++k) {
    const qv_plane_part& face = surface.polygon.parts[k];
    std::vector<qv_polygon> projected;
    const std::vector<std::size_t> near = find_near(numbers, face, projected);
    if (near.empty()) continue;
    qv_cut_face cut = qv_cut_openings(to_polygon(face), std::move(projected));
    bool pierced = false;
    for (std::size_t i = 0; i < near.size(); ++i) {
      qv_cut_opening& found = cut.openings[i];
      loss& lost = losses[near[i]];
      lost.found += found.asked;
      lost.outside += found.outside;
      lost.covered += found.covered;
      for (const int other : found.covered_by)
        lost.covered_by.push_back(numbers[near[static_cast<std::size_t>(other)]]);
      if (found.region.get_contour_count() == 0) continue;
      pierced = true;
      openings_[numbers[near[i]]].pieces.push_back(
          {static_cast<int>(k), std::move(found.region), found.left});
    }
    if (pierced) faces_.push_back({surface_number, static_cast<int>(k), std::move(cut.rest)});
  }
  for (std::size_t i = 0; i < numbers.size(); ++i) settle(openings_[numbers[i]], losses[i]);
}

// Ranks, in `numbers`, of the openings that lie in the face's plane or can be moved onto it. An
// opening of several parts comes once for each.
std::vector<std::size_t> qv_gbxml_openings::find_near(const std::vector<std::size_t>& numbers,
                                                      const qv_plane_part& face,
                                                      std::vector<qv_polygon>& projected) {
  std::vector<std::size_t> near;
  for (std::size_t rank = 0; rank < numbers.size(); ++rank) {
    opening& o = openings_[numbers[rank]];
    for (const qv_plane_part& part : o.parts) {
      const double distance = distance_from(part, face);
      if (distance > largest_distance || std::abs(part.normal.dot(face.normal)) < least_parallel)
        continue;
      if (distance > limits::noted_deviation)
        context_.get_ledger().amend(
            o.entry, outcome::repaired,
            "it lay up to " + millimetres(distance) + " off its Surface and was moved onto it");
      near.push_back(rank);
      projected.push_back(project(part, face));
    }
  }
  return near;
}

// Says in the ledger what became of the opening.
void qv_gbxml_openings::settle(opening& o, const loss& lost) {
  qv_import_ledger& ledger = context_.get_ledger();
  const std::string holders = [&] {
    std::string words;
    for (const std::size_t number : lost.covered_by) {
      const std::string holder = qv_quoted_id(openings_[number].id);
      if (words.find(holder) == std::string::npos) words += (words.empty() ? "" : ", ") + holder;
    }
    return words;
  }();
  double left = 0;
  for (const piece& p : o.pieces) left += p.area;
  // A strip of a millimetre along its border is what rounding leaves.
  const double rounding = limits::noted_deviation * perimeter(o.parts);
  if (o.pieces.empty()) {
    if (lost.found == 0) return drop(o, "it does not lie in the plane of its Surface");
    return drop(
        o, lost.covered > 0 ? "it lies within Opening " + holders : "it lies outside its Surface");
  }
  ledger.set_cut(o.entry, o.area - left);
  if (lost.outside > rounding)
    ledger.amend(o.entry, outcome::repaired, "what lay outside its Surface was cut off");
  if (lost.covered > rounding)
    ledger.amend(o.entry, outcome::repaired, "what lay in Opening " + holders + " was cut off");
  if (o.pieces.size() > 1)
    ledger.amend(o.entry, outcome::repaired,
                 "cut into " + std::to_string(o.pieces.size()) + " as its Surface was");
}

}  // namespace qv
