// BuildPictureWithPicHandleDataQRZ: a picture from the bytes of PICT data.

#include "plugin/binding/strings.h"
#include "plugin/exchange/pict_data.h"

namespace qrz {

/// A new picture that holds a copy of the string's bytes as PICT data, whatever
/// they are; a nil string gives data without bytes. Nil if there is no memory or
/// the host refuses.
HostPicture BuildPictureWithPicHandleDataQRZ(HostString data) {
  const HostText text = textOf(data);
  Handle handle = nullptr;
  if (PtrToHand(text.bytes, &handle, text.length) != 0) return nullptr;
  return pictureOwning(reinterpret_cast<PicHandle>(handle));
}

}  // namespace qrz
