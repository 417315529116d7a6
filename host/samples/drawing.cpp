#include "host/samples/drawing.h"

#include <algorithm>
#include <cmath>
#include <stdexcept>

namespace host {

namespace {

uint32_t toByte(double part) {
  const double rounded = clampToUnit(part) * 255 + 0.5;
  return static_cast<uint32_t>(rounded);
}

}  // namespace

Paint fromHue(double hue, double saturation, double lightness) {
  const double chroma = saturation * (1 - std::abs(2 * lightness - 1));
  const auto part = [&](double shift) {
    const double turn = hue + shift - std::floor(hue + shift);
    return lightness + chroma * (clampToUnit(std::abs(turn * 6 - 3) - 1) - 0.5);
  };
  return {part(0), part(2.0 / 3), part(1.0 / 3)};
}

Paint ramp(std::span<const Stop> stops, double place) {
  size_t next = 0;
  while (next < stops.size() && stops[next].place <= place) ++next;
  if (next == 0) return stops.front().color;
  if (next == stops.size()) return stops.back().color;
  const Stop& from = stops[next - 1];
  const Stop& to = stops[next];
  return mix(from.color, to.color, (place - from.place) / (to.place - from.place));
}

Paint lighten(Paint color, Paint light) {
  return {1 - (1 - color.red) * (1 - light.red), 1 - (1 - color.green) * (1 - light.green),
          1 - (1 - color.blue) * (1 - light.blue)};
}

double clampToUnit(double value) { return std::clamp(value, 0.0, 1.0); }

double smoothStep(double low, double high, double value) {
  const double share = clampToUnit((value - low) / (high - low));
  return share * share * (3 - 2 * share);
}

double coverage(double distance) { return clampToUnit(0.5 - distance); }

uint32_t hashOf(int32_t x, int32_t y, uint32_t seed) {
  uint32_t hash = seed * 0x9E3779B1U;
  for (const int32_t part : {x, y}) {
    hash ^= static_cast<uint32_t>(part) * 0x85EBCA6BU;
    hash = (hash ^ hash >> 15) * 0x2C1B3C6DU;
    hash = (hash ^ hash >> 12) * 0x297A2D39U;
    hash ^= hash >> 15;
  }
  return hash;
}

double randomAt(int32_t x, int32_t y, uint32_t seed) { return hashOf(x, y, seed) / 4294967296.0; }

double noise(double x, double y, uint32_t seed) {
  const double left = std::floor(x);
  const double top = std::floor(y);
  const auto column = static_cast<int32_t>(left);
  const auto row = static_cast<int32_t>(top);
  const double shareX = smoothStep(0, 1, x - left);
  const double shareY = smoothStep(0, 1, y - top);
  const double upper = mix(randomAt(column, row, seed), randomAt(column + 1, row, seed), shareX);
  const double lower =
      mix(randomAt(column, row + 1, seed), randomAt(column + 1, row + 1, seed), shareX);
  return mix(upper, lower, shareY);
}

double fractal(double x, double y, uint32_t seed, int layers) {
  double sum = 0;
  double weights = 0;
  double weight = 1;
  for (int layer = 0; layer < layers; ++layer) {
    sum += weight * noise(x, y, seed + static_cast<uint32_t>(layer));
    weights += weight;
    weight /= 2;
    // Not quite twice as fine, and shifted, so that the layers' grids never line up.
    x = x * 1.97 + 11.3;
    y = y * 1.97 + 5.7;
  }
  return weights > 0 ? sum / weights : 0;
}

uint32_t toWord(Paint color) {
  return toByte(color.red) << 16 | toByte(color.green) << 8 | toByte(color.blue);
}

uint32_t toWord(Paint color, double alpha) { return toByte(alpha) << 24 | toWord(color); }

Image blankImage(int32_t width, int32_t height, bool hasAlpha) {
  if (width < 1 || height < 1) throw std::invalid_argument("a sample has at least 1 x 1 pixels");
  Image image{width, height, hasAlpha, {}};
  image.pixels.resize(static_cast<size_t>(width) * static_cast<size_t>(height));
  return image;
}

Frame::Frame(int32_t width, int32_t height)
    : middleX_(width / 2.0), middleY_(height / 2.0), pixel_(2.0 / std::min(width, height)) {}

}  // namespace host
