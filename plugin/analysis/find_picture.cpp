// FindPicture: the first exact copy of one picture inside another.

#include "plugin/kernels/compare.h"
#include "plugin/kernels/window_hash.h"
#include "plugin/pixels/buffer.h"
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

  /// Compares at every place of a row whose pixel is the pattern's first one,
  /// as long as that is affordable.
  bool findInRow(int32_t y, Position& found) {
    const uint32_t first = pattern_.row(0)[0];
    const PixelWord* row = haystack_.row(y);
    for (int32_t x = 0; x < columns_; ++x) {
      if (((row[x] ^ first) & Format::colorMask) != 0) continue;
      if (matchesAt({x, y})) {
        found = {x, y};
        return true;
      }
      if (compared_ > affordable_) return false;
    }
    return false;
  }

  /// The hash of the pattern.
  uint32_t patternHash(const Buffer<uint32_t>& hashes) const {
    for (int32_t y = 0; y < pattern_.height(); ++y) {
      slide(hashes, pattern_.width(), pattern_.row(y), nullptr);
    }
    uint32_t hash = 0;
    for (int32_t x = 0; x < pattern_.width(); ++x) {
      hash = hashPlus(hashTimes(hash, bases_.row), hashes[x]);
      hashes[x] = 0;
    }
    return hash;
  }

  void slide(const Buffer<uint32_t>& hashes, int32_t width, const PixelWord* entering,
             const PixelWord* leaving) const {
    QRZ_KERNEL_CALL(
        slideColumns<Format>(hashes.data(), width, entering, leaving, bases_.column, columnPower_));
  }

  /// Compares at the places of a row whose hash is right; `hashes` are those of
  /// the haystack's columns from this row on.
  bool findInRowByHash(int32_t y, const Buffer<uint32_t>& hashes, uint32_t wanted,
                       Position& found) {
    const int32_t width = pattern_.width();
    const uint32_t power = hashPower(bases_.row, width);
    uint32_t hash = 0;
    for (int32_t x = 0; x < width; ++x) hash = hashPlus(hashTimes(hash, bases_.row), hashes[x]);
    for (int32_t x = 0;; ++x) {
      if (hash == wanted && matchesAt({x, y})) {
        found = {x, y};
        return true;
      }
      if (x + 1 >= columns_) return false;
      hash = hashPlus(hashTimes(hash, bases_.row), hashes[x + width]);
      hash = hashMinus(hash, hashTimes(hashes[x], power));
    }
  }

  /// Searches on from a row. Without memory for the hashes, costs do not count.
  bool findByHash(int32_t firstRow, Position& found) {
    if (firstRow >= rows_) return false;
    const Buffer<uint32_t> hashes(haystack_.width());
    if (!hashes) return findByComparing(firstRow, found);
    const uint32_t wanted = patternHash(hashes);
    const int32_t height = pattern_.height();
    for (int32_t y = firstRow; y < firstRow + height - 1; ++y) {
      slide(hashes, haystack_.width(), haystack_.row(y), nullptr);
    }
    for (int32_t y = firstRow; y < rows_; ++y) {
      const PixelWord* leaving = y > firstRow ? haystack_.row(y - 1) : nullptr;
      slide(hashes, haystack_.width(), haystack_.row(y + height - 1), leaving);
      if (findInRowByHash(y, hashes, wanted, found)) return true;
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
  const HashBases bases_ = unpredictableBases();
  const uint32_t columnPower_ = hashPower(bases_.column, pattern_.height());
  int64_t compared_ = 0;
  /// Pixels that may be compared in vain before hashing pays.
  int64_t affordable_ = 2 * static_cast<int64_t>(haystack_.width()) * haystack_.height();
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
