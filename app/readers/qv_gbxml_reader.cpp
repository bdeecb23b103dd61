#include "app/readers/qv_gbxml_reader.h"

#include <memory>
#include <new>
#include <utility>

#include "app/readers/qv_file.h"
#include "app/readers/qv_gbxml_constructions.h"
#include "app/readers/qv_gbxml_context.h"
#include "app/readers/qv_gbxml_openings.h"
#include "app/readers/qv_gbxml_schedules.h"
#include "app/readers/qv_gbxml_site.h"
#include "app/readers/qv_gbxml_surfaces.h"
#include "app/readers/qv_gbxml_usages.h"
#include "app/readers/qv_gbxml_walls.h"
#include "app/readers/qv_gbxml_windows.h"
#include "app/readers/qv_unique_ids.h"
#include "app/readers/qv_xml_document.h"
#include "bim/project/qvi_bim_root.h"
#include "bim/qv_load_bim_items.h"

namespace {

std::string read_program(qv::qv_xml_element root) {
  const qv::qv_xml_element program = root.get_child("DocumentHistory").get_child("ProgramInfo");
  std::string text(program.get_child_text("ProductName"));
  const std::string_view version = program.get_child_text("Version");
  if (!text.empty() && !version.empty()) text += " ";
  return text + std::string(version);
}

void make_usages(qv::qv_gbxml_context& context, qv::qv_gbxml_site& site,
                 qv::qv_gbxml_schedules& schedules, qv::qv_item* parent, qv::qv_unique_ids& ids) {
  schedules.make_items(parent, ids);
  qv::qv_gbxml_usages usages(context, schedules, parent);
  site.visit(
      [&usages](qv::qv_xml_element element, qv::qvi_space& space,
                const qv::qv_source_space& source) { usages.give_space(element, space, source); },
      [&usages](qv::qv_xml_element element, qv::qvi_zone& zone) {
        usages.give_zone(element, zone);
      });
}

void build_model(qv::qv_gbxml_context& context) {
  const qv::qv_xml_element root = context.get_document().get_root();
  if (!root.is("gbXML"))
    context.fail(root, "is not gbXML: its root is <" + context.get_document().get_root_name() + ">",
                 "export the model as gbXML");
  context.read_root_units();
  qv::qv_gbxml_model& model = context.get_model();
  model.program = read_program(root);

  qv::qv_gbxml_constructions constructions(context);
  constructions.read(root);
  qv::qv_gbxml_windows windows(context, constructions);
  windows.read(root);
  qv::qv_gbxml_schedules schedules(context);
  schedules.read(root);
  qv::qv_gbxml_site site(context);
  site.read(root);
  qv::qv_gbxml_surfaces surfaces(context, site, constructions);
  surfaces.read();
  surfaces.bring_to_origin();
  surfaces.merge_duplicates();
  qv::qv_gbxml_walls walls(context, site, constructions, surfaces);
  walls.turn_outwards();
  walls.choose_types();
  walls.measure_spaces();
  qv::qv_gbxml_openings openings(context, surfaces, windows);
  openings.read();

  static const bool loaded = (qv_load_bim_items(), true);
  static_cast<void>(loaded);
  model.scene = std::make_unique<qv::qv_scene>();
  model.root = new qv::qvi_bim_root;
  model.root->set_name(context.get_document().get_name());
  model.root->set_original_walls_spaces(true);
  qv::qv_unique_ids ids(model.ledger.get_entries().size());
  constructions.make_items(model.root, ids);
  site.make_items(model.root, ids);
  make_usages(context, site, schedules, model.root, ids);
  windows.make_items(model.root, ids);
  walls.make_items(ids);
  openings.make_items(ids);
  // As a whole, which the scene indexes in one go.
  model.scene->add_child(model.root, -1);
  context.finish();
}

}  // namespace

namespace qv {

qv_gbxml_model qv_read_gbxml(const std::string& path) {
  try {
    return qv_read_gbxml_bytes(path, qv_read_file(path, "a gbXML file"));
  } catch (const std::bad_alloc&) {
    throw qv_input_error(qv_input_error::kind::no_access, {path, 0, "", ""},
                         "is too large for the memory of this machine", "split the model");
  }
}

qv_gbxml_model qv_read_gbxml_bytes(const std::string& name, std::string bytes) {
  const qv_xml_document document(name, std::move(bytes));
  qv_gbxml_model model;
  model.warnings = document.get_warnings();
  qv_gbxml_context context(document, model);
  build_model(context);
  return model;
}

}  // namespace qv
