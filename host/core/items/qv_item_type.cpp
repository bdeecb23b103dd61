#include "core/items/qv_item_type.h"

#include <new>
#include <string_view>
#include <unordered_map>

#include "core/items/qv_item.h"

namespace qv {

namespace {

/// All registered types, and those indexed by name so far. Lives until the process ends, like the
/// records.
struct registry {
  qv_list<qv_item_type*> types;
  std::unordered_map<std::string_view, qv_item_type*> by_name;
  int indexed_count = 0;
  int next_index = 0;

  void index_rest() {
    for (; indexed_count < types.get_count(); ++indexed_count) {
      by_name.emplace(types[indexed_count]->get_name(), types[indexed_count]);
    }
  }
};

registry& get_registry() {
  static auto& instance = *new registry;
  return instance;
}

}  // namespace

qv_item_type::qv_item_type(const std::string& name, qv_item_type* parent)
    : name_(name), parent_(parent), index_(get_registry().next_index++) {
  get_registry().types.append(this);
}

qv_item_type::~qv_item_type() {
  registry& known = get_registry();
  qv_list<qv_item_type*> others;
  for (qv_item_type* type : known.types) {
    if (type != this) others.append(type);
  }
  known.types = others;
  optimize_search();
}

qv_item* qv_item_type::create_item() const {
  return sample_ == nullptr ? nullptr : sample_->copy();
}

bool qv_item_type::derives_from(const std::string& name) const {
  for (const qv_item_type* type = this; type != nullptr; type = type->parent_) {
    if (type->name_ == name) return true;
  }
  return false;
}

bool qv_item_type::derives_from(const qv_item_type* other) const {
  for (const qv_item_type* type = this; type != nullptr; type = type->parent_) {
    if (type == other) return true;
  }
  return false;
}

void qv_item_type::optimize_search() {
  registry& known = get_registry();
  known.by_name.clear();
  known.indexed_count = 0;
  try {
    known.index_rest();
  } catch (const std::bad_alloc&) {
    // Memory is short: `find` indexes the rest.
  }
}

qv_item_type* qv_item_type::find(const std::string& name) {
  registry& known = get_registry();
  known.index_rest();
  const auto found = known.by_name.find(name);
  return found == known.by_name.end() ? nullptr : found->second;
}

const qv_list<qv_item_type*>& qv_item_type::get_types() {
  return get_registry().types;
}

}  // namespace qv
