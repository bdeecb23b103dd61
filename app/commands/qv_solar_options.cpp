#include "app/commands/qv_solar_options.h"

#include <array>

#include "app/commands/qv_command_line.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"

namespace qv {

void qv_add_solar_options(qv_command& command, qv_solar_options& options) {
  static constexpr std::array<qv_choice<qv_solar_quality>, 3> qualities = {
      {{"draft", qv_solar_quality::draft},
       {"normal", qv_solar_quality::normal},
       {"fine", qv_solar_quality::fine}}};
  command.add_option({"--weather", "FILE",
                      "Weather of a year, an EPW file; without one the sky\n"
                      "is clear all year at the model's place"},
                     options.weather);
  command.add_choice("--quality", "Rays and error of the sun", qualities, options.quality);
  command.add_number_option({"--reflexions", "N",
                             "Reflexions of sun and sky that are followed (2);\n"
                             "0: none"},
                            0, 100, "whole number from 0 to 100", options.reflexions);
}

qv_solar_progress qv_show_solar_progress(qv_progress& progress) {
  return [&progress](std::size_t done, std::size_t count) {
    progress.advance(done, count);
    return !qv_interrupt::is_requested();
  };
}

}  // namespace qv
