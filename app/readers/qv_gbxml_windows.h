#pragma once

#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include "app/readers/qv_gbxml_constructions.h"
#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_gbxml_glazing_layers.h"
#include "app/readers/qv_gbxml_opening_type.h"
#include "app/readers/qv_id_map.h"

namespace qv {

class qvi_glazing;
class qvi_opaque;
class qvi_opening_composition;
class qvi_opening_shader;
class qv_unique_ids;

/// What openings of a gbXML file are filled with: its WindowType elements, and the Construction
/// elements that its doors name.
///
/// A WindowType becomes an opening composition:
/// - with Glaze and Gap children, a glazing of these layers, outside first;
/// - with U-value, solar heat gain coefficient and visible transmittance only, a glazing of the one
///   pane that shows these three figures;
/// - with one or two of them, forced values of the composition, the rest being unknown;
/// - with none, a name.
/// Where it describes a Frame, its figures speak of the whole window and are forced values too.
/// WindowTypes of the same name and content become one composition.
///
/// A door's Construction becomes an opaque panel as thick as its layers (`unknown_leaf_thickness`
/// where that is not said) that resists like them; like a wall's, its U counts no surface
/// resistances. The Construction of any other opening gives it its U and leaves it glazed.
class qv_gbxml_windows {
 public:
  static constexpr double unknown_leaf_thickness = 0.04;  // m

  /// What fills one opening.
  struct filling {
    int window_type = -1;
    int construction = -1;
    /// A door, whose construction is a panel.
    bool door = false;
    /// Opaque where nothing else is said.
    bool leaf = false;
    /// Nothing fills it.
    bool air = false;
    /// What the opening itself states.
    qv_opening_figures own;

    bool is_said() const { return air || window_type >= 0 || construction >= 0 || own.any(); }
  };

  /// Composition and front shader of an opening; either may be null.
  struct filling_items {
    qvi_opening_composition* composition = nullptr;
    qvi_opening_shader* shader = nullptr;
  };

  qv_gbxml_windows(qv_gbxml_context& context, const qv_gbxml_constructions& constructions)
      : context_(context), constructions_(constructions) {}

  /// Reads the WindowType children of `root`. An id given twice ends the reading unless both say
  /// the same.
  void read(qv_xml_element root);
  /// What an Opening says of its filling; what is wrong with it goes into ledger entry `entry`.
  filling read_filling(qv_xml_element opening, qv_gbxml_opening_type type, std::size_t entry);

  /// Makes the compositions of the WindowTypes as children of `parent`, and completes the ledger.
  void make_items(qv_item* parent, qv_unique_ids& ids);
  /// The items for a filling; those that no WindowType stands for are made when first asked for.
  filling_items get_items(const filling& f);

 private:
  struct window_type {
    std::string id;
    std::string name;
    qv_opening_figures figures;
    std::vector<qv_glazing_layer_text> layers;
    bool framed = false;
    std::string key;  // all of it, for comparison
    std::size_t entry = 0;
    int same_as = -1;
    qvi_opening_composition* item = nullptr;
  };

  void read_window_type(qv_xml_element element);
  void fill_composition(window_type& w);
  qvi_glazing* make_glazing(window_type& w);
  void compare_with_stated(const window_type& w, qvi_glazing& glazing);
  qvi_glazing* make_pane(window_type& w);
  qvi_opening_composition* add_composition(const std::string& name);
  filling_items get_air();
  filling_items get_panel(int construction);
  filling_items get_glazed_construction(int construction);
  qvi_opaque* get_unknown_leaf();

  struct made_construction {
    int construction = 0;
    filling_items items;
  };

  qv_gbxml_context& context_;
  const qv_gbxml_constructions& constructions_;
  std::vector<window_type> types_;
  qv_id_map type_by_id_;
  qv_id_map type_by_key_;
  qv_item* parent_ = nullptr;
  filling_items air_;
  std::vector<made_construction> panels_;
  std::vector<made_construction> glazed_;
  qvi_opaque* unknown_leaf_ = nullptr;
};

}  // namespace qv
