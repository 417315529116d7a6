// A weighted luminance of pixels, toned.
#pragma once

#include <cstdint>

#include "plugin/pixels/convert.h"

namespace qrz {

/// Weights in 1024ths and offsets in channel values.
template <typename Number>
struct SepiaTone {
  Number weightRed, weightGreen, weightBlue;
  Number red, green, blue;
};
using NarrowTone = SepiaTone<int16_t>;
using WideTone = SepiaTone<int64_t>;

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/sepia.inc"
#include "plugin/kernels/for_each_level.h"
