// The frame of the tone curves: one map from channel value to channel byte for
// each channel.
#pragma once

#include "plugin/adjust/map_channels.h"
#include "plugin/pixels/convert.h"

namespace qrz {

/// A new picture with every channel passed through its map; pads 0. A map takes
/// a channel value, 0 to 255 as a double, and gives the byte that is stored. It
/// is evaluated once for each value. Null if the picture cannot be read or no
/// new one can be made.
template <typename Map>
HostPicture mapTones(HostPicture picture, const Map& red, const Map& green, const Map& blue) {
  uint8_t tables[3][256];
  for (int32_t value = 0; value < 256; ++value) {
    tables[0][value] = static_cast<uint8_t>(red(static_cast<double>(value)));
    tables[1][value] = static_cast<uint8_t>(green(static_cast<double>(value)));
    tables[2][value] = static_cast<uint8_t>(blue(static_cast<double>(value)));
  }
  return filterPicture(picture, wholePicture, MapChannelsRow{{tables[0], tables[1], tables[2]}});
}

}  // namespace qrz
