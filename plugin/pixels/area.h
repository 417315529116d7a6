// Which pixels of a picture an operation touches.
#pragma once

#include <algorithm>
#include <cstdint>

namespace qrz {

/// Columns x0 to x1 - 1 of rows y0 to y1 - 1, always inside the picture; empty
/// if x0 >= x1 or y0 >= y1.
struct Area {
  int32_t x0, y0, x1, y1;
};

namespace detail {
/// The far edge `start + length` of a rectangle, cut at the picture's `size`.
/// The sum is exact: a rectangle may lie anywhere in the 32-bit range.
inline int32_t farEdge(int32_t start, int32_t length, int32_t size) {
  const int64_t edge = static_cast<int64_t>(start) + (length >= 0 ? length : size);
  return static_cast<int32_t>(std::max<int64_t>(std::min<int64_t>(edge, size), 0));
}
}  // namespace detail

/// The rectangle arguments of the members. A negative width or height stands
/// for the picture's own; the far edges are counted from `left` and `top` as
/// given, also when those lie outside the picture.
struct Rectangle {
  int32_t left, top, width, height;

  [[nodiscard]] Area within(int32_t pictureWidth, int32_t pictureHeight) const {
    return {std::max(left, 0), std::max(top, 0), detail::farEdge(left, width, pictureWidth),
            detail::farEdge(top, height, pictureHeight)};
  }
};

/// The rectangle of the forms without arguments.
constexpr Rectangle wholePicture{0, 0, -1, -1};

/// The region properties of the filter classes: from column MinX to before
/// MaxX, from row MinY to before MaxY. A MaxX that is not greater than MinX, or
/// not inside the picture, stands for the picture's width; MaxY likewise. What
/// lies outside the picture, negative columns and rows included, is left out.
struct Region {
  int32_t minX, minY, maxX, maxY;

  [[nodiscard]] Area within(int32_t pictureWidth, int32_t pictureHeight) const {
    return {std::max(minX, 0), std::max(minY, 0),
            maxX > minX && maxX < pictureWidth ? maxX : pictureWidth,
            maxY > minY && maxY < pictureHeight ? maxY : pictureHeight};
  }
};

}  // namespace qrz
