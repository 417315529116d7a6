// HasMaskQRZ: whether the host holds a mask for a picture.

#include "plugin/binding/reference.h"

namespace qrz {

/// 1 if the picture has a mask, 0 if not or if it is nil. None is created.
int32_t HasMaskQRZ(HostPicture picture) {
  if (picture == nullptr) return 0;
  const Reference<HostPicture> mask{service::REALGetPictureMask(picture, 0)};
  return mask ? 1 : 0;
}

}  // namespace qrz
