// A weighted grey level of pixels, coloured.
#pragma once

namespace qrz {

/// A colour's channels as fractions, 0 to 1.
struct TintFactors {
  double red, green, blue;
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/tint.inc"
#include "plugin/kernels/for_each_level.h"
