#include "plugin/pixels/reader.h"

#include "plugin/binding/properties.h"
#include "plugin/pixels/copy.h"
#include "plugin/pixels/host_bitmap.h"

namespace qrz {

template <>
bool PictureReader<GWorldPath>::openInPlace(HostPicture picture) {
  const PictureDescription& description = description_.lock(picture);
  if (description.type == kGWorld) {
    PixMapHandle map = pixMapOf(description);
    if (map != nullptr && GetPixDepth(map) == 32 && pixMap_.lock(map)) {
      if (char* base = GetPixBaseAddr(map)) {
        picture_.share(picture);
        readerLatch = RepresentationLatch::GWorldPath;
        rows_ = {reinterpret_cast<uint8_t*>(base), GetPixRowBytes(map)};
        return true;
      }
      pixMap_.unlock();
    }
  }
  description_.unlock();
  return false;
}

template <>
bool PictureReader<GWorldPath>::open(HostPicture picture) {
  if (readerLatch == RepresentationLatch::RowTablePath || picture == nullptr) return false;
  if (openInPlace(picture)) return true;
  if (description_.description().type == kHostBitmap) return false;
  const Reference<HostPicture> copy{MakeCopy32(picture, GetWidthProperty(asObject(picture)),
                                               GetHeightProperty(asObject(picture)))};
  return copy && openInPlace(copy.get());
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
      return true;
    }
  }
  description_.unlock();
  return false;
}

}  // namespace qrz
