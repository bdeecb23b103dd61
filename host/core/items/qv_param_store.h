#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <string>
#include <vector>

#include "core/items/qv_param.h"

namespace qv {

/// What all parameters of one name and kind have in common. Declarations are few and live until the
/// process ends.
struct qv_param_declaration {
  std::string name;
  qv_param::param_type type;
  const qv_list<std::string>* labels;
  qv_param_options options;

  /// Index of the declaration with these values, made on first use.
  static unsigned int get_index(const std::string& name, qv_param::param_type type,
                                const qv_list<std::string>* labels,
                                const qv_param_options& options);
  static const qv_param_declaration& at(unsigned int index);
};

/// The declarations that an item has made so far, in their order. Items of a class make the same
/// ones in the same order: a layout is shared by all items that came that far, and knows from
/// earlier ones where a further declaration leads.
class qv_param_layout {
 public:
  struct step {
    unsigned int declaration = 0;
    qv_param::param_type type = qv_param::type_float;
    /// Position of the parameter that bears the name already; −1 when the name is new.
    int known = -1;
    /// The layout with the new declaration at its end; null when the name is not new.
    std::unique_ptr<const qv_param_layout> next;
  };

  /// The layout without any declaration.
  static const qv_param_layout* get_empty();

  int get_count() const { return count_; }
  /// What one more declaration does; `declaration` is an index of `qv_param_declaration`.
  const step& get_step(unsigned int declaration) const;
  /// Position of the parameter of that name, or −1.
  int find(const std::string& name) const;

 private:
  qv_param_layout(const qv_param_layout* previous, unsigned int declaration)
      : previous_(previous),
        declaration_(declaration),
        count_(previous ? previous->count_ + 1 : 0) {}

  const step& make_step(unsigned int declaration) const;

  const qv_param_layout* previous_;
  unsigned int declaration_;  // the last one
  int count_;
  mutable std::vector<std::unique_ptr<const step>>
      steps_;  // in the order in which they were asked for
};

/// The parameters of an item in declaration order, at addresses that stay. Shared by an item and
/// the copies that its copy constructor made.
///
/// The first parameters lie behind the store itself, in the same piece of memory, the others in
/// further blocks.
class qv_param_store {
 public:
  /// Largest number of parameters that lie with the store.
  static constexpr int largest_capacity = 32;

  /// A store used once, for parameters of `owner`. Items of the same `size`, in bytes, are mostly
  /// of one class: as many parameters as one of them had before find room with the store. 0 for a
  /// size that is not known.
  static qv_param_store* make(qv_item* owner, std::size_t size);
  qv_param_store(const qv_param_store&) = delete;
  qv_param_store& operator=(const qv_param_store&) = delete;
  /// One user more, or less: the last one frees the store.
  void retain() { ++user_count_; }
  void release();

  int get_count() const { return layout_->get_count(); }
  qv_param* get(int index) const {
    return index < capacity_ ? get_first() + index : get_extra(index - capacity_);
  }
  qv_param* find(const std::string& name) const;
  /// Position of the parameter of the declaration's name, added when there is none. `declaration`
  /// is an index of `qv_param_declaration`.
  int add(unsigned int declaration, unsigned int date);
  /// The owner is gone: its parameters refer to items on nobody's behalf from now on.
  void orphan() { owner_ = nullptr; }
  qv_item* get_owner() const { return owner_; }

 private:
  friend class qv_param;

  static constexpr int extra_size = 6;
  struct extra_block {
    qv_param_store* store;
    extra_block* next;
    alignas(qv_param) std::byte params[extra_size][sizeof(qv_param)];
  };

  qv_param_store(qv_item* owner, int capacity, std::uint8_t size_class);
  ~qv_param_store();

  qv_param* get_first() const {
    return reinterpret_cast<qv_param*>(const_cast<qv_param_store*>(this) + 1);
  }
  qv_param* get_extra(int index) const;
  std::byte* make_room(int index);

  qv_item* owner_;
  const qv_param_layout* layout_;
  extra_block* extra_ = nullptr;
  std::uint32_t user_count_ = 1;
  std::uint8_t capacity_;
  std::uint8_t size_class_;
};
static_assert(sizeof(qv_param_store) % alignof(qv_param) == 0);

}  // namespace qv
