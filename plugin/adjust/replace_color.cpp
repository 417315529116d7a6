// ReplaceColorQRZ: one exact colour replaced by another.

#include "plugin/kernels/replace_color.h"

#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct ReplaceColorRow {
  HostColor search, found;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(replaceColorRow<Format>(destination, count, source, Format::ofColor(search),
                                            Format::ofColor(found)));
  }
};

}  // namespace

/// A new picture of the picture's size with every pixel of exactly SearchColor
/// replaced by ReplaceWithColor, the others copied; pads 0. Nil if the picture
/// cannot be read or no new one can be made.
HostPicture ReplaceColorQRZ(HostPicture picture, HostColor SearchColor,
                            HostColor ReplaceWithColor) {
  return filterPicture(picture, wholePicture, ReplaceColorRow{SearchColor, ReplaceWithColor});
}

}  // namespace qrz
