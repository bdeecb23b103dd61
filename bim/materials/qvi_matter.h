#pragma once

#include "core/shapes/qvi_shader.h"

namespace qv {

/// A bulk substance that walls, floors and roofs are made of: concrete, mineral wool, plaster. It
/// is known by its physical properties and by its surface, which is that of a shader. Item type
/// "matter", a kind of "shader".
///
/// A matter has no thickness; a composition that uses it as a layer states the layer's thickness. A
/// product of given thickness is a `qvi_material`.
///
/// A new matter is a light grey, matt surface: colour 0.8, diffuse reflexion 0.4 in every spectrum,
/// no other reflexion and no transmission.
///
/// Two matters are similar (`is_similar_to`) when everything is equal but for small differences of
/// conductivity (up to 0.001 W/(m·K)), density (up to 1 kg/m³) and specific heat (up to 1
/// J/(kg·K)).
class qvi_matter : public qvi_shader {
  QV_ITEM_CLASS(qvi_matter, qvi_shader, "matter")

  /// Role of the matter in a wall.
  enum class material_typology : int {
    heavy_structure,
    light_structure,
    insulator,
    facing,
    inner_facing,
    other
  };
  QV_ENUM_LIST(material_typology, "heavy_structure", "light_structure", "insulator", "facing",
               "inner_facing", "other")

  QV_PARAM_ENUM(material_typology, typology, material_typology::other)
  /// Thermal conductivity, W/(m·K).
  QV_PARAM(float, conductivity, 0.0f, {.tolerance = 0.001f})
  /// kg/m³.
  QV_PARAM(float, density, 0.0f, {.tolerance = 1.0f})
  /// Specific heat capacity, J/(kg·K).
  QV_PARAM(float, specific_heat, 0.0f, {.tolerance = 1.0f})

  /// Number of compositions of the scene with this very matter among their layers, each counted
  /// once. 0 without a scene.
  virtual int get_composition_count();

  /// Typology, conductivity, specific heat, density, and the diffuse reflexion of the three spectra
  /// as albedo, visible reflectance and thermal emissivity.
  std::string get_html_information() override;

 protected:
  // The panel's first rows (title and typology) and its last (physical properties and surface),
  // between which a product shows its own.
  std::string get_panel_head();
  std::string get_panel_tail();
};

}  // namespace qv
