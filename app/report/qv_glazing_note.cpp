#include "app/report/qv_glazing_note.h"

#include <fmt/format.h>

#include "app/report/qv_text_table.h"
#include "bim/materials/qv_glazing_calculation.h"
#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_glass.h"

namespace qv {
namespace {

using kind = glazing_layer_step::kind;
constexpr auto right = qv_text_table::align::right;

// The slopes in the order of the columns.
constexpr glazing_slope slopes[] = {glazing_slope::vertical, glazing_slope::inclined,
                                    glazing_slope::horizontal};

std::vector<qv_text_table::column> slope_columns(const char* title) {
  return {{title}, {"vertical", right}, {"45°", right}, {"horizontal", right}};
}

template <class Value>
std::vector<std::string> slope_row(const std::string& title, const char* form, Value value) {
  std::vector<std::string> row = {title};
  for (const glazing_slope slope : slopes)
    row.push_back(fmt::format(fmt::runtime(form), value(slope)));
  return row;
}

float millimetres(float metres) {
  return metres * 1000.0f;
}

const qvi_glazing_glass& pane_of(const glazing_layer_step& step) {
  return *static_cast<const qvi_glazing_glass*>(step.layer);
}

std::string layer_text(const glazing_calculation& found, std::size_t index) {
  const qvi_glazing_layer& layer = *found.steps[index].layer;
  return fmt::format("{} {}", index + 1, layer.get_name());
}

std::string figures_part(const glazing_calculation& found) {
  std::string text;
  const auto line = [&text](const char* title, const std::string& value) {
    text += fmt::format("  {:<20}{}\n", title, value);
  };
  line("U vertical", fmt::format("{:.3f} W/(m².K)", found.get_U(glazing_slope::vertical)));
  line("U at 45°", fmt::format("{:.3f} W/(m².K)", found.get_U(glazing_slope::inclined)));
  line("U horizontal", fmt::format("{:.3f} W/(m².K)", found.get_U(glazing_slope::horizontal)));
  line("solar factor g", fmt::format("{:.3f}", found.get_solar_factor()));
  line("light transmittance", fmt::format("{:.3f}", found.visible.transmittance));
  line("thickness", fmt::format("{:.2f} mm", millimetres(found.thickness)));
  return text;
}

std::string layers_part(const glazing_calculation& found) {
  std::vector<qv_text_table::column> columns = {{"Layer, outside first"}};
  for (const char* title : {"s mm", "λ W/(m.K)", "τe", "ρe", "ρe'", "τv", "ρv", "ρv'", "ε", "ε'"})
    columns.push_back({title, right});
  qv_text_table table(columns);
  for (std::size_t i = 0; i < found.steps.size(); ++i) {
    const glazing_layer_step& step = found.steps[i];
    std::vector<std::string> row = {layer_text(found, i),
                                    fmt::format("{:.2f}", millimetres(step.layer->get_thickness())),
                                    fmt::format("{:.5f}", step.layer->get_conductivity())};
    if (step.sort == kind::pane) {
      const qvi_glazing_glass& p = pane_of(step);
      for (const float value : {p.get_solar_transmittance(), p.get_solar_reflectance_front(),
                                p.get_solar_reflectance_back(), p.get_visible_transmittance(),
                                p.get_visible_reflectance_front(), p.get_visible_reflectance_back(),
                                p.get_thermal_emissivity_front(), p.get_thermal_emissivity_back()})
        row.push_back(fmt::format("{:.3f}", value));
    }
    table.add_row(row);
  }
  return table.text() +
         "  s thickness, λ conductivity, τ transmitted and ρ reflected of the sun (e) and the "
         "light\n"
         "  (v), ε emissivity; ' of the face towards the room.\n";
}

std::string gap_part(const glazing_calculation& found, std::size_t index) {
  const glazing_layer_step& step = found.steps[index];
  const gap_exchange& exchange = step.exchange;
  std::string text =
      fmt::format("  Gap, layer {}: s = {:.2f} mm, 15 K across it at a mean of 283 K\n",
                  layer_text(found, index), millimetres(step.layer->get_thickness()));
  const auto line = [&text](const char* title, const std::string& value) {
    text += fmt::format("    {:<46}{}\n", title, value);
  };
  line("conductivity λ, W/(m.K)", fmt::format("{:.6g}", step.gas.conductivity));
  line("dynamic viscosity µ, kg/(m.s)", fmt::format("{:.6g}", step.gas.viscosity));
  line("specific heat c, J/(kg.K)", fmt::format("{:.6g}", step.gas.specific_heat));
  line("density ρ, kg/m³", fmt::format("{:.6g}", step.gas.density));
  line("Prandtl Pr = c µ / λ", fmt::format("{:.6g}", exchange.prandtl));
  line("Grashof Gr = 9.81 s³ 15 ρ² / (µ² 283)", fmt::format("{:.6g}", exchange.grashof));
  line("Gr Pr", fmt::format("{:.6g}", exchange.grashof * exchange.prandtl));
  line("emissivities ε1 before, ε2 behind",
       fmt::format("{:.6g}, {:.6g}", step.emissivity[0], step.emissivity[1]));
  line("radiation hr = 5.140465 / (1/ε1 + 1/ε2 - 1)",
       fmt::format("{:.6g} W/(m².K)", exchange.radiative));
  qv_text_table table(slope_columns(""));
  const auto value = [](const float(&list)[glazing_slope_count]) {
    return [&list](glazing_slope slope) { return list[static_cast<int>(slope)]; };
  };
  table.add_row({"Nu = max(1, A (Gr Pr)^n), A and n", "0.035  0.38", "0.10  0.31", "0.16  0.28"});
  table.add_row(slope_row("Nusselt Nu", "{:.5f}", value(exchange.nusselt)));
  table.add_row(slope_row("convection hg = Nu λ / s", "{:.5f}", value(exchange.convective)));
  table.add_row(slope_row("hr + hg", "{:.5f}", [&](glazing_slope slope) {
    return exchange.radiative + exchange.convective[static_cast<int>(slope)];
  }));
  return text + table.text();
}

std::string resistances_part(const glazing_calculation& found) {
  qv_text_table table(slope_columns("Resistances, m².K/W"));
  const auto same = [](float value) { return [value](glazing_slope) { return value; }; };
  table.add_row(slope_row("outside", "{:.5f}", same(outer_surface_resistance)));
  for (std::size_t i = 0; i < found.steps.size(); ++i) {
    const glazing_layer_step& step = found.steps[i];
    table.add_row(slope_row(
        layer_text(found, i) + (step.sort == kind::gap ? ": 1 / (hr + hg)" : ": s / λ"), "{:.5f}",
        [&step](glazing_slope slope) { return step.resistance[static_cast<int>(slope)]; }));
  }
  table.add_row(slope_row("inside 1 / hi", "{:.5f}", same(1.0f / found.inner_coefficient)));
  table.add_rule();
  table.add_row(slope_row("sum R", "{:.5f}", [&found](glazing_slope slope) {
    return found.resistance[static_cast<int>(slope)];
  }));
  table.add_row(slope_row("U = 1 / R, W/(m².K)", "{:.5f}",
                          [&found](glazing_slope slope) { return found.get_U(slope); }));
  const bool ends_with_pane = !found.steps.empty() && found.steps.back().sort == kind::pane;
  return table.text() +
         (ends_with_pane
              ? fmt::format("  hi = 3.6 + 4.1 ε' / 0.837 = {:.5f} W/(m².K), ε' of the last layer\n",
                            found.inner_coefficient)
              : fmt::format("  hi = {:.5f} W/(m².K), as no pane is last\n",
                            found.inner_coefficient));
}

std::string radiation_part(const glazing_calculation& found) {
  qv_text_table table({{"Of the whole"},
                       {"transmitted", right},
                       {"reflected outside", right},
                       {"reflected inside", right}});
  const auto row = [&table](const char* title, const pane_optics& optics) {
    table.add_row({title, fmt::format("{:.5f}", optics.transmittance),
                   fmt::format("{:.5f}", optics.reflectance_front),
                   fmt::format("{:.5f}", optics.reflectance_back)});
  };
  row("sun", found.solar);
  row("light", found.visible);
  return table.text();
}

// How the heat that panes give off inwards follows from what they absorb (α), by EN 410.
const char* inward_formula(const glazing_calculation& found) {
  switch (found.steps.size()) {
    case 1:
      return "    qi = α1 hi / (hi + 25)\n";
    case 3:
      return "    qi = ((α1 + α3) / 25 + α3 R) / (R + 1/hi + 0.04), R the sum of the three s / λ\n";
    default:
      return "    qi = ((α3 + α5) R13 + α5 R35 + (α1 + α3 + α5) / 25) / (R13 + R35 + 1/hi + "
             "0.04),\n"
             "    R13 the s / λ from outside to the middle of layer 3, R35 from there to the "
             "inside\n";
  }
}

std::string solar_part(const glazing_calculation& found) {
  std::string text;
  const auto line = [&text](const std::string& title, float value) {
    text += fmt::format("    {:<46}{:.5f}\n", title, value);
  };
  text += "  Solar factor\n";
  line("transmitted τe", found.solar.transmittance);
  if (found.has_gain) {
    int pane = 0;
    for (std::size_t i = 0; i < found.steps.size(); ++i) {
      if (found.steps[i].sort == kind::pane) {
        line(fmt::format("α{} absorbed by {}", i + 1, layer_text(found, i)),
             found.gain.absorbed[pane++]);
      }
    }
    for (std::size_t i = 0; found.steps.size() > 1 && i < found.steps.size(); ++i)
      line("s / λ of " + layer_text(found, i) + ", m².K/W", found.steps[i].plain_resistance);
    text += inward_formula(found);
    line("given off inwards qi", found.gain.inward);
  } else {
    text += "    nothing that panes give off inwards is counted for these layers\n";
  }
  line("g = τe + qi", found.get_solar_factor());
  return text;
}

// U where EN 673 reads the front face of the pane behind a gap.
float U_by_front_faces(const glazing_calculation& found, glazing_slope slope) {
  float resistance = found.resistance[static_cast<int>(slope)];
  for (std::size_t i = 0; i + 1 < found.steps.size(); ++i) {
    const glazing_layer_step& gap = found.steps[i];
    if (gap.sort != kind::gap || found.steps[i + 1].sort != kind::pane) continue;
    const gap_exchange exchange =
        exchange_across_gap(gap.gas, gap.layer->get_thickness(), gap.emissivity[0],
                            pane_of(found.steps[i + 1]).get_thermal_emissivity_front());
    resistance += exchange.get_resistance(slope) - gap.resistance[static_cast<int>(slope)];
  }
  return 1.0f / resistance;
}

bool has_unread_front(const glazing_calculation& found) {
  for (std::size_t i = 0; i + 1 < found.steps.size(); ++i)
    if (found.steps[i].sort == kind::gap && found.steps[i + 1].sort == kind::pane &&
        pane_of(found.steps[i + 1]).get_thermal_emissivity_front() != found.steps[i].emissivity[1])
      return true;
  return false;
}

// Whether a gap lies beside something else than a pane.
bool is_open_gap(const glazing_calculation& found, std::size_t index) {
  const auto& steps = found.steps;
  if (steps[index].sort != kind::gap) return false;
  return index == 0 || index + 1 == steps.size() || steps[index - 1].sort != kind::pane ||
         steps[index + 1].sort != kind::pane;
}

std::string notes_part(const glazing_calculation& found) {
  std::size_t gap_count = 0;
  for (const glazing_layer_step& step : found.steps) gap_count += step.sort == kind::gap ? 1 : 0;
  std::string text;
  for (std::size_t i = 0; i < found.steps.size(); ++i)
    if (is_open_gap(found, i))
      text += fmt::format(
          "  Note: gap {} has no pane on one side, as no glazing has it: next to nothing is "
          "counted\n"
          "        as radiating across it, which makes U too small.\n",
          layer_text(found, i));
  if (has_unread_front(found))
    text += fmt::format(
        "  Note: the emissivity of a pane behind a gap is read from its back face. By its front\n"
        "        face, as in EN 673, U is {:.3f} vertical, {:.3f} at 45°, {:.3f} horizontal.\n",
        U_by_front_faces(found, glazing_slope::vertical),
        U_by_front_faces(found, glazing_slope::inclined),
        U_by_front_faces(found, glazing_slope::horizontal));
  if (gap_count > 1)
    text +=
        "  Note: each gap has 15 K across it; EN 673 shares 15 K out among them, which makes U\n"
        "        smaller where gases convect.\n";
  if (found.has_gain && gap_count > 0)
    text +=
        "  Note: the heat given off inwards counts gaps as gas at rest; EN 410 counts convection\n"
        "        and radiation too.\n";
  return text;
}

}  // namespace

std::string qv_glazing_note(qvi_glazing& glazing) {
  glazing.precompute();
  const glazing_calculation found = calculate_glazing(glazing.get_layers());
  std::string text = "Glazing " + glazing.get_name() + "\n\n" + figures_part(found) + "\n" +
                     layers_part(found) + "\n";
  for (std::size_t i = 0; i < found.steps.size(); ++i)
    if (found.steps[i].sort == kind::gap) text += gap_part(found, i) + "\n";
  text += resistances_part(found) + "\n" + radiation_part(found) + "\n" + solar_part(found);
  const std::string notes = notes_part(found);
  return notes.empty() ? text : text + "\n" + notes;
}

}  // namespace qv
