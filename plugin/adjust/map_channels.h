// The row operation of all members that map each channel by itself.
#pragma once

#include "plugin/kernels/map_channels.h"
#include "plugin/pixels/filter.h"

namespace qrz {

struct MapChannelsRow {
  ChannelTables tables;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_ROW_KERNEL_CALL(count, mapChannelsRow<Format>(destination, count, source, tables));
  }
};

}  // namespace qrz
