#include "bim/materials/qvi_material.h"

#include "bim/qv_panel.h"

namespace qv {

QV_ITEM_CLASS_IMPLEMENTATION(qvi_material)

std::string qvi_material::get_html_information() {
  std::string html = get_panel_head();
  html += panel::row("Epaisseur :", panel::truncated(get_thickness() * 1000.0f) + " mm");
  html += panel::row("Résistance :", panel::fixed(get_resistance(), 3) + " K.m<sup>2</sup>/W");
  return html + get_panel_tail();
}

}  // namespace qv
