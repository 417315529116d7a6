// MergePictureQRZ: the lighter of two pictures, channel by channel.

#include "plugin/kernels/channels.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct MergeRow {
  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* first,
           const PixelWord* second) const {
    QRZ_ROW_KERNEL_CALL(count, mergeRow<Format>(destination, count, first, second));
  }
};

}  // namespace

/// A new picture whose channels are the larger ones of two pictures; pads 0.
/// Nil if one is nil or cannot be read, their sizes differ or no new picture can
/// be made.
HostPicture MergePictureQRZ(HostPicture source1, HostPicture source2) {
  if (source1 == nullptr || source2 == nullptr) return nullptr;
  return filterPictures(Pictures<2>{source1, source2}, EqualSizes(), wholePicture, MergeRow());
}

}  // namespace qrz
