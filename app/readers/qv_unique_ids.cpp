#include "app/readers/qv_unique_ids.h"

namespace qv {

void qv_unique_ids::give(qv_item* item, const std::string& id) {
  if (id.empty()) return;
  item->set_unique_id(id);
  for (int count = 2; !given_.insert(item->get_unique_id()).second; ++count)
    item->set_unique_id(id + "-" + std::to_string(count));
}

}  // namespace qv
