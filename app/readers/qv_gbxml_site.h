#pragma once

#include <functional>
#include <map>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_id_map.h"

namespace qv {

class qv_unique_ids;
class qvi_building;
class qvi_campus;
class qvi_zone;

/// The hierarchy of a gbXML file: Campus, Location, Building, BuildingStorey, Space, Zone.
class qv_gbxml_site {
 public:
  explicit qv_gbxml_site(qv_gbxml_context& context) : context_(context) {}

  /// Reads the hierarchy below `root`, but for surfaces, which it lists for the caller. Ends the
  /// reading when two spaces, two zones or two buildings bear the same id.
  void read(qv_xml_element root);

  /// A Surface element and the number of the campus that it belongs to.
  struct surface_place {
    qv_xml_element element;
    int campus = 0;
  };
  const std::vector<surface_place>& get_surfaces() const { return surfaces_; }

  /// The number of the Space of that id, in the order of the model's `spaces`; −1 when there is
  /// none.
  int find_space(std::string_view id) const;
  /// Counts the SpaceBoundary elements that name a surface which is not there.
  void check_boundaries(const std::unordered_map<std::string_view, int>& surface_by_id);

  /// Makes the items below `root_item`: campuses with their buildings, zones and spaces.
  void make_items(qv_item* root_item, qv_unique_ids& ids);
  /// Calls `use` for each space, then `use_zone` for each zone item, with its element; after
  /// `make_items`.
  void visit(const std::function<void(qv_xml_element, qvi_space&, const qv_source_space&)>& use,
             const std::function<void(qv_xml_element, qvi_zone&)>& use_zone);
  /// The campus item of a number, after `make_items`.
  qvi_campus* get_campus(int number) const;

 private:
  struct campus_record {
    std::string id;
    std::string name;
    qvi_campus* item = nullptr;
  };
  struct building_record {
    std::string id;
    std::string name;
    int campus = 0;
    qvi_building* item = nullptr;
    qvi_zone* rest = nullptr;  // zone of its spaces that name none
  };
  struct zone_record {
    std::string id;
    std::string name;
    std::size_t entry = 0;
    qv_xml_element element;
    std::map<int, qvi_zone*> items;  // by building, −1 for none
  };
  struct space_record {
    qv_xml_element element;
    std::string name;
    int campus = 0;
    int building = -1;
    int zone = -1;
    std::size_t entry = 0;
  };

  int add_campus(qv_xml_element element);
  void read_campus(qv_xml_element element);
  void read_location(qv_xml_element element, const std::string& campus_id);
  void read_building(qv_xml_element element, int campus);
  void read_storey(qv_xml_element element, const std::string& building_id);
  void read_space(qv_xml_element element, int campus, int building);
  void read_shell(qv_xml_element element, qv_source_space& source);
  void read_zone(qv_xml_element element);
  void link_zones();
  qvi_zone* get_zone_item(zone_record& z, int building, qv_item* parent, qv_unique_ids& ids);
  qvi_zone* get_rest_zone(int building, qv_item* parent);

  qv_gbxml_context& context_;
  std::vector<campus_record> campuses_;
  std::vector<building_record> buildings_;
  std::vector<zone_record> zones_;
  std::vector<space_record> spaces_;
  std::vector<surface_place> surfaces_;
  qv_id_map building_by_id_;
  qv_id_map space_by_id_;
  qv_id_map zone_by_id_;
};

}  // namespace qv
