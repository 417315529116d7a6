// Coloured pixels found in rows, and black on white drawn from bits.
#pragma once

#include <cstdint>

namespace qrz {

/// Pixels whose bits one word holds.
constexpr int32_t kBitsInWord = 32;

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/colored_areas.inc"
#include "plugin/kernels/for_each_level.h"
