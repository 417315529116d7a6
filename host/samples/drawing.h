// What the samples are drawn with: colours, soft steps, repeatable noise, and a pixel loop.
#pragma once

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <span>

#include "host/files/image.h"

namespace host {

/// A colour as shown on screens, each part from 0 to 1; between steps parts may leave this range.
struct Paint {
  double red = 0;
  double green = 0;
  double blue = 0;
};

inline Paint operator+(Paint a, Paint b) {
  return {a.red + b.red, a.green + b.green, a.blue + b.blue};
}
inline Paint operator*(Paint a, double factor) {
  return {a.red * factor, a.green * factor, a.blue * factor};
}

/// From a at share 0 to b at share 1.
inline double mix(double a, double b, double share) { return a + (b - a) * share; }
inline Paint mix(Paint a, Paint b, double share) { return a * (1 - share) + b * share; }

/// Adds light so that no part ever passes 1.
Paint lighten(Paint color, Paint light);

inline Paint grey(double lightness) { return {lightness, lightness, lightness}; }

/// hue in turns (any number; 0 is red, 1/3 green), saturation and lightness from 0 to 1.
Paint fromHue(double hue, double saturation, double lightness);

/// One colour of a ramp, and where it stands.
struct Stop {
  double place = 0;
  Paint color;
};

/// The colour at a place of a ramp whose stops (at least one) are in rising order; the end
/// colours go on beyond the ends.
Paint ramp(std::span<const Stop> stops, double place);

double clampToUnit(double value);

/// The distance of a point from the origin. Far quicker than std::hypot, whose care for huge
/// numbers is not needed here.
inline double length(double x, double y) { return std::sqrt(x * x + y * y); }

/// Rises smoothly from 0 at low to 1 at high; low may be above high.
double smoothStep(double low, double high, double value);

/// How much of a pixel lies inside an edge; distance in pixels, positive outside.
double coverage(double distance);

/// A well-mixed number for a place on a grid.
uint32_t hashOf(int32_t x, int32_t y, uint32_t seed);

/// The same from 0 (included) to 1 (excluded).
double randomAt(int32_t x, int32_t y, uint32_t seed);

/// Smooth noise from 0 to 1 with one hill or hollow for each unit of x and y.
double noise(double x, double y, uint32_t seed);

/// Noise with the given number of finer and finer, fainter and fainter layers; 0 to 1.
double fractal(double x, double y, uint32_t seed, int layers);

/// The pixel of an opaque colour, its top byte 0; parts outside 0..1 are clamped.
uint32_t toWord(Paint color);

/// The pixel of a colour with alpha from 0 to 1 in its top byte.
uint32_t toWord(Paint color, double alpha);

/// An image of the size with all pixels 0. Throws std::invalid_argument if a side is below 1.
Image blankImage(int32_t width, int32_t height, bool hasAlpha);

inline size_t pixelIndex(const Image& image, int32_t x, int32_t y) {
  return static_cast<size_t>(y) * static_cast<size_t>(image.width) + static_cast<size_t>(x);
}

/// A place in a picture of any shape: 0, 0 is the middle, and the shorter side runs from -1 to 1.
struct Place {
  double x = 0;
  double y = 0;
};

/// Maps pixels to places.
class Frame {
 public:
  Frame(int32_t width, int32_t height);

  /// The place of a point given in pixels from the upper left corner.
  Place at(double x, double y) const { return {(x - middleX_) * pixel_, (y - middleY_) * pixel_}; }

  /// The side of a pixel.
  double pixel() const { return pixel_; }

  /// Half of the sides; at least one is 1, the other at least that.
  double halfWidth() const { return middleX_ * pixel_; }
  double halfHeight() const { return middleY_ * pixel_; }

 private:
  double middleX_;
  double middleY_;
  double pixel_;
};

/// Draws an opaque picture: colorAt(place) gives the colour at the middle of each pixel.
template <typename ColorAt>
Image paint(int32_t width, int32_t height, const ColorAt& colorAt) {
  Image image = blankImage(width, height, false);
  const Frame frame(width, height);
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      image.pixels[pixelIndex(image, x, y)] = toWord(colorAt(frame.at(x + 0.5, y + 0.5)));
    }
  }
  return image;
}

}  // namespace host
