// Every channel of pixel rows along a straight line of its own.
#pragma once

#include <cstdint>

namespace qrz {

/// A channel value v becomes slope × v + offset in single precision, truncated and
/// cut to 0 to 255; from 2^31 on, and for what is no number, 0.
struct ToneLine {
  float slope, offset;
};
struct ToneLines {
  ToneLine red, green, blue;
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/tone_line.inc"
#include "plugin/kernels/for_each_level.h"
