// Integer properties of host objects, by name.
#pragma once

#include "plugin/binding/handles.h"

namespace qrz {

/// Width and height of a picture or any object that has them; 0 for null and
/// when the host cannot tell.
int32_t GetWidthProperty(HostObject object);
int32_t GetHeightProperty(HostObject object);

/// Set a graphics object's colour and pen (pixels). The host's boolean result,
/// 0 when it refuses.
int32_t SetForeColorProperty(HostObject object, HostColor color);
int32_t SetPenWidthProperty(HostObject object, int32_t value);
int32_t SetPenHeightProperty(HostObject object, int32_t value);

}  // namespace qrz
