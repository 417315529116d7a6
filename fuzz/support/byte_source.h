// What a fuzz target reads its input as.
#pragma once

#include <cstdint>
#include <cstring>
#include <span>
#include <string>

namespace fuzz {

/// The input, from the first byte on; zeros after its end.
class ByteSource {
 public:
  explicit ByteSource(std::span<const uint8_t> bytes) : rest_(bytes) {}

  [[nodiscard]] bool isEmpty() const { return rest_.empty(); }
  uint8_t byte() {
    if (isEmpty()) return 0;
    const uint8_t first = rest_.front();
    rest_ = rest_.subspan(1);
    return first;
  }
  /// 0 to `count` - 1; count is 1 to 256.
  size_t below(size_t count) { return byte() % count; }
  /// One of a table's values.
  template <typename Table>
  auto oneOf(const Table& table) {
    return table[below(std::size(table))];
  }
  /// Any bits.
  template <typename Number>
  Number raw() {
    uint8_t bytes[sizeof(Number)];
    for (uint8_t& next : bytes) next = byte();
    Number number;
    memcpy(&number, bytes, sizeof number);
    return number;
  }
  std::string text(size_t length) {
    std::string bytes(length, '\0');
    for (char& next : bytes) next = static_cast<char>(byte());
    return bytes;
  }

 private:
  std::span<const uint8_t> rest_;
};

}  // namespace fuzz
