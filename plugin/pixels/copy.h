// Copies of pictures, drawn or copied by row.
#pragma once

#include "plugin/binding/handles.h"

namespace qrz {

/// A stretch of one picture drawn into a rectangle of another, in pixels.
struct DrawGeometry {
  int32_t x, y, w, h;      ///< destination
  int32_t sx, sy, sw, sh;  ///< source
};

/// A new 32-bit picture of width × height pixels with `source` drawn at its
/// origin, unscaled; one reference for the caller. Null if source is null, a
/// size is below 1 or the host refuses. If it cannot be drawn into, the copy
/// stays as the host created it.
HostPicture MakeCopy32(HostPicture source, int32_t width, int32_t height);

/// Lets the host draw `source` into the graphics object; if the host cannot,
/// copies the rows into `destination` (CopyRows). False if nothing was drawn.
bool DrawPictureInto(HostGraphics graphics, HostPicture destination, HostPicture source,
                     const DrawGeometry& geometry);

/// Copies all pixels between two pictures of the host's own bitmap record and
/// of equal size; unscaled and at the origin only. False, with nothing copied,
/// in every other case.
bool CopyRows(HostPicture destination, HostPicture source, const DrawGeometry& geometry);

}  // namespace qrz
