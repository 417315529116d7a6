// The class PictureLut3DQRZ: its instance data and the geometry of its table.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/classes/filter_instance.h"

namespace qrz {

/// Points per axis of the lattice; `Run` uses the first 16, which stand for the
/// levels 0, 17, … 255.
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

/// The instance data; table element (r, g, b, x) is the output channel x at the
/// lattice point (r, g, b).
struct PictureLut3D {
  FilterInstance filter;
  Lut3DElement table[kLut3DElements];
};
static_assert(offsetof(PictureLut3D, table) == 24);
static_assert(sizeof(PictureLut3D) == 139992);

extern ClassRecord lut3DClass;

/// The method Run, in a file of its own.
int32_t RunLut3DQRZ(HostObject instance);

}  // namespace qrz
