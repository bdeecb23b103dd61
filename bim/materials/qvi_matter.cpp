#include "bim/materials/qvi_matter.h"

namespace qv {

QV_ITEM_CLASS_COPYING(qvi_matter)

qvi_matter::qvi_matter() {
  set_diffuse_color(qv_color(0.8f, 0.8f, 0.8f, 1.0f));
  for (qv_spectrum spectrum : {qv_spectrum::solar, qv_spectrum::visible, qv_spectrum::thermal}) {
    set_direct_reflexion(0.0f, spectrum);
    set_direct_transmission(0.0f, spectrum);
    set_diffuse_reflexion(0.4f, spectrum);
    set_diffuse_transmission(0.0f, spectrum);
  }
}

}  // namespace qv
