// Memory of the plug-in's own.
#pragma once

#include <cstdint>
#include <cstdlib>

namespace qrz {

/// A block of `count` elements, zero at first, freed at its end; no elements if
/// there is no memory for them.
template <typename Element>
class Buffer {
 public:
  /// Sizes that leave the address space count as lack of memory.
  explicit Buffer(int64_t count) {
    constexpr int64_t kMost = INT32_MAX / static_cast<int64_t>(sizeof(Element));
    if (count < 0 || count > kMost) return;
    // One element more: a block without bytes could be null.
    data_ = static_cast<Element*>(calloc(static_cast<size_t>(count) + 1, sizeof(Element)));
  }
  Buffer(const Buffer&) = delete;
  Buffer& operator=(const Buffer&) = delete;
  ~Buffer() { free(data_); }

  explicit operator bool() const { return data_ != nullptr; }
  [[nodiscard]] Element* data() const { return data_; }
  Element& operator[](int64_t index) const { return data_[index]; }

 private:
  Element* data_ = nullptr;
};

}  // namespace qrz
