// The two ways to a picture's pixels.
#pragma once

#include <cstddef>
#include <cstdint>

#include "plugin/pixels/format.h"
#include "plugin/pixels/latches.h"

namespace qrz {

/// Pictures held as GWorlds (new ones also as bitmap contexts): one block,
/// each row `rowBytes` bytes after the one above.
struct GWorldPath {
  using Format = GWorldFormat;
  static constexpr RepresentationLatch latch = RepresentationLatch::GWorldPath;
  static constexpr RepresentationLatch other = RepresentationLatch::RowTablePath;

  struct Rows {
    uint8_t* base;
    int32_t rowBytes;
    [[nodiscard]] uint8_t* row(int32_t y) const {
      return base + static_cast<ptrdiff_t>(y) * rowBytes;
    }
  };
};

/// Pictures held as the host's own bitmap record: a table of row pointers.
struct RowTablePath {
  using Format = RowTableFormat;
  static constexpr RepresentationLatch latch = RepresentationLatch::RowTablePath;
  static constexpr RepresentationLatch other = RepresentationLatch::GWorldPath;

  struct Rows {
    uint8_t** rowTable;
    [[nodiscard]] uint8_t* row(int32_t y) const { return rowTable[y]; }
  };
};

}  // namespace qrz
