#pragma once

#include <array>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_id_map.h"

namespace qv {

class qvi_composition;
class qvi_material;
class qv_unique_ids;

/// The Material, Layer and Construction elements of a gbXML file, and the materials and
/// compositions made from them.
///
/// A Construction lists layers from outside to inside, and a Layer one material or several. That is
/// the order of a composition as well: outer layer first for walls and roofs, bottom first for
/// floors, whose outside is their underside. Only a floor between two spaces whose normal points up
/// has its outside on top; it gets the same layers in reverse, bottom first.
///
/// Materials of the same name and values become one item, and so do compositions of the same name
/// and layers.
class qv_gbxml_constructions {
 public:
  explicit qv_gbxml_constructions(qv_gbxml_context& context) : context_(context) {}

  /// Reads the children of `root`. Ids given twice end the reading unless both elements say the
  /// same.
  void read(qv_xml_element root);

  /// The number of the Construction of that id, −1 when there is none.
  int find(std::string_view id) const;
  /// Counts a wall of type `wall_type` (index of the wall's enumeration) that is to have
  /// construction `number`. All uses are counted before `make_items`.
  void count_use(int number, bool reversed, int wall_type);

  /// Makes the items as children of `parent` and completes the ledger.
  void make_items(qv_item* parent, qv_unique_ids& ids);
  /// A construction as one panel.
  struct panel {
    std::string name;
    double thickness = 0;   // m, of the layers that state one; 0 when none does
    double resistance = 0;  // m²·K/W, of the layers whose resistance is known
  };
  /// Nothing when no layer's resistance is known.
  std::optional<panel> get_panel(int number) const;
  /// The first construction that says the same, itself when there is none.
  int get_first_alike(int number) const {
    const int first = constructions_[static_cast<std::size_t>(number)].same_as;
    return first >= 0 ? first : number;
  }
  const std::string& get_name(int number) const {
    return constructions_[static_cast<std::size_t>(number)].name;
  }
  /// The composition of a construction; null for number −1.
  qvi_composition* get_composition(int number, bool reversed) const;

 private:
  struct material {
    std::string id;
    std::string name;
    std::optional<double> thickness;      // m
    std::optional<double> conductivity;   // W/(m·K)
    std::optional<double> density;        // kg/m³
    std::optional<double> specific_heat;  // J/(kg·K)
    std::optional<double> resistance;     // m²·K/W
    std::string key;                      // name and values, the same for the same material
    std::size_t entry = 0;
    qvi_material* item = nullptr;
  };
  struct layer {
    std::string id;
    std::vector<int> materials;
    std::size_t entry = 0;
    bool used = false;
  };
  struct construction {
    std::string id;
    std::string name;
    std::vector<int> materials;  // outside first
    std::optional<double> transmittance;
    std::size_t entry = 0;
    int same_as = -1;
    // Walls of each type that use it, as it stands and reversed.
    std::array<std::array<int, 3>, 2> uses{};
    std::array<qvi_composition*, 2> items{};
  };

  void read_material(qv_xml_element element);
  void read_layer(qv_xml_element element);
  void read_construction(qv_xml_element element);
  void complete_resistance(material& m);
  void complete_without_layers(construction& c);
  int share_material(material m);
  void share_construction(int number);
  void make_composition(qv_item* parent, qv_unique_ids& ids, construction& c, bool reversed);

  qv_gbxml_context& context_;
  std::vector<material> materials_;
  std::vector<layer> layers_;
  std::vector<construction> constructions_;
  qv_id_map material_by_id_;
  qv_id_map material_by_key_;
  qv_id_map layer_by_id_;
  qv_id_map construction_by_id_;
  qv_id_map construction_by_key_;
};

}  // namespace qv
