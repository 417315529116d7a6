#include "platform/standin/pict_map.h"

#include "platform/standin/pict_format.h"

namespace standin {
namespace {

constexpr size_t kBaseAddressSize = 4;
constexpr int32_t kLargestIndexedSize = 8;
constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr uint32_t kBlack = 0x00000000;

void readPixelFields(PictReader& reader, PictMap& map) {
  reader.skip(2);  // version
  map.packType = reader.read16();
  reader.skip(4 + 4 + 4 + 2);  // packed size, resolutions, pixel type
  map.pixelSize = reader.read16();
  map.components = reader.read16();
  reader.skip(2 + 4 + 4 + 4);  // component size, plane bytes, colour table, reserved
}

/// The upper byte of each component.
uint32_t readColor(PictReader& reader) {
  uint32_t color = 0;
  for (int i = 0; i < 3; ++i) color = color << 8 | reader.read16() >> 8;
  return color;
}

/// Pixels without an entry are black.
std::vector<uint32_t> readColorTable(PictReader& reader, int32_t pixelSize) {
  constexpr uint16_t kCountsUp = 0x8000;
  std::vector<uint32_t> colors(size_t{1} << std::min(pixelSize, kLargestIndexedSize), kBlack);
  reader.skip(4);  // seed
  const bool countsUp = (reader.read16() & kCountsUp) != 0;
  const int32_t last = reader.readCoordinate();
  for (int32_t i = 0; i <= last; ++i) {
    const uint16_t value = reader.read16();
    const size_t pixel = countsUp ? static_cast<size_t>(i) : value;
    const uint32_t color = readColor(reader);
    if (pixel < colors.size()) colors[pixel] = color;
  }
  return colors;
}

bool isPossible(const PictMap& map) {
  const int32_t size = map.pixelSize;
  const bool isIndexed = size == 1 || size == 2 || size == 4 || size == 8;
  if (!isIndexed && size != 16 && size != 32) return false;
  if (isIndexed && map.kind == PictMapKind::Direct) return false;
  return !map.bounds.isEmpty() && int64_t{8} * map.rowBytes >= int64_t{size} * map.bounds.width();
}

}  // namespace

PictMap readPictMap(PictReader& reader, PictMapKind kind) {
  if (kind == PictMapKind::Direct) reader.skip(kBaseAddressSize);
  const uint16_t rowBytes = reader.read16();
  PictMap map{kind, rowBytes & (pict::kRowBytesLimit - 1), reader.readBox(), 0, 1, 1, {}};
  if ((rowBytes & pict::kPixMapFlag) != 0 || kind == PictMapKind::Direct) {
    readPixelFields(reader, map);
    if (!isPossible(map)) throw DamagedPict();
    if (kind != PictMapKind::Direct) map.colors = readColorTable(reader, map.pixelSize);
  } else {
    if (!isPossible(map)) throw DamagedPict();
    map.colors = {kWhite, kBlack};
  }
  return map;
}

}  // namespace standin
