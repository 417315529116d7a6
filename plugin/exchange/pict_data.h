// QuickDraw PICT data: recorded from a picture, or turned into one.
#pragma once

#include "plugin/binding/services.h"

namespace qrz {

/// Records new PICT data in which the host draws the picture, at 72 pixels per
/// inch and of its size; owned by the caller. Null if a size is not 0 to 32,767,
/// the most that PICT data can say, or the platform cannot record.
PicHandle recordPicture(HostPicture picture, int32_t width, int32_t height);

/// A new host picture that owns the PICT data, with one reference for the
/// caller. Null for no data, and if the host refuses; then the data, which stays
/// the caller's in that case, is disposed of.
HostPicture pictureOwning(PicHandle data);

}  // namespace qrz
