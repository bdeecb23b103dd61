#pragma once

#include <string>

#include "app/export/qv_xml_writer.h"

namespace qv {

class qvi_glazing;

/// Whether gbXML can say what the glazing is made of so that it reads back alike: panes with shares
/// between 0 and 1, and gaps of one gas. Not so with films, cells, and gases mixed or given by
/// hand; nor with a single pane that only stands for the three figures of a data sheet, and is said
/// by these. The glazing must be precomputed.
bool qv_has_gbxml_layers(qvi_glazing& glazing);

/// Writes the glazing's layers as Glaze and Gap elements, outside first; their ids begin with `id`.
void qv_write_gbxml_layers(const qvi_glazing& glazing, const std::string& id, qv_xml_writer& xml);

}  // namespace qv
