// ChangeSaturationQRZ: colours moved away from or towards their own grey.

#include <algorithm>

#include "plugin/kernels/saturation.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct SaturationRow {
  SaturationFactor factor;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_ROW_KERNEL_CALL(count, saturationRow<Format>(destination, count, source, factor));
  }
};

}  // namespace

/// A new picture of the picture's size in which the distance of each channel
/// from the pixel's grey level, (R + G + B) / 3, is multiplied by
/// (Amount + 255) / 255, in integers, and cut to 0 to 255; pads 0. 0 changes
/// nothing, -255 leaves the greys, less swaps the sides. Every Amount gives the
/// exact result. Nil if the picture cannot be read or no new one can be made.
HostPicture ChangeSaturationQRZ(HostPicture picture, int32_t Amount) {
  // From 256 × 255 on, the least distance leaves the range of a channel: larger
  // factors give the same bytes.
  constexpr int64_t kEnough = 256 * 255;
  const int64_t factor = std::clamp(int64_t{Amount} + 255, -kEnough, kEnough);
  return filterPicture(picture, wholePicture,
                       SaturationRow{SaturationFactor(static_cast<int32_t>(factor))});
}

}  // namespace qrz
