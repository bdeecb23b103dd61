#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <string>

#include "utilities/qv_list.h"

namespace qv {

// Values of parameters that do not lie in the parameter itself: an address on the heap, null for
// the empty value.

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

// Names differ in their length or at their ends.
inline std::size_t hash_of(const std::string& value) {
  if (value.empty()) return 0;
  const auto byte = [](char c) { return static_cast<std::size_t>(static_cast<unsigned char>(c)); };
  return value.size() | byte(value.front()) << 32U | byte(value.back()) << 40U;
}
inline std::size_t hash_of(unsigned int value) {
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

}  // namespace qv
