// Bounds-checked reading of PICT data.
#pragma once

#include <exception>
#include <span>

#include "platform/standin/box.h"

namespace standin {

/// The data ends too early, or makes no sense.
class DamagedPict : public std::exception {};

/// Reads from front to back; throws DamagedPict instead of reaching past the end.
class PictReader {
 public:
  explicit PictReader(std::span<const uint8_t> data) : data_(data) {}

  std::span<const uint8_t> take(size_t count) {
    if (count > data_.size() - position_) throw DamagedPict();
    const auto taken = data_.subspan(position_, count);
    position_ += count;
    return taken;
  }
  void skip(size_t count) { take(count); }
  /// To the next even position.
  void align() { skip(position_ % 2); }

  uint8_t read8() { return take(1)[0]; }
  uint16_t read16() {
    const auto bytes = take(2);
    return static_cast<uint16_t>(bytes[0] << 8 | bytes[1]);
  }
  int32_t readCoordinate() { return static_cast<int16_t>(read16()); }
  uint32_t read32() {
    const uint32_t high = read16();
    return high << 16 | read16();
  }
  Box readBox() {
    Box box{};
    box.top = readCoordinate();
    box.left = readCoordinate();
    box.bottom = readCoordinate();
    box.right = readCoordinate();
    return box;
  }

 private:
  std::span<const uint8_t> data_;
  size_t position_ = 0;
};

/// Skips the data of an opcode that draws nothing here; throws DamagedPict if its
/// length cannot be told.
void skipOpcodeData(PictReader& reader, uint16_t opcode);

}  // namespace standin
