#pragma once

#include <algorithm>
#include <cstdint>
#include <new>

namespace qv {

class qv_param;

/// The parameters that refer to an item, in no order. Most items have none or a few: an empty list
/// is one null pointer, and there is little room to spare.
class qv_referrer_list {
 public:
  qv_referrer_list() = default;
  qv_referrer_list(const qv_referrer_list&) = delete;
  qv_referrer_list& operator=(const qv_referrer_list&) = delete;
  ~qv_referrer_list() { ::operator delete(block_); }

  int get_count() const { return block_ == nullptr ? 0 : static_cast<int>(block_->count); }
  qv_param* operator[](int index) const { return begin()[index]; }
  qv_param* const* begin() const {
    return block_ == nullptr ? nullptr : reinterpret_cast<qv_param* const*>(block_ + 1);
  }
  qv_param* const* end() const { return begin() + get_count(); }

  void append(qv_param* param) {
    if (block_ == nullptr || block_->count == block_->capacity) grow();
    params()[block_->count++] = param;
  }
  /// Takes the entry out and puts the last one in its place. Returns that one, or null when the
  /// entry was the last itself. Frees the memory with the last entry.
  qv_param* remove(int index) {
    qv_param* const last = params()[--block_->count];
    const bool moves = static_cast<int>(block_->count) != index;
    if (moves) params()[index] = last;
    if (block_->count == 0) {
      ::operator delete(block_);
      block_ = nullptr;
    }
    return moves ? last : nullptr;
  }

 private:
  struct header {
    std::uint32_t count;
    std::uint32_t capacity;
  };
  // Of a parameter's address.
  static constexpr std::size_t pointer_size = sizeof(void*);

  qv_param** params() { return reinterpret_cast<qv_param**>(block_ + 1); }
  void grow() {
    const std::uint32_t count = block_ == nullptr ? 0 : block_->count;
    const std::uint32_t capacity = count < 4 ? count + 2 : count + count / 2;
    auto* const grown =
        static_cast<header*>(::operator new(sizeof(header) + capacity * pointer_size));
    *grown = {count, capacity};
    std::copy_n(begin(), count, reinterpret_cast<qv_param**>(grown + 1));
    ::operator delete(block_);
    block_ = grown;
  }

  header* block_ = nullptr;
};

}  // namespace qv
