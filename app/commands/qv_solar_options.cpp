#include "app/commands/qv_solar_options.h"

#include <CLI/CLI.hpp>
#include <map>

#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"

namespace qv {

void qv_add_solar_options(CLI::App& command, qv_solar_options& options) {
  constexpr int most_reflexions = 100;
  command
      .add_option("--weather", options.weather,
                  "Weather of a year, an EPW file; without one the sky\n"
                  "is clear all year at the model's place")
      ->option_text("FILE");
  const std::map<std::string, qv_solar_quality> qualities = {{"draft", qv_solar_quality::draft},
                                                             {"normal", qv_solar_quality::normal},
                                                             {"fine", qv_solar_quality::fine}};
  command
      .add_option_function<std::string>(
          "--quality",
          [&options, qualities](const std::string& word) { options.quality = qualities.at(word); },
          "Rays and error of the sun: draft, normal or fine")
      ->option_text("Q")
      ->check([qualities](const std::string& word) {
        return qualities.count(word) != 0 ? std::string()
                                          : "\"" + word + "\" is not draft, normal or fine";
      });
  command
      .add_option("--reflexions", options.reflexions,
                  "Reflexions of sun and sky that are followed (2);\n0: none")
      ->option_text("N")
      ->check([](const std::string& text) {
        int value = 0;
        const bool fits =
            CLI::detail::lexical_cast(text, value) && value >= 0 && value <= most_reflexions;
        return fits ? std::string() : "\"" + text + "\" is no number from 0 to 100";
      });
}

qv_solar_progress qv_show_solar_progress(qv_progress& progress) {
  return [&progress](std::size_t done, std::size_t count) {
    progress.advance(done, count);
    return !qv_interrupt::is_requested();
  };
}

}  // namespace qv
