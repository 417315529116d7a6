// The single samples; see samples.h for what they have in common.
#pragma once

#include <cstdint>

#include "host/files/image.h"

namespace host {

Image drawLandscape(int32_t width, int32_t height);
Image drawGradients(int32_t width, int32_t height);
Image drawColors(int32_t width, int32_t height);
Image drawGreys(int32_t width, int32_t height);
Image drawEdges(int32_t width, int32_t height);
Image drawAlpha(int32_t width, int32_t height);

}  // namespace host
