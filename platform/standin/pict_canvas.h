// From the coordinates of PICT data to the pixels of a canvas.
#pragma once

#include <vector>

#include "platform/standin/pict_region.h"

namespace standin {

/// Where a coordinate lies when `space` covers the canvas, rounded.
int32_t columnOnCanvas(int32_t x, const Box& space, const Canvas& canvas);
int32_t rowOnCanvas(int32_t y, const Box& space, const Canvas& canvas);
Box boxOnCanvas(const Box& box, const Box& space, const Canvas& canvas);

/// Draws `source`, given row by row, so that it covers `target` of a canvas: each
/// pixel shows the nearest one of the source. Nothing outside the clip is touched.
class ScaledDrawing {
 public:
  ScaledDrawing(const Canvas& canvas, const Box& source, const Box& target, ClipRows& clip,
                PictWork& work);

  /// A row of pixels from column `left` on. Rows come from the top down.
  void drawRow(int32_t y, int32_t left, std::span<const uint32_t> words);

 private:
  [[nodiscard]] int32_t sourceRow(int32_t y) const;
  /// The next row of the canvas.
  void drawOnce(int32_t left, std::span<const uint32_t> words);

  Canvas canvas_;
  Box source_;
  Box target_;
  ClipRows& clip_;
  Box visible_;
  std::vector<int32_t> sourceColumns_;  ///< of each visible column
  int32_t nextRow_;                     ///< on the canvas
};

}  // namespace standin
