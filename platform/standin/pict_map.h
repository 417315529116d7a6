// The fields of bitmaps and pixel maps in PICT data.
#pragma once

#include <vector>

#include "platform/standin/pict_reader.h"

namespace standin {

/// Who says what follows the fields.
enum class PictMapKind : uint8_t {
  Unpacked,  ///< the opcode for rows that are not packed
  Packed,    ///< the opcode for packed rows
  Direct,    ///< the opcode for direct pixels
};

struct PictMap {
  PictMapKind kind;
  int32_t rowBytes;
  Box bounds;
  int32_t packType;
  int32_t pixelSize;
  int32_t components;
  std::vector<uint32_t> colors;  ///< of pixels up to 8 bits, 0x00RRGGBB
};

/// A map with its colour table, from the first byte after the opcode up to the
/// source rectangle. Throws DamagedPict if there can be no such map.
PictMap readPictMap(PictReader& reader, PictMapKind kind);

}  // namespace standin
