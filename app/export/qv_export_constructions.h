#pragma once

#include <map>
#include <string>
#include <utility>
#include <vector>

#include "app/export/qv_xml_writer.h"

namespace qv {

class qv_scene;
class qvi_composition;
class qvi_matter;
class qvi_wall;

/// The compositions of a scene as the Construction, Layer and Material elements of gbXML. A
/// composition that lies reversed in some walls becomes a second Construction; a matter becomes a
/// Material of each thickness that it has.
class qv_construction_export {
 public:
  explicit qv_construction_export(qv_scene& scene) : scene_(scene) {}

  /// Id of the Construction of a wall; empty without a composition.
  std::string get_id(const qvi_wall& wall);

  /// Writes those that were asked for and those that no wall uses, which stay in the model.
  void write(qv_xml_writer& xml);

 private:
  using key = std::pair<qvi_composition*, bool>;  // the second is reversed

  std::string get_id(qvi_composition* composition, bool reversed);
  void write_layers(const key& which, const std::string& id, qv_xml_writer& xml);
  std::string material_of(qvi_composition& composition, int index);
  void write_materials(qv_xml_writer& xml) const;

  qv_scene& scene_;
  std::map<key, std::string> constructions_;
  std::map<std::pair<qvi_matter*, float>, std::string> material_ids_;
  std::vector<std::pair<qvi_matter*, float>> materials_;
};

}  // namespace qv
