// Antialiased lines of one pixel width in 16-bit fixed point, after X. Wu, "An
// Efficient Antialiasing Technique", SIGGRAPH 1991.
#pragma once

#include <cstdint>
#include <utility>

namespace qrz {

/// Pixels may lie anywhere; wide enough for every step beside a 32-bit number.
struct LinePoint {
  int64_t x, y;
};

/// Draws from one point to the other, which lies in the same column or beside it:
/// `plot(point, weighting)` is called for each pixel, with 0 for the pure colour of
/// the line to 255 for none of it, and only in the columns of the two points. The
/// difference of the rows counts by its low 16 bits, signed.
template <typename Plot>
void drawWuLine(LinePoint from, LinePoint to, const Plot& plot) {
  if (from.y > to.y) std::swap(from, to);
  plot(from, 0);
  const auto dx = static_cast<int32_t>(to.x - from.x);
  const int32_t dy = static_cast<int16_t>(to.y - from.y);
  const bool isUpright = dx == 0;
  if (isUpright || dy == 0 || dy == 1) {
    for (int32_t i = 0; i < (isUpright ? dy : 1); ++i) {
      from.x += dx;
      from.y += dy == 0 ? 0 : 1;
      plot(from, 0);
    }
    return;
  }
  // The distance from the upper point's column as a fraction of 16 bits. Its top 8
  // bits share a pair of pixels out.
  uint32_t distance = 0;
  for (int32_t i = 1; i < dy; ++i) {
    distance += 0x10000 / static_cast<uint32_t>(dy);
    const auto weighting = static_cast<int32_t>(distance >> 8);
    ++from.y;
    plot(from, weighting);
    plot({from.x + dx, from.y}, weighting ^ 255);
  }
  plot(to, 0);
}

}  // namespace qrz
