// "greys": grey balls between coloured ones, under eleven grey steps and over a grey ramp, so
// that it shows at once whether a filter treats greys apart.

#include <algorithm>
#include <array>
#include <cmath>

#include "host/samples/balls.h"
#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr std::array<Ball, 9> kBalls = {{
    {{-0.98, -0.12}, 0.30, {0.92, 0.92, 0.92}},
    {{-0.26, -0.16}, 0.34, {0.50, 0.50, 0.50}},
    {{0.52, -0.14}, 0.32, {0.80, 0.12, 0.14}},
    {{1.16, -0.06}, 0.25, {0.10, 0.10, 0.10}},
    {{-0.60, 0.18}, 0.22, {0.05, 0.42, 0.72}},
    {{0.14, 0.22}, 0.21, {0.74, 0.74, 0.74}},
    {{0.84, 0.24}, 0.20, {0.36, 0.36, 0.36}},
    {{-1.12, 0.36}, 0.16, {0.22, 0.22, 0.22}},
    {{-0.20, 0.42}, 0.15, {0.98, 0.74, 0.06}},
}};

constexpr double kStepsBottom = -0.62;
constexpr double kRampTop = 0.66;

/// Eleven even steps from black to white.
Paint stepsAt(double across) {
  constexpr double kSteps = 11;
  const double step = std::min(std::floor(across * kSteps), kSteps - 1);
  return grey(step / (kSteps - 1));
}

/// The ball table without its warm tint: grey has to be grey here.
Paint neutral(Paint color) {
  const double most = std::max({color.red, color.green, color.blue});
  const double least = std::min({color.red, color.green, color.blue});
  return most - least < 0.06 ? grey(color.green) : color;
}

/// Above an even ramp in grey lies one in which every second bar is coloured.
Paint rampsAt(double across, double down) {
  constexpr double kBars = 12;
  const bool coloured = down < 0.5 && std::fmod(across * kBars, 2.0) >= 1;
  const double bar = std::floor(across * kBars);
  return coloured ? fromHue((bar - 1) / kBars, 0.75, mix(0.2, 0.8, across)) : grey(across);
}

}  // namespace

Image drawGreys(int32_t width, int32_t height) {
  const Frame frame(width, height);
  const BallStage stage(frame, kBalls);
  return paint(width, height, [&](Place place) {
    const double across = clampToUnit((place.x / frame.halfWidth() + 1) / 2);
    const double down = place.y / frame.halfHeight();
    if (down < kStepsBottom) return stepsAt(across);
    if (down >= kRampTop) return rampsAt(across, (down - kRampTop) / (1 - kRampTop));
    return neutral(stage.colorAt(stage.toStage(place)));
  });
}

}  // namespace host
