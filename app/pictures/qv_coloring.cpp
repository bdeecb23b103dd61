#include "app/pictures/qv_coloring.h"

#include <fmt/format.h>

#include <algorithm>
#include <cmath>
#include <functional>
#include <limits>
#include <map>
#include <unordered_map>
#include <unordered_set>

#include "app/pictures/qv_palette.h"
#include "bim/envelope/qvi_connexion.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_opening_composition.h"
#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/hierarchy/qvi_zone.h"
#include "bim/materials/qvi_composition.h"

namespace qv {
namespace {

constexpr qv_color glass_color(0.30f, 0.60f, 0.95f, 0.55f);
constexpr qv_color panel_color(0.45f, 0.36f, 0.30f, 1.0f);  // doors and opaque panels
constexpr qv_color pale_color(0.94f, 0.94f, 0.94f, 1.0f);
constexpr qv_color untyped_line_color(0.55f, 0.55f, 0.55f, 1.0f);

// Share of the values that the colour bar must span; a few walls without insulation shall not make
// all others look alike.
constexpr double spanned_share = 0.95;
// Up to this multiple of the value at that share the bar reaches to the largest.
constexpr double largest_excess = 1.5;

std::string words(std::string key) {
  std::replace(key.begin(), key.end(), '_', ' ');
  return key;
}

std::string label_of(const qv_list<std::string>& labels, int index) {
  return index >= 0 && index < labels.get_count() ? words(labels[index]) : std::string();
}

// A category of parts: its rank among all, which tells its colour, and its name.
struct category {
  // Those that come after all others, in grey.
  static constexpr std::size_t no_room = std::numeric_limits<std::size_t>::max();
  static constexpr std::size_t unknown = no_room - 1;
  std::size_t rank = unknown;
  std::string label;
};

// Gathers a key from the parts in the order of the ranks.
class key_maker {
 public:
  // Counts an item, or a room, once, however many parts show it; null is not counted.
  void add(const category& found, const qv_color& color, const qv_item* shown, double amount = 1) {
    auto& [entry, sum] = entries_[found.rank];
    entry.color = color;
    entry.label = found.label;
    if (shown != nullptr && counted_.insert(shown).second) sum += amount;
  }

  // An entry of which nothing was counted says no amount.
  std::vector<qv_picture_key::entry> take(const char* pattern, bool line = false) {
    std::vector<qv_picture_key::entry> result;
    for (auto& [rank, counted] : entries_) {
      auto& [entry, sum] = counted;
      if (sum > 0) entry.amount = fmt::format(fmt::runtime(pattern), sum);
      entry.line = line;
      result.push_back(std::move(entry));
    }
    return result;
  }

 private:
  std::map<std::size_t, std::pair<qv_picture_key::entry, double>> entries_;
  std::unordered_set<const qv_item*> counted_;
};

constexpr const char* count_pattern = "{:.0f}";

qv_color category_color(const category& found) {
  return found.rank >= category::unknown ? qv_unknown_color() : qv_category_color(found.rank);
}

// Colours each part as `find` says of it, a category and its colour, and counts the items.
template <class Find>
qv_coloring color_by_kind(const qv_picture_geometry& geometry, const std::string& title,
                          Find find) {
  qv_coloring result;
  key_maker key;
  for (const qv_picture_part& part : geometry.parts) {
    if (part.is_plan_floor) {
      result.colors.push_back(pale_color);
      continue;
    }
    const std::pair<category, qv_color> found = find(part);
    result.colors.push_back(found.second);
    key.add(found.first, found.second, part.item);
  }
  result.key = {title, {}, key.take(count_pattern)};
  return result;
}

// Ranks by label in the order given; the same label has one rank.
class label_ranks {
 public:
  void add(const std::string& label) { ranks_.try_emplace(label, ranks_.size()); }
  category find(const std::string& label) const {
    const auto found = ranks_.find(label);
    return {found == ranks_.end() ? category::unknown : found->second, label};
  }

 private:
  std::unordered_map<std::string, std::size_t> ranks_;
};

// --- what walls separate, and what elements are ---

// Ranks of the categories that do not depend on the model. Colours that suit what they stand for
// are given with them: sand for façades, red for roofs, …
struct fixed_category {
  const char* kind;
  std::size_t color;
};
constexpr fixed_category contact_categories[] = {
    {"outer_wall", 2}, {"inner_wall", 5},   {"lower_floor", 8}, {"intermediate_floor", 6},
    {"roof", 0},       {"outside_wall", 3}, {"outside_slab", 4}};
constexpr fixed_category type_categories[] = {{"wall", 2},    {"floor", 6}, {"roof", 0},
                                              {"window", 1},  {"door", 8},  {"curtain_wall", 4},
                                              {"skylight", 5}};
// Ranks after those of the tables above.
constexpr std::size_t glass_rank = 100;
constexpr std::size_t panel_rank = 101;
constexpr std::size_t object_rank = 102;
constexpr std::size_t surface_rank = 103;

template <std::size_t count>
std::pair<category, qv_color> find_fixed(const fixed_category (&table)[count],
                                         const std::string& kind) {
  for (std::size_t rank = 0; rank < count; ++rank)
    if (kind == table[rank].kind)
      return {{rank, words(kind)}, qv_category_color(table[rank].color)};
  // What surrounds the building: imported objects, loose surfaces.
  const std::size_t rank = kind == "object" ? object_rank : surface_rank;
  return {{rank, words(kind)}, qv_unknown_color()};
}

std::string type_of(const qv_picture_part& part) {
  if (!part.item->has_type("wall")) return part.kind;
  const auto& wall = static_cast<const qvi_wall&>(*part.item);
  const qv_list<std::string>& labels = qvi_wall::get_wall_type_list();
  const int index = static_cast<int>(wall.get_wall_type());
  return index >= 0 && index < labels.get_count() ? labels[index] : std::string();
}

qv_coloring color_by_contact_type(const qv_picture_geometry& geometry) {
  using found = std::pair<category, qv_color>;
  return color_by_kind(geometry, "Contact type", [](const qv_picture_part& part) {
    if (part.glazed) return found{{glass_rank, "glazed opening"}, glass_color};
    if (part.item->has_type("opening")) return found{{panel_rank, "opaque opening"}, panel_color};
    return find_fixed(contact_categories, part.kind);
  });
}

qv_coloring color_by_type(const qv_picture_geometry& geometry) {
  return color_by_kind(geometry, "Type", [](const qv_picture_part& part) {
    return find_fixed(type_categories, type_of(part));
  });
}

// --- rooms ---

qv_coloring color_by_room(const qv_picture_geometry& geometry, const std::string& title,
                          const std::function<category(const qvi_space*)>& category_of) {
  qv_coloring result;
  key_maker key;
  for (const qv_picture_part& part : geometry.parts) {
    if (part.glazed) {
      result.colors.push_back(glass_color);
      continue;
    }
    const category found =
        part.space != nullptr ? category_of(part.space) : category{category::no_room, "no room"};
    const qv_color color = category_color(found);
    result.colors.push_back(color);
    key.add(found, color, part.space);
  }
  result.key = {title, {}, key.take(count_pattern)};
  return result;
}

qv_coloring color_by_zone(const qv_picture_subject& subject, const qv_picture_geometry& geometry) {
  std::unordered_map<const qv_item*, std::size_t> ranks;
  for (const qv_item* zone : subject.scene->get_items("zone")) ranks.emplace(zone, ranks.size());
  return color_by_room(geometry, "Zone (rooms)", [&](const qvi_space* space) {
    const qvi_zone* zone = space->get_zone();
    return zone == nullptr ? category{category::unknown, "no zone"}
                           : category{ranks[zone], zone->get_name()};
  });
}

qv_coloring color_by_storey(const qv_picture_geometry& geometry) {
  return color_by_room(geometry, "Storey (rooms)", [](const qvi_space* space) {
    const int storey = space->get_floor();
    return storey < 0 ? category{category::unknown, "no storey"}
                      : category{static_cast<std::size_t>(storey), fmt::format("{}", storey)};
  });
}

// --- compositions ---

const qv_item* composition_of(const qv_item* item) {
  if (item->has_type("wall")) return static_cast<const qvi_wall*>(item)->get_composition();
  if (item->has_type("opening")) return static_cast<const qvi_opening*>(item)->get_composition();
  return nullptr;
}

qv_coloring color_by_material(const qv_picture_subject& subject,
                              const qv_picture_geometry& geometry) {
  label_ranks ranks;
  for (const char* type : {"wall", "opening"})
    for (const qv_item* item : subject.scene->get_items(type))
      if (const qv_item* composition = composition_of(item)) ranks.add(composition->get_name());
  return color_by_kind(geometry, "Composition", [&ranks](const qv_picture_part& part) {
    const qv_item* composition = composition_of(part.item);
    const category found = composition != nullptr ? ranks.find(composition->get_name())
                                                  : category{category::unknown, "no composition"};
    return std::pair(found, category_color(found));
  });
}

// --- values ---

qv_picture_key::scale scale_of(std::vector<double> values) {
  qv_picture_key::scale scale;
  if (values.empty()) return scale;
  std::sort(values.begin(), values.end());
  const auto last = static_cast<double>(values.size() - 1);
  const double spanned = values[static_cast<std::size_t>(std::ceil(spanned_share * last))];
  const double largest = values.back();
  scale.high = qv_round_up(largest <= spanned * largest_excess ? largest : spanned);
  scale.exceeded = largest > scale.high;
  // Four to six steps of 1, 2, 2.5 or 5 divide every round number.
  const double least = scale.high / 6 * (1 - 1e-9);
  const double power = std::pow(10.0, std::floor(std::log10(least)));
  for (const double digits : {10.0, 5.0, 2.5, 2.0, 1.0}) {
    const double count = scale.high / (digits * power);
    if (digits * power >= least && std::abs(count - std::round(count)) < 1e-6)
      scale.step = digits * power;
  }
  return scale;
}

qv_coloring color_by_u(const qv_picture_subject& subject, const qv_picture_geometry& geometry) {
  std::unordered_map<const qv_item*, double> shown;
  for (const qv_picture_part& part : geometry.parts) {
    const auto known = subject.u_values.find(part.item);
    if (known != subject.u_values.end() && !part.is_plan_floor) shown.insert(*known);
  }
  std::vector<double> values;
  values.reserve(shown.size());
  for (const auto& [item, value] : shown) values.push_back(value);
  qv_coloring result;
  result.key.title = "U value, W/(m²·K)";
  const qv_picture_key::scale scale = scale_of(values);
  if (!values.empty()) result.key.values = scale;
  key_maker key;
  for (const qv_picture_part& part : geometry.parts) {
    const auto known = shown.find(part.item);
    if (part.is_plan_floor) {
      result.colors.push_back(pale_color);
    } else if (known != shown.end()) {
      result.colors.push_back(qv_loss_color((known->second - scale.low) / scale.high));
    } else {
      result.colors.push_back(qv_unknown_color());
      key.add({category::unknown, "not known"}, qv_unknown_color(), part.item);
    }
  }
  result.key.entries = key.take(count_pattern);
  return result;
}

// --- thermal bridges ---

int type_of(const qv_item* connexion) {
  return static_cast<int>(static_cast<const qvi_connexion*>(connexion)->get_connexion_type());
}

qv_coloring color_bridges(const qv_picture_subject& subject, const qv_picture_geometry& geometry) {
  constexpr int untyped = static_cast<int>(qvi_connexion::connexion_type::unknown);
  std::map<int, std::size_t> ranks;  // of the types that the model has
  for (const qv_item* item : subject.scene->get_items("connexion"))
    if (static_cast<const qvi_connexion*>(item)->is_lossy() && type_of(item) != untyped)
      ranks.emplace(type_of(item), 0);
  std::size_t rank = 0;
  for (auto& [type, its_rank] : ranks) its_rank = rank++;

  qv_coloring result;
  key_maker key;
  for (const qv_picture_part& part : geometry.parts) {
    if (!part.item->has_type("connexion")) {
      result.colors.push_back(pale_color);
      continue;
    }
    const int type = type_of(part.item);
    const auto known = ranks.find(type);
    const category found{known == ranks.end() ? category::unknown : known->second,
                         label_of(qvi_connexion::get_connexion_type_list(), type)};
    const qv_color color =
        known == ranks.end() ? untyped_line_color : qv_category_color(known->second);
    result.colors.push_back(color);
    key.add(found, color, part.item, static_cast<const qvi_connexion*>(part.item)->get_length());
  }
  result.key = {"Thermal bridges", {}, key.take("{:.1f} m", true)};
  return result;
}

}  // namespace

double qv_round_up(double value) {
  if (!(value > 0) || !std::isfinite(value)) return 1;
  const double power = std::pow(10.0, std::floor(std::log10(value)));
  for (const double digits : {1.0, 1.5, 2.0, 2.5, 3.0, 4.0, 5.0, 6.0, 8.0, 10.0})
    if (value <= digits * power * (1 + 1e-9)) return digits * power;
  return 20 * power;  // the logarithm was rounded down
}

qv_coloring qv_color_parts(const qv_picture_subject& subject, const qv_picture_geometry& geometry,
                           qv_picture_color what) {
  switch (what) {
    case qv_picture_color::contact_type:
      return color_by_contact_type(geometry);
    case qv_picture_color::u:
      return color_by_u(subject, geometry);
    case qv_picture_color::zone:
      return color_by_zone(subject, geometry);
    case qv_picture_color::storey:
      return color_by_storey(geometry);
    case qv_picture_color::type:
      return color_by_type(geometry);
    case qv_picture_color::material:
      return color_by_material(subject, geometry);
    case qv_picture_color::thermal_bridges:
      return color_bridges(subject, geometry);
  }
  return {};
}

}  // namespace qv
