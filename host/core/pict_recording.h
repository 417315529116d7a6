// Host pictures as PICT data.
#pragma once

#include <cstdint>
#include <vector>

#include "host/core/picture.h"

namespace host {

/// All of a picture in a rectangle.
Placement placementIn(const Rect& rect, const Picture& picture);

/// Draws a picture, as it looks on white, into the open recording.
void recordPicture(const Picture& picture, const Rect& rect);

/// The picture as PICT data: that which it holds, if it looks like that, or else a
/// recording. Empty if the picture is too large for PICT data. Throws std::bad_alloc
/// without memory.
std::vector<uint8_t> pictDataOf(Picture& picture);

}  // namespace host
