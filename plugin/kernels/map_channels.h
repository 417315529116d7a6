// Every channel of pixel rows through a table of its own.
#pragma once

#include <cstdint>

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
