#include "core/items/qv_param.h"

#include <cstddef>

#include "core/items/qv_item.h"
#include "core/items/qv_param_store.h"
#include "core/items/qv_shared_value.h"

namespace qv {

qv_param::~qv_param() {
  switch (get_kind()) {
    case type_matrix:
      release_heap_value<qv_matrix>(storage_.heap);
      break;
    case type_string:
      release_heap_value<std::string>(storage_.heap);
      break;
    case type_item:
      unlink(storage_.item.target);
      break;
    case type_float_list:
      release_heap_value<qv_list<float>>(storage_.heap);
      break;
    case type_unsigned_list:
      release_heap_value<qv_list<unsigned int>>(storage_.heap);
      break;
    case type_int_list:
    case type_enum_list:
      release_heap_value<qv_list<int>>(storage_.heap);
      break;
    case type_3dvector_list:
      release_heap_value<qv_list<qv_3dvector>>(storage_.heap);
      break;
    case type_string_list:
      release_heap_value<qv_list<std::string>>(storage_.heap);
      break;
    case type_item_list:
      for (qv_item* target : get_item_list()) unlink(target);
      release_heap_value<qv_list<qv_item*>>(storage_.heap);
      break;
    default:
      break;
  }
}

const qv_param_declaration& qv_param::get_declaration() const {
  return qv_param_declaration::at(declaration_);
}

qv_item* qv_param::get_owner() const {
  const qv_param* const first = this - slot_;
  if (in_store_ != 0) return (reinterpret_cast<const qv_param_store*>(first) - 1)->owner_;
  using block = qv_param_store::extra_block;
  const auto* const bytes = reinterpret_cast<const std::byte*>(first);
  return reinterpret_cast<const block*>(bytes - offsetof(block, params))->store->owner_;
}

const std::string& qv_param::get_name() const {
  return get_declaration().name;
}
const qv_list<std::string>* qv_param::get_labels() const {
  return get_declaration().labels;
}
const qv_param_options& qv_param::get_options() const {
  return get_declaration().options;
}

float qv_param::get_float() const {
  return get_kind() == type_float ? storage_.number : 0.0f;
}
void qv_param::store_float(float value) {
  if (get_kind() == type_float) storage_.number = value;
}

int qv_param::get_int() const {
  return get_kind() == type_int || get_kind() == type_enum ? storage_.integer : 0;
}
void qv_param::store_int(int value) {
  if (get_kind() == type_int || get_kind() == type_enum) storage_.integer = value;
}

bool qv_param::get_bool() const {
  return get_kind() == type_bool && storage_.flag;
}
void qv_param::store_bool(bool value) {
  if (get_kind() == type_bool) storage_.flag = value;
}

const qv_3dvector& qv_param::get_3dvector() const {
  return get_kind() == type_3dvector ? storage_.vector : empty_value<qv_3dvector>();
}
void qv_param::store_3dvector(const qv_3dvector& value) {
  if (get_kind() == type_3dvector) storage_.vector = value;
}

const qv_color& qv_param::get_color() const {
  return get_kind() == type_color ? storage_.color : empty_value<qv_color>();
}
void qv_param::store_color(const qv_color& value) {
  if (get_kind() == type_color) storage_.color = value;
}

// The kinds on the heap: read as their empty value while nothing was stored.
#define QV_HEAP_VALUE(T_, stem, is_kind)                                  \
  const T_& qv_param::get_##stem() const {                                \
    const param_type kind = get_kind();                                   \
    return (is_kind) ? heap_value<T_>(storage_.heap) : empty_value<T_>(); \
  }                                                                       \
  void qv_param::store_##stem(const T_& value) {                          \
    const param_type kind = get_kind();                                   \
    if (is_kind) store_heap_value(storage_.heap, value);                  \
  }
QV_HEAP_VALUE(qv_matrix, matrix, kind == type_matrix)
QV_HEAP_VALUE(std::string, string, kind == type_string)
QV_HEAP_VALUE(qv_list<float>, float_list, kind == type_float_list)
QV_HEAP_VALUE(qv_list<qv_3dvector>, 3dvector_list, kind == type_3dvector_list)
QV_HEAP_VALUE(qv_list<int>, int_list, kind == type_int_list || kind == type_enum_list)
#undef QV_HEAP_VALUE

// The lists that are often the same as one stored shortly before.
#define QV_SHARED_LIST(T_, stem)                                                  \
  const qv_list<T_>& qv_param::get_##stem() const {                               \
    return get_kind() == type_##stem ? heap_value<qv_list<T_>>(storage_.heap)     \
                                     : empty_value<qv_list<T_>>();                \
  }                                                                               \
  void qv_param::store_##stem(const qv_list<T_>& value) {                         \
    if (get_kind() == type_##stem) recent_lists<T_>::store(storage_.heap, value); \
  }
QV_SHARED_LIST(std::string, string_list)
QV_SHARED_LIST(unsigned int, unsigned_list)
#undef QV_SHARED_LIST

// --- references ---

qv_item* qv_param::get_item() const {
  return get_kind() == type_item ? storage_.item.target : nullptr;
}

void qv_param::store_item(qv_item* value) {
  if (get_kind() != type_item) return;
  unlink(storage_.item.target);
  storage_.item.target = value;
  link(value);
}

const qv_list<qv_item*>& qv_param::get_item_list() const {
  return get_kind() == type_item_list ? heap_value<qv_list<qv_item*>>(storage_.heap)
                                      : empty_value<qv_list<qv_item*>>();
}

void qv_param::store_item_list(const qv_list<qv_item*>& value) {
  if (get_kind() != type_item_list || &get_item_list() == &value) return;
  for (qv_item* target : get_item_list()) unlink(target);
  store_heap_value(storage_.heap, value);
  for (qv_item* target : get_item_list()) link(target);
}

void qv_param::link(qv_item* target) {
  if (target == nullptr) return;
  qv_referrer_list& params = target->referrers_;
  if (get_kind() == type_item) {
    storage_.item.position = static_cast<std::uint32_t>(params.get_count());
  }
  params.append(this);
}

void qv_param::unlink(qv_item* target) {
  if (target == nullptr || target->referrers_.get_count() == 0) return;
  qv_referrer_list& params = target->referrers_;
  int position = params.get_count();
  if (get_kind() == type_item) {
    position = static_cast<int>(storage_.item.position);
  } else {
    while (position > 0 && params[position - 1] != this) --position;
    if (position-- == 0) return;
  }
  qv_param* const moved = params.remove(position);
  if (moved != nullptr && moved->get_kind() == type_item) {
    moved->storage_.item.position = static_cast<std::uint32_t>(position);
  }
}

void qv_param::forget(qv_item* target) {
  if (get_kind() == type_item) {
    store_item(nullptr);
    return;
  }
  const bool keeps_places = get_options().keeps_places;
  qv_list<qv_item*> kept;
  for (qv_item* entry : get_item_list()) {
    if (entry != target) {
      kept.append(entry);
    } else if (keeps_places) {
      kept.append(nullptr);
    }
  }
  store_item_list(kept);
}

}  // namespace qv
