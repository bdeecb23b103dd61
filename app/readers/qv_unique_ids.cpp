#include "app/readers/qv_unique_ids.h"

namespace qv {

void qv_unique_ids::give(qv_item* item, const std::string& id) {
  if (id.empty()) return;
  std::string unique = id;
  for (int count = 2; !given_.insert(unique).second; ++count)
    unique = id + "-" + std::to_string(count);
  item->set_unique_id(unique);
}

}  // namespace qv
