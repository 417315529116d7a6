// Constants of PICT data, version 2. All integers are big-endian; opcodes are
// words and start at even positions.
#pragma once

#include <cstdint>

namespace standin::pict {

constexpr int32_t k72Dpi = 0x00480000;  ///< Fixed

/// A picture starts with the low 16 bits of its size and its frame.
constexpr long kFrameOffset = 2;
constexpr long kPreambleSize = 10;

enum Opcode : uint16_t {
  kClip = 0x0001,
  kOrigin = 0x000C,
  kVersion = 0x0011,
  kDirectBitsRect = 0x009A,
  kDirectBitsRegion = 0x009B,
  kEndOfPicture = 0x00FF,
  kHeader = 0x0C00,
};

constexpr uint16_t kVersion2 = 0x02FF;
/// The header's own version: with resolutions and a source rectangle.
constexpr uint16_t kExtendedHeader = 0xFFFE;

/// A region that is a plain rectangle: its size word and the rectangle.
constexpr uint16_t kRectangularRegionSize = 10;

/// A direct pixel map's base address.
constexpr uint32_t kDirectBase = 0x000000FF;
constexpr uint16_t kPixMapFlag = 0x8000;
constexpr int32_t kRowBytesLimit = 0x4000;
/// Rows of fewer bytes are not packed.
constexpr int32_t kShortestPackedRow = 8;
/// Packed rows of more bytes have a word for their count.
constexpr int32_t kLongestByteCountedRow = 250;
/// Packed by component: the default for 32 bits is the same.
constexpr int32_t kPackedByComponent = 4;
constexpr uint16_t kDirectPixels = 16;

}  // namespace standin::pict
