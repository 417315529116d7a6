// "colors": saturated balls of all hues, overlapping, with highlights and shadows.

#include <array>

#include "host/samples/balls.h"
#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr Paint kRed = {0.90, 0.08, 0.12};
constexpr Paint kOrange = {0.98, 0.45, 0.03};
constexpr Paint kYellow = {1.00, 0.80, 0.05};
constexpr Paint kLime = {0.52, 0.80, 0.08};
constexpr Paint kGreen = {0.03, 0.60, 0.22};
constexpr Paint kTeal = {0.00, 0.62, 0.60};
constexpr Paint kSky = {0.10, 0.60, 0.95};
constexpr Paint kBlue = {0.08, 0.20, 0.85};
constexpr Paint kViolet = {0.45, 0.12, 0.80};
constexpr Paint kPink = {0.95, 0.18, 0.55};

constexpr std::array<Ball, 14> kBalls = {{
    {{-1.02, -0.28}, 0.42, kBlue},
    {{-0.16, -0.40}, 0.50, kRed},
    {{0.86, -0.33}, 0.46, kGreen},
    {{-0.62, 0.00}, 0.27, kOrange},
    {{0.36, 0.00}, 0.30, kYellow},
    {{1.28, 0.08}, 0.20, kPink},
    {{-1.18, 0.24}, 0.24, kTeal},
    {{-0.15, 0.26}, 0.28, kSky},
    {{0.84, 0.26}, 0.27, kViolet},
    {{-0.70, 0.46}, 0.25, kPink},
    {{0.36, 0.54}, 0.24, kLime},
    {{1.14, 0.58}, 0.17, kOrange},
    {{-0.24, 0.68}, 0.15, kViolet},
    {{-1.16, 0.66}, 0.14, kYellow},
}};

}  // namespace

Image drawColors(int32_t width, int32_t height) {
  const BallStage stage(Frame(width, height), kBalls);
  return paint(width, height, [&](Place place) { return stage.colorAt(stage.toStage(place)); });
}

}  // namespace host
