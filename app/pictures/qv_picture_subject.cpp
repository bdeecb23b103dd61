#include "app/pictures/qv_picture_subject.h"

#include <algorithm>
#include <vector>

#include "app/readers/qv_gbxml_reader.h"
#include "app/study/qv_study_results.h"
#include "bim/envelope/qvi_opening.h"
#include "bim/envelope/qvi_wall.h"

namespace qv {
namespace {

// Calls `take(item, result)` for each item of a type with the study's result of it; a study lists
// them in scene order.
template <class Result, class Take>
void for_each_result(qv_scene& scene, const char* type, const std::vector<Result>& results,
                     Take take) {
  const qv_list<qv_item*>& items = scene.get_items(type);
  const auto count = std::min(static_cast<std::size_t>(items.get_count()), results.size());
  for (std::size_t i = 0; i < count; ++i) take(items[static_cast<int>(i)], results[i]);
}

// The ids of all elements that items of a type were made of; merged ones have several.
template <class Item>
void take_source_ids(qv_scene& scene, const char* type,
                     std::unordered_map<std::string, qv_item*>& ids) {
  for (qv_item* item : scene.get_items(type))
    for (const std::string& id : static_cast<const Item*>(item)->get_source_ids())
      ids.try_emplace(id, item);
}

}  // namespace

qv_picture_subject qv_make_picture_subject(const qv_gbxml_model& model,
                                           const qv_study_results& study) {
  qv_picture_subject subject;
  subject.scene = model.scene.get();
  subject.azimuth = study.location.azimuth.value_or(0.0);
  qv_scene& scene = *subject.scene;
  subject.groups = qv_collect_export_groups(scene);
  auto& ids = subject.items_by_id;
  auto& u_values = subject.u_values;
  const auto take_id = [&ids](qv_item* item, const auto& result) {
    ids.try_emplace(result.id, item);
  };

  for_each_result(scene, "space", study.spaces, take_id);
  for_each_result(scene, "wall", study.walls, [&](qv_item* item, const qv_study_wall& wall) {
    take_id(item, wall);
    if (wall.u_with_surfaces) u_values[item] = *wall.u_with_surfaces;
  });
  for_each_result(scene, "opening", study.openings, [&](qv_item* item, const auto& opening) {
    take_id(item, opening);
    if (opening.u) u_values[item] = *opening.u;
  });
  for_each_result(scene, "connexion", study.thermal_bridges, take_id);
  take_source_ids<qvi_wall>(scene, "wall", ids);
  take_source_ids<qvi_opening>(scene, "opening", ids);
  const qv_list<qv_item*>& items = scene.get_items("item");
  for (qv_item* item : items)
    if (item->has_unique_id()) ids.try_emplace(item->get_unique_id(), item);
  for (qv_item* item : items)
    if (!item->get_name().empty()) ids.try_emplace(item->get_name(), item);
  return subject;
}

}  // namespace qv
