// What the host tells about a picture's pixel store when it is locked.
#pragma once

#include <cstddef>
#include <cstdint>

namespace qrz {

/// Representation type codes. Any other code is one that the plug-in cannot
/// address directly.
enum PictureType : int32_t {
  kPictData = 1,       ///< data is a PicHandle
  kGWorld = 4,         ///< data is a GWorldPtr
  kBitmapContext = 8,  ///< data is a CGContextRef
  kHostBitmap = 10,    ///< data is a HostBitmap*
};

/// Filled by the host; valid from a lock to the matching unlock.
struct PictureDescription {
  int32_t type;
  void* data;
  int32_t width;   ///< pixels
  int32_t height;  ///< pixels
  uint32_t unread[2];

  /// The size, but never below 0, whatever the host says.
  [[nodiscard]] int32_t columns() const { return width > 0 ? width : 0; }
  [[nodiscard]] int32_t rows() const { return height > 0 ? height : 0; }
};
static_assert(sizeof(PictureDescription) == 24);

/// The host's own bitmap record, as far as the plug-in relies on it.
struct HostBitmap {
  int32_t kind;    ///< usable only when 0
  int32_t width;   ///< pixels
  int32_t height;  ///< rows
  uint8_t opaque[7212];
  int32_t ready;       ///< usable only when not 0
  uint8_t** rowTable;  ///< `height` pointers to the rows, from the top row down
};
static_assert(offsetof(HostBitmap, width) == 4);
static_assert(offsetof(HostBitmap, height) == 8);
static_assert(offsetof(HostBitmap, ready) == 7224);
static_assert(offsetof(HostBitmap, rowTable) == 7228);

}  // namespace qrz
