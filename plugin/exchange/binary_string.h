// The layout of binary strings: a picture's pixels in a string of bytes.
#pragma once

#include <cstdint>

namespace qrz {

/// Offsets of the header's big-endian words, in bytes.
enum BinaryStringOffset : int32_t {
  kMagicOffset = 0,   ///< "PPIC"
  kLengthOffset = 4,  ///< of the whole string, in bytes
  kWidthOffset = 8,
  kHeightOffset = 12,
  kDepthOffset = 16,  ///< bits per pixel; not looked at
  kStartOffset = 20,  ///< where the pixels start; then 16 bytes of zeros
};

constexpr int32_t kHeaderBytes = 40;

constexpr uint32_t kBinaryStringMagic = 0x50504943;
constexpr uint32_t kBinaryStringDepth = 32;
/// Red, green, blue; rows from the top, one after the other.
constexpr int32_t kTripletBytes = 3;

}  // namespace qrz
