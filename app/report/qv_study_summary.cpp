#include "app/report/qv_study_summary.h"

#include <fmt/format.h>

#include <algorithm>
#include <map>
#include <tuple>

#include "app/report/qv_heat_loss_summary.h"
#include "app/report/qv_openings_summary.h"
#include "app/report/qv_summary_text.h"
#include "app/report/qv_sun_report.h"
#include "app/report/qv_text_table.h"

namespace qv {
namespace {

constexpr auto left = qv_text_table::align::left;
constexpr auto right = qv_text_table::align::right;
constexpr double smallest_cut = 0.005;  // m²; less shows as 0.00
constexpr const char* unknown = qv_unknown_text;

// How far the measured figure is from the stated one, in percent of the stated one.
std::string difference(double measured, const std::optional<double>& stated) {
  if (!stated.has_value() || *stated <= 0.0) return unknown;
  const std::string text = fmt::format("{:+.1f} %", 100.0 * (measured - *stated) / *stated);
  return text == "-0.0 %" ? "+0.0 %" : text;
}

std::optional<double> sum_of(const std::vector<qv_study_space>& spaces,
                             std::optional<double> qv_study_space::*stated) {
  double sum = 0.0;
  for (const auto& space : spaces) {
    if (!(space.*stated).has_value()) return std::nullopt;
    sum += *(space.*stated);
  }
  return sum;
}

std::string buildings_part(const qv_study_results& study) {
  qv_text_table table({{"Building"},
                       {"storeys", right},
                       {"zones", right},
                       {"spaces", right},
                       {"area m²", right},
                       {"volume m³", right}});
  for (const auto& building : study.buildings) {
    table.add_row({building.name, std::to_string(building.floors.size()),
                   std::to_string(building.zones.size()), std::to_string(building.space_count),
                   qv_hundredths(building.area), qv_hundredths(building.volume)});
  }
  return table.text();
}

// The figure, with a mark where the space leaks.
std::string measured(double value, const qv_study_space& space) {
  return qv_hundredths(value) + (space.leaking_share.has_value() ? "*" : "");
}

std::string spaces_part(const qv_study_results& study) {
  qv_text_table table({{"Space", left},
                       {"storey", right},
                       {"zone", left},
                       {"area m²", right},
                       {"stated", right},
                       {"difference", right},
                       {"volume m³", right},
                       {"stated", right},
                       {"difference", right}});
  const std::size_t shown = std::min(study.spaces.size(), qv_summary_space_count);
  for (std::size_t index = 0; index < shown; ++index) {
    const auto& space = study.spaces[index];
    table.add_row({space.name.empty() ? space.id : space.name,
                   space.floor.has_value() ? std::to_string(*space.floor) : unknown,
                   space.zone.value_or(unknown), measured(space.area, space),
                   qv_hundredths(space.stated_area), difference(space.area, space.stated_area),
                   measured(space.volume, space), qv_hundredths(space.stated_volume),
                   difference(space.volume, space.stated_volume)});
  }
  if (shown < study.spaces.size()) {
    table.add_row({fmt::format("… {} more, see spaces.csv", study.spaces.size() - shown)});
  }
  const auto stated_area = sum_of(study.spaces, &qv_study_space::stated_area);
  const auto stated_volume = sum_of(study.spaces, &qv_study_space::stated_volume);
  table.add_rule();
  table.add_row({"all spaces", "", "", qv_hundredths(study.get_area()), qv_hundredths(stated_area),
                 difference(study.get_area(), stated_area), qv_hundredths(study.get_volume()),
                 qv_hundredths(stated_volume), difference(study.get_volume(), stated_volume)});
  return table.text() +
         fmt::format(
             "  Area: floor with more than 1.8 m of free height. Measured on the "
             "Surface polygons of\n"
             "  the file, of which those of {} of {} spaces close without a gap; "
             "stated figures may be\n"
             "  those of other faces, for example the inner ones.\n",
             study.closed_space_count, study.spaces.size()) +
         (std::any_of(study.spaces.begin(), study.spaces.end(),
                      [](const auto& space) { return space.leaking_share.has_value(); })
              ? "  * The space leaks: rays escape through holes between its surfaces.\n"
              : "");
}

// How many findings there are of each kind.
std::string findings_part(const std::vector<qv_finding>& findings) {
  constexpr std::size_t any_width = 100;  // words of ours, to be read to their end
  qv_text_table table({{"Findings"}, {"", right}, {"", left, any_width}});
  for (const qv_check_code& code : qv_check_codes()) {
    const auto count = std::count_if(findings.begin(), findings.end(),
                                     [&](const auto& f) { return f.code == code.code; });
    if (count > 0) table.add_row({code.code, std::to_string(count), code.meaning});
  }
  return table.text() + "  See \"findings\" in study.json, or run `qv check`.\n";
}

// Areas and U of the walls of one contact type.
struct wall_group {
  std::string contact_type;
  std::size_t count = 0;
  double area = 0.0;
  double known_area = 0.0;  // of the walls whose U is known
  double heat_loss = 0.0;   // sum of area × U over those, W/K
};

std::string wall_row_u(const wall_group& group) {
  if (group.known_area <= 0.0) return unknown;
  return fmt::format("{:.3f}", group.heat_loss / group.known_area);
}

std::string walls_part(const qv_study_results& study) {
  std::vector<wall_group> groups;
  wall_group loss{"loss area, walls"};
  for (const auto& wall : study.walls) {
    auto group = std::find_if(groups.begin(), groups.end(), [&](const auto& known) {
      return known.contact_type == wall.contact_type;
    });
    if (group == groups.end()) group = groups.insert(group, {wall.contact_type});
    for (wall_group* sum : {&*group, wall.is_loss() ? &loss : nullptr}) {
      if (sum == nullptr) continue;
      ++sum->count;
      sum->area += wall.area;
      if (!wall.u.has_value()) continue;
      sum->known_area += wall.area;
      sum->heat_loss += static_cast<double>(wall.area) * *wall.u;
    }
  }
  qv_text_table table({{"Contact"},
                       {"walls", right},
                       {"area m²", right},
                       {"mean U W/(m².K)", right},
                       {"of which U unknown m²", right}});
  const auto add = [&table](const wall_group& group) {
    const double unknown_area = group.area - group.known_area;
    table.add_row({group.contact_type, std::to_string(group.count), qv_hundredths(group.area),
                   wall_row_u(group),
                   unknown_area > 0.0 ? qv_hundredths(unknown_area) : std::string(unknown)});
  };
  std::sort(groups.begin(), groups.end(),
            [](const auto& a, const auto& b) { return a.contact_type < b.contact_type; });
  for (const auto& group : groups) add(group);
  table.add_rule();
  add(loss);
  std::string text = table.text() + "  U: layers alone, without surface resistances.\n";
  const double openings = study.get_loss_opening_area();
  if (openings > 0.0) {
    text += fmt::format("  With the openings in them, {:.2f} m², the loss area is {:.2f} m².\n",
                        openings, study.get_loss_area());
  }
  return text;
}

std::string counts_part(const qv_study_ledger& ledger) {
  std::vector<qv_text_table::column> columns = {{"In the file"}};
  std::vector<std::string> outcomes, kinds;
  for (const auto& tally : ledger.tallies) {
    if (tally.count == 0) continue;
    if (std::find(kinds.begin(), kinds.end(), tally.kind) == kinds.end()) {
      kinds.push_back(tally.kind);
    }
  }
  // The tallies of any one kind name every outcome in its order.
  for (const auto& tally : ledger.tallies) {
    if (tally.kind != ledger.tallies.front().kind) break;
    const bool happened = std::any_of(
        ledger.tallies.begin(), ledger.tallies.end(),
        [&](const auto& other) { return other.outcome == tally.outcome && other.count > 0; });
    if (happened) outcomes.push_back(tally.outcome);
  }
  for (const auto& outcome : outcomes) columns.push_back({outcome, right});
  qv_text_table table(columns);
  for (const auto& kind : kinds) {
    std::vector<std::string> cells = {kind};
    for (const auto& outcome : outcomes) {
      const auto found = std::find_if(
          ledger.tallies.begin(), ledger.tallies.end(),
          [&](const auto& tally) { return tally.kind == kind && tally.outcome == outcome; });
      cells.push_back(found == ledger.tallies.end() || found->count == 0
                          ? std::string(unknown)
                          : std::to_string(found->count));
    }
    table.add_row(cells);
  }
  return table.text();
}

std::string reasons_part(const qv_study_ledger& ledger) {
  struct group {
    std::size_t count = 0;
    double area = 0.0;
    double cut = 0.0;
    bool has_area = false;
  };
  std::map<std::tuple<std::string, std::string, std::string>, group> groups;
  for (const auto& fate : ledger.fates) {
    if (fate.outcome == "kept") continue;
    group& sum = groups[{fate.kind, fate.outcome, fate.reason}];
    ++sum.count;
    sum.area += fate.area.value_or(0.0);
    sum.cut += fate.cut.value_or(0.0);
    sum.has_area = sum.has_area || fate.area.has_value();
  }
  if (groups.empty()) return {};
  std::string text = "\n";
  std::size_t shown = 0;
  for (const auto& [what, sum] : groups) {
    if (shown++ == qv_summary_reason_count) {
      text += fmt::format("  … {} more reasons, see \"ledger\" in study.json\n",
                          groups.size() - qv_summary_reason_count);
      break;
    }
    const auto& [kind, outcome, reason] = what;
    text += fmt::format("  {} {} {}", sum.count, kind, outcome);
    if (sum.has_area) {
      text += fmt::format(" ({:.2f} m²", sum.area);
      if (sum.cut >= smallest_cut) text += fmt::format(", {:.2f} m² of it cut off", sum.cut);
      text += ')';
    }
    text += ": " + reason + "\n";
  }
  return text;
}

std::string opening_areas(const qv_study_opening_balance& sums) {
  if (sums.source <= 0.0) return {};
  std::string text = fmt::format("  Openings: {:.2f} m² in the file = {:.2f} m² of openings",
                                 sums.source, sums.openings);
  if (sums.merged > 0.0) text += fmt::format(" + {:.2f} m² said twice", sums.merged);
  if (sums.cut >= smallest_cut) text += fmt::format(" + {:.2f} m² cut off", sums.cut);
  return text + fmt::format(" + {:.2f} m² dropped\n", sums.dropped);
}

// Changes of one kind are told together.
std::string changes_part(const std::vector<qv_study_change>& changes) {
  std::map<std::tuple<std::string, std::string, std::string, std::string>, std::size_t> groups;
  for (const auto& change : changes) {
    ++groups[{change.element, change.param, change.before.value_or(unknown),
              change.after.value_or(unknown)}];
  }
  qv_text_table table({{"Configuration"}, {"changed", right}, {"what"}, {"before"}, {"after"}});
  for (const auto& [what, count] : groups) {
    const auto& [element, param, before, after] = what;
    table.add_row({element, std::to_string(count), param, before, after});
  }
  return table.text() + "  Each change is in \"configuration_changes\" of study.json.\n";
}

std::string headline(const qv_study_results& study) {
  std::size_t storeys = 0;
  std::size_t zones = 0;
  for (const auto& building : study.buildings) {
    storeys += building.floors.size();
    zones += building.zones.size();
  }
  const std::string objects =
      study.objects.empty() ? "" : ", " + qv_plural(study.objects.size(), "object", "objects");
  return fmt::format("Study of {}\n  {}, {}, {}, {}, {}, {}, {}{}\n", study.source,
                     qv_plural(study.buildings.size(), "building", "buildings"),
                     qv_plural(storeys, "storey", "storeys"), qv_plural(zones, "zone", "zones"),
                     qv_plural(study.spaces.size(), "space", "spaces"),
                     qv_plural(study.walls.size(), "wall", "walls"),
                     qv_plural(study.openings.size(), "opening", "openings"),
                     qv_plural(study.compositions.size(), "composition", "compositions"), objects);
}

}  // namespace

std::string qv_ledger_summary(const qv_study_ledger& ledger) {
  const qv_study_balance& sums = ledger.balance;
  std::string areas = fmt::format("  Surfaces: {:.2f} m² in the file = {:.2f} m² of walls",
                                  sums.source, sums.walls);
  if (sums.shading > 0.0) areas += fmt::format(" ({:.2f} m² of shading)", sums.shading);
  if (sums.objects > 0.0) areas += fmt::format(" + {:.2f} m² of objects", sums.objects);
  if (sums.merged > 0.0) areas += fmt::format(" + {:.2f} m² said twice", sums.merged);
  areas += fmt::format(" + {:.2f} m² dropped\n", sums.dropped);
  areas += opening_areas(ledger.opening_balance);
  if (!sums.balanced || !ledger.opening_balance.balanced)
    areas += "  These areas do not balance: please report this file.\n";
  return counts_part(ledger) + areas + reasons_part(ledger);
}

std::string qv_study_summary(const qv_study_results& study) {
  std::string text = headline(study);
  if (!study.buildings.empty()) text += "\n" + buildings_part(study);
  if (!study.spaces.empty()) text += "\n" + spaces_part(study);
  if (!study.walls.empty()) text += "\n" + walls_part(study);
  if (const std::string openings = qv_openings_summary(study); !openings.empty()) {
    text += "\n" + openings;
  }
  if (!study.heat_loss.boundaries.empty()) text += "\n" + qv_heat_loss_summary(study);
  if (!study.changes.empty()) text += "\n" + changes_part(study.changes);
  text += "\n" + qv_ledger_summary(study.ledger);
  if (!study.findings.empty()) text += "\n" + findings_part(study.findings);
  if (!study.notes.empty()) text += '\n';
  for (const std::string& note : study.notes) text += "  Note: " + note + '\n';
  if (const std::string sun = qv_sun_summary(study.sun); !sun.empty()) text += "\n" + sun;
  return text;
}

}  // namespace qv
