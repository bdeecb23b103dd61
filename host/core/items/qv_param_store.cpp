#include "core/items/qv_param_store.h"

#include <algorithm>
#include <array>
#include <cassert>
#include <cstring>
#include <new>
#include <unordered_map>
#include <utility>

namespace qv {

namespace {

// What the index of a parameter's declaration can hold.
[[maybe_unused]] constexpr std::size_t largest_declaration_index = (1u << 16) - 1;

std::vector<std::unique_ptr<qv_param_declaration>>& get_declarations() {
  static auto& declarations = *new std::vector<std::unique_ptr<qv_param_declaration>>;
  return declarations;
}

}  // namespace

// --- declarations ---

namespace {

/// A list with these labels that stays: who declares a parameter may let go of its own.
const qv_list<std::string>* keep_labels(const qv_list<std::string>& labels) {
  static auto& kept = *new std::vector<std::unique_ptr<const qv_list<std::string>>>;
  for (const auto& known : kept) {
    if (*known == labels) return known.get();
  }
  kept.push_back(std::make_unique<const qv_list<std::string>>(labels));
  return kept.back().get();
}

}  // namespace

unsigned int qv_param_declaration::get_index(const std::string& name, qv_param::param_type type,
                                             const qv_list<std::string>* given_labels,
                                             const qv_param_options& options) {
  const auto* const labels = given_labels == nullptr ? nullptr : keep_labels(*given_labels);
  static auto& by_name = *new std::unordered_map<std::string, std::vector<unsigned int>>;
  auto& declarations = get_declarations();
  std::vector<unsigned int>& same_name = by_name[name];
  for (const unsigned int index : same_name) {
    const qv_param_declaration& known = *declarations[index];
    if (known.type == type && known.labels == labels &&
        known.options.tolerance == options.tolerance &&
        known.options.compared == options.compared &&
        known.options.keeps_places == options.keeps_places) {
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

static_assert(sizeof(qv_param) == 24);

// Beside the store, which makes every parameter: zero, null and the empty value are all zero bits.
qv_param::qv_param(unsigned int declaration, param_type type, bool in_store, unsigned int slot,
                   unsigned int date)
    : date_(date),
      declaration_(declaration),
      in_store_(in_store ? 1 : 0),
      slot_(slot),
      type_(type),
      kind_(type) {
  std::memset(static_cast<void*>(&storage_), 0, sizeof storage_);
  if (type == type_color) storage_.color = qv_color();
}

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

}  // namespace qv
