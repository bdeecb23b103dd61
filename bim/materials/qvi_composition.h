#pragma once

#include <memory>

#include "core/items/qv_accessors.h"

namespace qv {

class qvi_matter;

/// The layered build-up of an opaque wall, floor or roof. Item type "composition".
///
/// Layers of a wall or roof run from the outer face to the inner one, those of a floor from bottom
/// to top. A layer is a matter, whose thickness the composition states, or a material, which brings
/// its own.
///
/// U is the inverse of the layers' resistances alone, without the films of air on either side.
class qvi_composition : public qv_item {
  QV_ITEM_CLASS(qvi_composition, qv_item, "composition")

  enum class composition_insulation : int { none, interior, exterior, integrated };
  QV_ENUM_LIST(composition_insulation, "none", "interior", "exterior", "integrated")

  enum class composition_typology : int { wall, floor, roof };
  QV_ENUM_LIST(composition_typology, "wall", "floor", "roof")

  /// Where the insulation lies in the build-up.
  QV_PARAM_ENUM(composition_insulation, insulation, composition_insulation::none)
  /// Kind of building element.
  QV_PARAM_ENUM(composition_typology, typology, composition_typology::wall)
  /// A layer whose matter is destroyed is null and adds nothing.
  QV_PARAM_ITEM_LIST(qvi_matter, layers, {.keeps_places = true})
  /// Thickness of each layer in m, in the order of "layers".
  QV_PARAM_LIST(float, layer_thicknesses, {.compared = false})

  /// Thickness of layer `index` in m: the material's own, or for a plain matter the entry of
  /// "layer_thicknesses", 0 where that list is shorter. 0 for an index that is no layer.
  float get_layer_thickness(int index);
  /// Number of walls of the scene with this very composition; 0 without a scene.
  int get_wall_count();
  /// One of the layers is selected.
  bool has_selected_layer();

  // Results of the last `precompute`.

  /// Of all layers, m.
  float get_thickness() const { return results_->thickness; }
  /// Of all layers, K·m²/W.
  float get_resistance() const { return results_->resistance; }
  /// Thermal transmittance, W/(m²·K); 999 where the resistance is next to nothing.
  float get_U() const { return results_->U; }

  /// Same typology and insulation, the same name when `compare_names`, and layer by layer similar
  /// ones. The thicknesses of the layers do not count, deliberately: a material's own thickness is
  /// compared with the material, a matter's is not compared at all.
  bool is_similar_to(qv_item* other, bool compare_names) override;

  /// Sums the layers when anything in the scene changed since the last run, and keeps
  /// "layer_thicknesses" in step with them: one entry for each layer, 0.1 m where there was none,
  /// the material's own thickness for a material. A layer of conductivity 0 has an infinite
  /// resistance, which makes U 0. Time proportional to the layers.
  void precompute() override;

  /// Typology, insulation, thickness, resistance and U, then a table of the layers: a wall's from
  /// the outside to the inside, a floor's and a roof's from top to bottom.
  std::string get_html_information() override;

 private:
  struct layer_values {
    float thickness = 0;   // m
    float resistance = 0;  // K·m²/W
  };
  // A copy-constructed composition shares its source's results.
  struct composition_results {
    unsigned int date = 0;  // of the last computation; 0 never
    float thickness = 0;
    float U = 999.0f;
    float resistance = 0;
  };

  static layer_values get_layer_values(const qvi_matter* layer, float stated_thickness);
  std::string get_layer_table();

  std::shared_ptr<composition_results> results_ = std::make_shared<composition_results>();
};

}  // namespace qv
