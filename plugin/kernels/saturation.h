// The distance of pixels from their own grey level, multiplied.
#pragma once

#include <cstdint>

namespace qrz {

/// A factor in 255ths, taken apart so that 16 bits are enough.
class SaturationFactor {
 public:
  /// |factor| / 255 is 256 at most.
  explicit SaturationFactor(int32_t factor) : sign(factor < 0 ? -1 : 1) {
    const auto size = static_cast<uint32_t>(factor < 0 ? -factor : factor);
    const uint32_t rest = size % 255;
    whole = static_cast<uint16_t>(size / 255);
    // Rounded up. Times a byte, the excess stays below 255 / 65,536 and so below
    // 1 / 255: truncation gives exactly the quotient of the integers.
    fraction = static_cast<uint16_t>((rest * 65536 + 254) / 255);
  }

  uint16_t whole;
  uint16_t fraction;  ///< in 65,536ths
  int16_t sign;       ///< -1 or 1
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/saturation.inc"
#include "plugin/kernels/for_each_level.h"
