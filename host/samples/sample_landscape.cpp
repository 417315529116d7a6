// "landscape": mountains in the haze of a low sun, mirrored in a lake, on grainy film.
//
// Across and down, the picture is measured in its own height: v runs from 0 at the top to 1, and
// u from 0 at the left to the ratio of the sides.

#include <algorithm>
#include <array>
#include <cmath>
#include <vector>

#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr double kShore = 0.635;
constexpr double kSunV = 0.425;
constexpr double kSunRadius = 0.032;
constexpr Paint kSunlight = {1.0, 0.78, 0.46};

/// One range of mountains, from far to near.
struct Range {
  double foot;       // v of the deepest valleys
  double height;     // of the highest peaks above them
  double frequency;  // peaks for each picture height
  uint32_t seed;
  Paint color;
  double haze;   // 0 to 1, at its foot
  double trees;  // height of the trees on its ridge
};

constexpr std::array<Range, 5> kRanges = {{
    {0.600, 0.330, 1.7, 41, {0.58, 0.52, 0.62}, 0.55, 0},
    {0.615, 0.270, 2.3, 17, {0.43, 0.41, 0.54}, 0.55, 0},
    {0.630, 0.190, 2.9, 23, {0.29, 0.31, 0.43}, 0.50, 0},
    {0.640, 0.120, 3.3, 37, {0.17, 0.22, 0.31}, 0.40, 0.006},
    {0.638, 0.052, 4.0, 59, {0.075, 0.12, 0.16}, 0.16, 0.026},
}};

constexpr std::array<Stop, 6> kSky = {{
    {0.00, {0.13, 0.22, 0.42}},
    {0.14, {0.24, 0.34, 0.54}},
    {0.28, {0.46, 0.48, 0.64}},
    {0.40, {0.74, 0.60, 0.63}},
    {0.50, {0.93, 0.69, 0.54}},
    {0.62, {0.98, 0.80, 0.58}},
}};

/// The v of a range's bare ridge. Folding the noise makes crests sharp and valleys round.
double ridgeAt(const Range& range, double u) {
  double sum = 0;
  double weights = 0;
  double weight = 1;
  double x = u * range.frequency;
  for (uint32_t layer = 0; layer < 8; ++layer) {
    sum += weight * (1 - std::abs(2 * noise(x, 0.5, range.seed + layer) - 1));
    weights += weight;
    weight *= 0.47;
    x = x * 2.07 + 3.1;
  }
  const double crest = sum / weights;
  return range.foot - range.height * crest * crest;
}

/// How far trees reach above the ridge: the highest of the cones nearby. Their outlines fall in
/// steps, one for each row of branches.
double treesAt(const Range& range, double u) {
  const double spacing = range.trees * 0.24;
  const auto slot = static_cast<int32_t>(std::floor(u / spacing));
  double highest = 0;
  for (int32_t tree = slot - 2; tree <= slot + 2; ++tree) {
    const double stem = (tree + randomAt(tree, 1, range.seed)) * spacing;
    const double growth = mix(0.5, 1.2, noise(tree * 0.11, 0.5, range.seed + 9));
    const double size = range.trees * growth * mix(0.2, 1, randomAt(tree, 2, range.seed));
    const double aside = std::abs(u - stem);
    const double rows = aside / (size * 0.035);
    const double drop = 4.2 * aside - 0.12 * size * (rows - std::floor(rows));
    highest = std::max(highest, size - drop);
  }
  return highest;
}

/// Where a range begins in one column.
struct Ridge {
  double bare;  // v of the rock
  double top;   // v of the trees on it, or of the rock
};

using Ridges = std::array<Ridge, kRanges.size()>;

Ridges ridgesAt(double u) {
  Ridges ridges{};
  for (size_t i = 0; i < kRanges.size(); ++i) {
    ridges[i].bare = ridgeAt(kRanges[i], u);
    ridges[i].top = ridges[i].bare - (kRanges[i].trees > 0 ? treesAt(kRanges[i], u) : 0);
  }
  return ridges;
}

class Landscape {
 public:
  Landscape(int32_t width, int32_t height)
      : image_(blankImage(width, height, false)),
        size_(height),
        sunU_(0.575 * width / size_),
        shoreRow_(std::min(height - 1, static_cast<int32_t>(kShore * height))),
        scene_(static_cast<size_t>(width) * static_cast<size_t>(shoreRow_ + 1)) {
    for (int32_t x = 0; x < width; ++x) ridges_.push_back(ridgesAt((x + 0.5) / size_));
  }

  Image draw() {
    for (int32_t y = 0; y <= shoreRow_; ++y) drawSceneRow(y);
    for (int32_t y = 0; y < image_.height; ++y) drawRow(y);
    return std::move(image_);
  }

 private:
  /// Eight bits for each part are enough for now: the grain will hide their steps.
  void drawSceneRow(int32_t y) {
    for (int32_t x = 0; x < image_.width; ++x) {
      scene_[pixelIndex(image_, x, y)] = toWord(sceneAt(x, (x + 0.5) / size_, (y + 0.5) / size_));
    }
  }

  double sunDistance(double u, double v) const { return length(u - sunU_, v - kSunV); }

  Paint skyAt(double u, double v) const {
    const double distance = sunDistance(u, v);
    Paint color = ramp(kSky, v);
    const double streaks = fractal(u * 1.9 + v * 1.5, v * 9.0 - u * 0.9, 12, 6);
    const double cloud = smoothStep(0.46, 0.70, streaks) * smoothStep(0.60, 0.34, v) * 0.85;
    const double lit = smoothStep(0.75, 0.05, distance);
    const Paint cloudColor = mix({0.50, 0.48, 0.61}, {1.0, 0.70, 0.52}, 0.22 + 0.78 * lit);
    color = mix(color, cloudColor, cloud);
    const double glow = 0.66 * std::exp(-distance * 10) + 0.34 * std::exp(-distance * 3);
    color = lighten(color, kSunlight * glow);
    const double disc = coverage((distance - kSunRadius) * size_ / 3);
    return mix(color, {1, 0.97, 0.87}, disc);
  }

  /// Slopes that face the sun are lighter; the relief is that of a noise field.
  static double reliefAt(const Range& range, double u, double v) {
    const double x = u * range.frequency * 5;
    const double y = v * range.frequency * 8;
    const double here = fractal(x, y, range.seed + 100, 5);
    const double towardsSun = noise(x + 0.35, y - 0.2, range.seed + 100);
    return 0.6 * (here - 0.5) + 0.25 * (here - towardsSun);
  }

  Paint rangeColor(size_t index, double u, double v, const Ridges& ridges) const {
    const Range& range = kRanges[index];
    const double glow = std::exp(-sunDistance(u, v) * 3.2);
    const Paint hazeColor = mix({0.80, 0.70, 0.70}, {1.0, 0.82, 0.60}, clampToUnit(1.6 * glow));
    const double depth = clampToUnit((v - ridges[index].bare) / range.height);
    const Paint rock = range.color * (1 + reliefAt(range, u, v));
    const double haze = range.haze * (0.12 + 0.88 * depth * depth) + 0.30 * glow * range.haze;
    return mix(rock, hazeColor, clampToUnit(haze));
  }

  Paint sceneAt(int32_t x, double u, double v) const {
    const Ridges& ridges = ridges_[static_cast<size_t>(x)];
    size_t first = kRanges.size();
    while (first > 0 && coverage((ridges[first - 1].top - v) * size_) < 1) --first;
    // Only what is not hidden by a nearer range is worth its price.
    Paint color = first == 0 ? skyAt(u, v) : rangeColor(first - 1, u, v, ridges);
    for (size_t i = first; i < kRanges.size(); ++i) {
      const double share = coverage((ridges[i].top - v) * size_);
      if (share > 0) color = mix(color, rangeColor(i, u, v, ridges), share);
    }
    return color;
  }

  Paint mirrored(double x, double y) const {
    const auto column = static_cast<int32_t>(std::clamp(x, 0.0, image_.width - 1.0));
    const auto row = static_cast<int32_t>(std::clamp<double>(y, 0.0, shoreRow_));
    const uint32_t word = scene_[pixelIndex(image_, column, row)];
    return Paint{double(word >> 16 & 255), double(word >> 8 & 255), double(word & 255)} *
           (1 / 255.0);
  }

  /// Ripples look finer and flatter with distance, so they are laid out in perspective.
  Paint waterAt(int32_t x, double u, double v) const {
    const double depth = v - kShore;
    const double far = 1 / (depth + 0.035);
    const double ripple = fractal((u - sunU_) * far * 2.1, far * 7.0, 77, 5) - 0.5;
    const double sway = fractal((u - sunU_) * far * 6.0, far * 16.0, 91, 3) - 0.5;
    const double reach = std::min(depth * 0.55, 0.07);
    const double row = (kShore - depth * 1.02 + ripple * reach) * size_;
    Paint color = mirrored(x + sway * reach * 0.4 * size_, row);
    const double slope = clampToUnit(0.5 + 1.5 * ripple);
    color = mix(color * 0.90, {0.10, 0.19, 0.30}, 0.10 + 0.36 * slope * smoothStep(0, 0.4, depth));
    const double path = std::exp(-std::abs(u - sunU_) / (0.02 + 0.22 * depth));
    const double glitter = smoothStep(0.10, 0.26, ripple + 0.9 * sway) * path;
    return mix(color, {1.0, 0.88, 0.66}, 0.75 * glitter * smoothStep(0.004, 0.03, depth));
  }

  double grainAt(int32_t x, int32_t y) const {
    const uint32_t hash = hashOf(x, y, 3);
    const double sum = (hash & 1023) + (hash >> 10 & 1023) + (hash >> 20 & 1023);
    return (sum / 3069 - 0.5) * 0.055;
  }

  Paint developed(Paint color, int32_t x, int32_t y) const {
    const double fromMiddleX = (x + 0.5) / image_.width - 0.5;
    const double fromMiddleY = (y + 0.5) / size_ - 0.5;
    const double corner = fromMiddleX * fromMiddleX + fromMiddleY * fromMiddleY;
    const double grain = grainAt(x, y);
    return color * (1.10 - 0.42 * corner) + grey(grain);
  }

  void drawRow(int32_t y) {
    const double v = (y + 0.5) / size_;
    for (int32_t x = 0; x < image_.width; ++x) {
      const double u = (x + 0.5) / size_;
      const bool water = y > shoreRow_;
      const Paint color = water ? waterAt(x, u, v) : mirrored(x, y);
      image_.pixels[pixelIndex(image_, x, y)] = toWord(developed(color, x, y));
    }
  }

  Image image_;
  double size_;  // of the picture's height, in pixels
  double sunU_;
  int32_t shoreRow_;
  std::vector<uint32_t> scene_;  // all above the water, before developing
  std::vector<Ridges> ridges_;   // of each column
};

}  // namespace

Image drawLandscape(int32_t width, int32_t height) { return Landscape(width, height).draw(); }

}  // namespace host
