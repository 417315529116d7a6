#include "plugin/pixels/writer.h"

#include "plugin/pixels/host_bitmap.h"

namespace qrz {
namespace {

/// The rows of a bitmap context; a null base if it is not of 32-bit pixels, or not
/// valid.
GWorldPath::Rows contextRows(CGContextRef context) {
  void* data = CGBitmapContextGetData(context);
  const size_t rowBytes = CGBitmapContextGetBytesPerRow(context);
  const size_t bitsPerComponent = CGBitmapContextGetBitsPerComponent(context);
  const size_t bitsPerPixel = CGBitmapContextGetBitsPerPixel(context);
  if (bitsPerPixel != 32 || bitsPerComponent != 8 || rowBytes == 0) return {};
  return {static_cast<uint8_t*>(data), static_cast<int32_t>(rowBytes)};
}

/// The rows of a pixel map that `lock` holds from now on; a null base, and
/// nothing locked, if it has none.
GWorldPath::Rows pixMapRows(PixMapHandle map, PixelLock& lock) {
  if (map == nullptr || !lock.lock(map)) return {};
  const int32_t rowBytes = GetPixRowBytes(map);
  char* base = GetPixBaseAddr(map);
  if (base == nullptr) lock.unlock();
  return {reinterpret_cast<uint8_t*>(base), rowBytes};
}

}  // namespace

// The latch is set as soon as the host has shown what its new pictures are,
// also when this one turns out to be unusable.

template <>
bool PictureWriter<GWorldPath>::attach(const PictureDescription& description) {
  if (description.type != kBitmapContext && description.type != kGWorld) return false;
  writerLatch = RepresentationLatch::GWorldPath;
  if (description.type == kGWorld) {
    rows_ = pixMapRows(pixMapOf(description), pixMap_);
  } else if (auto* context = static_cast<CGContextRef>(description.data)) {
    rows_ = contextRows(context);
  }
  return rows_.base != nullptr;
}

template <>
bool PictureWriter<RowTablePath>::attach(const PictureDescription& description) {
  if (description.type != kHostBitmap) return false;
  writerLatch = RepresentationLatch::RowTablePath;
  const HostBitmap* bitmap = usableBitmapWithRows(description);
  if (bitmap == nullptr) return false;
  rows_ = {bitmap->rowTable};
  return true;
}

template <typename Path>
bool PictureWriter<Path>::create(int32_t width, int32_t height) {
  if (writerLatch == Path::other || width < 1 || height < 1) return false;
  picture_.adopt(service::newPicture(width, height, 32));
  if (!picture_) return false;
  if (attach(description_.lock(picture_.get()))) return true;
  description_.unlock();
  picture_.drop();
  return false;
}

template class PictureWriter<GWorldPath>;
template class PictureWriter<RowTablePath>;

}  // namespace qrz
