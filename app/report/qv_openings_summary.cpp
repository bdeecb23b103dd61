#include "app/report/qv_openings_summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <array>
#include <map>

#include "app/report/qv_summary_text.h"
#include "app/report/qv_text_table.h"

namespace qv {
namespace {

constexpr auto right = qv_text_table::align::right;

// Mean of a figure over areas, of those openings of which it is known.
struct area_mean {
  double sum = 0.0;
  double area = 0.0;

  void add(const std::optional<float>& value, double weight) {
    if (!value.has_value()) return;
    sum += *value * weight;
    area += weight;
  }
  std::string text() const {
    return area > 0.0 ? qv_hundredths(sum / area) : std::string(qv_unknown_text);
  }
};

struct opening_group {
  std::size_t count = 0;
  double area = 0.0;
  double glazing = 0.0;
  area_mean u;
  area_mean solar_factor;
  area_mean visible_transmittance;

  void add(const qv_study_opening& opening) {
    ++count;
    area += opening.full_area;
    glazing += opening.glazing_area;
    u.add(opening.u, opening.full_area);
    solar_factor.add(opening.solar_factor, opening.full_area);
    visible_transmittance.add(opening.visible_transmittance, opening.full_area);
  }
};

std::vector<std::string> cells(const std::string& type, const std::string& facing,
                               const opening_group& group) {
  return {type,
          facing,
          std::to_string(group.count),
          qv_hundredths(group.area),
          qv_hundredths(group.glazing),
          group.u.text(),
          group.solar_factor.text(),
          group.visible_transmittance.text()};
}

// Rank of a word among those that are listed in an order of their own; others follow.
template <std::size_t size>
std::size_t rank_in(const std::array<const char*, size>& order, const std::string& word) {
  return static_cast<std::size_t>(std::find(order.begin(), order.end(), word) - order.begin());
}

std::string openings_part(const std::vector<qv_study_opening>& openings) {
  constexpr std::array<const char*, 4> types = {"window", "curtain_wall", "door", "skylight"};
  constexpr std::array<const char*, 8> places = {"north", "east",  "south",  "west",
                                                 "roof",  "floor", "inside", "no space"};
  std::map<std::tuple<std::size_t, std::string, std::size_t, std::string>, opening_group> groups;
  opening_group all;
  for (const auto& opening : openings) {
    groups[{rank_in(types, opening.opening_type), opening.opening_type,
            rank_in(places, opening.facing), opening.facing}]
        .add(opening);
    all.add(opening);
  }
  qv_text_table table({{"Opening"},
                       {"looks to"},
                       {"number", right},
                       {"area m²", right},
                       {"glazing m²", right},
                       {"mean U W/(m².K)", right},
                       {"solar factor", right},
                       {"light", right}});
  for (const auto& [what, group] : groups) {
    table.add_row(cells(std::get<1>(what), std::get<3>(what), group));
  }
  table.add_rule();
  table.add_row(cells("all openings", "", all));
  std::string text =
      table.text() +
      "  Means by area over the openings of which the figure is known. U of glazing with, of\n"
      "  panels without surface resistances.\n";
  const double unknown_area = all.area - all.u.area;
  const auto unknown_count = static_cast<std::size_t>(
      std::count_if(openings.begin(), openings.end(),
                    [](const auto& opening) { return !opening.u.has_value(); }));
  if (unknown_count > 0) {
    text += fmt::format("  The U of {}, {:.2f} m², is not known.\n",
                        qv_plural(unknown_count, "opening", "openings"), unknown_area);
  }
  return text;
}

std::string facades_part(const std::vector<qv_study_facade>& facades) {
  qv_text_table table({{"Façade"},
                       {"outer walls", right},
                       {"area m²", right},
                       {"openings", right},
                       {"area m²", right},
                       {"windows m²", right},
                       {"windows to wall", right}});
  qv_study_facade all{"all façades"};
  const auto add = [&table](const qv_study_facade& facade) {
    const auto ratio = facade.get_window_to_wall_ratio();
    table.add_row({facade.orientation, std::to_string(facade.walls),
                   qv_hundredths(facade.wall_area), std::to_string(facade.openings),
                   qv_hundredths(facade.opening_area), qv_hundredths(facade.window_area),
                   ratio ? fmt::format("{:.1f} %", 100.0 * *ratio) : qv_unknown_text});
  };
  for (const auto& facade : facades) {
    add(facade);
    all.walls += facade.walls;
    all.wall_area += facade.wall_area;
    all.openings += facade.openings;
    all.opening_area += facade.opening_area;
    all.window_area += facade.window_area;
  }
  if (all.walls == 0) return {};
  table.add_rule();
  add(all);
  return "\n" + table.text();
}

std::string generation_part(const qv_study_generation& generation) {
  if (!generation.asked) return {};
  std::string text =
      fmt::format("  {} generated", qv_plural(generation.made, "opening", "openings"));
  if (generation.walls_with_openings > 0) {
    text += fmt::format("; {} with openings of the file left as they are",
                        qv_plural(generation.walls_with_openings, "outer wall", "outer walls"));
  }
  text += '\n';
  for (const auto& refusal : generation.refusals) {
    text += fmt::format("  None on {}: {}\n", qv_plural(refusal.walls, "outer wall", "outer walls"),
                        refusal.reason);
  }
  return text;
}

}  // namespace

std::string qv_openings_summary(const qv_study_results& study) {
  std::string text;
  if (!study.openings.empty()) {
    text += openings_part(study.openings) + facades_part(study.facades);
  }
  return text + generation_part(study.generation);
}

}  // namespace qv
