#include <fmt/format.h>

#include <algorithm>
#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_progress.h"
#include "app/readers/qv_gbxml_reader.h"
#include "app/report/qv_study_summary.h"
#include "app/report/qv_utf8.h"
#include "app/study/qv_study_gather.h"

namespace qv {
namespace {

constexpr std::size_t widest_text = 200;

std::string line(const char* title, const std::string& content) {
  if (content.empty()) return {};
  return fmt::format("  {:<12}{}\n", title, qv_fit_to_width(content, widest_text));
}

std::string units_text(const qv_source_units& units) {
  std::string text;
  for (const std::string& unit : {units.length, units.area, units.volume, units.temperature}) {
    if (!unit.empty()) text += (text.empty() ? "" : ", ") + unit;
  }
  return text;
}

std::string location_text(const qv_study_location& site) {
  std::string text = site.name.value_or("");
  const auto add = [&text](const std::string& part) { text += (text.empty() ? "" : ", ") + part; };
  if (site.latitude && site.longitude) {
    add(fmt::format("latitude {:.4f}°, longitude {:.4f}°", *site.latitude, *site.longitude));
  }
  if (site.elevation) add(fmt::format("elevation {:.1f} m", *site.elevation));
  if (site.azimuth) add(fmt::format("+Y {:.1f}° clockwise from north", *site.azimuth));
  return text;
}

std::string stated_text(const qv_gbxml_model& model, std::optional<double> qv_source_space::*stated,
                        const char* unit) {
  std::size_t count = 0;
  double sum = 0.0;
  for (const qv_source_space& space : model.spaces) {
    if (!(space.*stated).has_value()) continue;
    ++count;
    sum += *(space.*stated);
  }
  if (count == 0) return "none stated";
  return fmt::format("{:.2f} {} stated by {} of {} spaces", sum, unit, count, model.spaces.size());
}

std::string info_text(const std::string& path, const qv_gbxml_model& model) {
  const auto closed = std::count_if(model.spaces.begin(), model.spaces.end(),
                                    [](const auto& space) { return space.closed; });
  std::string text = path + "\n";
  text += line("format", "gbXML");
  text += line("written by", model.program);
  text += line("units", units_text(model.units));
  text += line("site", location_text(qv_gather_location(model)));
  text += line("holds", fmt::format("buildings {}, storeys {}, zones {}, spaces {} ({} closed), "
                                    "objects {}",
                                    model.building_count, model.storeys.size(), model.zones.size(),
                                    model.spaces.size(), closed,
                                    model.scene->get_items("bim_object").get_count()));
  text += line("area", stated_text(model, &qv_source_space::stated_area, "m²"));
  text += line("volume", stated_text(model, &qv_source_space::stated_volume, "m³"));
  text += "\n" + qv_ledger_summary(qv_gather_ledger(model.ledger));
  if (!model.warnings.empty()) text += '\n';
  for (const std::string& warning : model.warnings) text += "  Note: " + warning + "\n";
  return text;
}

int run_info(const std::string& path) {
  std::string text;
  {
    qv_progress progress;
    progress.begin_step(1, 1, "reading the model");
    text = info_text(path, qv_read_gbxml(path));
  }
  qv_print(text);
  return qv_exit_success;
}

}  // namespace

void qv_add_info_command(qv_command& program) {
  const auto model = std::make_shared<std::string>();
  qv_command& command =
      program.add_command("info", "Say what a gbXML model holds, without studying it");
  command.add_model(*model);
  command.set_footer("Example:\n  qv info house.xml");
  command.set_action([model] { return run_info(*model); });
}

}  // namespace qv
