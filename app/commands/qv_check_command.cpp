#include <array>
#include <memory>
#include <optional>
#include <set>
#include <utility>

#include "app/check/qv_check.h"
#include "app/commands/qv_command_line.h"
#include "app/commands/qv_commands.h"
#include "app/commands/qv_context_option.h"
#include "app/commands/qv_interrupt.h"
#include "app/commands/qv_progress.h"
#include "app/readers/qv_file.h"
#include "app/readers/qv_gbxml_turn.h"
#include "app/report/qv_findings_report.h"
#include "app/report/qv_output_folder.h"
#include "app/study/qv_study.h"

namespace qv {
namespace {

struct check_arguments {
  std::string model;
  bool fix = false;
  std::string repaired;
  bool as_json = false;
  qv_context_options context;
};

// What the check finds, and what of the context was left out.
struct check_result {
  std::vector<qv_finding> findings;
  std::vector<std::string> notes;
};

check_result find(const std::string& name, const std::string& bytes,
                  const qv_context_options& context) {
  qv_gbxml_model model = qv_read_gbxml_bytes(name, bytes);
  std::vector<std::string> notes = qv_add_context(model, context);
  qv_compute_model(model, {});
  return {qv_check_model(model).findings, std::move(notes)};
}

// Turns the surfaces that look into their space.
qv_turned_gbxml repair(const std::string& name, const std::string& bytes,
                       const std::vector<qv_finding>& findings) {
  std::set<std::string> ids;
  for (const qv_finding& finding : findings)
    if (finding.code == "reversed-normal") ids.insert(finding.id);
  return qv_turn_gbxml_surfaces(name, bytes, ids);
}

qv_findings_report check(const check_arguments& arguments, std::vector<std::string>& notes) {
  const qv_interrupt interrupt;
  // Before the work, so that a wrong place is told at once.
  std::optional<qv_output_file> file;
  if (arguments.fix)
    file.emplace(arguments.repaired, qv_read_files(arguments.model, arguments.context));
  qv_progress progress;
  const int step_count = arguments.fix ? 3 : 2;
  progress.begin_step(1, step_count, "reading the model");
  const std::string bytes = qv_read_file(arguments.model, "a gbXML file");
  progress.begin_step(2, step_count, "checking the model");
  qv_findings_report report;
  report.source = arguments.model;
  check_result found = find(arguments.model, bytes, arguments.context);
  report.findings = std::move(found.findings);
  notes = std::move(found.notes);
  if (!file) return report;
  progress.begin_step(3, step_count, "repairing the model");
  const qv_turned_gbxml turned = repair(arguments.model, bytes, report.findings);
  file->stage(turned.text);
  report.repaired_file = arguments.repaired;
  report.turned_count = turned.count;
  report.findings = find(arguments.repaired, turned.text, arguments.context).findings;
  file->commit();
  return report;
}

int run_check(const check_arguments& arguments) {
  std::vector<std::string> notes;
  const qv_findings_report report = check(arguments, notes);
  qv_print_notes(notes);
  qv_print(arguments.as_json ? qv_findings_json(report) : qv_findings_text(report));
  return report.findings.empty() ? qv_exit_success : qv_exit_findings;
}

}  // namespace

void qv_add_check_command(qv_command& program) {
  static constexpr std::array<qv_choice<bool>, 2> formats = {{{"text", false}, {"json", true}}};
  const auto arguments = std::make_shared<check_arguments>();
  qv_command& command = program.add_command(
      "check", "Look for what is wrong with a gbXML model: holes, reversed surfaces, …");
  command.add_model(arguments->model);
  command.add_flag("--fix", "Turn the surfaces that look into their space", arguments->fix);
  command.add_option({"--out", "MODEL2", "With --fix: the file for the repaired model"},
                     arguments->repaired);
  command.add_choice("--format", "text: one line for each finding", formats, arguments->as_json);
  qv_add_context_options(command, arguments->context);
  command.set_footer(
      "Exit code 0 when there is nothing to tell, 1 with findings (with --fix: those left in "
      "MODEL2).\n\n"
      "Examples:\n"
      "  qv check house.xml\n"
      "  qv check house.xml --format json\n"
      "  qv check house.xml --fix --out mended.xml");
  command.set_check([arguments]() -> std::string {
    return arguments->fix == arguments->repaired.empty() ? "--fix and --out go together" : "";
  });
  command.set_action([arguments] { return run_check(*arguments); });
}

}  // namespace qv
