// BuildPictureWithGWorldHandleQRZ: a picture from a GWorld made elsewhere.

#include "plugin/binding/services.h"

namespace qrz {

/// A new picture that shows the GWorld whose address is `handle`, and owns it
/// if ByPassOwernerShip is true. Nil for 0, and if the host refuses.
HostPicture BuildPictureWithGWorldHandleQRZ(int32_t handle, HostBoolean ByPassOwernerShip) {
  if (handle == 0) return nullptr;
  // An integer is how programs hold the platform's pointers.
  auto* world = reinterpret_cast<GWorldPtr>(static_cast<uintptr_t>(handle));
  return service::REALBuildPictureFromGWorld(world, ByPassOwernerShip);
}

}  // namespace qrz
