// TransformColorsQRZ: every channel through a table of the caller's.

#include "plugin/adjust/map_channels.h"

namespace qrz {
namespace {

/// A table needs 256 bytes; a shorter block counts as none.
bool holdsTable(HostMemoryBlock block) { return service::memoryBlockGetSize(block) >= 256; }

/// Null if the block has become shorter: programs may have run meanwhile.
const uint8_t* tableIn(HostMemoryBlock block) {
  if (!holdsTable(block)) return nullptr;
  return static_cast<const uint8_t*>(service::memoryBlockGetPtr(block));
}

}  // namespace

/// A new picture of the picture's size with each channel replaced by the byte
/// at its value in the channel's table; pads 0. The tables are the first 256
/// bytes of the blocks, read where they lie. Nil if a block is nil, shorter or
/// without an address, the picture cannot be read or no new one can be made.
HostPicture TransformColorsQRZ(HostPicture picture, HostMemoryBlock red, HostMemoryBlock blue,
                               HostMemoryBlock green) {
  if (red == nullptr || blue == nullptr || green == nullptr) return nullptr;
  if (!holdsTable(red) || !holdsTable(blue) || !holdsTable(green)) return nullptr;
  const auto work = [&](auto /*path*/, const auto& readers, auto& writer) {
    const ChannelTables tables{tableIn(red), tableIn(green), tableIn(blue)};
    if (tables.red == nullptr || tables.green == nullptr || tables.blue == nullptr) return false;
    filterRows(readers, writer, wholePicture.within(readers[0].width(), readers[0].height()),
               MapChannelsRow{tables});
    return true;
  };
  return makePicture(Pictures<1>{picture}, AnySize(), work);
}

}  // namespace qrz
