#include "tests/support/pict_layout.h"

#include <algorithm>

namespace host {

PictLayout& PictLayout::put8(uint32_t value) {
  bytes_.push_back(static_cast<uint8_t>(value));
  return *this;
}

PictLayout& PictLayout::put16(uint32_t value) { return put8(value >> 8).put8(value); }

PictLayout& PictLayout::put32(uint32_t value) { return put16(value >> 16).put16(value); }

PictLayout& PictLayout::putBox(int top, int left, int bottom, int right) {
  for (const int coordinate : {top, left, bottom, right}) put16(static_cast<uint32_t>(coordinate));
  return *this;
}

PictLayout& PictLayout::put(const Bytes& bytes) {
  bytes_.insert(bytes_.end(), bytes.begin(), bytes.end());
  return *this;
}

PictLayout& PictLayout::putOpcode(uint32_t opcode) {
  if (version_ == 1) return put8(opcode);
  if (bytes_.size() % 2 != 0) put8(0);
  return put16(opcode);
}

PictLayout& PictLayout::start(int top, int left, int bottom, int right) {
  put16(0).putBox(top, left, bottom, right);
  if (version_ == 1) return put16(0x1101);
  return put32(0x001102FF).put16(0x0C00).put(hex("FFFF 0000")).put(Bytes(20, 0));
}

Bytes PictLayout::finish() {
  putOpcode(0xFF);
  const size_t size = bytes_.size();
  bytes_[0] = static_cast<uint8_t>(size >> 8);
  bytes_[1] = static_cast<uint8_t>(size);
  return bytes_;
}

namespace {

bool isDirect(const PictPixels& pixels) { return pixels.opcode == 0x9A || pixels.opcode == 0x9B; }

/// Alpha or the pad, then the colours, one whole component after the other.
Bytes planesOf(const Words& row, int components) {
  Bytes bytes;
  for (int shift = 8 * (components - 1); shift >= 0; shift -= 8) {
    for (const uint32_t value : row) bytes.push_back(static_cast<uint8_t>(value >> shift));
  }
  return bytes;
}

/// Pixels of 1 to 32 bits one after the other, and random bits up to `size` bytes.
Bytes bitsOf(const Words& row, int depth, int size, std::mt19937& random) {
  Bytes bytes(static_cast<size_t>(size));
  for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
  for (size_t i = 0; i < row.size() * static_cast<size_t>(depth); ++i) {
    const auto place = static_cast<uint32_t>(depth - 1) - i % static_cast<uint32_t>(depth);
    const uint32_t bit = row[i / static_cast<size_t>(depth)] >> place & 1;
    const uint32_t shift = 7 - i % 8;
    bytes[i / 8] = static_cast<uint8_t>((bytes[i / 8] & ~(1U << shift)) | bit << shift);
  }
  return bytes;
}

Bytes packed(const Bytes& bytes, size_t unit) {
  const size_t count = bytes.size() / unit;
  const auto same = [&](size_t i, size_t k) {
    return k < count && std::equal(bytes.begin() + static_cast<ptrdiff_t>(unit * i),
                                   bytes.begin() + static_cast<ptrdiff_t>(unit * (i + 1)),
                                   bytes.begin() + static_cast<ptrdiff_t>(unit * k));
  };
  const auto append = [&](Bytes& to, size_t from, size_t units) {
    to.insert(to.end(), bytes.begin() + static_cast<ptrdiff_t>(unit * from),
              bytes.begin() + static_cast<ptrdiff_t>(unit * (from + units)));
  };
  Bytes result;
  for (size_t i = 0; i < count;) {
    size_t length = 1;
    if (same(i, i + 1) && same(i, i + 2)) {
      while (length < 128 && same(i, i + length)) ++length;
      result.push_back(static_cast<uint8_t>(257 - length));
      append(result, i, 1);
    } else {
      while (length < 128 && i + length < count &&
             !(same(i + length, i + length + 1) && same(i + length, i + length + 2))) {
        ++length;
      }
      result.push_back(static_cast<uint8_t>(length - 1));
      append(result, i, length);
    }
    i += length;
  }
  return result;
}

}  // namespace

int rowBytesFor(const PictPixels& pixels, int width) {
  return (width * pixels.depth + 15) / 16 * 2;
}

void putMap(PictLayout& layout, const PictPixels& pixels, int rowBytes, int top, int left,
            const PictValues& values, const std::vector<uint16_t>& colors, bool countsUp) {
  if (isDirect(pixels)) layout.put32(0x000000FF);
  layout.put16(static_cast<uint32_t>(rowBytes) | (pixels.isPlainBitmap ? 0U : 0x8000U));
  layout.putBox(top, left, top + values.height, left + values.width);
  if (pixels.isPlainBitmap) return;
  layout.put16(0).put16(static_cast<uint32_t>(pixels.packType)).put32(0);
  layout.put32(0x00480000).put32(0x00480000).put16(isDirect(pixels) ? 16 : 0);
  layout.put16(static_cast<uint32_t>(pixels.depth)).put16(static_cast<uint32_t>(pixels.components));
  layout.put16(8).put(Bytes(12, 0));
  if (isDirect(pixels)) return;
  const auto count = static_cast<uint32_t>(colors.size() / 3);
  layout.put32(0x1234).put16(countsUp ? 0x8000 : 0).put16(count - 1);
  for (uint32_t i = 0; i < count; ++i) {
    const uint32_t index = countsUp ? i : count - 1 - i;  // in any order
    layout.put16(countsUp ? 0xEEEE : index);
    for (size_t k = 0; k < 3; ++k) layout.put16(colors[3 * index + k]);
  }
}

void putRows(PictLayout& layout, const PictPixels& pixels, int rowBytes, const PictValues& values,
             std::mt19937& random) {
  const bool isShort = rowBytes < 8;
  const bool dropsPad = pixels.depth == 32 && pixels.packType == 2 && !isShort;
  const bool isPacked = pixels.isPacked && !isShort && !dropsPad && pixels.packType != 1;
  for (int y = 0; y < values.height; ++y) {
    const auto start = values.values.begin() + static_cast<ptrdiff_t>(y) * values.width;
    const Words row(start, start + values.width);
    Bytes bytes = bitsOf(row, pixels.depth, rowBytes, random);
    if (dropsPad) bytes = bitsOf(row, 24, 3 * values.width, random);
    if (isPacked) {
      if (pixels.depth == 32) bytes = planesOf(row, pixels.components);
      bytes = packed(bytes, pixels.depth == 16 ? 2 : 1);
      const auto size = static_cast<uint32_t>(bytes.size());
      rowBytes > 250 ? layout.put16(size) : layout.put8(size);
    }
    layout.put(bytes);
  }
}

}  // namespace host
