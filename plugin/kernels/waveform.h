// The bars of a waveform in pixel rows.
#pragma once

#include <cstdint>

namespace qrz {

struct BarPixels {
  uint32_t bar, background;
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/waveform.inc"
#include "plugin/kernels/for_each_level.h"
