// When the host's own bitmap record can be used.
#pragma once

#include "plugin/binding/description.h"

namespace qrz {

/// The record of a description, or null if it cannot be used: kind not 0, not
/// ready, or without a row table. The rows themselves are not tested.
inline const HostBitmap* usableBitmap(const PictureDescription& description) {
  const auto* bitmap = static_cast<const HostBitmap*>(description.data);
  const bool usable =
      bitmap != nullptr && bitmap->kind == 0 && bitmap->rowTable != nullptr && bitmap->ready != 0;
  return usable ? bitmap : nullptr;
}

/// Like usableBitmap, and every row of the record's height has an address.
inline const HostBitmap* usableBitmapWithRows(const PictureDescription& description) {
  const HostBitmap* bitmap = usableBitmap(description);
  if (bitmap == nullptr) return nullptr;
  for (int32_t y = 0; y < bitmap->height; ++y) {
    if (bitmap->rowTable[y] == nullptr) return nullptr;
  }
  return bitmap;
}

}  // namespace qrz
