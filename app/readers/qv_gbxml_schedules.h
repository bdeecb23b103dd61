#pragma once

#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_id_map.h"
#include "utilities/qv_list.h"

namespace qv {

class qv_unique_ids;
class qvi_schedule;

/// The Schedule, WeekSchedule and DaySchedule elements of a gbXML file, and the schedules made from
/// them: 8760 hourly values of the year that the file speaks of.
///
/// A day takes the values of the day type of its week that speaks of it most closely. Days that no
/// YearSchedule or day type speaks of are 0, and a warning says how many. Values of schedules of
/// temperatures are in °C.
class qv_gbxml_schedules {
 public:
  explicit qv_gbxml_schedules(qv_gbxml_context& context) : context_(context) {}

  /// Reads the children of `root`.
  void read(qv_xml_element root);
  /// Makes an item of each schedule that has values, as children of `parent`.
  void make_items(qv_item* parent, qv_unique_ids& ids);

  /// The item of a Schedule id after `make_items`; null for an unknown or empty one.
  qvi_schedule* find(std::string_view id) const;
  /// True when the schedule is one of temperatures.
  bool is_temperature(std::string_view id) const;
  /// A schedule of one value all year round, °C; the same item for the same value.
  qvi_schedule* make_constant(double temperature);

 private:
  struct year_part {
    int first = 0;  // days of the year
    int last = 0;
    std::string week;
  };
  struct schedule {
    std::string id;
    std::string name;
    std::string type;
    std::string begin_date;
    std::vector<year_part> parts;
    qv_xml_element element;
    qvi_schedule* item = nullptr;
  };
  struct week_day {
    std::string type;
    std::string day;
  };

  void read_schedule(qv_xml_element element);
  void read_week(qv_xml_element element);
  void read_day(qv_xml_element element);
  const std::vector<float>* find_hours(const std::string& week, int weekday) const;
  qv_list<float> expand(const schedule& s, int& silent_days) const;

  qv_gbxml_context& context_;
  qv_item* parent_ = nullptr;
  std::vector<schedule> schedules_;
  std::vector<std::vector<week_day>> weeks_;
  std::vector<std::vector<float>> days_;  // 24 values each
  qv_id_map schedule_by_id_;
  qv_id_map week_by_id_;
  qv_id_map day_by_id_;
  std::unordered_map<std::string, qvi_schedule*> constants_;
};

}  // namespace qv
