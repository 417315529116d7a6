// Drawing PICT data.

#include <cstdlib>

#include "platform/standin/pict_canvas.h"
#include "platform/standin/pict_format.h"
#include "platform/standin/pict_pixels.h"

namespace standin {
namespace {

constexpr int32_t kFarthestOrigin = 1 << 20;

class PictDrawing {
 public:
  PictDrawing(std::span<const uint8_t> data, const Canvas& canvas)
      : reader_(data), canvas_(canvas) {}

  void draw() {
    reader_.skip(pict::kFrameOffset);
    space_ = reader_.readBox();
    clip_ = {INT16_MIN, INT16_MIN, INT16_MAX, INT16_MAX};
    if (reader_.read16() != pict::kVersion || reader_.read16() != pict::kVersion2) return;
    for (uint16_t opcode = reader_.read16(); opcode != pict::kEndOfPicture;
         opcode = reader_.read16()) {
      carryOut(opcode);
      reader_.align();
    }
  }

 private:
  void carryOut(uint16_t opcode) {
    switch (opcode) {
      case pict::kHeader:
        return readHeader();
      case pict::kClip:
        clip_ = readRegion();
        return;
      case pict::kOrigin:
        return moveOrigin();
      case pict::kDirectBitsRect:
        return drawDirect(false);
      case pict::kDirectBitsRegion:
        return drawDirect(true);
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

  /// The box around a region; its shape is passed over.
  Box readRegion() {
    const uint16_t size = reader_.read16();
    if (size < pict::kRectangularRegionSize) throw DamagedPict();
    const Box bounds = reader_.readBox();
    reader_.skip(size - pict::kRectangularRegionSize);
    return bounds;
  }

  void drawDirect(bool hasRegion) {
    const PictPixelMap map = readDirectMap(reader_);
    const Box source = reader_.readBox();
    const Box target = reader_.readBox();
    reader_.skip(2);  // the transfer mode: pixels are copied
    const Box clip = hasRegion ? intersect(clip_, readRegion()) : clip_;
    ScaledDrawing drawing(canvas_, source, onCanvas(target, space_, canvas_),
                          onCanvas(clip, space_, canvas_));
    PictRows rows(reader_, map);
    const auto width = static_cast<size_t>(map.bounds.width());
    for (int32_t y = map.bounds.top; y < map.bounds.bottom; ++y) {
      drawing.drawRow(y, map.bounds.left, {rows.next(), width});
    }
  }

  PictReader reader_;
  Canvas canvas_;
  Box space_{};  ///< what of the picture's coordinates covers the canvas
  Box clip_{};
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
