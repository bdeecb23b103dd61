#pragma once

#include <string>
#include <vector>

#include "core/items/qv_item.h"

namespace qv_test {

/// Every item below `root` in scene order with its depth, name, type and parameters, references as
/// places in that order ("#3"; "lost" for what is not below `root`). Two trees with one text are
/// alike but for dates and unique ids.
std::string describe_tree(const qv::qv_item& root);

/// "item name.parameter" for each reference of an item below `root` to something that is not below
/// `root`; pointers are compared and never followed.
std::vector<std::string> find_lost_references(const qv::qv_item& root);

}  // namespace qv_test
