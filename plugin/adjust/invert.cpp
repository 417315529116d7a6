// InvertQRZ: every pixel's colour inverted.

#include "plugin/kernels/invert.h"

#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct InvertRow {
  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(invertRow<Format>(destination, count, source));
  }
};

}  // namespace

/// A new picture of the picture's size in which every pixel inside the
/// rectangle has each channel c replaced by 255 - c, pad 0. Pixels outside the
/// rectangle are not written: they stay as the host creates them. Nil if the
/// picture cannot be read or no new one can be made. The rectangle's sums are
/// exact and cut to the picture, whatever the arguments.
HostPicture InvertRectangleQRZ(HostPicture picture, int32_t left, int32_t top, int32_t width,
                               int32_t height) {
  return filterPicture(picture, Rectangle{left, top, width, height}, InvertRow());
}

/// InvertRectangleQRZ on the whole picture.
HostPicture InvertQRZ(HostPicture picture) {
  return filterPicture(picture, wholePicture, InvertRow());
}

}  // namespace qrz
