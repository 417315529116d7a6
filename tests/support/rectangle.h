// The rectangle arguments that many members share, as a plain reference sees them.
#pragma once

#include <climits>
#include <random>
#include <string>
#include <vector>

#include "host/core/picture.h"
#include "host/core/value.h"

namespace host {

struct Rectangle {
  int32_t left, top, width, height;
};

constexpr Rectangle wholePicture = {0, 0, -1, -1};

inline const std::string rectangleParameters =
    "(left as integer,top as integer,width as integer,height as integer)";

/// The rule, pixel by pixel and in wide arithmetic.
inline bool contains(const Rectangle& r, const Picture& picture, int32_t x, int32_t y) {
  const int64_t width = r.width < 0 ? picture.width() : r.width;
  const int64_t height = r.height < 0 ? picture.height() : r.height;
  return x >= r.left && x < r.left + width && y >= r.top && y < r.top + height;
}

inline std::vector<Value> values(const Rectangle& r) { return {r.left, r.top, r.width, r.height}; }

/// Inside, across, outside, empty, and at the ends of the integers.
inline Rectangle randomRectangle(std::mt19937& random, const Picture& picture) {
  const auto edge = [&random](int32_t size) {
    const int32_t edges[] = {INT_MIN, -size,        -5,       -1,   0,        0,
                             1,       size / 3 + 1, size - 1, size, size + 1, INT_MAX};
    return edges[random() % std::size(edges)];
  };
  return {edge(picture.width()), edge(picture.height()), edge(picture.width()),
          edge(picture.height())};
}

inline void PrintTo(const Rectangle& r, std::ostream* stream) {
  *stream << "(" << r.left << ", " << r.top << ", " << r.width << ", " << r.height << ")";
}

}  // namespace host
