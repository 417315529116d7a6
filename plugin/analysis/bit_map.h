// One bit for each pixel, asked by stretches of a row.
#pragma once

#include "plugin/pixels/buffer.h"
#include "plugin/pixels/format.h"

namespace qrz {

/// width × height bits, all 0 at first. Words of 32 bits, the first pixel in
/// the lowest bit; a row starts a new word.
class BitMap {
 public:
  /// Sizes of at least 0.
  BitMap(int64_t width, int64_t height)
      : rowWords_((width + 31) / 32), words_(rowWords_ * height) {}

  /// False if there was no memory.
  explicit operator bool() const { return static_cast<bool>(words_); }

  /// Sets up to 32 pixels from column x on: those of the set bits, the lowest
  /// being the first.
  void set(int32_t x, int32_t y, uint32_t bits) {
    uint32_t* words = row(y) + (x >> 5);
    const int32_t shift = x & 31;
    words[0] |= bits << shift;
    const uint32_t rest = shift == 0 ? 0 : bits >> (32 - shift);
    if (rest != 0) words[1] |= rest;
  }

  /// Whether any pixel from column x0 to x1, both included, is set.
  [[nodiscard]] bool any(int32_t y, int32_t x0, int32_t x1) const {
    const uint32_t* words = row(y);
    const int32_t last = x1 >> 5;
    int32_t i = x0 >> 5;
    if (i == last) return (words[i] & from(x0) & upTo(x1)) != 0;
    if ((words[i] & from(x0)) != 0) return true;
    for (++i; i < last; ++i) {
      if (words[i] != 0) return true;
    }
    return (words[last] & upTo(x1)) != 0;
  }

  /// Sets, or clears, the pixels from column x0 to x1, both included.
  void fill(int32_t y, int32_t x0, int32_t x1, bool value) {
    uint32_t* words = row(y);
    const int32_t first = x0 >> 5;
    const int32_t last = x1 >> 5;
    for (int32_t i = first; i <= last; ++i) {
      uint32_t mask = ~0U;
      if (i == first) mask &= from(x0);
      if (i == last) mask &= upTo(x1);
      words[i] = value ? words[i] | mask : words[i] & ~mask;
    }
  }

  /// The first set column from x on, which lies before `end`, or `end` if there is
  /// none. No column from `end` on is set.
  [[nodiscard]] int32_t next(int32_t y, int32_t x, int32_t end) const {
    const uint32_t* words = row(y);
    int32_t i = x >> 5;
    uint32_t word = words[i] & from(x);
    while (word == 0) {
      if (++i > (end - 1) >> 5) return end;
      word = words[i];
    }
    return i * 32 + __builtin_ctz(word);
  }

  [[nodiscard]] const uint32_t* rowWords(int32_t y) const { return row(y); }

 private:
  [[nodiscard]] uint32_t* row(int32_t y) const { return words_.data() + rowWords_ * y; }
  static uint32_t from(int32_t x) { return ~0U << (x & 31); }
  static uint32_t upTo(int32_t x) { return ~0U >> (31 - (x & 31)); }

  int64_t rowWords_;
  Buffer<uint32_t> words_;
};

/// Exchanges rows and columns of 32 words of 32 bits: bit x of word y becomes bit
/// y of word x. The halves change places first, then the halves of these, and so
/// on (after H. S. Warren, "Hacker's Delight", 2002).
inline void transpose(uint32_t words[32]) {
  uint32_t low = 0x0000FFFF;  // the columns of the left half
  for (int32_t half = 16; half > 0; half >>= 1, low ^= low << half) {
    for (int32_t y = 0; y < 32; y = (y + half + 1) & ~half) {
      const uint32_t exchanged = ((words[y] >> half) ^ words[y + half]) & low;
      words[y] ^= exchanged << half;
      words[y + half] ^= exchanged;
    }
  }
}

}  // namespace qrz
