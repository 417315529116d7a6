// TintPictureQRZ: a weighted grey level in the shades of one colour.

#include "plugin/kernels/tint.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

TintFactors fractionsOf(HostColor color) {
  return {RowTableFormat::red(color) / 255.0, RowTableFormat::green(color) / 255.0,
          RowTableFormat::blue(color) / 255.0};
}

struct TintRow {
  TintFactors weights, tints;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_ROW_KERNEL_CALL(count, tintRow<Format>(destination, count, source, weights, tints));
  }
};

}  // namespace

/// A new picture of the source's size: the channels of GreyBase, as fractions,
/// weigh each pixel's channels into a level, and SepiaBase at that level is the
/// new pixel, each channel truncated and stopped at 255; pads 0. Nil if the
/// source cannot be read or no new picture can be made.
HostPicture TintPictureQRZ(HostPicture source, HostColor GreyBase, HostColor SepiaBase) {
  return filterPicture(source, wholePicture,
                       TintRow{fractionsOf(GreyBase), fractionsOf(SepiaBase)});
}

}  // namespace qrz
