#pragma once

#include <memory>

namespace qv {

/// A record of derived values that an item shares with its copies. It costs nothing until it is
/// first asked for or the item is copied; from then on the item and all its copies see the same
/// one, which lives until the last of them is gone.
template <class T>
class qv_shared_record {
 public:
  qv_shared_record() = default;
  qv_shared_record(const qv_shared_record& other) : record_(other.share()) {}
  qv_shared_record& operator=(const qv_shared_record& other) {
    if (this != &other) record_ = other.share();
    return *this;
  }
  ~qv_shared_record() = default;

  /// The record, made by the first call.
  T& get() { return *share(); }
  /// The record if there is one, else null.
  const T* find() const { return record_.get(); }

 private:
  const std::shared_ptr<T>& share() const {
    if (record_ == nullptr) record_ = std::make_shared<T>();
    return record_;
  }

  mutable std::shared_ptr<T> record_;
};

}  // namespace qv
