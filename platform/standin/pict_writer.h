// Writing PICT data into a handle.
#pragma once

#include <functional>
#include <span>

#include "platform/standin/box.h"
#include "platform/standin/standin.h"

namespace standin {

/// Appends to the bytes of a handle. Every put throws std::bad_alloc without
/// memory.
class PictWriter {
 public:
  explicit PictWriter(Handle data) : data_(data) {}

  void put8(uint8_t value);
  void put16(uint16_t value);
  void put32(uint32_t value);
  void putBox(const Box& box);  ///< its coordinates fit in 16 bits
  void putZeros(size_t count);
  void putBytes(std::span<const uint8_t> bytes);
  /// A zero byte, if the position is odd.
  void align();

 private:
  Handle data_;
};

/// Everything in front of the drawing; `parameters` have a source rectangle
/// that is not empty.
void putPictHeader(PictWriter& writer, const OpenCPicParams& parameters, const Box& frame);

/// Pixels that cover `place`, as 32-bit pixel maps side by side, each as wide as
/// can be.
void putPixels(PictWriter& writer, const Box& place, const ReadRow& readRow);

}  // namespace standin
