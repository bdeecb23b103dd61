#include "tests/support/qv_test_openings.h"

#include "bim/materials/qvi_glazing.h"
#include "bim/materials/qvi_glazing_gaz.h"
#include "bim/materials/qvi_glazing_glass.h"

using namespace qv;

namespace qv_test {

qvi_opening* add_opening(qv_item& parent) {
  auto* const opening = add_new<qvi_opening>(parent);
  opening->set_normal({0, -1, 0});
  return opening;
}

qv_polygon facade_rectangle(float x0, float z0, float x1, float z1, float y) {
  qv_polygon shape({x0, y, z0}, {0, -1, 0});
  shape.add_contour({{x0, y, z0}, {x1, y, z0}, {x1, y, z1}, {x0, y, z1}});
  return shape;
}

qvi_polygon* add_piece(qvi_opening& opening, const qv_polygon& shape, qvi_shader* shader) {
  auto* const piece = new qvi_polygon;
  piece->load_from_polygon(&shape);
  piece->set_front_shader(shader);
  opening.add_child(piece, -1);
  return piece;
}

qvi_glazing* add_single_glazing(qv_item& parent, float transmittance, float conductivity) {
  auto* const glazing = add_new<qvi_glazing>(parent);
  auto* const pane = add_new<qvi_glazing_glass>(*glazing);
  pane->set_conductivity(conductivity);
  pane->set_solar_transmittance(transmittance);
  pane->set_solar_reflectance_front(1 - transmittance);
  pane->set_solar_reflectance_back(1 - transmittance);
  pane->set_visible_transmittance(transmittance);
  glazing->set_layers({pane});
  return glazing;
}

qvi_glazing* add_double_glazing(qv_item& parent) {
  auto* const glazing = add_new<qvi_glazing>(parent);
  auto* const outer = add_new<qvi_glazing_glass>(*glazing);
  auto* const gap = add_new<qvi_glazing_gaz>(*glazing);
  auto* const inner = add_new<qvi_glazing_glass>(*glazing);
  gap->set_thickness(0.016f);
  glazing->set_layers({outer, gap, inner});
  return glazing;
}

}  // namespace qv_test
