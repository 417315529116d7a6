// A decoded picture file: plain words in memory, no host object.
#pragma once

#include <cstdint>
#include <vector>

namespace host {

/// Row-major pixels 0xAARRGGBB, width * height of them. Alpha 255 is opaque;
/// without alpha every top byte is 0.
struct Image {
  int32_t width = 0;
  int32_t height = 0;
  bool hasAlpha = false;
  std::vector<uint32_t> pixels;
};

}  // namespace host
