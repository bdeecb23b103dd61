#include "app/report/qv_heat_loss_summary.h"

#include <fmt/format.h>

#include "app/report/qv_summary_text.h"
#include "app/report/qv_text_table.h"

namespace qv {
namespace {

constexpr auto right = qv_text_table::align::right;

std::string thousandths(const std::optional<double>& value) {
  return value.has_value() ? fmt::format("{:.3f}", *value) : qv_unknown_text;
}

// "123.40 m²", with what of it has no known value behind it.
std::string measure(double value, double unknown_part, const char* unit) {
  std::string text = fmt::format("{:.2f} {}", value, unit);
  if (unknown_part > 0.0) text += fmt::format(" ({:.2f} without)", unknown_part);
  return text;
}

}  // namespace

std::string qv_heat_loss_summary(const qv_study_results& study) {
  const qv_heat_loss& sums = study.heat_loss;
  qv_text_table table({{"Heat loss"},
                       {"towards"},
                       {"area or length", right},
                       {"mean U or ψ", right},
                       {"W/K", right},
                       {"with surfaces", right},
                       {"W/K", right}});
  for (const auto* groups : {&sums.walls, &sums.openings}) {
    for (const qv_surface_loss& group : *groups) {
      table.add_row({group.type, group.boundary, measure(group.area, group.unknown_area, "m²"),
                     thousandths(group.get_mean_u()), qv_hundredths(group.loss),
                     thousandths(group.get_mean_u_with_surfaces()),
                     qv_hundredths(group.loss_with_surfaces)});
    }
  }
  for (const qv_bridge_loss& group : sums.bridges) {
    if (group.type == "no_loss") continue;
    const bool nothing_known = group.unknown_length >= group.length;
    table.add_row({group.type, "", measure(group.length, group.unknown_length, "m"),
                   thousandths(group.get_mean_psi()),
                   nothing_known ? qv_unknown_text : qv_hundredths(group.loss), "",
                   nothing_known ? qv_unknown_text : qv_hundredths(group.loss)});
  }
  table.add_rule();
  table.add_row({"H_T, mean U", "", measure(sums.area, sums.unknown_area, "m²"),
                 thousandths(sums.get_mean_u()), qv_hundredths(sums.h_t),
                 thousandths(sums.get_mean_u_with_surfaces()),
                 qv_hundredths(sums.h_t_with_surfaces)});
  return table.text() +
         fmt::format(
             "  Of H_T, {:.2f} W/K are thermal bridges; ψ: {}.\n"
             "  \"with surfaces\": walls with 0.13, 0.10 or 0.17 and 0.04 m².K/W of surface "
             "resistance; the ground\n"
             "  itself resists nothing, adiabatic boundaries count for nothing.\n",
             sums.bridge_loss, study.psi_catalogue);
}

}  // namespace qv
