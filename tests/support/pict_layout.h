// PICT data laid out by hand, field by field.
#pragma once

#include <random>

#include "tests/support/pict.h"

namespace host {

/// Puts big-endian fields one after the other.
class PictLayout {
 public:
  explicit PictLayout(int version) : version_(version) {}

  PictLayout& put8(uint32_t value);
  PictLayout& put16(uint32_t value);
  PictLayout& put32(uint32_t value);
  PictLayout& putBox(int top, int left, int bottom, int right);
  PictLayout& put(const Bytes& bytes);
  /// A byte in version 1, a word at an even position in version 2.
  PictLayout& putOpcode(uint32_t opcode);
  /// Size, frame, version and, in version 2, the basic header.
  PictLayout& start(int top, int left, int bottom, int right);
  [[nodiscard]] const Bytes& bytes() const { return bytes_; }
  /// The end of the picture and all before it.
  Bytes finish();

 private:
  int version_;
  Bytes bytes_;
};

/// One way to keep pixels.
struct PictPixels {
  uint32_t opcode;
  int depth;
  int packType = 0;
  int components = 1;
  bool isPlainBitmap = false;  ///< without a pixel map's fields and colours
  bool isPacked = true;        ///< if the rows are long enough
};

/// Values of pixels, row by row: indices, x555 words, or words XRGB.
struct PictValues {
  int width, height;
  Words values;
};

/// Bytes in a row of a map of this width, even.
int rowBytesFor(const PictPixels& pixels, int width);

/// A map with all its fields up to the source rectangle. `colors` are the 16-bit
/// red, green and blue of each index, in turns.
void putMap(PictLayout& layout, const PictPixels& pixels, int rowBytes, int top, int left,
            const PictValues& values, const std::vector<uint16_t>& colors, bool countsUp);

/// The rows of a map; what pads them is random.
void putRows(PictLayout& layout, const PictPixels& pixels, int rowBytes, const PictValues& values,
             std::mt19937& random);

}  // namespace host
