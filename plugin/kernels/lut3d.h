// A 3D colour look-up table applied to pixel rows by tetrahedral interpolation.
#pragma once

#include "plugin/kernels/lut3d_table.h"

namespace qrz {

constexpr int32_t kLut3DBlockSize = 64;

/// Pixels on their way through the table.
struct Lut3DBlock {
  uint16_t red[kLut3DBlockSize], green[kLut3DBlockSize], blue[kLut3DBlockSize];
  uint16_t points[4][kLut3DBlockSize];   ///< of the tetrahedron, in table elements
  uint16_t weights[4][kLut3DBlockSize];  ///< of the points, in elements of kLut3DWeights
  uint32_t mixed[kLut3DBlockSize];       ///< the new red, green and blue in bytes 0 to 2
};

/// The weights that points can have: element a × 17 + b is the difference of the
/// fractions of the way to the next point that remainders of a and b levels are.
struct Lut3DWeights {
  static constexpr uint16_t kWhole = kLut3DLevelsPerPoint;
  double differences[(kWhole + 1) * kLut3DLevelsPerPoint];
};

constexpr Lut3DWeights makeLut3DWeights() {
  Lut3DWeights weights{};
  for (int32_t a = 0; a <= Lut3DWeights::kWhole; ++a) {
    for (int32_t b = 0; b < kLut3DLevelsPerPoint; ++b) {
      weights.differences[a * kLut3DLevelsPerPoint + b] = a / 17.0 - b / 17.0;
    }
  }
  return weights;
}

inline constexpr Lut3DWeights kLut3DWeights = makeLut3DWeights();

/// The three output channels of a point; the fourth value is the neighbour's in
/// the table and goes nowhere.
typedef double Lut3DColor __attribute__((vector_size(32)));

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/lut3d.inc"
#include "plugin/kernels/for_each_level.h"
