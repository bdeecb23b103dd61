#pragma once

#include <string>
#include <unordered_map>

#include "app/readers/qv_gbxml_context.h"

namespace qv {

class qv_gbxml_schedules;
class qvi_schedule;
class qvi_space;
class qvi_usage;
class qvi_zone;

/// The usages of spaces and zones of a gbXML file: people, lighting and equipment of spaces, set
/// points and fresh air of zones. Spaces, or zones, that say the same share a usage.
///
/// - Spaces: PeopleNumber, PeopleHeatGain (the total one, else sensible and latent together, else
///   the usage's default), LightPowerPerArea, EquipPowerPerArea, and their schedules. Loads are
///   those per area, but where the file counts persons by space: then persons and equipment are
///   totals, for which the space's stated area is needed.
/// - Zones: DesignHeatT and DesignCoolT, or schedules of temperatures where the zone names them; no
///   heating or cooling where all its spaces are unconditioned. Fresh air of OAFlowPerZone, else of
///   OAFlowPerPerson and OAFlowPerArea, else of AirChangesPerHour: in m³/h, m³/(h·m²), or 1/h.
class qv_gbxml_usages {
 public:
  qv_gbxml_usages(qv_gbxml_context& context, qv_gbxml_schedules& schedules, qv_item* parent)
      : context_(context), schedules_(schedules), parent_(parent) {}

  /// Gives a space its usages. All spaces come before the zones.
  void give_space(qv_xml_element element, qvi_space& space, const qv_source_space& source);
  void give_zone(qv_xml_element element, qvi_zone& zone);

 private:
  /// What is known of a zone by its spaces.
  struct zone_facts {
    int unconditioned = 0;
    int conditioned = 0;
    double area = 0;  // stated, m²
    double persons = 0;
  };
  struct measured {
    double value = 0;
    bool per_area = false;
  };

  double read_scaled(qv_xml_element element, const char* what,
                     const std::unordered_map<std::string, double>& factors);
  measured read_persons(qv_xml_element element);
  double read_heat_gain(qv_xml_element element);
  void give_gains(qv_xml_element element, qvi_space& space, const qv_source_space& source);
  void give_lighting(qv_xml_element element, qvi_space& space);
  void give_set_points(qv_xml_element element, qvi_zone& zone);
  void give_fresh_air(qv_xml_element element, qvi_zone& zone);
  qvi_schedule* find_set_point(qv_xml_element element, const char* schedule, const char* value);
  template <class Usage, class Fill>
  Usage* share(const std::string& key, const std::string& name, const Fill& fill);

  qv_gbxml_context& context_;
  qv_gbxml_schedules& schedules_;
  qv_item* parent_;
  std::unordered_map<const qvi_zone*, zone_facts> zones_;
  std::unordered_map<std::string, qvi_usage*> usages_;  // by what they say
};

}  // namespace qv
