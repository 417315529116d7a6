#include "platform/standin/pict_writer.h"

#include <cstring>
#include <new>

#include "platform/standin/pack_bits.h"
#include "platform/standin/pict_format.h"
#include "platform/standin/state.h"

namespace standin {

void PictWriter::putBytes(std::span<const uint8_t> bytes) {
  const long size = sizeOf(data_);
  if (!resizeHandle(data_, size + static_cast<long>(bytes.size()))) throw std::bad_alloc();
  memcpy(*data_ + size, bytes.data(), bytes.size());
}

void PictWriter::put8(uint8_t value) { putBytes({&value, 1}); }

void PictWriter::put16(uint16_t value) {
  put8(static_cast<uint8_t>(value >> 8));
  put8(static_cast<uint8_t>(value));
}

void PictWriter::put32(uint32_t value) {
  put16(static_cast<uint16_t>(value >> 16));
  put16(static_cast<uint16_t>(value));
}

void PictWriter::putBox(const Box& box) {
  for (const int32_t coordinate : {box.top, box.left, box.bottom, box.right}) {
    put16(static_cast<uint16_t>(coordinate));
  }
}

void PictWriter::putZeros(size_t count) {
  for (size_t i = 0; i < count; ++i) put8(0);
}

void PictWriter::align() {
  if (sizeOf(data_) % 2 != 0) put8(0);
}

void putPictHeader(PictWriter& writer, const OpenCPicParams& parameters, const Box& frame) {
  const Box source = boxOf(parameters.srcRect);
  writer.put16(0);  // the size, when it is known
  writer.putBox(frame);
  writer.put16(pict::kVersion);
  writer.put16(pict::kVersion2);
  writer.put16(pict::kHeader);
  writer.put16(pict::kExtendedHeader);
  writer.put16(0);
  writer.put32(static_cast<uint32_t>(parameters.hRes));
  writer.put32(static_cast<uint32_t>(parameters.vRes));
  writer.putBox(source);
  writer.put32(0);
  writer.put16(pict::kClip);
  writer.put16(pict::kRectangularRegionSize);
  writer.putBox(source);
}

namespace {

constexpr int32_t kPixelBytes = 4;
static_assert(kWidestRecording == (pict::kRowBytesLimit - 1) / kPixelBytes);
constexpr uint16_t kComponents = 3;

void putPixelMap(PictWriter& writer, const Box& box) {
  writer.put32(pict::kDirectBase);
  writer.put16(static_cast<uint16_t>(pict::kPixMapFlag | box.width() * kPixelBytes));
  writer.putBox(box);
  writer.put16(0);  // version
  writer.put16(pict::kPackedByComponent);
  writer.put32(0);  // packed size, always left open
  writer.put32(pict::k72Dpi);
  writer.put32(pict::k72Dpi);
  writer.put16(pict::kDirectPixels);
  writer.put16(8 * kPixelBytes);
  writer.put16(kComponents);
  writer.put16(8);      // bits per component
  writer.putZeros(12);  // plane bytes, colour table, reserved
}

/// Writes rows of one width, and keeps its buffers between them.
class RowWriter {
 public:
  RowWriter(PictWriter& writer, int32_t width)
      : writer_(writer), rowBytes_(width * kPixelBytes), words_(static_cast<size_t>(width)) {}

  uint32_t* words() { return words_.data(); }

  void putWords() {
    if (rowBytes_ < pict::kShortestPackedRow) {
      for (const uint32_t word : words_) writer_.put32(word & 0x00FFFFFF);
      return;
    }
    separate();
    packed_.clear();
    packBits(components_, packed_);
    if (rowBytes_ > pict::kLongestByteCountedRow) {
      writer_.put16(static_cast<uint16_t>(packed_.size()));
    } else {
      writer_.put8(static_cast<uint8_t>(packed_.size()));
    }
    writer_.putBytes(packed_);
  }

 private:
  /// All reds, then all greens, then all blues.
  void separate() {
    components_.clear();
    for (const int32_t shift : {16, 8, 0}) {
      for (const uint32_t word : words_) {
        components_.push_back(static_cast<uint8_t>(word >> shift));
      }
    }
  }

  PictWriter& writer_;
  int32_t rowBytes_;
  std::vector<uint32_t> words_;
  std::vector<uint8_t> components_;
  std::vector<uint8_t> packed_;
};

}  // namespace

void putPixels(PictWriter& writer, const Box& place, const ReadRow& readRow) {
  writer.put16(pict::kDirectBitsRect);
  putPixelMap(writer, place);
  writer.putBox(place);  // from the map's coordinates
  writer.putBox(place);  // to the same of the picture
  writer.put16(0);       // transfer mode: copied
  RowWriter rows(writer, place.width());
  for (int32_t y = 0; y < place.height(); ++y) {
    readRow(y, place.width(), rows.words());
    rows.putWords();
  }
  writer.align();
}

}  // namespace standin
