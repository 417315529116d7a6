// ExtractColorRectangleMaskQRZ: the coloured areas of a picture as black
// rectangles on white.

#include <algorithm>

#include "plugin/analysis/bit_map.h"
#include "plugin/kernels/colored_areas.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

constexpr int32_t kTileSide = kBitsInWord;

/// All bounds are included.
struct Box {
  int32_t left, top, right, bottom;
};

/// One side of a growing box: the line of pixels beside it, a row of the map.
class Side {
 public:
  /// `step` leads away from the box.
  Side(const BitMap& map, int32_t line, int32_t step) : map_(map), line_(line), step_(step) {}

  /// The line beside the box.
  [[nodiscard]] int32_t line() const { return line_; }

  /// Moves by one line if a pixel of it from `first` to `last`, both included,
  /// is set. What was found clear is not looked at again until then.
  bool advance(int32_t first, int32_t last) {
    if (!isTouched(first, last)) {
      clearFirst_ = first;
      clearLast_ = last;
      return false;
    }
    line_ += step_;
    clearLast_ = clearFirst_ - 1;
    return true;
  }

 private:
  /// Stretches only grow while a side stands still.
  [[nodiscard]] bool isTouched(int32_t first, int32_t last) const {
    if (clearLast_ < clearFirst_) return map_.any(line_, first, last);
    return (first < clearFirst_ && map_.any(line_, first, clearFirst_ - 1)) ||
           (last > clearLast_ && map_.any(line_, clearLast_ + 1, last));
  }

  const BitMap& map_;
  int32_t line_, step_;
  int32_t clearFirst_ = 0, clearLast_ = -1;  ///< known to be clear; none at first
};

/// The coloured pixels that no box covers yet, and the pixels that are covered.
/// The coloured pixels have a ring around them, never coloured, so that no box
/// can leave the picture: pixel (x, y) is bit (x + 1, y + 1).
class ColoredAreas {
 public:
  ColoredAreas(int32_t width, int32_t height)
      : width_(width),
        height_(height),
        colored_(int64_t{width} + 2, int64_t{height} + 2),
        coloredByColumn_(int64_t{height} + 2, int64_t{width} + 2),
        covered_(width, height) {}

  explicit operator bool() const { return colored_ && coloredByColumn_ && covered_; }

  template <typename Path>
  void mark(const PictureReader<Path>& reader, const Area& area) {
    for (int32_t y = area.y0; y < area.y1; y += kTileSide) {
      for (int32_t x = area.x0; x < area.x1; x += kTileSide) {
        markTile(reader,
                 {x, y, std::min(x + kTileSide, area.x1), std::min(y + kTileSide, area.y1)});
      }
    }
  }

  /// Covers all coloured pixels by boxes. Each starts at the topmost, leftmost
  /// coloured pixel that is left. Since covering only takes pixels away, the
  /// next one lies behind it: the picture is scanned once.
  void cover() {
    for (int32_t y = 1; y <= height_; ++y) {
      for (int32_t x = colored_.next(y, 1, width_ + 1); x <= width_;
           x = colored_.next(y, x, width_ + 1)) {
        coverBox(boxAround(x, y));
      }
    }
  }

  /// Writes the covered pixels black, the others white.
  template <typename Path>
  void draw(const PictureWriter<Path>& writer) const {
    for (int32_t y = 0; y < height_; ++y) {
      QRZ_KERNEL_CALL(
          drawBitsRow<typename Path::Format>(writer.row(y), width_, covered_.rowWords(y)));
    }
  }

 private:
  /// Marks the coloured pixels of at most 32 × 32, in both maps.
  template <typename Path>
  void markTile(const PictureReader<Path>& reader, const Area& tile) {
    uint32_t words[kTileSide] = {};
    for (int32_t y = tile.y0; y < tile.y1; ++y) {
      const uint32_t bits = QRZ_KERNEL_CALL(
          coloredBits<typename Path::Format>(reader.row(y) + tile.x0, tile.x1 - tile.x0));
      colored_.set(tile.x0 + 1, y + 1, bits);
      words[y - tile.y0] = bits;
    }
    transpose(words);
    for (int32_t x = tile.x0; x < tile.x1; ++x) {
      coloredByColumn_.set(tile.y0 + 1, x + 1, words[x - tile.x0]);
    }
  }

  /// The box that grows from one pixel: each side moves by one pixel as long as
  /// there is a coloured one beside it, all four in turn; pixels at the corners
  /// do not count.
  [[nodiscard]] Box boxAround(int32_t x, int32_t y) const {
    Side above(colored_, y - 1, -1);
    Side below(colored_, y + 1, 1);
    Side left(coloredByColumn_, x - 1, -1);
    Side right(coloredByColumn_, x + 1, 1);
    for (bool moved = true; moved;) {
      moved = above.advance(left.line() + 1, right.line() - 1);
      moved |= below.advance(left.line() + 1, right.line() - 1);
      moved |= left.advance(above.line() + 1, below.line() - 1);
      moved |= right.advance(above.line() + 1, below.line() - 1);
    }
    return {left.line() + 1, above.line() + 1, right.line() - 1, below.line() - 1};
  }

  void coverBox(const Box& box) {
    for (int32_t y = box.top; y <= box.bottom; ++y) {
      colored_.fill(y, box.left, box.right, false);
      covered_.fill(y - 1, box.left - 1, box.right - 1, true);
    }
    for (int32_t x = box.left; x <= box.right; ++x) {
      coloredByColumn_.fill(x, box.top, box.bottom, false);
    }
  }

  int32_t width_, height_;
  BitMap colored_;
  BitMap coloredByColumn_;  ///< the same, with rows and columns exchanged
  BitMap covered_;          ///< without the ring
};

}  // namespace

/// A new picture of the picture's size, black and white: black rectangles cover
/// the coloured pixels (red, green and blue not all equal) inside the rectangle.
/// Each starts at a coloured pixel and grows until no coloured one touches its
/// sides; touching at a corner does not count. The picture is scanned once,
/// however many there are. Nil if the picture cannot be read, no new one can be made or
/// there is no memory.
HostPicture ExtractColorRectangleMaskRectangleQRZ(HostPicture picture, int32_t left, int32_t top,
                                                  int32_t width, int32_t height) {
  HostPicture result = nullptr;
  readPictures(Pictures<1>{picture}, [&](auto path, const auto& readers) {
    const auto& reader = readers[0];
    ColoredAreas areas(reader.width(), reader.height());
    PictureWriter<decltype(path)> writer;
    if (!areas || !writer.create(reader.width(), reader.height())) return;
    areas.mark(reader, Rectangle{left, top, width, height}.within(reader.width(), reader.height()));
    areas.cover();
    areas.draw(writer);
    result = writer.finish();
  });
  return result;
}

/// ExtractColorRectangleMaskRectangleQRZ on the whole picture.
HostPicture ExtractColorRectangleMaskQRZ(HostPicture picture) {
  return ExtractColorRectangleMaskRectangleQRZ(picture, 0, 0, -1, -1);
}

}  // namespace qrz
