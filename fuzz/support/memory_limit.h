// A small memory, so that what a few bytes ask for cannot exhaust the machine, and
// every lack of memory is one that the program has to cope with.
#pragma once

#include <cstddef>

namespace fuzz {

/// While it lives, the program gets so many bytes more than it has: then malloc
/// returns null and new throws std::bad_alloc. Calls from other libraries' C code
/// are not counted. One at a time.
class MemoryLimit {
 public:
  explicit MemoryLimit(size_t bytes);
  MemoryLimit(const MemoryLimit&) = delete;
  MemoryLimit& operator=(const MemoryLimit&) = delete;
  ~MemoryLimit();
};

}  // namespace fuzz
