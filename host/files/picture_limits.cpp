#include "host/files/picture_limits.h"

#include <string>

#include "host/files/file_fault.h"

namespace host {

void checkSize(uint64_t width, uint64_t height) {
  if (width == 0 || height == 0) throw FileFault("the picture has no pixels");
  if (width <= kMaxSide && height <= kMaxSide && width * height <= kMaxPixels) return;
  throw FileFault("a picture of " + std::to_string(width) + " x " + std::to_string(height) +
                  " pixels" + kTooLarge);
}

}  // namespace host
