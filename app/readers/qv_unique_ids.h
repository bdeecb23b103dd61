#pragma once

#include <string>
#include <string_view>
#include <unordered_set>

#include "core/items/qv_item.h"

namespace qv {

/// Gives items the ids that their source elements bear, so that results can be traced back to the
/// file and two readings of it agree. An id that an item has already gets "-2", "-3", … behind it.
/// The items must stay, and keep their ids, as long as this.
class qv_unique_ids {
 public:
  /// `expected`: how many items there will be, roughly.
  explicit qv_unique_ids(std::size_t expected) { given_.reserve(expected); }

  /// An empty id leaves the item without (it gets a random one when first asked).
  void give(qv_item* item, const std::string& id);

 private:
  std::unordered_set<std::string_view> given_;  // the items' own texts
};

}  // namespace qv
