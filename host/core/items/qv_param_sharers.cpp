#include "core/items/qv_param_sharers.h"

#include <algorithm>
#include <iterator>

namespace qv {

namespace {

// Outlives every item, those that are destroyed after the end of `main` too.
std::vector<qv_item*>& sharers() {
  static auto& items = *new std::vector<qv_item*>;
  return items;
}

}  // namespace

const std::vector<qv_item*>& qv_param_sharers::get_all() {
  return sharers();
}

void qv_param_sharers::add(qv_item* item) {
  sharers().push_back(item);
}

void qv_param_sharers::remove(qv_item* item) {
  // What was made last mostly goes first.
  std::vector<qv_item*>& items = sharers();
  const auto found = std::find(items.rbegin(), items.rend(), item);
  if (found != items.rend()) items.erase(std::next(found).base());
}

}  // namespace qv
