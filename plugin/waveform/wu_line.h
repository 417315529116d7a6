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

/// Draws from one point to the other: `plot(point, weighting)` is called for
/// each pixel, with 0 for the pure colour of the line to 255 for none of it.
/// The differences of the coordinates count by their low 16 bits, signed.
template <typename Plot>
void drawWuLine(LinePoint from, LinePoint to, const Plot& plot) {
  if (from.y > to.y) std::swap(from, to);
  plot(from, 0);
  int32_t dx = static_cast<int16_t>(to.x - from.x);
  const int32_t dy = static_cast<int16_t>(to.y - from.y);
  const int32_t step = dx >= 0 ? 1 : -1;
  if (dx < 0) dx = -dx;

  const auto drawStraight = [&](int32_t count, int32_t stepX, int32_t stepY) {
    for (int32_t i = 0; i < count; ++i) {
      from.x += stepX;
      from.y += stepY;
      plot(from, 0);
    }
  };
  if (dy == 0) return drawStraight(dx, step, 0);
  if (dx == 0) return drawStraight(dy, 0, 1);
  if (dx == dy) return drawStraight(dy, step, 1);

  // The accumulated error is a fraction of 16 bits; when it overflows, the
  // minor coordinate steps. Its top 8 bits share a pixel pair out.
  uint16_t error = 0;
  const auto advance = [&error](uint16_t adjustment) {
    const uint16_t before = error;
    error = static_cast<uint16_t>(error + adjustment);
    return error <= before;
  };
  const auto fraction = [](int32_t minor, int32_t major) {
    return static_cast<uint16_t>((static_cast<uint32_t>(minor) << 16) /
                                 static_cast<uint32_t>(major));
  };
  const auto plotPair = [&](LinePoint neighbour) {
    const int32_t weighting = error >> 8;
    plot(from, weighting);
    plot(neighbour, weighting ^ 255);
  };
  if (dy > dx) {
    const auto adjustment = fraction(dx, dy);
    for (int32_t i = 1; i < dy; ++i) {
      if (advance(adjustment)) from.x += step;
      ++from.y;
      plotPair({from.x + step, from.y});
    }
  } else {
    const auto adjustment = fraction(dy, dx);
    for (int32_t i = 1; i < dx; ++i) {
      if (advance(adjustment)) ++from.y;
      from.x += step;
      plotPair({from.x, from.y + 1});
    }
  }
  plot(to, 0);
}

}  // namespace qrz
