#include "platform/standin/pict_pixels.h"

#include "platform/standin/pack_bits.h"
#include "platform/standin/pict_format.h"

namespace standin {
namespace {

constexpr int32_t kDirectSize = 32;
constexpr int32_t kDirectBytes = kDirectSize / 8;
constexpr int32_t kColors = 3;

bool isReadable(const PictPixelMap& map) {
  return !map.bounds.isEmpty() && map.pixelSize == kDirectSize &&
         (map.packType == 0 || map.packType == pict::kPackedByComponent) &&
         (map.components == kColors || map.components == kColors + 1) &&
         map.rowBytes >= map.bounds.width() * kDirectBytes;
}

}  // namespace

PictPixelMap readDirectMap(PictReader& reader) {
  PictPixelMap map{};
  reader.skip(4);  // base address
  map.rowBytes = reader.read16() & (pict::kRowBytesLimit - 1);
  map.bounds = reader.readBox();
  reader.skip(2);  // version
  map.packType = reader.read16();
  reader.skip(4 + 4 + 4 + 2);  // packed size, resolutions, pixel type
  map.pixelSize = reader.read16();
  map.components = reader.read16();
  reader.skip(2 + 4 + 4 + 4);  // component size, plane bytes, colour table, reserved
  if (!isReadable(map)) throw DamagedPict();
  return map;
}

PictRows::PictRows(PictReader& reader, const PictPixelMap& map)
    : reader_(reader),
      map_(map),
      bytes_(static_cast<size_t>(map.components * map.bounds.width())),
      words_(static_cast<size_t>(map.bounds.width())) {}

const uint32_t* PictRows::next() {
  if (map_.rowBytes < pict::kShortestPackedRow) {
    readRaw();
  } else {
    readPacked();
  }
  return words_.data();
}

/// A pad byte, then the colours, pixel by pixel.
void PictRows::readRaw() {
  PictReader row(reader_.take(static_cast<size_t>(map_.rowBytes)));
  for (uint32_t& word : words_) word = row.read32() & 0x00FFFFFF;
}

/// The whole row of one component after the other; the last three are colours.
void PictRows::readPacked() {
  const size_t size =
      map_.rowBytes > pict::kLongestByteCountedRow ? reader_.read16() : reader_.read8();
  if (!unpackBits(reader_.take(size), bytes_)) throw DamagedPict();
  const size_t width = words_.size();
  const uint8_t* red = bytes_.data() + bytes_.size() - kColors * width;
  const uint8_t* green = red + width;
  const uint8_t* blue = green + width;
  for (size_t x = 0; x < width; ++x) {
    words_[x] = static_cast<uint32_t>(red[x] << 16 | green[x] << 8 | blue[x]);
  }
}

}  // namespace standin
