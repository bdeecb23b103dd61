#pragma once

#include <string>

#include "app/export/qv_xml_writer.h"
#include "app/readers/qv_gbxml_reader.h"

namespace qv {

class qvi_zone;

/// Ids of the schedules of a space, empty where it has none.
struct qv_space_schedules {
  std::string light;
  std::string equipment;
  std::string people;
};

/// The usages of a model as the gbXML elements and attributes from which the reader makes the same
/// usages: people, their heat, light and equipment in spaces, set points and fresh air in zones.
///
/// gbXML knows powers per area alone: totals are divided by the area of the space that the reader
/// takes, the stated one or else that of its floors. Schedules are those of the model's file; a
/// constant set point has none and is a design temperature.
class qv_usage_export {
 public:
  explicit qv_usage_export(const qv_gbxml_model& model) : model_(model) {}

  qv_space_schedules get_schedules(const qvi_space& space) const;
  /// The elements within the space's; `source` is null for a space that the file does not have.
  void write(const qvi_space& space, const qv_source_space* source, qv_xml_writer& xml) const;

  /// Ids of the schedules of a zone, empty where it has none.
  std::string get_heating_schedule(const qvi_zone& zone) const;
  std::string get_cooling_schedule(const qvi_zone& zone) const;
  std::string get_air_schedule(const qvi_zone& zone) const;
  /// The fresh air, within the zone's element.
  void write(const qvi_zone& zone, qv_xml_writer& xml) const;

  /// Every schedule of the file with its weeks and days, to stand at the root. A schedule lies in
  /// the year in which the file begins it, so that days keep their places in the week.
  void write_schedules(qv_xml_writer& xml) const;

 private:
  std::string id_of(const qvi_schedule* schedule) const;

  const qv_gbxml_model& model_;
};

}  // namespace qv
