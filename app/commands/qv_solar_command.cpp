#include <fmt/format.h>

#include <memory>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"
#include "app/commands/qv_solar_options.h"
#include "app/readers/qv_input_error.h"
#include "app/report/qv_sun_report.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

struct solar_arguments {
  qv_study_options study;
  bool hourly = false;
};

const qv_surface_sun* find_sun(const qv_study_results& study, const std::string& id) {
  for (std::size_t i = 0; i < study.walls.size(); ++i)
    if (study.walls[i].id == id) return study.sun.get_wall(i);
  for (std::size_t i = 0; i < study.openings.size(); ++i)
    if (study.openings[i].id == id) return study.sun.get_opening(i);
  return nullptr;
}

std::string sum_text(const std::string& id, const qv_surface_sun& sun, const std::string& weather) {
  std::string text =
      fmt::format("{}: {:.1f} ± {:.1f} kWh/m²: beam {:.1f}, sky {:.1f}, reflected {:.1f}\n", id,
                  sun.total, sun.half_width_95, sun.direct, sun.diffuse, sun.reflected);
  for (std::size_t m = 0; m < 12; ++m)
    text += fmt::format("  month {:2}  {:7.1f} kWh/m²\n", m + 1, sun.monthly_total[m]);
  return text + "Weather: " + weather + '\n';
}

int run_solar(const solar_arguments& arguments) {
  const std::string& id = arguments.study.solar.only;
  qv_study_results study;
  {
    const qv_interrupt interrupt;
    qv_progress progress;
    qv_study_options options = arguments.study;
    options.solar_progress = qv_show_solar_progress(progress);
    study = qv_run_study(options, progress.get_announcer());
  }
  const qv_surface_sun* sun = find_sun(study, id);
  if (sun == nullptr) {
    throw qv_input_error(
        qv_input_error::kind::bad_input, {arguments.study.model, 0, {}, id},
        study.sun.weather.empty() ? "does not say its latitude"
                                  : "no wall or opening of the id " + qv_quoted_id(id) +
                                        " stands towards the outside air",
        study.sun.weather.empty() ? "name a weather file with --weather"
                                  : "take an id of walls.csv or openings.csv of `qv study`");
  }
  qv_print_notes(study.notes);
  qv_print(arguments.hourly ? qv_surface_hours(study, id)
                            : sum_text(id, *sun, qv_name_weather(study.sun)));
  return qv_exit_success;
}

}  // namespace

void qv_add_solar_command(qv_command& program) {
  const auto arguments = std::make_shared<solar_arguments>();
  qv_solar_options& solar = arguments->study.solar;
  solar.wanted = true;
  solar.keep_hours = true;
  qv_command& command =
      program.add_command("solar", "Print what one wall or opening receives of the sun");
  command.add_model(arguments->study.model);
  command.add_required_option({"--surface", "ID", "Id of the wall or opening"}, solar.only);
  command.add_north(arguments->study.north);
  qv_add_context_options(command, arguments->study.context);
  qv_add_solar_options(command, solar);
  command.add_flag("--hourly", "Every hour (CSV) instead of the months", arguments->hourly);
  command.set_footer(
      "Examples:\n"
      "  qv solar house.xml --surface su-06\n"
      "  qv solar house.xml --weather lyon.epw --surface su-06 --hourly > hours.csv");
  command.set_action([arguments] { return run_solar(*arguments); });
}

}  // namespace qv
