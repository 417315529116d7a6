// Constants of PICT data, versions 1 and 2. All integers are big-endian. In
// version 2, opcodes are words and start at even positions; in version 1 they
// are bytes and start anywhere.
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
  kBackgroundPixelPattern = 0x0012,
  kFillPixelPattern = 0x0014,
  kBitsRect = 0x0090,
  kBitsRegion = 0x0091,
  kPackBitsRect = 0x0098,
  kPackBitsRegion = 0x0099,
  kDirectBitsRect = 0x009A,
  kDirectBitsRegion = 0x009B,
  kEndOfPicture = 0x00FF,
  kHeader = 0x0C00,
};

/// The version opcode and its number in version 1.
constexpr uint16_t kVersion1 = 0x1101;
constexpr uint16_t kVersion2 = 0x02FF;
/// The header's own version: with resolutions and a source rectangle.
constexpr uint16_t kExtendedHeader = 0xFFFE;

/// A region that is a plain rectangle: its size word and the rectangle.
constexpr uint16_t kRectangularRegionSize = 10;
/// Ends a row of a region, and the region.
constexpr int32_t kRegionEnd = 0x7FFF;

/// A direct pixel map's base address.
constexpr uint32_t kDirectBase = 0x000000FF;
constexpr uint16_t kPixMapFlag = 0x8000;
constexpr int32_t kRowBytesLimit = 0x4000;
/// Rows of fewer bytes are not packed.
constexpr int32_t kShortestPackedRow = 8;
/// Packed rows of more bytes have a word for their count.
constexpr int32_t kLongestByteCountedRow = 250;
constexpr uint16_t kDirectPixels = 16;

/// How the rows of a direct pixel map are packed.
enum PackType : uint16_t {
  kPackedByDefault = 0,  ///< as words for 16 bits, by component for 32
  kUnpacked = 1,
  kPadDropped = 2,  ///< red, green, blue of each pixel, not packed
  kPackedWords = 3,
  kPackedByComponent = 4,
};

}  // namespace standin::pict
