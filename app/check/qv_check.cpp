#include "app/check/qv_check.h"

#include <algorithm>
#include <utility>

#include "app/check/qv_check_scope.h"

namespace qv {
namespace {

std::ptrdiff_t rank_of(const std::string& code) {
  const auto codes = qv_check_codes();
  return std::find_if(codes.begin(), codes.end(),
                      [&code](const qv_check_code& known) { return known.code == code; }) -
         codes.begin();
}

}  // namespace

qv_check_report qv_check_model(const qv_gbxml_model& model) {
  qv_check_scope scope(model);
  qv_check_hierarchy(scope);
  qv_check_leaks(scope);
  qv_check_orientation(scope);
  qv_check_overlaps(scope);
  qv_check_openings(scope);
  qv_check_materials(scope);
  qv_check_stated_sizes(scope);
  qv_check_polygons(scope);
  std::stable_sort(
      scope.report.findings.begin(), scope.report.findings.end(),
      [](const qv_finding& a, const qv_finding& b) { return rank_of(a.code) < rank_of(b.code); });
  return std::move(scope.report);
}

}  // namespace qv
