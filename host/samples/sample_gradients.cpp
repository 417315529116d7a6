// "gradients": folds of silk in all hues over three even ramps of hue, saturation and lightness.

#include <cmath>
#include <numbers>

#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr double kRampsTop = 0.76;  // of the picture's height

/// A wave from -1 to 1.
double wave(double turns) { return std::sin(turns * 2 * std::numbers::pi); }

/// A rainbow without the sharp bends of pure hues.
Paint softHue(double turns) {
  return {0.56 + 0.40 * wave(turns + 0.25), 0.50 + 0.34 * wave(turns - 0.10),
          0.58 + 0.38 * wave(turns - 0.42)};
}

/// x and y are in halves of the picture's height.
Paint silkAt(double x, double y) {
  const double bend = 0.18 * wave(0.24 * x + 0.33 * y) + 0.06 * wave(0.52 * x - 0.47 * y + 0.2);
  const double across = 0.30 * x + 0.26 * y + bend;
  const double fold = 0.6 * wave(2.1 * across + 0.8 * bend) + 0.4 * wave(4.7 * across + 0.6 * y);
  const Paint cloth = softHue(0.10 + 0.80 * across) * (1 + 0.16 * fold);
  const double sheen = smoothStep(0.15, 1.0, fold);
  return lighten(mix(cloth, {0.13, 0.08, 0.30}, 0.34 * smoothStep(0.1, -1.0, fold)),
                 grey(0.30 * sheen));
}

/// The three ramps, each from the left to the right; down from 0 to 1.
Paint rampsAt(double across, double down) {
  if (down < 1.0 / 3) return fromHue(across, 1, 0.5);
  if (down < 2.0 / 3) return fromHue(0.58, across, 0.5);
  return fromHue(0.58, 0.7, across);
}

}  // namespace

Image drawGradients(int32_t width, int32_t height) {
  const Frame frame(width, height);
  return paint(width, height, [&](Place place) {
    const double across = (place.x / frame.halfWidth() + 1) / 2;
    const double down = (place.y / frame.halfHeight() + 1) / 2;
    if (down >= kRampsTop) return rampsAt(across, (down - kRampsTop) / (1 - kRampsTop));
    return silkAt(place.x / frame.halfHeight(), place.y / frame.halfHeight());
  });
}

}  // namespace host
