#pragma once

#include <string>
#include <unordered_set>

#include "core/items/qv_item.h"

namespace qv {

/// Gives items the ids that their source elements bear, so that results can be traced back to the
/// file and two readings of it agree. An id that an item has already gets "-2", "-3", … behind it.
class qv_unique_ids {
 public:
  /// An empty id leaves the item without (it gets a random one when first asked).
  void give(qv_item* item, const std::string& id);

 private:
  std::unordered_set<std::string> given_;
};

}  // namespace qv
