// Pixel maps in PICT data: their fields and their rows.
#pragma once

#include <vector>

#include "platform/standin/pict_reader.h"

namespace standin {

struct PictPixelMap {
  int32_t rowBytes;
  Box bounds;
  int32_t packType;
  int32_t pixelSize;
  int32_t components;
};

/// The map of a direct pixel opcode, from its base address on. Throws
/// DamagedPict for anything that PictRows cannot read.
PictPixelMap readDirectMap(PictReader& reader);

/// The rows of a pixel map, from the top one on, as words 0x00RRGGBB.
class PictRows {
 public:
  PictRows(PictReader& reader, const PictPixelMap& map);

  /// As many words as the map is wide, valid until the next call.
  const uint32_t* next();

 private:
  void readPacked();
  void readRaw();

  PictReader& reader_;
  const PictPixelMap& map_;
  std::vector<uint8_t> bytes_;
  std::vector<uint32_t> words_;
};

}  // namespace standin
