// CountColorQRZ: the pixels of one exact colour, counted in place if possible.

#include "plugin/kernels/count_color.h"

#include "plugin/pixels/filter.h"
#include "plugin/pixels/lock.h"

namespace qrz {
namespace {

/// Counts in the rows of a lock or a reader; rows without an address hold no
/// pixel.
template <typename Format, typename Pixels>
uint32_t countIn(const Pixels& pixels, HostColor color) {
  uint32_t found = 0;
  for (int32_t y = 0; y < pixels.height(); ++y) {
    const auto* row = reinterpret_cast<const PixelWord*>(pixels.row(y));
    if (row == nullptr) continue;
    found += QRZ_KERNEL_CALL(countColorRow<Format>(row, pixels.width(), Format::ofColor(color)));
  }
  return found;
}

uint32_t countIn24(const GWorldLock& pixels, HostColor color) {
  const auto red = static_cast<uint8_t>(color >> 16);
  const auto green = static_cast<uint8_t>(color >> 8);
  const auto blue = static_cast<uint8_t>(color);
  uint32_t found = 0;
  for (int32_t y = 0; y < pixels.height(); ++y) {
    found += QRZ_KERNEL_CALL(countColorRow24(pixels.row(y), pixels.width(), red, green, blue));
  }
  return found;
}

uint32_t countColor(HostPicture picture, HostColor color) {
  {
    GWorldLock lock;
    if (lock.acquire(picture, LockDepth::Only32)) return countIn<GWorldFormat>(lock, color);
  }
  {
    RowTableLock lock;
    if (lock.acquire(picture)) return countIn<RowTableFormat>(lock, color);
  }
  {
    GWorldLock lock;
    if (lock.acquire(picture, LockDepth::Only24)) return countIn24(lock, color);
  }
  uint32_t found = 0;
  readPictures(Pictures<1>{picture}, [&](auto path, const auto& readers) {
    found = countIn<typename decltype(path)::Format>(readers[0], color);
  });
  return found;
}

}  // namespace

/// The number of pixels whose red, green and blue are exactly those of `col`;
/// pads are not looked at. No copy is made of a picture that can be read where
/// it lies. 0 if the picture is nil or cannot be read.
int32_t CountColorQRZ(HostPicture picture, HostColor col) {
  return static_cast<int32_t>(countColor(picture, col));
}

}  // namespace qrz
