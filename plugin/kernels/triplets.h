// Pixel rows to and from bytes R, G, B.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "plugin/pixels/format.h"

namespace qrz {

/// For a shuffle of bytes: where the triplets of four pixels come from; the last
/// 4 bytes become 0.
template <typename Format>
QRZ_INLINE __m128i tripletOrder() {
  int8_t order[16] = {0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, 0, -1, -1, -1, -1};
  for (int8_t x = 0; x < 4; ++x) {
    order[3 * x] = static_cast<int8_t>(4 * x + Format::redShift / 8);
    order[3 * x + 1] = static_cast<int8_t>(4 * x + Format::greenShift / 8);
    order[3 * x + 2] = static_cast<int8_t>(4 * x + Format::blueShift / 8);
  }
  __m128i vector;
  memcpy(&vector, order, sizeof vector);
  return vector;
}

/// Where four pixels come from in their triplets; pads become 0.
template <typename Format>
QRZ_INLINE __m128i pixelOrder() {
  int8_t order[16];
  for (int8_t i = 0; i < 16; ++i) order[i] = -1;
  for (int8_t x = 0; x < 4; ++x) {
    order[4 * x + Format::redShift / 8] = static_cast<int8_t>(3 * x);
    order[4 * x + Format::greenShift / 8] = static_cast<int8_t>(3 * x + 1);
    order[4 * x + Format::blueShift / 8] = static_cast<int8_t>(3 * x + 2);
  }
  __m128i vector;
  memcpy(&vector, order, sizeof vector);
  return vector;
}

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/triplets.inc"
#include "plugin/kernels/for_each_level.h"
