// ExtractColorQRZ: where one exact colour occurs, in two colours.

#include "plugin/kernels/replace_color.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct ExtractColorRow {
  HostColor search, found, background;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(extractColorRow<Format>(destination, count, source, Format::ofColor(search),
                                            Format::ofColor(found), Format::ofColor(background)));
  }
};

}  // namespace

/// A new picture of the picture's size: ReplaceWithColor where the picture is
/// exactly SearchColor, elsewhere BackGroundColor; pads 0. Nil if the picture
/// cannot be read or no new one can be made.
HostPicture ExtractColorQRZ(HostPicture picture, HostColor SearchColor, HostColor ReplaceWithColor,
                            HostColor BackGroundColor) {
  return filterPicture(picture, wholePicture,
                       ExtractColorRow{SearchColor, ReplaceWithColor, BackGroundColor});
}

}  // namespace qrz
