// The row operation of all members that map each channel by itself.
#pragma once

#include "plugin/pixels/filter.h"

namespace qrz {

/// Byte i of a table of 256 bytes is the new value of a channel of value i.
struct ChannelTables {
  const uint8_t* red;
  const uint8_t* green;
  const uint8_t* blue;
};

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/map_channels.inc"
#include "plugin/kernels/for_each_level.h"

namespace qrz {

struct MapChannelsRow {
  ChannelTables tables;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(mapChannelsRow<Format>(destination, count, source, tables));
  }
};

}  // namespace qrz
