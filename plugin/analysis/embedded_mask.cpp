// EmbeddedMaskQRZ: the mask in a picture's own pads, read as a grey picture and
// written from one.

#include "plugin/kernels/embedded_mask.h"

#include <algorithm>
#include <type_traits>

#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

/// Turns a value v into 255 - v if set.
uint32_t flipFor(HostBoolean swap) { return swap != 0 ? 255 : 0; }

/// Of a bitmap record's pads, the top bit is not part of the mask.
template <typename Format>
constexpr uint32_t kReadableMask = std::is_same_v<Format, RowTableFormat> ? 0x7F : 0xFF;

struct ReadMaskRow {
  uint32_t flip;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(readMaskRow<Format>(destination, count, source, kReadableMask<Format>, flip));
  }
};

}  // namespace

/// A new picture of the picture's size with the mask values as greys, or with
/// `swap` as 255 minus them; pads 0. The values are 0 to 255, in the host's own
/// bitmap records 0 to 127. Nil if the picture cannot be read or no new one can
/// be made.
HostPicture EmbeddedMaskQRZ(HostPicture picture, HostBoolean swap) {
  return filterPicture(picture, wholePicture, ReadMaskRow{flipFor(swap)});
}

/// Writes the red of `mask`, or with `swap` 255 minus it, into the pads of the
/// picture, in place; colours stay. Where the mask is smaller than the picture,
/// the rest of the picture stays as it is. Of a picture that can only be read
/// through a copy nothing is changed. Nothing happens if the mask is nil or
/// either cannot be read.
void SetEmbeddedMaskQRZ(HostPicture picture, HostBoolean swap, HostPicture mask) {
  if (mask == nullptr) return;
  readPictures(Pictures<2>{picture, mask}, [&](auto path, const auto& readers) {
    using Format = typename decltype(path)::Format;
    const int32_t width = std::min(readers[0].width(), readers[1].width());
    const int32_t height = std::min(readers[0].height(), readers[1].height());
    for (int32_t y = 0; y < height; ++y) {
      QRZ_KERNEL_CALL(
          writeMaskRow<Format>(readers[0].writableRow(y), width, readers[1].row(y), flipFor(swap)));
    }
  });
}

}  // namespace qrz
