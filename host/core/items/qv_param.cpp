#include "core/items/qv_param.h"

#include <cmath>
#include <cstddef>
#include <new>
#include <unordered_map>

#include "core/items/qv_item.h"
#include "core/items/qv_param_store.h"

namespace qv {

namespace {

/// The empty value that a list, string or matrix parameter without heap storage stands for.
template <class T>
const T& empty_value() {
  static const T value{};
  return value;
}

template <class T>
const T& heap_value(const void* heap) {
  return heap == nullptr ? empty_value<T>() : *static_cast<const T*>(heap);
}

template <class T>
void store_heap_value(void*& heap, const T& value) {
  if (heap == &value) return;
  if (heap != nullptr) {
    *static_cast<T*>(heap) = value;
  } else if (!(value == empty_value<T>())) {
    heap = new T(value);
  }
}

bool within(float a, float b, float tolerance) {
  return a == b || std::fabs(static_cast<double>(a) - static_cast<double>(b)) <=
                       static_cast<double>(tolerance);
}

}  // namespace

// --- declarations ---

const qv_param_declaration* qv_param_declaration::get(const std::string& name,
                                                      qv_param::param_type type,
                                                      const qv_list<std::string>* labels,
                                                      const qv_param_options& options) {
  using declarations = std::vector<std::unique_ptr<qv_param_declaration>>;
  static auto& by_name = *new std::unordered_map<std::string, declarations>;
  declarations& same_name = by_name[name];
  for (const auto& known : same_name) {
    if (known->type == type && known->labels == labels &&
        known->options.tolerance == options.tolerance &&
        known->options.compared == options.compared) {
      return known.get();
    }
  }
  same_name.push_back(
      std::unique_ptr<qv_param_declaration>(new qv_param_declaration{name, type, labels, options}));
  return same_name.back().get();
}

// --- store ---

struct qv_param_store::block {
  alignas(qv_param) std::byte params[block_size][sizeof(qv_param)];
  qv_param* at(int index) { return std::launder(reinterpret_cast<qv_param*>(params[index])); }
};

qv_param_store::qv_param_store(qv_item* owner) : owner_(owner) {}

qv_param_store::~qv_param_store() {
  for (int i = 0; i < count_; ++i) get(i)->~qv_param();
}

qv_param* qv_param_store::get(int index) const {
  return blocks_[static_cast<std::size_t>(index / block_size)]->at(index % block_size);
}

qv_param* qv_param_store::find(const std::string& name) const {
  for (int i = 0; i < count_; ++i) {
    if (get(i)->get_name() == name) return get(i);
  }
  return nullptr;
}

qv_param* qv_param_store::add(const qv_param_declaration* declaration, unsigned int date) {
  if (count_ % block_size == 0) blocks_.push_back(std::make_unique<block>());
  void* place = blocks_.back()->params[count_ % block_size];
  ++count_;
  return new (place) qv_param(declaration, owner_, date);
}

void qv_param_store::orphan() {
  owner_ = nullptr;
  for (int i = 0; i < count_; ++i) get(i)->owner_ = nullptr;
}

// --- parameter ---

qv_param::qv_param(const qv_param_declaration* declaration, qv_item* owner, unsigned int date)
    : declaration_(declaration), owner_(owner), date_(date), type_(declaration->type) {
  switch (declaration_->type) {
    case type_float:
      storage_.number = 0;
      break;
    case type_int:
    case type_enum:
      storage_.integer = 0;
      break;
    case type_bool:
      storage_.flag = false;
      break;
    case type_3dvector:
      storage_.vector = qv_3dvector();
      break;
    case type_color:
      storage_.color = qv_color();
      break;
    case type_item:
      storage_.item = {nullptr, 0};
      break;
    default:
      storage_.heap = nullptr;
      break;
  }
}

qv_param::~qv_param() {
  switch (declaration_->type) {
    case type_matrix:
      delete static_cast<qv_matrix*>(storage_.heap);
      break;
    case type_string:
      delete static_cast<std::string*>(storage_.heap);
      break;
    case type_item:
      unlink(storage_.item.target);
      break;
    case type_float_list:
      delete static_cast<qv_list<float>*>(storage_.heap);
      break;
    case type_unsigned_list:
      delete static_cast<qv_list<unsigned int>*>(storage_.heap);
      break;
    case type_int_list:
    case type_enum_list:
      delete static_cast<qv_list<int>*>(storage_.heap);
      break;
    case type_3dvector_list:
      delete static_cast<qv_list<qv_3dvector>*>(storage_.heap);
      break;
    case type_string_list:
      delete static_cast<qv_list<std::string>*>(storage_.heap);
      break;
    case type_item_list:
      for (qv_item* target : get_item_list()) unlink(target);
      delete static_cast<qv_list<qv_item*>*>(storage_.heap);
      break;
    default:
      break;
  }
}

const std::string& qv_param::get_name() const {
  return declaration_->name;
}
const qv_list<std::string>* qv_param::get_labels() const {
  return declaration_->labels;
}
const qv_param_options& qv_param::get_options() const {
  return declaration_->options;
}

float qv_param::get_float() const {
  return declaration_->type == type_float ? storage_.number : 0.0f;
}
void qv_param::store_float(float value) {
  if (declaration_->type == type_float) storage_.number = value;
}

int qv_param::get_int() const {
  return declaration_->type == type_int || declaration_->type == type_enum ? storage_.integer : 0;
}
void qv_param::store_int(int value) {
  if (declaration_->type == type_int || declaration_->type == type_enum) storage_.integer = value;
}

bool qv_param::get_bool() const {
  return declaration_->type == type_bool && storage_.flag;
}
void qv_param::store_bool(bool value) {
  if (declaration_->type == type_bool) storage_.flag = value;
}

const qv_3dvector& qv_param::get_3dvector() const {
  return declaration_->type == type_3dvector ? storage_.vector : empty_value<qv_3dvector>();
}
void qv_param::store_3dvector(const qv_3dvector& value) {
  if (declaration_->type == type_3dvector) storage_.vector = value;
}

const qv_color& qv_param::get_color() const {
  return declaration_->type == type_color ? storage_.color : empty_value<qv_color>();
}
void qv_param::store_color(const qv_color& value) {
  if (declaration_->type == type_color) storage_.color = value;
}

// The kinds on the heap: read as their empty value while nothing was stored.
#define QV_HEAP_VALUE(T_, stem, is_kind)                                  \
  const T_& qv_param::get_##stem() const {                                \
    const param_type kind = declaration_->type;                           \
    return (is_kind) ? heap_value<T_>(storage_.heap) : empty_value<T_>(); \
  }                                                                       \
  void qv_param::store_##stem(const T_& value) {                          \
    const param_type kind = declaration_->type;                           \
    if (is_kind) store_heap_value(storage_.heap, value);                  \
  }
QV_HEAP_VALUE(qv_matrix, matrix, kind == type_matrix)
QV_HEAP_VALUE(std::string, string, kind == type_string)
QV_HEAP_VALUE(qv_list<float>, float_list, kind == type_float_list)
QV_HEAP_VALUE(qv_list<unsigned int>, unsigned_list, kind == type_unsigned_list)
QV_HEAP_VALUE(qv_list<int>, int_list, kind == type_int_list || kind == type_enum_list)
QV_HEAP_VALUE(qv_list<qv_3dvector>, 3dvector_list, kind == type_3dvector_list)
QV_HEAP_VALUE(qv_list<std::string>, string_list, kind == type_string_list)
#undef QV_HEAP_VALUE

// --- references ---

qv_item* qv_param::get_item() const {
  return declaration_->type == type_item ? storage_.item.target : nullptr;
}

void qv_param::store_item(qv_item* value) {
  if (declaration_->type != type_item) return;
  unlink(storage_.item.target);
  storage_.item.target = value;
  link(value);
}

const qv_list<qv_item*>& qv_param::get_item_list() const {
  return declaration_->type == type_item_list ? heap_value<qv_list<qv_item*>>(storage_.heap)
                                              : empty_value<qv_list<qv_item*>>();
}

void qv_param::store_item_list(const qv_list<qv_item*>& value) {
  if (declaration_->type != type_item_list || storage_.heap == &value) return;
  for (qv_item* target : get_item_list()) unlink(target);
  store_heap_value(storage_.heap, value);
  for (qv_item* target : get_item_list()) link(target);
}

void qv_param::link(qv_item* target) {
  if (target == nullptr) return;
  if (target->referrers_ == nullptr) target->referrers_ = std::make_unique<qv_item::referrers>();
  std::vector<qv_param*>& params = target->referrers_->params;
  if (declaration_->type == type_item) {
    storage_.item.position = static_cast<std::uint32_t>(params.size());
  }
  params.push_back(this);
}

void qv_param::unlink(qv_item* target) {
  if (target == nullptr || target->referrers_ == nullptr) return;
  std::vector<qv_param*>& params = target->referrers_->params;
  std::size_t position = params.size();
  if (declaration_->type == type_item) {
    position = storage_.item.position;
  } else {
    while (position > 0 && params[position - 1] != this) --position;
    if (position-- == 0) return;
  }
  params[position] = params.back();
  params.pop_back();
  if (position == params.size()) return;
  qv_param* moved = params[position];
  if (moved->declaration_->type == type_item) {
    moved->storage_.item.position = static_cast<std::uint32_t>(position);
  }
}

void qv_param::forget(qv_item* target) {
  if (declaration_->type == type_item) {
    store_item(nullptr);
    return;
  }
  qv_list<qv_item*> kept;
  for (qv_item* entry : get_item_list()) {
    if (entry != target) kept.append(entry);
  }
  store_item_list(kept);
}

// --- comparison and copying ---

bool qv_param::has_same_value(const qv_param& other) const {
  if (declaration_->type != other.declaration_->type) return false;
  switch (declaration_->type) {
    case type_float:
      return get_float() == other.get_float();
    case type_int:
    case type_enum:
      return get_int() == other.get_int();
    case type_bool:
      return get_bool() == other.get_bool();
    case type_3dvector:
      return get_3dvector() == other.get_3dvector();
    case type_color:
      return get_color() == other.get_color();
    case type_matrix:
      return get_matrix() == other.get_matrix();
    case type_string:
      return get_string() == other.get_string();
    case type_item:
      return get_item() == other.get_item();
    case type_float_list:
      return get_float_list() == other.get_float_list();
    case type_unsigned_list:
      return get_unsigned_list() == other.get_unsigned_list();
    case type_int_list:
    case type_enum_list:
      return get_int_list() == other.get_int_list();
    case type_3dvector_list:
      return get_3dvector_list() == other.get_3dvector_list();
    case type_string_list:
      return get_string_list() == other.get_string_list();
    case type_item_list:
      return get_item_list() == other.get_item_list();
  }
  return false;
}

bool qv_param::has_similar_value(const qv_param& other) const {
  const float tolerance = get_options().tolerance;
  if (tolerance <= 0 || declaration_->type != other.declaration_->type) {
    return has_same_value(other);
  }
  if (declaration_->type == type_float) return within(get_float(), other.get_float(), tolerance);
  if (declaration_->type == type_float_list) {
    const qv_list<float>& a = get_float_list();
    const qv_list<float>& b = other.get_float_list();
    if (a.get_count() != b.get_count()) return false;
    for (int i = 0; i < a.get_count(); ++i) {
      if (!within(a[i], b[i], tolerance)) return false;
    }
    return true;
  }
  return has_same_value(other);
}

bool qv_param::store_value_of(const qv_param& other) {
  if (declaration_->type != other.declaration_->type) return false;
  switch (declaration_->type) {
    case type_float:
      store_float(other.get_float());
      break;
    case type_int:
    case type_enum:
      store_int(other.get_int());
      break;
    case type_bool:
      store_bool(other.get_bool());
      break;
    case type_3dvector:
      store_3dvector(other.get_3dvector());
      break;
    case type_color:
      store_color(other.get_color());
      break;
    case type_matrix:
      store_matrix(other.get_matrix());
      break;
    case type_string:
      store_string(other.get_string());
      break;
    case type_item:
      store_item(other.get_item());
      break;
    case type_float_list:
      store_float_list(other.get_float_list());
      break;
    case type_unsigned_list:
      store_unsigned_list(other.get_unsigned_list());
      break;
    case type_int_list:
    case type_enum_list:
      store_int_list(other.get_int_list());
      break;
    case type_3dvector_list:
      store_3dvector_list(other.get_3dvector_list());
      break;
    case type_string_list:
      store_string_list(other.get_string_list());
      break;
    case type_item_list:
      store_item_list(other.get_item_list());
      break;
  }
  return true;
}

}  // namespace qv
