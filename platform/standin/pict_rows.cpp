#include "platform/standin/pict_rows.h"

#include "platform/standin/pack_bits.h"
#include "platform/standin/pict_format.h"
#include "platform/standin/x555.h"

namespace standin {
namespace {

constexpr int32_t kColors = 3;

uint32_t rgb(uint8_t red, uint8_t green, uint8_t blue) {
  return static_cast<uint32_t>(red << 16 | green << 8 | blue);
}

using Bytes = std::span<const uint8_t>;
using Words = std::vector<uint32_t>;

void fromIndexed(Bytes bytes, const PictMap& map, Words& words) {
  const auto size = static_cast<uint32_t>(map.pixelSize);
  const uint32_t perByte = 8 / size;
  const uint32_t largest = (1U << size) - 1;
  for (uint32_t x = 0; x < words.size(); ++x) {
    const uint32_t shift = 8 - size * (x % perByte + 1);
    words[x] = map.colors[bytes[x / perByte] >> shift & largest];
  }
}

void from555(Bytes bytes, Words& words) {
  for (size_t x = 0; x < words.size(); ++x) {
    words[x] = rgbOf555(static_cast<uint32_t>(bytes[2 * x] << 8 | bytes[2 * x + 1]));
  }
}

/// Colours that are the last of `step` bytes of each pixel.
void fromPixels(Bytes bytes, size_t step, Words& words) {
  for (size_t x = 0; x < words.size(); ++x) {
    const uint8_t* last = bytes.data() + step * (x + 1);
    words[x] = rgb(last[-3], last[-2], last[-1]);
  }
}

void fromPlanes(Bytes bytes, Words& words) {
  const size_t width = words.size();
  const uint8_t* red = bytes.data() + bytes.size() - kColors * width;
  const uint8_t* green = red + width;
  const uint8_t* blue = green + width;
  for (size_t x = 0; x < width; ++x) words[x] = rgb(red[x], green[x], blue[x]);
}

}  // namespace

PictRows::PictRows(PictReader& reader, const PictMap& map)
    : reader_(reader),
      map_(map),
      size_(static_cast<size_t>(map.rowBytes)),
      words_(static_cast<size_t>(map.bounds.width())) {
  if (map.pixelSize == 16) chooseDirect16();
  if (map.pixelSize == 32) chooseDirect32();
  if (map.rowBytes < pict::kShortestPackedRow) packing_ = Packing::None;
  if (packing_ == Packing::None) return;
  // All that is looked at; rows are often padded.
  if (layout_ == Layout::Indexed) {
    size_ = (words_.size() * static_cast<size_t>(map.pixelSize) + 7) / 8;
  }
  if (layout_ == Layout::Words555) size_ = 2 * words_.size();
  unpacked_.resize(size_);
  if (map.kind == PictMapKind::Unpacked && layout_ == Layout::Indexed && !looksPacked(reader)) {
    packing_ = Packing::None;
    size_ = static_cast<size_t>(map.rowBytes);
  }
}

void PictRows::chooseDirect16() {
  layout_ = Layout::Words555;
  packing_ = Packing::Words;
  if (map_.packType == pict::kUnpacked) packing_ = Packing::None;
  if (map_.packType == pict::kPadDropped || map_.packType > pict::kPackedWords) throw DamagedPict();
}

void PictRows::chooseDirect32() {
  layout_ = Layout::Padded;
  packing_ = Packing::None;
  if (map_.rowBytes < pict::kShortestPackedRow || map_.packType == pict::kUnpacked) return;
  if (map_.packType == pict::kPadDropped) {
    layout_ = Layout::Triples;
    size_ = kColors * words_.size();
    return;
  }
  if (map_.packType == pict::kPackedWords || map_.packType > pict::kPackedByComponent ||
      map_.components < kColors || map_.components > kColors + 1) {
    throw DamagedPict();
  }
  layout_ = Layout::Planes;
  packing_ = Packing::Bytes;
  size_ = static_cast<size_t>(map_.components) * words_.size();
}

/// The packed bytes of the next row.
size_t PictRows::rowCount(PictReader& reader) const {
  return map_.rowBytes > pict::kLongestByteCountedRow ? reader.read16() : reader.read8();
}

/// Rows of this opcode are not packed, whatever their length, but some writers pack
/// them: then all that is there of them fits.
bool PictRows::looksPacked(PictReader reader) const {
  int32_t y = map_.bounds.top;
  try {
    for (; y < map_.bounds.bottom; ++y) {
      const size_t size = unpackedSize(reader.take(rowCount(reader)));
      if (size < size_ || size > static_cast<size_t>(map_.rowBytes)) return false;
    }
    return true;
  } catch (const DamagedPict&) {
    return y > map_.bounds.top;
  }
}

std::span<const uint8_t> PictRows::nextBytes() {
  if (packing_ == Packing::None) return reader_.take(size_);
  const size_t unit = packing_ == Packing::Words ? 2 : 1;
  if (!unpackBits(reader_.take(rowCount(reader_)), unit, unpacked_)) throw DamagedPict();
  return unpacked_;
}

std::span<const uint32_t> PictRows::next() {
  const auto bytes = nextBytes();
  switch (layout_) {
    case Layout::Indexed:
      fromIndexed(bytes, map_, words_);
      break;
    case Layout::Words555:
      from555(bytes, words_);
      break;
    case Layout::Padded:
      fromPixels(bytes, kColors + 1, words_);
      break;
    case Layout::Triples:
      fromPixels(bytes, kColors, words_);
      break;
    case Layout::Planes:
      fromPlanes(bytes, words_);
      break;
  }
  return words_;
}

}  // namespace standin
