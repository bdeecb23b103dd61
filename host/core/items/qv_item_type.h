#pragma once

#include <string>

#include "utilities/qv_list.h"

namespace qv {

class qv_item;

/// The run-time record of an item class: its type name, its parent type, and a sample instance from
/// which new items of the type are made. Records live until the process ends and are known to the
/// whole process under their name.
class qv_item_type {
 public:
  /// Registers type `name` under `parent` (null for a root).
  qv_item_type(const std::string& name, qv_item_type* parent);
  qv_item_type(const qv_item_type&) = delete;
  qv_item_type& operator=(const qv_item_type&) = delete;
  virtual ~qv_item_type();

  const std::string& get_name() const { return name_; }
  qv_item_type* get_parent() const { return parent_; }
  /// Position in the order of registration, from 0.
  int get_index() const { return index_; }

  /// Registers the instance from which `create_item` makes new ones; it is not owned.
  void set_sample(qv_item* sample) { sample_ = sample; }
  qv_item* get_sample() const { return sample_; }
  /// A new item of this type with default values, made by the sample's `copy()`; null without a
  /// sample.
  qv_item* create_item() const;

  /// True for this type's own name and the name of each of its ancestors.
  bool derives_from(const std::string& name) const;
  /// True for this very type and its descendants.
  bool derives_from(const qv_item_type* type) const;

  /// Rebuilds the index of all registered types; called once after a module has registered its
  /// types.
  static void optimize_search();
  /// The type with this name, or null. Types registered after the last `optimize_search` are found
  /// too.
  static qv_item_type* find(const std::string& name);
  /// All types in the order of their registration.
  static const qv_list<qv_item_type*>& get_types();

 private:
  std::string name_;
  qv_item_type* parent_;
  qv_item* sample_ = nullptr;
  int index_;
};

}  // namespace qv
