#include "core/items/qv_param.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cmath>
#include <cstddef>
#include <functional>
#include <memory>
#include <new>
#include <unordered_map>
#include <utility>
#include <vector>

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

/// A value on the heap. Parameters that copied it from each other share it until one is set anew.
template <class T>
struct shared_value {
  T value;
  unsigned int user_count = 1;
};

template <class T>
const T& heap_value(const void* heap) {
  return heap == nullptr ? empty_value<T>() : static_cast<const shared_value<T>*>(heap)->value;
}

template <class T>
void release_heap_value(void* heap) {
  auto* const shared = static_cast<shared_value<T>*>(heap);
  if (shared != nullptr && --shared->user_count == 0) delete shared;
}

template <class T>
void share_heap_value(void*& heap, void* other) {
  if (other != nullptr) ++static_cast<shared_value<T>*>(other)->user_count;
  release_heap_value<T>(heap);
  heap = other;
}

template <class T>
void store_heap_value(void*& heap, const T& value) {
  auto* const present = static_cast<shared_value<T>*>(heap);
  if (present != nullptr && &present->value == &value) return;
  if (present != nullptr && present->user_count == 1) {
    present->value = value;
    return;
  }
  void* const stored = value == empty_value<T>() ? nullptr : new shared_value<T>{value};
  release_heap_value<T>(heap);
  heap = stored;
}

std::size_t hash_of(const std::string& value) {
  return std::hash<std::string>()(value);
}
std::size_t hash_of(unsigned int value) {
  return value;
}
/// The short lists of a kind stored last: a model's meshes bear the same few lists of layers and of
/// contour sizes over and over.
template <class T>
class recent_lists {
 public:
  using list = qv_list<T>;

  /// Stores `value`, in common with an equal recent one where there is one.
  static void store(void*& heap, const list& value) {
    static auto& recent = *new recent_lists;
    recent.share(heap, value);
  }

 private:
  struct entry {
    std::size_t hash = 0;
    void* shared = nullptr;
  };

  void share(void*& heap, const list& value) {
    if (value.get_count() == 0 || value.get_count() > largest_count) {
      store_heap_value(heap, value);
      return;
    }
    const std::size_t hash = get_hash(value);
    std::size_t place = 0;
    while (place < recent_.size() - 1 && !holds(recent_[place], hash, value)) ++place;
    if (!holds(recent_[place], hash, value)) {
      release_heap_value<list>(recent_[place].shared);
      recent_[place] = {hash, nullptr};
      recent_[place].shared = new shared_value<list>{value};
    }
    std::rotate(recent_.begin(), recent_.begin() + static_cast<std::ptrdiff_t>(place),
                recent_.begin() + static_cast<std::ptrdiff_t>(place) + 1);
    share_heap_value<list>(heap, recent_[0].shared);
  }

  static std::size_t get_hash(const list& value) {
    std::size_t hash = 0;
    for (const T& element : value) hash = hash * 31 + hash_of(element);
    return hash;
  }
  static bool holds(const entry& known, std::size_t hash, const list& value) {
    return known.hash == hash && known.shared != nullptr && heap_value<list>(known.shared) == value;
  }

  static constexpr int largest_count = 8;
  std::array<entry, 16> recent_{};  // latest first
};

bool within(float a, float b, float tolerance) {
  return a == b || std::fabs(static_cast<double>(a) - static_cast<double>(b)) <=
                       static_cast<double>(tolerance);
}

// What the index of a parameter's declaration can hold.
[[maybe_unused]] constexpr std::size_t largest_declaration_index = (1u << 16) - 1;

std::vector<std::unique_ptr<qv_param_declaration>>& get_declarations() {
  static auto& declarations = *new std::vector<std::unique_ptr<qv_param_declaration>>;
  return declarations;
}

}  // namespace

// --- declarations ---

unsigned int qv_param_declaration::get_index(const std::string& name, qv_param::param_type type,
                                             const qv_list<std::string>* labels,
                                             const qv_param_options& options) {
  static auto& by_name = *new std::unordered_map<std::string, std::vector<unsigned int>>;
  auto& declarations = get_declarations();
  std::vector<unsigned int>& same_name = by_name[name];
  for (const unsigned int index : same_name) {
    const qv_param_declaration& known = *declarations[index];
    if (known.type == type && known.labels == labels &&
        known.options.tolerance == options.tolerance &&
        known.options.compared == options.compared) {
      return index;
    }
  }
  assert(declarations.size() <= largest_declaration_index);
  // First the declaration, then its index: when memory is short none is known that does not exist.
  declarations.push_back(
      std::unique_ptr<qv_param_declaration>(new qv_param_declaration{name, type, labels, options}));
  const auto index = static_cast<unsigned int>(declarations.size() - 1);
  same_name.push_back(index);
  return index;
}

const qv_param_declaration& qv_param_declaration::at(unsigned int index) {
  return *get_declarations()[index];
}

// --- layouts ---

const qv_param_layout* qv_param_layout::get_empty() {
  static const auto* const empty = new qv_param_layout(nullptr, 0);
  return empty;
}

const qv_param_layout::step& qv_param_layout::get_step(unsigned int declaration) const {
  for (const auto& known : steps_) {
    if (known->declaration == declaration) return *known;
  }
  return make_step(declaration);
}

const qv_param_layout::step& qv_param_layout::make_step(unsigned int declaration) const {
  const qv_param_declaration& made = qv_param_declaration::at(declaration);
  auto added = std::make_unique<step>();
  added->declaration = declaration;
  added->type = made.type;
  added->known = find(made.name);
  if (added->known < 0) added->next.reset(new qv_param_layout(this, declaration));
  steps_.push_back(std::move(added));
  return *steps_.back();
}

int qv_param_layout::find(const std::string& name) const {
  for (const qv_param_layout* layout = this; layout->previous_ != nullptr;
       layout = layout->previous_) {
    if (qv_param_declaration::at(layout->declaration_).name == name) return layout->count_ - 1;
  }
  return -1;
}

// --- store ---

namespace {

// Sizes of items are told apart by multiples of this, up to a largest one; class 0 is for others.
constexpr std::size_t size_step = 8;
// Room of the first item of its size.
constexpr std::uint8_t first_capacity = 8;

// The largest number of parameters that an item of each size class had; 0 where there was none.
std::array<std::uint8_t, 256> expected_counts{};

std::uint8_t get_size_class(std::size_t size) {
  const std::size_t size_class = size / size_step;
  return size_class < expected_counts.size() ? static_cast<std::uint8_t>(size_class) : 0;
}

}  // namespace

qv_param_store* qv_param_store::make(qv_item* owner, std::size_t size) {
  const std::uint8_t size_class = get_size_class(size);
  std::uint8_t capacity = expected_counts[size_class];
  if (capacity == 0) capacity = first_capacity;
  void* const memory = ::operator new(sizeof(qv_param_store) + capacity * sizeof(qv_param));
  return new (memory) qv_param_store(owner, capacity, size_class);
}

qv_param_store::qv_param_store(qv_item* owner, int capacity, std::uint8_t size_class)
    : owner_(owner),
      layout_(qv_param_layout::get_empty()),
      capacity_(static_cast<std::uint8_t>(capacity)),
      size_class_(size_class) {}

qv_param_store::~qv_param_store() {
  const int count = get_count();
  for (int i = 0; i < std::min<int>(count, capacity_); ++i) get_first()[i].~qv_param();
  int rest = count - capacity_;
  for (extra_block* extra = extra_; extra != nullptr; rest -= extra_size) {
    for (int i = 0; i < std::min(rest, extra_size); ++i)
      std::launder(reinterpret_cast<qv_param*>(extra->params[i]))->~qv_param();
    delete std::exchange(extra, extra->next);
  }
}

void qv_param_store::release() {
  if (--user_count_ > 0) return;
  this->~qv_param_store();
  ::operator delete(this);
}

qv_param* qv_param_store::get_extra(int index) const {
  const extra_block* extra = extra_;
  for (; index >= extra_size; index -= extra_size) extra = extra->next;
  return std::launder(reinterpret_cast<qv_param*>(const_cast<std::byte*>(extra->params[index])));
}

qv_param* qv_param_store::find(const std::string& name) const {
  const int position = layout_->find(name);
  return position < 0 ? nullptr : get(position);
}

std::byte* qv_param_store::make_room(int index) {
  if (index < capacity_) return reinterpret_cast<std::byte*>(get_first() + index);
  extra_block** extra = &extra_;
  for (index -= capacity_; index >= extra_size; index -= extra_size) extra = &(*extra)->next;
  if (*extra == nullptr) {
    *extra = new extra_block;
    (*extra)->store = this;
    (*extra)->next = nullptr;
  }
  return (*extra)->params[index];
}

int qv_param_store::add(unsigned int declaration, unsigned int date) {
  const qv_param_layout::step& step = layout_->get_step(declaration);
  if (step.known >= 0) return step.known;
  const int index = get_count();
  std::byte* const place = make_room(index);
  layout_ = step.next.get();
  const bool in_store = index < capacity_;
  const int slot = in_store ? index : (index - capacity_) % extra_size;
  new (place) qv_param(declaration, step.type, in_store, static_cast<unsigned int>(slot), date);
  std::uint8_t& expected = expected_counts[size_class_];
  if (size_class_ != 0 && index >= expected && index < largest_capacity)
    expected = static_cast<std::uint8_t>(index + 1);
  return index;
}

// --- parameter ---

static_assert(sizeof(qv_param) == 24);

qv_param::qv_param(unsigned int declaration, param_type type, bool in_store, unsigned int slot,
                   unsigned int date)
    : date_(date),
      declaration_(declaration),
      in_store_(in_store ? 1 : 0),
      slot_(slot),
      type_(type),
      kind_(type) {
  switch (get_kind()) {
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
  qv_list<qv_item*> kept;
  for (qv_item* entry : get_item_list()) {
    if (entry != target) kept.append(entry);
  }
  store_item_list(kept);
}

// --- comparison and copying ---

bool qv_param::has_same_value(const qv_param& other) const {
  if (get_kind() != other.get_kind()) return false;
  switch (get_kind()) {
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
  if (tolerance <= 0 || get_kind() != other.get_kind()) {
    return has_same_value(other);
  }
  if (get_kind() == type_float) return within(get_float(), other.get_float(), tolerance);
  if (get_kind() == type_float_list) {
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
  if (get_kind() != other.get_kind()) return false;
  switch (get_kind()) {
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
      share_heap_value<qv_matrix>(storage_.heap, other.storage_.heap);
      break;
    case type_string:
      share_heap_value<std::string>(storage_.heap, other.storage_.heap);
      break;
    case type_item:
      store_item(other.get_item());
      break;
    case type_float_list:
      share_heap_value<qv_list<float>>(storage_.heap, other.storage_.heap);
      break;
    case type_unsigned_list:
      share_heap_value<qv_list<unsigned int>>(storage_.heap, other.storage_.heap);
      break;
    case type_int_list:
    case type_enum_list:
      share_heap_value<qv_list<int>>(storage_.heap, other.storage_.heap);
      break;
    case type_3dvector_list:
      share_heap_value<qv_list<qv_3dvector>>(storage_.heap, other.storage_.heap);
      break;
    case type_string_list:
      share_heap_value<qv_list<std::string>>(storage_.heap, other.storage_.heap);
      break;
    case type_item_list:
      store_item_list(other.get_item_list());
      break;
  }
  return true;
}

}  // namespace qv
