#include "plugin/pixels/reader.h"

#include "plugin/binding/properties.h"
#include "plugin/pixels/copy.h"
#include "plugin/pixels/host_bitmap.h"

namespace qrz {

template <>
auto PictureReader<GWorldPath>::openInPlace(HostPicture picture) -> Outcome {
  const PictureDescription& description = description_.lock(picture);
  const bool isHostBitmap = description.type == kHostBitmap;
  if (description.type == kGWorld) {
    PixMapHandle map = pixMapOf(description);
    if (map != nullptr && GetPixDepth(map) == 32 && pixMap_.lock(map)) {
      if (char* base = GetPixBaseAddr(map)) {
        picture_.share(picture);
        readerLatch = RepresentationLatch::GWorldPath;
        rows_ = {reinterpret_cast<uint8_t*>(base), GetPixRowBytes(map)};
        width_ = description.columns();
        height_ = description.rows();
        return Outcome::Open;
      }
      pixMap_.unlock();
    }
  }
  description_.unlock();
  return isHostBitmap ? Outcome::HostBitmap : Outcome::Unusable;
}

template <>
bool PictureReader<GWorldPath>::open(HostPicture picture) {
  if (readerLatch == RepresentationLatch::RowTablePath || picture == nullptr) return false;
  const Outcome outcome = openInPlace(picture);
  if (outcome != Outcome::Unusable) return outcome == Outcome::Open;
  // Two statements: the host is asked for the width first.
  const int32_t width = GetWidthProperty(asObject(picture));
  const int32_t height = GetHeightProperty(asObject(picture));
  const Reference<HostPicture> copy{MakeCopy32(picture, width, height)};
  // Drawing the copy may have run programs that settled the latch. The copy lives on by
  // the reader's reference to it.
  if (!copy || readerLatch == RepresentationLatch::RowTablePath) return false;
  if (!service::REALLockObject.isThere()) return false;
  return openInPlace(copy.get()) == Outcome::Open;
}

template <>
bool PictureReader<RowTablePath>::open(HostPicture picture) {
  if (readerLatch == RepresentationLatch::GWorldPath || picture == nullptr) return false;
  const PictureDescription& description = description_.lock(picture);
  if (description.type == kHostBitmap) {
    readerLatch = RepresentationLatch::RowTablePath;
    if (const HostBitmap* bitmap = usableBitmapWithRows(description)) {
      picture_.share(picture);
      rows_ = {bitmap->rowTable};
      width_ = description.columns();
      height_ = description.rows();
      return true;
    }
  }
  description_.unlock();
  return false;
}

}  // namespace qrz
