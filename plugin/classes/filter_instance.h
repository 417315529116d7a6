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
    replace(SourcePicture, nullptr);
    replace(DestinationPicture, nullptr);
  }

  /// Takes over a reference, and then drops the one that was there: dropping may run
  /// programs, which find the new picture.
  static void replace(HostPicture& field, HostPicture picture) {
    HostPicture old = field;
    field = picture;
    if (old != nullptr) service::REALUnlockObject(asObject(old));
  }
};
static_assert(offsetof(FilterInstance, DestinationPicture) == 4);
static_assert(offsetof(FilterInstance, MinX) == 8);
static_assert(offsetof(FilterInstance, MinY) == 12);
static_assert(offsetof(FilterInstance, MaxX) == 16);
static_assert(offsetof(FilterInstance, MaxY) == 20);
static_assert(sizeof(FilterInstance) == 24);

/// The record of a property that is a field of the instance data DATA.
#define QRZ_HOST_FIELD(DATA, NAME, TYPE, FLAGS)                                \
  {                                                                            \
    nullptr, #NAME, TYPE, FLAGS, QRZ_HOST_FIELD_ACCESS, QRZ_HOST_FIELD_ACCESS, \
        offsetof(DATA, NAME), {}                                               \
  }

/// The records of the fields above, in the order of registration.
#define QRZ_FILTER_FIELDS(FLAGS)                                            \
  QRZ_HOST_FIELD(FilterInstance, SourcePicture, "Picture", FLAGS),          \
      QRZ_HOST_FIELD(FilterInstance, DestinationPicture, "Picture", FLAGS), \
      QRZ_HOST_FIELD(FilterInstance, MaxX, "Integer", FLAGS),               \
      QRZ_HOST_FIELD(FilterInstance, MinX, "Integer", FLAGS),               \
      QRZ_HOST_FIELD(FilterInstance, MaxY, "Integer", FLAGS),               \
      QRZ_HOST_FIELD(FilterInstance, MinY, "Integer", FLAGS)

}  // namespace qrz
