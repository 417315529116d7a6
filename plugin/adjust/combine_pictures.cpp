// CombinePicturesQRZ: a picture made of one channel each of three pictures.

#include "plugin/kernels/channels.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct CombineRow {
  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* red, const PixelWord* green,
           const PixelWord* blue) const {
    QRZ_KERNEL_CALL(combineRow<Format>(destination, count, red, green, blue));
  }
};

}  // namespace

/// A new picture with the red of the first picture, the blue of the second and
/// the green of the third; pads 0. Nil if one cannot be read (nil included),
/// their sizes differ or no new picture can be made.
HostPicture CombinePicturesQRZ(HostPicture red, HostPicture blue, HostPicture green) {
  return filterPictures(Pictures<3>{red, green, blue}, EqualSizes(), wholePicture, CombineRow());
}

}  // namespace qrz
