// The picture library's code, compiled here once. Its functions are declared by its own headers.
//
// It was written for well-formed pictures, so three things are tightened for damaged ones:
//  - Memory is handed out zeroed: parts of a picture or of a code table that the file leaves out
//    are then the same in every run, and harmless. One block is limited, because a few bytes of
//    packed data can ask for gigabytes.
//  - A broken assumption is thrown instead of ending the process.
//  - Sums of coefficients may wrap around, and local tables start as zeros.
//
// What remains: where the coded pixels of a JPEG end too early, the library shifts a zero by up to
// 39 places. That is zero on every processor, but the undefined-behaviour sanitizer objects, so
// with it this file is to be compiled with -fno-sanitize=shift.

#include <cstdlib>
#include <cstring>
#include <new>
#include <stdexcept>

namespace {

constexpr size_t kMaxBlock = size_t{1} << 30;

void* allocate(size_t size) { return size <= kMaxBlock ? std::calloc(1, size) : nullptr; }

void* grow(void* block, size_t oldSize, size_t newSize) {
  if (newSize > kMaxBlock) return nullptr;
  void* grown = std::realloc(block, newSize);
  if (grown != nullptr && newSize > oldSize) {
    std::memset(static_cast<char*>(grown) + oldSize, 0, newSize - oldSize);
  }
  return grown;
}

/// The encoder goes on with a null block; throwing is the only way to stop it.
void* allocateOrThrow(size_t size) {
  void* block = std::malloc(size);
  if (block == nullptr) throw std::bad_alloc();
  return block;
}

void* growOrThrow(void* block, size_t newSize) {
  void* grown = std::realloc(block, newSize);
  if (grown == nullptr) throw std::bad_alloc();
  return grown;
}

void require(bool condition) {
  if (!condition) throw std::logic_error("the picture library is confused");
}

}  // namespace

#define STBI_ASSERT(condition) require(condition)
#define STBI_MALLOC(size) allocate(size)
#define STBI_REALLOC_SIZED(block, oldSize, newSize) grow(block, oldSize, newSize)
#define STBI_FREE(block) std::free(block)
#define STBI_MAX_DIMENSIONS 1000000  // kMaxSide
#define STBI_NO_STDIO
#define STBI_ONLY_PNG
#define STBI_ONLY_JPEG
#define STBI_ONLY_BMP
#define STBI_ONLY_GIF
#define STBI_ONLY_TGA
#define STBIW_ASSERT(condition) require(condition)
#define STBIW_MALLOC(size) allocateOrThrow(size)
#define STBIW_REALLOC(block, newSize) growOrThrow(block, newSize)
#define STBIW_FREE(block) std::free(block)
#define STBI_WRITE_NO_STDIO
#define STB_IMAGE_IMPLEMENTATION
#define STB_IMAGE_WRITE_IMPLEMENTATION

#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wall"
#pragma GCC diagnostic ignored "-Wextra"
#pragma GCC diagnostic ignored "-Wconversion"
#pragma GCC diagnostic ignored "-Wshadow"
#pragma GCC diagnostic ignored "-Wunused-function"
#pragma GCC push_options
#pragma GCC optimize("wrapv", "trivial-auto-var-init=zero")
#include <stb/stb_image.h>
#include <stb/stb_image_write.h>
#pragma GCC pop_options
#pragma GCC diagnostic pop
