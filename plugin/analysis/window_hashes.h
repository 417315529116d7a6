// The hashes of all windows of a pattern's size in a band of a picture.
#pragma once

#include <cstring>

#include "plugin/kernels/window_hash.h"
#include "plugin/pixels/buffer.h"

namespace qrz {

template <typename Format>
class WindowHashes {
 public:
  /// For rows of `width` pixels, at least the pattern's. The pattern is a reader.
  template <typename Pattern>
  WindowHashes(int32_t width, const Pattern& pattern)
      : width_(width),
        windowWidth_(pattern.width()),
        columns_(width),
        sums_(int64_t{width} + 1),
        powers_(width),
        wanted_(width) {
    if (!*this) return;
    const HashBases bases = unpredictableBases();
    entering_ = {bases.column, 0};
    sliding_ = {bases.column, kHashPrime - hashPower(bases.column, pattern.height())};
    uint32_t power = 1;
    for (int32_t x = 0; x < width; ++x, power = hashTimes(power, bases.row)) powers_[x] = power;
    const uint32_t hash = hashOf(pattern);
    for (int32_t x = 0; x < width; ++x) wanted_[x] = hashTimes(hash, powers_[x]);
  }

  /// False if there was no memory.
  explicit operator bool() const { return columns_ && sums_ && powers_ && wanted_; }

  /// Takes in a row, below the others. First of all as many as the pattern has.
  void enter(const PixelWord* row) { step(row, row, width_, entering_); }
  /// Takes in a row and loses the topmost.
  void slide(const PixelWord* row, const PixelWord* topmost) {
    step(row, topmost, width_, sliding_);
  }
  /// Gets ready for `next`.
  void sumUp() { sumUp(width_); }
  /// The first column from x on where a window has the pattern's hash; if there
  /// is none, the number of windows or more.
  [[nodiscard]] int32_t next(int32_t x) const {
    return QRZ_KERNEL_CALL(
        nextWindow(sums_.data(), wanted_.data(), windowWidth_, x, width_ - windowWidth_ + 1));
  }

 private:
  void step(const PixelWord* row, const PixelWord* topmost, int32_t count, WindowStep how) {
    QRZ_KERNEL_CALL(slideColumns<Format>(columns_.data(), count, row, topmost, how));
  }
  void sumUp(int32_t count) {
    QRZ_KERNEL_CALL(sumColumns(sums_.data(), columns_.data(), powers_.data(), count));
  }

  /// A remainder. Uses the columns, and clears them again.
  template <typename Pattern>
  uint32_t hashOf(const Pattern& pattern) {
    for (int32_t y = 0; y < pattern.height(); ++y) {
      step(pattern.row(y), pattern.row(y), windowWidth_, entering_);
    }
    sumUp(windowWidth_);
    memset(columns_.data(), 0, sizeof(uint64_t) * static_cast<size_t>(windowWidth_));
    return hashRemainder(sums_[windowWidth_]);
  }

  int32_t width_, windowWidth_;
  Buffer<uint64_t> columns_;  ///< hashes of the columns
  Buffer<uint64_t> sums_;     ///< of the columns before each, times their powers
  Buffer<uint32_t> powers_;   ///< of the base of the rows
  Buffer<uint32_t> wanted_;   ///< the pattern's hash times the powers
  WindowStep entering_{};
  WindowStep sliding_{};
};

}  // namespace qrz
