#pragma once

#include <algorithm>
#include <cassert>
#include <initializer_list>
#include <type_traits>
#include <utility>

namespace qv {

/// A growing array, the list type of every interface of the framework.
///
/// Its layout is fixed: behind the virtual table a signed 32-bit element count, a signed 32-bit
/// capacity, then the pointer to the contiguous buffer, which the list owns. Elements are
/// addressed from 0; an index outside `0 … get_count() − 1` is a fault of the caller and asserts in
/// debug builds. A copy has a buffer of its own; assigning a list to itself leaves it unchanged.
template <class T>
class qv_list {
 public:
  using value_type = T;

  qv_list() = default;
  qv_list(std::initializer_list<T> elements) { assign(elements.begin(), elements.end()); }
  qv_list(const qv_list& other) { assign(other.begin(), other.end()); }
  qv_list(qv_list&& other) noexcept
      : count_(std::exchange(other.count_, 0)),
        capacity_(std::exchange(other.capacity_, 0)),
        elements_(std::exchange(other.elements_, nullptr)) {}
  virtual ~qv_list() { delete[] elements_; }

  qv_list& operator=(const qv_list& other) {
    if (this != &other) {
      qv_list copy(other);
      swap(copy);
    }
    return *this;
  }
  qv_list& operator=(qv_list&& other) noexcept {
    if (this != &other) {
      swap(other);
      other.clear();
    }
    return *this;
  }

  /// Number of elements.
  int get_count() const { return count_; }
  /// Number of elements that fit without another allocation.
  int get_capacity() const { return capacity_; }
  bool is_empty() const { return count_ == 0; }

  T& operator[](int index) {
    assert(index >= 0 && index < count_);
    return elements_[index];
  }
  const T& operator[](int index) const {
    assert(index >= 0 && index < count_);
    return elements_[index];
  }

  /// Adds `element` at the end; it may be an element of this very list. Constant time on average.
  void append(T element) {
    if (count_ == capacity_) reserve(capacity_ == 0 ? 4 : capacity_ * 2);
    elements_[count_++] = std::move(element);
  }
  /// Makes room for `capacity` elements; never shrinks.
  void reserve(int capacity) {
    if (capacity <= capacity_ || capacity <= 0) return;
    T* grown = new T[capacity];
    std::move(elements_, elements_ + count_, grown);
    delete[] elements_;
    elements_ = grown;
    capacity_ = capacity;
  }
  /// Cuts to `count` elements, or fills up with default ones.
  void resize(int count) {
    if (count < 0) count = 0;
    reserve(count);
    for (int i = count_; i < count; ++i) elements_[i] = T{};
    count_ = count;
  }
  /// Removes every element and frees the buffer.
  void clear() {
    delete[] elements_;
    elements_ = nullptr;
    count_ = capacity_ = 0;
  }

  /// Position of the first element equal to `element`, or −1.
  int find(const T& element) const {
    for (int i = 0; i < count_; ++i)
      if (elements_[i] == element) return i;
    return -1;
  }
  bool contains(const T& element) const { return find(element) >= 0; }

  T* begin() { return elements_; }
  T* end() { return elements_ + count_; }
  const T* begin() const { return elements_; }
  const T* end() const { return elements_ + count_; }
  const T* data() const { return elements_; }

  void swap(qv_list& other) noexcept {
    std::swap(count_, other.count_);
    std::swap(capacity_, other.capacity_);
    std::swap(elements_, other.elements_);
  }

  /// Equal counts and equal elements, position by position.
  friend bool operator==(const qv_list& a, const qv_list& b) {
    return a.count_ == b.count_ && std::equal(a.begin(), a.end(), b.begin());
  }

 private:
  template <class Iterator>
  void assign(Iterator first, Iterator last) {
    const auto count = static_cast<int>(last - first);
    if (count <= 0) return;
    reserve(count);
    std::copy(first, last, elements_);
    count_ = count;
  }

  int count_ = 0;
  int capacity_ = 0;
  T* elements_ = nullptr;
};

}  // namespace qv
