// FindPicture: the first exact copy of one picture inside another.

#include "plugin/analysis/window_hashes.h"
#include "plugin/kernels/compare.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct Position {
  int32_t x, y;
};

/// Searches row by row from the top, in each row from the left. Where hardly
/// anything matches, comparing the pictures at every place is quickest. Where
/// much matches almost (flat or repeating pictures) that would take the product
/// of both sizes: once it has cost too much, only places whose hash is that of
/// the pattern are compared.
template <typename Path>
class PictureSearch {
 public:
  using Reader = PictureReader<Path>;
  using Format = typename Path::Format;

  PictureSearch(const Reader& haystack, const Reader& pattern)
      : haystack_(haystack),
        pattern_(pattern),
        columns_(haystack.width() - pattern.width() + 1),
        rows_(haystack.height() - pattern.height() + 1) {}

  /// Whether the pattern was found; then `found` is its first place.
  bool run(Position& found) {
    if (pattern_.width() < 1 || pattern_.height() < 1) return false;
    tell_ = findTell();
    int32_t y = 0;
    for (; y < rows_; ++y) {
      if (findInRow(y, found)) return true;
      if (compared_ > affordable_) break;
    }
    return findByHash(y, found);
  }

 private:
  /// What it costs to start with a row, in pixels.
  static constexpr int64_t kRowCost = 16;

  /// A pixel of the pattern that tells it from one colour, or else its last one.
  Position findTell() const {
    const uint32_t first = pattern_.row(0)[0] & Format::colorMask;
    for (int32_t y = 0; y < pattern_.height(); ++y) {
      const PixelWord* row = pattern_.row(y);
      if (QRZ_KERNEL_CALL(rowIsOf<Format>(row, pattern_.width(), first))) continue;
      int32_t x = 0;
      while ((row[x] & Format::colorMask) == first) ++x;
      return {x, y};
    }
    return {pattern_.width() - 1, pattern_.height() - 1};
  }

  /// Compares the pictures at one place.
  bool matchesAt(Position place) {
    for (int32_t y = 0; y < pattern_.height(); ++y) {
      const PixelWord* row = haystack_.row(place.y + y) + place.x;
      const int32_t equal =
          QRZ_KERNEL_CALL(equalPixels<Format>(pattern_.row(y), row, pattern_.width()));
      compared_ += kRowCost + equal;
      if (equal < pattern_.width()) return false;
    }
    return true;
  }

  /// Compares at every place of a row where the pattern's first pixel and the one
  /// that tells it are right, as long as that is affordable.
  bool findInRow(int32_t y, Position& found) {
    const PixelWord* row = haystack_.row(y);
    const PixelWord* tellRow = haystack_.row(y + tell_.y) + tell_.x;
    const uint32_t first = pattern_.row(0)[0];
    const uint32_t tell = pattern_.row(tell_.y)[tell_.x];
    for (int32_t x = 0; compared_ <= affordable_; ++x) {
      x = QRZ_KERNEL_CALL(nextPair<Format>(row, tellRow, x, columns_, first, tell));
      if (x >= columns_) return false;
      if (matchesAt({x, y})) {
        found = {x, y};
        return true;
      }
    }
    return false;
  }

  /// Searches on from a row. Without memory for the hashes, costs do not count.
  bool findByHash(int32_t firstRow, Position& found) {
    if (firstRow >= rows_) return false;
    WindowHashes<Format> hashes(haystack_.width(), pattern_);
    if (!hashes) return findByComparing(firstRow, found);
    const int32_t height = pattern_.height();
    for (int32_t y = firstRow; y < firstRow + height; ++y) hashes.enter(haystack_.row(y));
    for (int32_t y = firstRow; y < rows_; ++y) {
      if (y > firstRow) hashes.slide(haystack_.row(y + height - 1), haystack_.row(y - 1));
      hashes.sumUp();
      for (int32_t x = hashes.next(0); x < columns_; x = hashes.next(x + 1)) {
        if (!matchesAt({x, y})) continue;
        found = {x, y};
        return true;
      }
    }
    return false;
  }

  bool findByComparing(int32_t firstRow, Position& found) {
    affordable_ = INT64_MAX;
    for (int32_t y = firstRow; y < rows_; ++y) {
      if (findInRow(y, found)) return true;
    }
    return false;
  }

  const Reader& haystack_;
  const Reader& pattern_;
  const int32_t columns_, rows_;  ///< places to look at; none if below 1
  Position tell_{};
  int64_t compared_ = 0;
  /// Pixels that may be compared in vain before hashing pays.
  int64_t affordable_ = 4096 + static_cast<int64_t>(haystack_.width()) * haystack_.height() / 4;
};

}  // namespace

/// Looks for the first place, by rows and then by columns, where `pic` lies in
/// the picture with exactly its colours; pads are not compared. 1 and the place
/// of its top left pixel, or 0 and (0, 0): also if one of the pictures is nil,
/// cannot be read or is empty, or `pic` is larger. What x and y held before does
/// not count. The time to expect is that of a few passes over the picture,
/// whatever the pictures hold.
int32_t FindPicture(HostPicture picture, HostPicture pic, int32_t* x, int32_t* y) {
  *x = 0;
  *y = 0;
  bool isFound = false;
  readPictures<RowTablePath, GWorldPath>(
      Pictures<2>{picture, pic}, [&](auto path, const auto& readers) {
        Position place{};
        PictureSearch<decltype(path)> search(readers[0], readers[1]);
        isFound = search.run(place);
        if (!isFound) return;
        *x = place.x;
        *y = place.y;
      });
  return isFound ? 1 : 0;
}

}  // namespace qrz
