// The class PictureLut3DQRZ: its instance data.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/classes/filter_instance.h"
#include "plugin/kernels/lut3d_table.h"

namespace qrz {

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
