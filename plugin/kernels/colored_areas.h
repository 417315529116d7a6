// Coloured pixels found in rows, and black on white drawn from bits.
#pragma once

#include <cstdint>

namespace qrz {

/// Pixels whose bits one word holds.
constexpr int32_t kBitsInWord = 32;

/// Every bit of a word by itself.
constexpr uint32_t kBits[kBitsInWord] = {
    1U << 0,  1U << 1,  1U << 2,  1U << 3,  1U << 4,  1U << 5,  1U << 6,  1U << 7,
    1U << 8,  1U << 9,  1U << 10, 1U << 11, 1U << 12, 1U << 13, 1U << 14, 1U << 15,
    1U << 16, 1U << 17, 1U << 18, 1U << 19, 1U << 20, 1U << 21, 1U << 22, 1U << 23,
    1U << 24, 1U << 25, 1U << 26, 1U << 27, 1U << 28, 1U << 29, 1U << 30, 1U << 31};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/colored_areas.inc"
#include "plugin/kernels/for_each_level.h"
