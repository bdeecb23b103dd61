#pragma once

#include <cstddef>
#include <string>

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

/// The parameters of an item in declaration order, at addresses that stay. Shared by an item and
/// the copies that its copy constructor made.
class qv_param_store {
 public:
  explicit qv_param_store(qv_item* owner);
  qv_param_store(const qv_param_store&) = delete;
  qv_param_store& operator=(const qv_param_store&) = delete;
  ~qv_param_store();

  int get_count() const { return count_; }
  qv_param* get(int index) const;
  qv_param* find(const std::string& name) const;
  /// `declaration` is an index of `qv_param_declaration`.
  qv_param* add(unsigned int declaration, unsigned int date);
  /// The owner is gone: its parameters refer to items on nobody's behalf from now on.
  void orphan() { owner_ = nullptr; }
  qv_item* get_owner() const { return owner_; }

 private:
  friend class qv_param;

  // A parameter finds its block by its slot, and the store through the block. The sizes are those
  // that leave least room unused: a wall has 16 parameters, a space 10, a polygon 9.
  static constexpr int first_size = 4;
  static constexpr int extra_size = 6;
  template <int size>
  struct block_of {
    qv_param_store* store;
    block_of<extra_size>* next;
    alignas(qv_param) std::byte params[size][sizeof(qv_param)];
  };
  using extra_block = block_of<extra_size>;

  qv_item* owner_;
  int count_ = 0;
  block_of<first_size> first_;
};

}  // namespace qv
