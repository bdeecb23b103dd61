#pragma once

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

  /// The declaration with these values, made on first use.
  static const qv_param_declaration* get(const std::string& name, qv_param::param_type type,
                                         const qv_list<std::string>* labels,
                                         const qv_param_options& options);
};

/// The parameters of an item in declaration order, at addresses that stay. Shared by an item and
/// the copies that its copy constructor made.
class qv_param_store {
 public:
  explicit qv_param_store(qv_item* owner);
  ~qv_param_store();

  int get_count() const { return count_; }
  qv_param* get(int index) const;
  qv_param* find(const std::string& name) const;
  qv_param* add(const qv_param_declaration* declaration, unsigned int date);
  /// The owner is gone: its parameters refer to items on nobody's behalf from now on.
  void orphan();
  qv_item* get_owner() const { return owner_; }

 private:
  static constexpr int block_size = 4;
  struct block;

  qv_item* owner_;
  std::vector<std::unique_ptr<block>> blocks_;
  int count_ = 0;
};

}  // namespace qv
