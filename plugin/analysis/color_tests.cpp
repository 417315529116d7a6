// isWhiteQRZ, isBlackQRZ: whether all pixels have one colour.

#include "plugin/kernels/compare.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

constexpr HostColor kWhite = 0xFFFFFF;
constexpr HostColor kBlack = 0x000000;

template <typename Path>
bool areaIsOf(const PictureReader<Path>& reader, const Area& area, HostColor color) {
  using Format = typename Path::Format;
  if (area.x0 >= area.x1) return true;
  for (int32_t y = area.y0; y < area.y1; ++y) {
    const PixelWord* row = reader.row(y) + area.x0;
    if (!QRZ_KERNEL_CALL(rowIsOf<Format>(row, area.x1 - area.x0, Format::ofColor(color)))) {
      return false;
    }
  }
  return true;
}

int32_t isOf(HostPicture picture, const Rectangle& rectangle, HostColor color) {
  bool result = false;
  readPictures(Pictures<1>{picture}, [&](auto /*path*/, const auto& readers) {
    const auto& reader = readers[0];
    result = areaIsOf(reader, rectangle.within(reader.width(), reader.height()), color);
  });
  return result ? 1 : 0;
}

}  // namespace

/// 1 if every pixel inside the rectangle is white, whatever the pads hold; also
/// if the rectangle holds no pixel. 0 otherwise, and if the picture cannot be
/// read.
int32_t isWhiteRectangleQRZ(HostPicture picture, int32_t left, int32_t top, int32_t width,
                            int32_t height) {
  return isOf(picture, {left, top, width, height}, kWhite);
}

/// isWhiteRectangleQRZ on the whole picture.
int32_t isWhiteQRZ(HostPicture picture) { return isOf(picture, wholePicture, kWhite); }

/// The same for black.
int32_t isBlackRectangleQRZ(HostPicture picture, int32_t left, int32_t top, int32_t width,
                            int32_t height) {
  return isOf(picture, {left, top, width, height}, kBlack);
}

/// isBlackRectangleQRZ on the whole picture.
int32_t isBlackQRZ(HostPicture picture) { return isOf(picture, wholePicture, kBlack); }

}  // namespace qrz
