#include "tests/support/qv_failing_memory.h"

#include <cstdlib>
#include <new>

namespace {

thread_local long allocations_before_failure = -1;

void* allocate(std::size_t size) {
  if (allocations_before_failure >= 0 && allocations_before_failure-- == 0) return nullptr;
  return std::malloc(size == 0 ? 1 : size);
}

void* allocate_or_throw(std::size_t size) {
  if (void* memory = allocate(size)) return memory;
  throw std::bad_alloc();
}

}  // namespace

namespace qv_test {

void fail_allocation_after(long count) {
  allocations_before_failure = count;
}
bool is_failure_pending() {
  return allocations_before_failure >= 0;
}

}  // namespace qv_test

void* operator new(std::size_t size) {
  return allocate_or_throw(size);
}
void* operator new[](std::size_t size) {
  return allocate_or_throw(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
  return allocate(size);
}
void operator delete(void* memory) noexcept {
  std::free(memory);
}
void operator delete[](void* memory) noexcept {
  std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
  std::free(memory);
}
void operator delete(void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
void operator delete[](void* memory, const std::nothrow_t&) noexcept {
  std::free(memory);
}
