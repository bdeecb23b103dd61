#include "app/report/qv_findings_report.h"

#include <fmt/format.h>

#include "app/readers/qv_input_error.h"
#include "app/report/qv_json_writer.h"
#include "app/report/qv_report_fields.h"
#include "app/report/qv_summary_text.h"
#include "app/report/qv_utf8.h"

namespace qv {
namespace {

constexpr long long format_version = 1;

std::string line_of(const qv_finding& finding) {
  std::string place;
  if (finding.place.has_value() && finding.place->size() == 3) {
    const std::vector<float>& p = *finding.place;
    place = fmt::format(" at ({:.2f}, {:.2f}, {:.2f})", p[0], p[1], p[2]);
  }
  return fmt::format("{}: {} \"{}\"{}: {}\n", finding.code, finding.kind,
                     qv_valid_utf8(qv_one_line(finding.id)), place,
                     qv_valid_utf8(qv_one_line(finding.message, 1000)));
}

}  // namespace

std::string qv_findings_text(const qv_findings_report& report) {
  std::string text;
  for (const qv_finding& finding : report.findings) text += line_of(finding);
  if (!report.repaired_file.empty())
    text +=
        fmt::format("{} turned, written to {}\n",
                    qv_plural(static_cast<std::size_t>(report.turned_count), "surface", "surfaces"),
                    report.repaired_file);
  if (report.findings.empty()) return text + "no findings\n";
  return text + qv_plural(report.findings.size(), "finding", "findings") + "\n";
}

std::string qv_findings_json(const qv_findings_report& report) {
  qv_json_writer json;
  json.begin_object();
  json.member("format", std::string("qv-check"));
  json.member("version", format_version);
  json.member("source", report.source);
  if (!report.repaired_file.empty()) {
    json.member("repaired_file", report.repaired_file);
    json.member("turned_surfaces", static_cast<long long>(report.turned_count));
  }
  json.key("findings");
  json.begin_array();
  for (const qv_finding& finding : report.findings) {
    json.begin_object(qv_json_writer::layout::one_line);
    json.members(qv_finding_fields(), finding);
    json.end_object();
  }
  json.end_array();
  json.end_object();
  return json.text();
}

}  // namespace qv
