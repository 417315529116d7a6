#include "fuzz/support/memory_limit.h"

#include <malloc.h>

#include <cstdint>
#include <cstdlib>
#include <limits>
#include <new>

namespace {

// What other libraries allocate and the program frees was never counted: below 0 is
// possible.
int64_t used = 0;
int64_t most = std::numeric_limits<int64_t>::max();

bool isLeft(size_t size) { return used + int64_t{size} <= most; }

void* counted(void* block) {
  used += static_cast<int64_t>(malloc_usable_size(block));
  return block;
}

}  // namespace

// The linker sends the program's calls here (--wrap).
// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming)
extern "C" {
void* __real_malloc(size_t size);
void* __real_calloc(size_t count, size_t size);
void* __real_realloc(void* block, size_t size);
void __real_free(void* block);

void* __wrap_malloc(size_t size) { return isLeft(size) ? counted(__real_malloc(size)) : nullptr; }

void* __wrap_calloc(size_t count, size_t size) {
  size_t bytes = 0;
  const bool isTooMany = __builtin_mul_overflow(count, size, &bytes);
  return !isTooMany && isLeft(bytes) ? counted(__real_calloc(count, size)) : nullptr;
}

void* __wrap_realloc(void* block, size_t size) {
  const size_t before = malloc_usable_size(block);
  if (size > before && !isLeft(size - before)) return nullptr;
  void* moved = __real_realloc(block, size);
  if (moved != nullptr || size == 0) used -= static_cast<int64_t>(before);
  return counted(moved);
}

void __wrap_free(void* block) {
  used -= static_cast<int64_t>(malloc_usable_size(block));
  __real_free(block);
}
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

void* operator new(size_t size, const std::nothrow_t& /*tag*/) noexcept {
  return malloc(size == 0 ? 1 : size);
}
void* operator new(size_t size) {
  void* block = operator new(size, std::nothrow);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}
void* operator new[](size_t size) { return operator new(size); }
void* operator new[](size_t size, const std::nothrow_t& tag) noexcept {
  return operator new(size, tag);
}
void operator delete(void* block) noexcept { free(block); }
void operator delete[](void* block) noexcept { free(block); }
void operator delete(void* block, size_t /*size*/) noexcept { free(block); }
void operator delete[](void* block, size_t /*size*/) noexcept { free(block); }
void operator delete(void* block, const std::nothrow_t& /*tag*/) noexcept { free(block); }
void operator delete[](void* block, const std::nothrow_t& /*tag*/) noexcept { free(block); }

namespace fuzz {

MemoryLimit::MemoryLimit(size_t bytes) { most = used + static_cast<int64_t>(bytes); }

MemoryLimit::~MemoryLimit() { most = std::numeric_limits<int64_t>::max(); }

}  // namespace fuzz
