// Rectangles in plain integers.
#pragma once

#include <algorithm>

#include "platform/platform.h"

namespace standin {

/// Empty if left >= right or top >= bottom.
struct Box {
  int32_t left, top, right, bottom;

  [[nodiscard]] int32_t width() const { return right - left; }
  [[nodiscard]] int32_t height() const { return bottom - top; }
  [[nodiscard]] bool isEmpty() const { return left >= right || top >= bottom; }
};

inline Box boxOf(const Rect& rect) { return {rect.left, rect.top, rect.right, rect.bottom}; }

/// The coordinates must fit in 16 bits.
inline Rect rectOf(const Box& box) {
  return {static_cast<int16_t>(box.top), static_cast<int16_t>(box.left),
          static_cast<int16_t>(box.bottom), static_cast<int16_t>(box.right)};
}

inline Box intersect(const Box& a, const Box& b) {
  return {std::max(a.left, b.left), std::max(a.top, b.top), std::min(a.right, b.right),
          std::min(a.bottom, b.bottom)};
}

}  // namespace standin
