// Bounds-checked reading of untrusted bytes.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

#include "host/files/file_fault.h"

namespace host {

/// The bytes end before what they hold does.
class EndOfBytes : public DamagedFile {
 public:
  EndOfBytes() : DamagedFile("the file ends too early") {}
};

/// Reads numbers from front to back. Every member but left() and position() throws EndOfBytes
/// instead of reaching past the end.
class ByteReader {
 public:
  explicit ByteReader(std::span<const uint8_t> bytes) : bytes_(bytes) {}

  size_t left() const { return bytes_.size() - position_; }
  size_t position() const { return position_; }

  std::span<const uint8_t> take(uint64_t count) {
    if (count > left()) throw EndOfBytes();
    const auto taken = bytes_.subspan(position_, static_cast<size_t>(count));
    position_ += taken.size();
    return taken;
  }
  void skip(uint64_t count) { take(count); }

  uint8_t u8() { return take(1)[0]; }
  uint16_t u16le() { return static_cast<uint16_t>(little(2)); }
  uint16_t u16be() { return static_cast<uint16_t>(big(2)); }
  uint32_t u32le() { return little(4); }
  uint32_t u32be() { return big(4); }

 private:
  uint32_t little(size_t count) {
    const auto taken = take(count);
    uint32_t value = 0;
    for (size_t i = count; i-- > 0;) value = value << 8 | taken[i];
    return value;
  }
  uint32_t big(size_t count) {
    uint32_t value = 0;
    for (const uint8_t byte : take(count)) value = value << 8 | byte;
    return value;
  }

  std::span<const uint8_t> bytes_;
  size_t position_ = 0;
};

}  // namespace host
