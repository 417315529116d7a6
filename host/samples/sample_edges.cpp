// "edges": six tiles of sharp edges in black and white with a few colours: a checkerboard, a
// starburst, stripes that grow finer, rings, letters, and stepped corners.

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdint>
#include <numbers>
#include <string_view>

#include "host/samples/drawing.h"
#include "host/samples/sample_pictures.h"

namespace host {

namespace {

constexpr Paint kInk = {0.05, 0.06, 0.08};
constexpr Paint kPaper = {0.97, 0.96, 0.93};
constexpr Paint kRed = {0.86, 0.16, 0.14};
constexpr Paint kBlue = {0.07, 0.33, 0.72};
constexpr Paint kGold = {0.98, 0.73, 0.10};

bool isOdd(double number) { return std::fmod(std::abs(std::floor(number)), 2.0) >= 1; }

// Each tile maps a place from -1 to 1 in both directions to a colour.

Paint checker(Place place) {
  const bool coarse = place.x + place.y < 0;
  const double squares = coarse ? 4 : 12;
  const bool dark = isOdd((place.x + 1) * squares / 2) != isOdd((place.y + 1) * squares / 2);
  return dark ? kInk : kPaper;
}

Paint starburst(Place place) {
  constexpr double kRays = 36;
  const double distance = length(place.x, place.y);
  if (distance < 0.09) return kRed;
  if (distance > 0.94) return kPaper;
  const double turns = std::atan2(place.y, place.x) / (2 * std::numbers::pi) + 0.5;
  return isOdd(turns * kRays * 2) ? kInk : kPaper;
}

/// Upright stripes above, slanted ones below; both grow finer to the right.
Paint stripes(Place place) {
  const double across = (place.x + 1) / 2;
  const double phase = 5 * across + 16 * across * across;
  if (place.y < 0) return isOdd(phase * 2) ? kInk : kPaper;
  const double slanted = phase + place.y * 3.5;
  return isOdd(slanted * 2) ? kBlue : kPaper;
}

Paint rings(Place place) {
  const double distance = length(place.x, place.y);
  if (distance > 0.94) return kGold;
  return isOdd(distance * distance * 19) ? kPaper : kInk;
}

/// A letter as seven rows of five cells, the leftmost in the highest bit.
struct Glyph {
  char letter;
  std::array<uint8_t, 7> rows;
};

constexpr std::array<Glyph, 8> kGlyphs = {{
    {'A', {0b01110, 0b10001, 0b10001, 0b11111, 0b10001, 0b10001, 0b10001}},
    {'D', {0b11110, 0b10001, 0b10001, 0b10001, 0b10001, 0b10001, 0b11110}},
    {'E', {0b11111, 0b10000, 0b10000, 0b11110, 0b10000, 0b10000, 0b11111}},
    {'G', {0b01110, 0b10001, 0b10000, 0b10111, 0b10001, 0b10001, 0b01110}},
    {'H', {0b10001, 0b10001, 0b10001, 0b11111, 0b10001, 0b10001, 0b10001}},
    {'P', {0b11110, 0b10001, 0b10001, 0b11110, 0b10000, 0b10000, 0b10000}},
    {'R', {0b11110, 0b10001, 0b10001, 0b11110, 0b10100, 0b10010, 0b10001}},
    {'S', {0b01111, 0b10000, 0b10000, 0b01110, 0b00001, 0b00001, 0b11110}},
}};

/// Whether a cell of a line of text is inked; a letter takes six columns and eight rows.
bool isInked(std::string_view line, int column, int row) {
  const auto index = static_cast<size_t>(column / 6);
  if (column < 0 || row < 0 || row > 6 || column % 6 == 5 || index >= line.size()) return false;
  const auto* const glyph = std::ranges::find(kGlyphs, line[index], &Glyph::letter);
  return glyph != kGlyphs.end() && (glyph->rows[static_cast<size_t>(row)] >> (4 - column % 6) & 1);
}

Paint letters(Place place) {
  constexpr std::array<std::string_view, 3> kLines = {"SHARP", "EDGES", "SHAPE"};
  constexpr std::array<Paint, 3> kColors = {kInk, kRed, kInk};
  const double column = std::floor((place.x + 0.93) / 1.86 * 29);
  const double row = std::floor((place.y + 0.86) / 1.72 * 25);
  if (column < 0 || row < 0) return kPaper;
  const auto line = static_cast<size_t>(row / 9);
  if (line >= kLines.size()) return kPaper;
  const int rowOfLine = static_cast<int>(row) % 9;
  return isInked(kLines[line], static_cast<int>(column), rowOfLine) ? kColors[line] : kPaper;
}

/// Triangles and squares inside one another, each turned against the last.
Paint corners(Place place) {
  constexpr std::array<Paint, 6> kColors = {kInk, kGold, kBlue, kPaper, kRed, kInk};
  Paint color = kPaper;
  double reach = 0.94;
  double turn = 0;
  for (const Paint& next : kColors) {
    const double x = place.x * std::cos(turn) - place.y * std::sin(turn);
    const double y = place.x * std::sin(turn) + place.y * std::cos(turn);
    if (std::max(std::abs(x), std::abs(y)) > reach) break;
    color = next;
    reach /= 1.366;  // the largest square inside the last one, at 30 degrees
    turn += std::numbers::pi / 6;
  }
  return color;
}

using Tile = Paint (*)(Place);
constexpr std::array<Tile, 6> kTiles = {&checker, &starburst, &stripes, &rings, &letters, &corners};

/// The tiles side by side on dark ground, in rows of three or, in tall pictures, of two.
class Board {
 public:
  explicit Board(const Frame& frame)
      : columns_(frame.halfWidth() >= frame.halfHeight() ? 3 : 2),
        rows_(static_cast<int>(kTiles.size()) / columns_),
        halfWidth_(frame.halfWidth()),
        halfHeight_(frame.halfHeight()),
        tile_(std::min(halfWidth_ / columns_, halfHeight_ / rows_)) {}

  Paint colorAt(Place place) const {
    const double x = place.x / tile_ + columns_;
    const double y = place.y / tile_ + rows_;
    const double column = std::floor(x / 2);
    const double row = std::floor(y / 2);
    if (column < 0 || column >= columns_ || row < 0 || row >= rows_) return kInk;
    const Place inTile = {(x - 2 * column - 1) / kInner, (y - 2 * row - 1) / kInner};
    if (std::max(std::abs(inTile.x), std::abs(inTile.y)) > 1) return kInk;
    return kTiles[static_cast<size_t>(row * columns_ + column)](inTile);
  }

 private:
  static constexpr double kInner = 0.94;

  int columns_;
  int rows_;
  double halfWidth_;
  double halfHeight_;
  double tile_;  // half of a tile's side
};

/// The mean of four points in a pixel, so that slanted edges are not stepped.
Paint smoothedAt(const Board& board, Place place, double pixel) {
  constexpr std::array<Place, 4> kPoints = {
      {{-0.375, -0.125}, {0.125, -0.375}, {0.375, 0.125}, {-0.125, 0.375}}};
  Paint sum;
  for (const Place& point : kPoints) {
    sum = sum + board.colorAt({place.x + point.x * pixel, place.y + point.y * pixel});
  }
  return sum * 0.25;
}

}  // namespace

Image drawEdges(int32_t width, int32_t height) {
  const Frame frame(width, height);
  const Board board(frame);
  return paint(width, height, [&](Place place) { return smoothedAt(board, place, frame.pixel()); });
}

}  // namespace host
