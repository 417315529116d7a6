// The geometry of a 3D colour look-up table.
#pragma once

#include <cstdint>

namespace qrz {

/// Points per axis of the lattice; the first 16 stand for the levels 0, 17, …
/// 255.
constexpr uint16_t kLut3DPoints = 18;
constexpr uint16_t kLut3DUsedPoints = 16;
constexpr uint16_t kLut3DLevelsPerPoint = 17;
constexpr uint16_t kLut3DChannels = 3;

/// Distances in the table, in elements: red is outermost, the three output
/// channels of a point lie side by side.
constexpr uint16_t kLut3DBlueStride = kLut3DChannels;
constexpr uint16_t kLut3DGreenStride = kLut3DPoints * kLut3DBlueStride;
constexpr uint16_t kLut3DRedStride = kLut3DPoints * kLut3DGreenStride;
constexpr uint16_t kLut3DElements = kLut3DPoints * kLut3DRedStride;

/// The host aligns instance data to words only.
typedef double Lut3DElement __attribute__((aligned(4)));

}  // namespace qrz
