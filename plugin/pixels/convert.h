// Conversions of numbers to channel values and integers, defined for every input.
#pragma once

#include <cstdint>

#include "plugin/pixels/format.h"

namespace qrz {

/// Below 0 and not-a-number give 0, above 255 gives 255, the rest is truncated.
QRZ_INLINE uint32_t clampedByte(double value) {
  if (!(value > 0.0)) return 0;
  return value > 255.0 ? 255 : static_cast<uint32_t>(static_cast<int32_t>(value));
}

/// Cut to 0 to 255.
template <typename Integer>
QRZ_INLINE uint32_t clampedByte(Integer value) {
  return static_cast<uint32_t>(value < 0 ? 0 : value > 255 ? 255 : value);
}

/// Truncated toward zero; what leaves the range gives the nearest integer in
/// it, not-a-number gives 0.
QRZ_INLINE int32_t saturatedInteger(double value) {
  if (value >= 2147483647.0) return INT32_MAX;
  if (value <= -2147483648.0) return INT32_MIN;
  return value == value ? static_cast<int32_t>(value) : 0;
}

}  // namespace qrz
