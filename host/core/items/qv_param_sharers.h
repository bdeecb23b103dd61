#pragma once

#include <vector>

namespace qv {

class qv_item;

/// The items whose parameters belong to another one, in the order in which they came to share them:
/// those that a copy constructor made, and those that were assigned to. A parameter knows its owner
/// only; these refer to what it refers to and change when it changes as well. Mostly there are
/// none.
///
/// `qv_item` keeps the list.
class qv_param_sharers {
 public:
  static const std::vector<qv_item*>& get_all();
  /// An item that does not share yet.
  static void add(qv_item* item);
  /// Does nothing for an item that does not share.
  static void remove(qv_item* item);
};

}  // namespace qv
