#include "app/readers/qv_gbxml_surfaces.h"

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <utility>

#include "app/readers/qv_further_loops.h"
#include "app/readers/qv_gbxml_geometry.h"

namespace {

using qv::qv_double3;
using qv::qv_gbxml_surface;
using qv::qv_import_ledger;
using qv::qv_surface_type;
using kind = qv_import_ledger::kind;
using outcome = qv_import_ledger::outcome;
using flaw = qv::qv_source_flaw::kind;

// m; farther out neighbouring floats lie more than 0.1 mm apart.
constexpr double largest_distance = 1500;

double median(std::vector<double>& values) {
  const auto middle = values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2);
  std::nth_element(values.begin(), middle, values.end());
  return *middle;
}

// The same for every rotation and both directions of a contour.
std::uint64_t contour_hash(const std::vector<int>& contour) {
  std::uint64_t sum = contour.size();
  for (const int corner : contour) {
    std::uint64_t h = static_cast<std::uint64_t>(corner) * 0x9E3779B97F4A7C15U;
    h ^= h >> 31U;
    sum += h * 0xC2B2AE3D27D4EB4FU;
  }
  return sum;
}

// True when the closed contours visit the same corners in the same or in the opposite order.
bool is_same_contour(const std::vector<int>& a, const std::vector<int>& b) {
  const std::size_t n = a.size();
  if (n != b.size()) return false;
  for (std::size_t start = 0; start < n; ++start) {
    if (b[start] != a[0]) continue;
    bool forwards = true;
    bool backwards = true;
    for (std::size_t i = 1; i < n && (forwards || backwards); ++i) {
      forwards = forwards && a[i] == b[(start + i) % n];
      backwards = backwards && a[i] == b[(start + n - i) % n];
    }
    if (forwards || backwards) return true;
  }
  return false;
}

const std::vector<int>* single_contour(const qv_gbxml_surface& surface) {
  if (surface.shells.size() != 1 || surface.shells[0].contours.size() != 1) return nullptr;
  return &surface.shells[0].contours[0];
}

}  // namespace

namespace qv {

// What a Surface element consists of.
struct qv_gbxml_surfaces::surface_parts {
  std::string_view id;
  std::string_view type;
  std::string_view construction;
  std::string_view name;
  qv_xml_element planar;
  qv_xml_element rectangle;
  std::vector<std::string_view> spaces;  // that it names, in its order

  void collect(qv_xml_element element) {
    id = type = construction = name = {};
    planar = rectangle = {};
    spaces.clear();
    element.for_each_attribute([this](std::string_view what, std::string_view value) {
      if (what == "id") {
        id = value;
      } else if (what == "surfaceType") {
        type = value;
      } else if (what == "constructionIdRef") {
        construction = value;
      }
    });
    bool named = false;
    for (const qv_xml_element child : element) {
      const std::string_view what = child.get_name();
      if (what == "AdjacentSpaceId") {
        spaces.push_back(child.get_attribute("spaceIdRef"));
      } else if (what == "Name") {
        if (!named) name = child.get_text();
        named = true;
      } else if (what == "RectangularGeometry") {
        if (!rectangle) rectangle = child;
      } else if (what.starts_with("Planar")) {
        if (!planar) planar = child;
      }
    }
  }
};

void qv_gbxml_surfaces::read() {
  const auto& places = site_.get_surfaces();
  if (places.empty())
    context_.fail(context_.get_document().get_root(), "holds no Surface",
                  "export the model with its analytical surfaces");
  surfaces_.reserve(places.size());
  surface_parts parts;
  for (const qv_gbxml_site::surface_place& place : places) read_surface(place, parts);
  surface_by_id_.reserve(surfaces_.size());
  for (std::size_t i = 0; i < surfaces_.size(); ++i) {
    if (surfaces_[i].id.empty()) continue;
    const auto [slot, fresh] = surface_by_id_.try_emplace(surfaces_[i].id, static_cast<int>(i));
    if (!fresh) same_ids_.emplace_back(slot->second, static_cast<int>(i));
  }
  site_.check_boundaries(surface_by_id_);
}

void qv_gbxml_surfaces::read_surface(const qv_gbxml_site::surface_place& place,
                                     surface_parts& parts) {
  parts.collect(place.element);
  qv_gbxml_surface& surface = surfaces_.emplace_back();
  surface.element = place.element;
  surface.campus = place.campus;
  surface.id = parts.id;
  surface.name = parts.name.empty() ? parts.id : parts.name;
  surface.entry = context_.add_entry(kind::surface, place.element, outcome::kept, "");
  qv_import_ledger& ledger = context_.get_ledger();

  bool guessed = false;
  surface.type = qv_find_surface_type(parts.type, guessed);
  if (guessed || surface.type == qv_surface_type::unknown)
    ledger.amend(surface.entry, outcome::repaired,
                 "surfaceType " + qv_quoted_id(parts.type) + " is none; " +
                     (guessed ? std::string("read as ") + qv_get_surface_type_name(surface.type)
                              : "its spaces and slope decide"));
  find_spaces(surface, parts.spaces);
  find_construction(surface, parts.construction);

  qv_read_polygon raw = qv_read_surface_polygon(context_, parts.planar, parts.rectangle);
  if (raw.fault.empty()) {
    surface.polygon = qv_clean_polygon(std::move(raw.points));
    if (!raw.further.empty())
      qv_add_further_loops(surface.polygon, raw.further, read_outlines(place.element));
  } else {
    surface.polygon.fault = std::move(raw.fault);
  }
  ledger.set_area(surface.entry, surface.polygon.area);
  if (!raw.repair.empty()) ledger.amend(surface.entry, outcome::repaired, raw.repair);
  for (const std::string& repair : surface.polygon.repairs)
    ledger.amend(surface.entry, outcome::repaired, repair);
  if (surface.polygon.parts.empty())
    ledger.amend(surface.entry, outcome::dropped, surface.polygon.fault);
  note_flaws(surface, !parts.spaces.empty());
}

void qv_gbxml_surfaces::note_flaws(const qv_gbxml_surface& surface, bool names_space) {
  std::vector<qv_source_flaw>& flaws = context_.get_model().flaws;
  const qv_source_polygon& polygon = surface.polygon;
  if (polygon.parts.empty()) flaws.push_back({flaw::polygon_degenerate, surface.id, polygon.fault});
  for (const std::string& repair : polygon.repairs)
    if (repair.find("off a plane") != std::string::npos)
      flaws.push_back({flaw::polygon_not_plane, surface.id, repair});
  if (!qv_is_object_type(surface.type) && surface.spaces[0] < 0)
    flaws.push_back(
        {flaw::names_no_space, surface.id,
         names_space ? "the space that it names is not in the file" : "it names no space"});
}

std::vector<qv_loop> qv_gbxml_surfaces::read_outlines(qv_xml_element surface) {
  std::vector<qv_loop> outlines;
  for (const qv_xml_element child : surface)
    if (child.is("Opening")) outlines.push_back(qv_read_surface_polygon(context_, child).points);
  return outlines;
}

void qv_gbxml_surfaces::find_spaces(qv_gbxml_surface& surface,
                                    const std::vector<std::string_view>& names) {
  qv_import_ledger& ledger = context_.get_ledger();
  found_.clear();
  std::vector<int>& found = found_;
  for (const std::string_view reference : names) {
    const int space = site_.find_space(reference);
    if (space >= 0) {
      found.push_back(space);
    } else {
      ledger.amend(surface.entry, outcome::repaired,
                   "Space " + qv_quoted_id(reference) + " is not in the file");
    }
  }
  if (found.empty()) {
    if (names.empty() && !qv_is_object_type(surface.type))
      ledger.amend(surface.entry, outcome::kept, "it names no space: shading only");
    return;
  }
  if (surface.type == qv_surface_type::shade && found.size() == 1) {
    ledger.amend(surface.entry, outcome::kept, "shading; the space that it names is not bounded");
    return;
  }
  surface.spaces[0] = found[0];
  const auto other =
      std::find_if(found.begin(), found.end(), [&found](int space) { return space != found[0]; });
  if (other != found.end()) {
    surface.spaces[1] = *other;
  } else if (found.size() > 1) {
    surface.spaces[1] = found[1];
    ledger.amend(surface.entry, outcome::kept, "the same space on both sides");
  }
  if (found.size() > 2)
    ledger.amend(surface.entry, outcome::repaired,
                 "it names " + std::to_string(found.size()) +
                     " spaces; the first two different ones were taken");
  if (surface.type == qv_surface_type::shade)
    ledger.amend(surface.entry, outcome::repaired, "a shade between two spaces: it bounds both");
}

void qv_gbxml_surfaces::find_construction(qv_gbxml_surface& surface, std::string_view reference) {
  if (reference.empty()) return;
  surface.construction = constructions_.find(reference);
  if (surface.construction < 0)
    context_.get_ledger().amend(surface.entry, outcome::repaired,
                                "Construction " + qv_quoted_id(reference) + " is not in the file");
}

void qv_gbxml_surfaces::bring_to_origin() {
  std::vector<double> x;
  std::vector<double> y;
  std::vector<double> z;
  for (const qv_gbxml_surface& surface : surfaces_) {
    if (surface.polygon.parts.empty()) continue;
    const qv_double3& corner = surface.polygon.parts[0].contours[0][0];
    x.push_back(corner.x);
    y.push_back(corner.y);
    z.push_back(corner.z);
  }
  if (x.empty()) return;
  const auto shift = [](std::vector<double>& values) {
    const double m = median(values);
    return std::abs(m) > largest_distance ? std::round(m) : 0.0;
  };
  const qv_double3 origin = {shift(x), shift(y), shift(z)};
  if (origin == qv_double3{}) return;
  for (qv_gbxml_surface& surface : surfaces_)
    for (qv_plane_part& part : surface.polygon.parts)
      for (qv_loop& contour : part.contours)
        for (qv_double3& p : contour) p = p - origin;
  double* kept = context_.get_model().origin;
  kept[0] = origin.x;
  kept[1] = origin.y;
  kept[2] = origin.z;
  context_.warn(context_.get_document().get_root(),
                "the model lies far from the origin and was moved by whole metres");
}

void qv_gbxml_surfaces::number_corners() {
  for (qv_gbxml_surface& surface : surfaces_) {
    surface.shells.reserve(surface.polygon.parts.size());
    for (const qv_plane_part& part : surface.polygon.parts) {
      qv_shell_polygon& shell = surface.shells.emplace_back();
      for (const qv_loop& contour : part.contours) {
        std::vector<int>& numbers = shell.contours.emplace_back();
        numbers.reserve(contour.size());
        for (const qv_double3& p : contour) numbers.push_back(welder_.weld(p));
      }
    }
  }
}

void qv_gbxml_surfaces::merge_duplicates() {
  number_corners();
  // Surfaces of the same contour side by side, in the order of the file.
  std::vector<std::pair<std::uint64_t, int>> order;
  order.reserve(surfaces_.size());
  for (std::size_t i = 0; i < surfaces_.size(); ++i)
    if (const std::vector<int>* contour = single_contour(surfaces_[i]))
      order.emplace_back(contour_hash(*contour), static_cast<int>(i));
  std::sort(order.begin(), order.end());
  std::vector<int> kept;  // of the present hash
  for (std::size_t i = 0; i < order.size(); ++i) {
    if (i > 0 && order[i].first != order[i - 1].first) kept.clear();
    qv_gbxml_surface& surface = surfaces_[static_cast<std::size_t>(order[i].second)];
    const bool is_merged = std::any_of(kept.begin(), kept.end(), [&](int earlier) {
      qv_gbxml_surface& candidate = surfaces_[static_cast<std::size_t>(earlier)];
      return is_same_contour(*single_contour(candidate), *single_contour(surface)) &&
             merge(candidate, earlier, surface);
    });
    if (!is_merged) kept.push_back(order[i].second);
  }
  check_ids();
}

// Makes `first`'s wall stand for `second` too, unless they bound more than two spaces together or
// one bounds and the other shades.
bool qv_gbxml_surfaces::merge(qv_gbxml_surface& first, int first_number, qv_gbxml_surface& second) {
  if ((first.get_space_count() == 0) != (second.get_space_count() == 0)) return false;
  std::vector<int> spaces;
  for (const int space : {first.spaces[0], first.spaces[1], second.spaces[0], second.spaces[1]})
    if (space >= 0 && std::find(spaces.begin(), spaces.end(), space) == spaces.end())
      spaces.push_back(space);
  if (spaces.size() > 2) return false;
  const bool one_space_twice =
      spaces.size() == 1 && (first.get_space_count() == 2 || second.get_space_count() == 2);
  // A partition within one space is another thing than that space's outer wall.
  if (one_space_twice && first.get_space_count() != second.get_space_count()) return false;

  qv_import_ledger& ledger = context_.get_ledger();
  ledger.amend(second.entry, outcome::merged,
               "listed twice: the wall of Surface " + qv_quoted_id(first.id) + " stands for both");
  if (spaces.size() == 2 && first.get_space_count() == 1) {
    first.spaces = {spaces[0], spaces[1]};
    ledger.amend(first.entry, outcome::repaired,
                 "its other side is Surface " + qv_quoted_id(second.id));
  }
  if (first.construction < 0) first.construction = second.construction;
  if (!second.id.empty() && second.id != first.id) first.merged_ids.push_back(second.id);
  second.merged_into = first_number;
  return true;
}

void qv_gbxml_surfaces::check_ids() {
  for (const auto& [first, second] : same_ids_) {
    const qv_gbxml_surface& later = surfaces_[static_cast<std::size_t>(second)];
    if (later.merged_into >= 0 || later.polygon.parts.empty()) continue;
    context_.fail(later.element,
                  "a second Surface bears this id, the first one in line " +
                      std::to_string(context_.get_document().get_line(
                          surfaces_[static_cast<std::size_t>(first)].element)),
                  "give each Surface an id of its own");
  }
}

}  // namespace qv
