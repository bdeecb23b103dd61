#pragma once

#include <string>

#include "app/readers/qv_gbxml_reader.h"

namespace qv {

/// The model as gbXML (version 6.01, SI units), which reads back to the same study: the same
/// spaces with their areas and volumes, walls with their areas, contact types and compositions,
/// openings with their areas, U values, solar factors and light transmittances, zones and spaces
/// with their usages and schedules.
///
/// What the model's own file says besides is kept: location, storeys, design temperatures, stated
/// areas and volumes. A wall becomes a Surface with its unpierced face; a face of several parts
/// becomes a Surface for each, and holes are led to by a seam. Ids are the items' unique ids. A
/// composition that lies reversed in some walls becomes a second Construction. A glazing is
/// written with its layers; of other fillings, and where figures were imposed, the figures. The
/// scene must be precomputed. Throws `qv_input_error` (bad input) for a model without walls, since
/// the format has none.
std::string qv_export_gbxml(const qv_gbxml_model& model);

}  // namespace qv
