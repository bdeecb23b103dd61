#include "bim/envelope/qvi_wall.h"
#include "bim/hierarchy/qvi_space.h"
#include "bim/materials/qvi_composition.h"
#include "bim/qv_panel.h"

namespace qv {

namespace {

constexpr const char* outside_label = "Extérieur";

std::string link_or(qvi_space* space, const char* otherwise) {
  return space != nullptr ? space->get_html_link() : otherwise;
}

}  // namespace

std::string qvi_wall::get_html_information() {
  qvi_space* const space_0 = get_space_0();
  qvi_space* const space_1 = get_space_1();
  const bool two_spaces = space_0 != nullptr && space_1 != nullptr;
  qvi_space* const one_space = space_0 != nullptr ? space_0 : space_1;

  // The first row of spaces deliberately begins with its cell: the host's panel opens the row
  // itself, and its texts are fixed to the byte.
  std::string label;
  std::string spaces;
  switch (get_wall_type()) {
    case wall_type::wall:
      label = two_spaces ? "Paroi intérieure" : "Façade";
      spaces = two_spaces
                   ? "<td><b>Pièce 1 :</b></td><td>" + space_0->get_html_link() +
                         "</td></tr><tr><td><b>Pièce 2 :</b></td><td>" + space_1->get_html_link()
                   : "<td><b>Pièce :</b></td><td>" + link_or(one_space, outside_label);
      break;
    case wall_type::floor: {
      label = two_spaces ? "Plancher intermédiaire" : "Plancher bas";
      const bool upwards = get_normal().z > 0;
      spaces = two_spaces ? "<td><b>Pièce inférieure :</b></td><td>" +
                                (upwards ? space_0 : space_1)->get_html_link() +
                                "</td></tr><tr><td><b>Pièce supérieure :</b></td><td>" +
                                (upwards ? space_1 : space_0)->get_html_link()
                          : "<td><b>Pièce :</b></td><td>" + link_or(one_space, "");
      break;
    }
    case wall_type::roof:
      label = "Toiture";
      spaces = "<td><b>Pièce :</b></td><td>" + link_or(space_0, "");
      break;
  }

  qvi_composition* const composition = get_composition();
  std::string text(panel::table_start);
  text += "<tr><td><b>Type :</b></td><td>" + label + "</td></tr>";
  text += spaces + "</td></tr>";
  text += "<tr><td><b>Composition : </b></td><td>";
  if (composition != nullptr) text += composition->get_html_link();
  text += "</td></tr><tr><td><b>Sens de la composition : </b></td><td>";
  text += link_or(space_0, outside_label) + " vers " + link_or(space_1, outside_label);
  text += "</td></tr>";
  return text += panel::table_end;
}

}  // namespace qv
