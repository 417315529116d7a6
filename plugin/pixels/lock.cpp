#include "plugin/pixels/lock.h"

#include "plugin/pixels/host_bitmap.h"

namespace qrz {
namespace {

/// Bytes of a pixel of an accepted depth, 0 for another depth.
int32_t acceptedPixelBytes(int16_t depth, LockDepth accepted) {
  if (depth == 32 && accepted != LockDepth::Only24) return 4;
  if (depth == 24 && accepted != LockDepth::Only32) return 3;
  return 0;
}

}  // namespace

bool GWorldLock::acquire(HostPicture picture, LockDepth accepted) {
  if (lockLatch == RepresentationLatch::RowTablePath || picture == nullptr) return false;
  const PictureDescription& description = description_.lock(picture);
  PixMapHandle map = description.type == kGWorld ? pixMapOf(description) : nullptr;
  bytesPerPixel_ = map != nullptr ? acceptedPixelBytes(GetPixDepth(map), accepted) : 0;
  if (bytesPerPixel_ != 0 && pixMap_.lock(map)) {
    if (char* base = GetPixBaseAddr(map)) {
      picture_.share(picture);
      lockLatch = RepresentationLatch::GWorldPath;
      rows_ = {reinterpret_cast<uint8_t*>(base), GetPixRowBytes(map)};
      return true;
    }
    pixMap_.unlock();
  }
  description_.unlock();
  return false;
}

bool RowTableLock::acquire(HostPicture picture) {
  if (lockLatch == RepresentationLatch::GWorldPath || picture == nullptr) return false;
  const PictureDescription& description = description_.lock(picture);
  const HostBitmap* bitmap = description.type == kHostBitmap ? usableBitmap(description) : nullptr;
  if (bitmap == nullptr) {
    description_.unlock();
    return false;
  }
  picture_.share(picture);
  lockLatch = RepresentationLatch::RowTablePath;
  rows_ = {bitmap->rowTable};
  return true;
}

}  // namespace qrz
