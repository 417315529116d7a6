// PicHandleQRZ: a picture as PICT data.

#include "plugin/binding/reference.h"
#include "plugin/exchange/pict_data.h"
#include "plugin/pixels/locks.h"

namespace qrz {

/// A new picture that holds the picture drawn into PICT data; of a picture that
/// is PICT data already, the picture itself. Nil if the picture is nil, larger
/// than 32,767 in a direction, or cannot be recorded, or if the host cannot add the
/// reference to the picture itself.
HostPicture PicHandleQRZ(HostPicture picture) {
  if (picture == nullptr) return nullptr;
  DescriptionLock lock;
  const PictureDescription description = lock.lock(picture);
  lock.unlock();
  if (description.type == kPictData) {
    if (!service::REALLockObject.isThere()) return nullptr;
    service::REALLockObject(asObject(picture));
    return picture;
  }
  return pictureOwning(recordPicture(picture, description.width, description.height));
}

}  // namespace qrz
