// PicHandleDataQRZ: the bytes of a picture's PICT data.

#include "plugin/binding/strings.h"
#include "plugin/exchange/pict_data.h"
#include "plugin/pixels/locks.h"

namespace qrz {
namespace {

/// A new string of the bytes of PICT data; null for no data or no bytes.
HostString bytesOf(PicHandle data) {
  if (data == nullptr) return nullptr;
  auto* handle = reinterpret_cast<Handle>(data);
  HLock(handle);
  HostString string =
      MakeHostString(*handle, static_cast<int32_t>(GetHandleSize(handle)), kRawBytes);
  HUnlock(handle);
  return string;
}

/// The same of new PICT data in which the picture is drawn.
HostString recordedBytesOf(HostPicture picture, const PictureDescription& description) {
  PicHandle data = recordPicture(picture, description.width, description.height);
  HostString string = bytesOf(data);
  if (data != nullptr) KillPicture(data);
  return string;
}

}  // namespace

/// A new string with the bytes of the picture's PICT data, raw; of a picture
/// that holds none, of PICT data into which it is drawn. Nil if the picture is
/// nil, larger than 32,767 in a direction, or cannot be recorded, and if the
/// data has no bytes.
HostString PicHandleDataQRZ(HostPicture picture) {
  if (picture == nullptr) return nullptr;
  DescriptionLock lock;
  const PictureDescription& description = lock.lock(picture);
  if (description.type == kPictData) return bytesOf(static_cast<PicHandle>(description.data));
  return recordedBytesOf(picture, description);
}

}  // namespace qrz
