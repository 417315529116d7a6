// From the coordinates of PICT data to the pixels of a canvas.
#pragma once

#include <vector>

#include "platform/standin/box.h"
#include "platform/standin/standin.h"

namespace standin {

/// The box as it lies when `space` covers the canvas, edges rounded.
Box onCanvas(const Box& box, const Box& space, const Canvas& canvas);

/// Draws `source`, given row by row, so that it covers `target` of a canvas: each
/// pixel shows the nearest one of the source. Nothing outside `clip` is touched.
class ScaledDrawing {
 public:
  ScaledDrawing(const Canvas& canvas, const Box& source, const Box& target, const Box& clip);

  /// A row of pixels from column `left` on. Rows come from the top down.
  void drawRow(int32_t y, int32_t left, std::span<const uint32_t> words);

 private:
  [[nodiscard]] int32_t sourceRow(int32_t y) const;

  Canvas canvas_;
  Box source_;
  Box target_;
  Box visible_;
  std::vector<int32_t> sourceColumns_;  ///< of each visible column
  int32_t nextRow_;                     ///< on the canvas
};

}  // namespace standin
