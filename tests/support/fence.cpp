#include "tests/support/fence.h"

#ifdef __SANITIZE_ADDRESS__

void host::fenceMemory() {}
void host::stopFencing() {}
void host::failAllocation(int32_t /*number*/) {}

#else

#include <sys/mman.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

// NOLINTBEGIN(bugprone-reserved-identifier,readability-identifier-naming): glibc's names
extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void __libc_free(void* block);
}
// NOLINTEND(bugprone-reserved-identifier,readability-identifier-naming)

namespace {

constexpr size_t kPage = 4096;
constexpr size_t kPages = 16384;

char* arena = nullptr;
bool isFencing = false;
size_t usedPages = 0;
int32_t untilFailure = 0;
size_t sizes[kPages];  // of the blocks, at their first page

bool isFenced(const void* block) {
  const auto* bytes = static_cast<const char*>(block);
  return arena != nullptr && bytes >= arena && bytes < arena + kPage * kPages;
}

size_t firstPage(const void* block) {
  return static_cast<size_t>(static_cast<const char*>(block) - arena) / kPage;
}

size_t pagesFor(size_t size) { return std::max<size_t>((size + kPage - 1) / kPage, 1); }

/// Zeros. Null if the arena is used up. The size of every type is a multiple of its
/// alignment, so that its objects are aligned though only their end is.
void* fencedBlock(size_t size) {
  const size_t pages = pagesFor(size);
  if (!isFencing || size > kPage * kPages || usedPages + pages + 1 > kPages) return nullptr;
  char* start = arena + kPage * usedPages;
  if (mprotect(start, kPage * pages, PROT_READ | PROT_WRITE) != 0) return nullptr;
  char* block = start + kPage * pages - std::max<size_t>(size, 1);
  sizes[usedPages] = size;
  usedPages += pages + 1;
  return block;
}

}  // namespace

// NOLINTBEGIN(readability-inconsistent-declaration-parameter-name): reserved there
extern "C" {

void* malloc(size_t size) {
  if (untilFailure > 0 && --untilFailure == 0) return nullptr;
  void* block = fencedBlock(size);
  return block != nullptr ? block : __libc_malloc(size);
}

void* calloc(size_t count, size_t size) {
  void* block = size == 0 || count <= SIZE_MAX / size ? fencedBlock(count * size) : nullptr;
  return block != nullptr ? block : __libc_calloc(count, size);
}

void free(void* block) {
  if (!isFenced(block)) return __libc_free(block);
  const size_t page = firstPage(block);
  mprotect(arena + kPage * page, kPage * pagesFor(sizes[page]), PROT_NONE);
}

void* realloc(void* block, size_t size) {
  if (!isFenced(block)) return __libc_realloc(block, size);
  void* moved = malloc(size);
  if (moved == nullptr) return nullptr;
  memcpy(moved, block, std::min(size, sizes[firstPage(block)]));
  free(block);
  return moved;
}

}  // extern "C"
// NOLINTEND(readability-inconsistent-declaration-parameter-name)

void host::failAllocation(int32_t number) { untilFailure = number; }

void host::fenceMemory() {
  if (arena == nullptr) {
    void* pages = mmap(nullptr, kPage * kPages, PROT_NONE,
                       MAP_PRIVATE | MAP_ANONYMOUS | MAP_NORESERVE, -1, 0);
    if (pages != MAP_FAILED) arena = static_cast<char*>(pages);
  }
  isFencing = arena != nullptr;
}

void host::stopFencing() { isFencing = false; }

#endif
