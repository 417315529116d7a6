// "alpha": a flower with soft edges and see-through petals on nothing.

#include <algorithm>
#include <cmath>
#include <numbers>
#include <span>
#include <vector>

#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr double kTurn = 2 * std::numbers::pi;

struct Layer {
  Paint color;
  double alpha = 0;
};

/// Lays one see-through layer over another; colours are not multiplied with alpha.
Layer over(Layer below, Layer above) {
  const double alpha = above.alpha + below.alpha * (1 - above.alpha);
  if (alpha <= 0) return {};
  return {mix(below.color, above.color, above.alpha / alpha), alpha};
}

/// A wreath of petals around the middle, each seen from its own axis.
struct Wreath {
  int petals;
  double turn;    // of the first petal, in parts of a full turn
  double reach;   // from the middle to the tips
  double width;   // half of a petal's width
  double hue;     // of the first petal
  double spread;  // of the hues around the wreath
  double alpha;
};

constexpr Wreath kWreaths[] = {
    {9, 0.02, 0.88, 0.26, 0.72, 0.30, 0.62},
    {8, 0.07, 0.68, 0.21, 0.90, 0.16, 0.72},
    {7, 0.00, 0.45, 0.15, 0.02, 0.10, 0.85},
};

/// The flower's petals with what is the same for all pixels, in the order of painting.
struct Petal {
  double reach;
  double width;
  double hue;
  double alpha;
  double cosine;  // of the axis
  double sine;
};

std::vector<Petal> allPetals() {
  std::vector<Petal> petals;
  for (const Wreath& wreath : kWreaths) {
    for (int i = 0; i < wreath.petals; ++i) {
      const double angle = kTurn * (wreath.turn + static_cast<double>(i) / wreath.petals);
      const double cosine = std::cos(angle);
      const double hue = wreath.hue + wreath.spread * (0.5 - 0.5 * cosine);
      petals.push_back({wreath.reach, wreath.width, hue, wreath.alpha, cosine, std::sin(angle)});
    }
  }
  return petals;
}

Layer petalAt(const Petal& petal, Place place, double softness) {
  constexpr double kTip = 1.098;  // where the outline closes
  const double along = (place.x * petal.cosine + place.y * petal.sine) / petal.reach;
  const double aside = (place.y * petal.cosine - place.x * petal.sine) / petal.width;
  if (along <= 0 || along >= kTip || std::abs(aside) > 1.2) return {};
  const double outline =
      std::sqrt(along) * std::pow(std::sin(along / kTip * std::numbers::pi), 0.55);
  const double inside = (outline - std::abs(aside)) * petal.width;
  const double edge = smoothStep(-softness, softness, inside);
  const double vein = 0.05 * std::cos(aside * 16) * (1 - along);
  const Paint color = fromHue(petal.hue, 0.85, 0.44 + 0.30 * along - 0.10 * std::abs(aside) + vein);
  return {color, edge * petal.alpha * mix(1, 0.55, along * along)};
}

Layer heartAt(double distance) {
  const double seeds = 0.5 + 0.5 * std::cos(distance * 150);
  const Paint color =
      mix({1.0, 0.80, 0.16}, {0.95, 0.52, 0.05}, distance / 0.17 * 0.8 + 0.2 * seeds);
  return {color, smoothStep(0.175, 0.145, distance)};
}

Layer flowerAt(std::span<const Petal> petals, Place place, double softness) {
  const double distance = length(place.x, place.y);
  if (distance > 1) return {};
  Layer sum = {{1.0, 0.72, 0.86}, 0.42 * smoothStep(1.0, 0.15, distance)};
  for (const Petal& petal : petals) {
    const Layer layer = petalAt(petal, place, softness);
    if (layer.alpha > 0) sum = over(sum, layer);
  }
  return over(sum, heartAt(distance));
}

}  // namespace

Image drawAlpha(int32_t width, int32_t height) {
  Image image = blankImage(width, height, true);
  const Frame frame(width, height);
  const std::vector<Petal> petals = allPetals();
  const double softness = std::max(0.012, frame.pixel());
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      const Layer layer = flowerAt(petals, frame.at(x + 0.5, y + 0.5), softness);
      image.pixels[pixelIndex(image, x, y)] = toWord(layer.color, layer.alpha);
    }
  }
  return image;
}

}  // namespace host
