// InvertGrayQRZ: the grey pixels inverted, the others copied.

#include "plugin/kernels/invert_gray.h"

#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct InvertGrayRow {
  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(invertGrayRow<Format>(destination, count, source));
  }
};

}  // namespace

/// A new picture of the picture's size in which every grey pixel inside the
/// rectangle (red = green = blue) is inverted, as InvertQRZ does it, and every
/// other pixel inside copied, pad 0. Rectangle, unwritten pixels and failures
/// are those of InvertQRZ.
HostPicture InvertGrayRectangleQRZ(HostPicture picture, int32_t left, int32_t top, int32_t width,
                                   int32_t height) {
  return filterPicture(picture, Rectangle{left, top, width, height}, InvertGrayRow());
}

/// InvertGrayRectangleQRZ on the whole picture.
HostPicture InvertGrayQRZ(HostPicture picture) {
  return filterPicture(picture, wholePicture, InvertGrayRow());
}

}  // namespace qrz
