// What the filter classes have in common: two pictures and a region.
#pragma once

#include <cstddef>

#include "plugin/binding/records.h"
#include "plugin/binding/services.h"
#include "plugin/pixels/area.h"

namespace qrz {

/// The first fields of the instance data; the host reads and writes them itself
/// at these offsets. The instance owns one reference to each picture that is
/// not nil.
struct FilterInstance {
  HostPicture SourcePicture;
  HostPicture DestinationPicture;
  int32_t MinX, MinY;  ///< first column and row of the region
  int32_t MaxX, MaxY;  ///< the column and row after the last

  [[nodiscard]] Region region() const { return {MinX, MinY, MaxX, MaxY}; }

  /// Releases both pictures; the instance goes on to work.
  void close() {
    drop(SourcePicture);
    drop(DestinationPicture);
  }

  static void drop(HostPicture& field) {
    if (field == nullptr) return;
    service::REALUnlockObject(asObject(field));
    field = nullptr;
  }
};
static_assert(offsetof(FilterInstance, DestinationPicture) == 4);
static_assert(offsetof(FilterInstance, MinX) == 8);
static_assert(offsetof(FilterInstance, MinY) == 12);
static_assert(offsetof(FilterInstance, MaxX) == 16);
static_assert(offsetof(FilterInstance, MaxY) == 20);
static_assert(sizeof(FilterInstance) == 24);

}  // namespace qrz
