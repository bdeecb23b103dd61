#include "tests/support/qv_scene_text.h"

#include <unordered_map>

using namespace qv;

namespace qv_test {

namespace {

using places = std::unordered_map<const qv_item*, int>;

places number_items(const qv_item& root) {
  places result;
  for (const qv_item* item : root.collect("item"))
    if (item != &root) result.emplace(item, static_cast<int>(result.size()));
  return result;
}

// The items that a parameter refers to; null references are left out.
qv_list<qv_item*> get_references(const qv_param& param) {
  qv_list<qv_item*> references;
  if (param.get_param_type() == qv_param::type_item && param.get_item() != nullptr)
    references.append(param.get_item());
  if (param.get_param_type() == qv_param::type_item_list) references = param.get_item_list();
  return references;
}

int get_depth(const qv_item* item, const qv_item& root) {
  int depth = 0;
  for (; item->get_parent() != &root; item = item->get_parent()) ++depth;
  return depth;
}

}  // namespace

std::string describe_tree(const qv_item& root) {
  const places order = number_items(root);
  std::string text;
  for (qv_item* item : root.collect("item")) {
    if (item == &root) continue;
    text += "depth: " + std::to_string(get_depth(item, root)) + "\n";
    text += item->qv_item::get_txt_information();
    for (int i = 0; i < item->get_param_count(); ++i) {
      for (const qv_item* target : get_references(*item->get_param(i))) {
        const auto place = order.find(target);
        text += item->get_param(i)->get_name() + " → " +
                (place == order.end() ? "lost" : "#" + std::to_string(place->second)) + "\n";
      }
    }
  }
  return text;
}

std::vector<std::string> find_lost_references(const qv_item& root) {
  const places order = number_items(root);
  std::vector<std::string> lost;
  for (const qv_item* item : root.collect("item"))
    for (int i = 0; i < item->get_param_count(); ++i)
      for (const qv_item* target : get_references(*item->get_param(i)))
        if (order.find(target) == order.end())
          lost.push_back(item->get_name() + "." + item->get_param(i)->get_name());
  return lost;
}

}  // namespace qv_test
