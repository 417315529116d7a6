// Drawing PICT data.

#include <cstdlib>

#include "platform/standin/pict_canvas.h"
#include "platform/standin/pict_format.h"
#include "platform/standin/pict_rows.h"

namespace standin {
namespace {

constexpr int32_t kFarthestOrigin = 1 << 20;
constexpr Box kEverywhere = {INT16_MIN, INT16_MIN, INT16_MAX, INT16_MAX};

class PictDrawing {
 public:
  PictDrawing(std::span<const uint8_t> data, const Canvas& canvas)
      : reader_(data), canvas_(canvas), work_(canvas), clip_(regionOf(kEverywhere)) {}

  void draw() {
    reader_.skip(pict::kFrameOffset);
    space_ = reader_.readBox();
    readVersion();
    for (uint16_t opcode = nextOpcode(); opcode != pict::kEndOfPicture; opcode = nextOpcode()) {
      carryOut(opcode);
    }
  }

 private:
  void readVersion() {
    const uint16_t first = reader_.read16();
    isVersion1_ = first == pict::kVersion1;
    if (isVersion1_) return;
    if (first != pict::kVersion || reader_.read16() != pict::kVersion2) throw DamagedPict();
  }

  uint16_t nextOpcode() {
    if (isVersion1_) return reader_.read8();
    reader_.align();
    return reader_.read16();
  }

  void carryOut(uint16_t opcode) {
    switch (opcode) {
      case pict::kVersion:
        return reader_.skip(isVersion1_ ? 1 : 2);
      case pict::kHeader:
        return readHeader();
      case pict::kClip:
        clip_ = readRegion(reader_);
        return;
      case pict::kOrigin:
        return moveOrigin();
      case pict::kBitsRect:
      case pict::kBitsRegion:
        return drawPixels(PictMapKind::Unpacked, opcode == pict::kBitsRegion);
      case pict::kPackBitsRect:
      case pict::kPackBitsRegion:
        return drawPixels(PictMapKind::Packed, opcode == pict::kPackBitsRegion);
      case pict::kDirectBitsRect:
      case pict::kDirectBitsRegion:
        return drawPixels(PictMapKind::Direct, opcode == pict::kDirectBitsRegion);
      default:
        skipOpcodeData(reader_, opcode);
    }
  }

  /// The extended header says what fills the frame.
  void readHeader() {
    const bool isExtended = reader_.read16() == pict::kExtendedHeader;
    reader_.skip(2 + 4 + 4);  // reserved, resolutions
    const Box source = reader_.readBox();
    reader_.skip(4);
    if (isExtended && !source.isEmpty()) space_ = source;
  }

  void moveOrigin() {
    const int32_t dh = reader_.readCoordinate();
    const int32_t dv = reader_.readCoordinate();
    space_ = {space_.left + dh, space_.top + dv, space_.right + dh, space_.bottom + dv};
    if (std::abs(space_.left) > kFarthestOrigin || std::abs(space_.top) > kFarthestOrigin) {
      throw DamagedPict();
    }
  }

  void drawPixels(PictMapKind kind, bool hasMask) {
    const PictMap map = readPictMap(reader_, kind);
    const Box source = reader_.readBox();
    const Box target = reader_.readBox();
    reader_.skip(2);  // the transfer mode: pixels are copied
    const PictRegion mask = hasMask ? readRegion(reader_) : regionOf(kEverywhere);
    ClipRows clip({&clip_, &mask}, space_, canvas_, work_);
    ScaledDrawing drawing(canvas_, source, boxOnCanvas(target, space_, canvas_), clip, work_);
    PictRows rows(reader_, map);
    for (int32_t y = map.bounds.top; y < map.bounds.bottom; ++y) {
      work_.spend(static_cast<uint64_t>(map.bounds.width()));
      drawing.drawRow(y, map.bounds.left, rows.next());
    }
  }

  PictReader reader_;
  Canvas canvas_;
  PictWork work_;
  bool isVersion1_ = false;
  Box space_{};  ///< what of the picture's coordinates covers the canvas
  PictRegion clip_;
};

}  // namespace

Rect pictFrame(std::span<const uint8_t> data) {
  if (data.size() < pict::kPreambleSize) return {};
  PictReader reader(data);
  reader.skip(pict::kFrameOffset);
  return rectOf(reader.readBox());
}

void drawPict(std::span<const uint8_t> data, const Canvas& canvas) {
  if (boxOf(pictFrame(data)).isEmpty()) return;
  try {
    PictDrawing(data, canvas).draw();
  } catch (const DamagedPict&) {
    return;
  }
}

}  // namespace standin
