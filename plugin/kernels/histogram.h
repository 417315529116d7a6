// Histograms of the channels of pixel rows.
#pragma once

#include <cstdint>

namespace qrz {

/// Pixels that have counters of their own. Neighbours are often alike, and adding to
/// the same counter twice in a row waits for memory.
constexpr int32_t kHistograms = 4;

/// One counter for every value of each channel.
struct HistogramCounters {
  uint32_t red[256], green[256], blue[256];
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/histogram.inc"
#include "plugin/kernels/for_each_level.h"
