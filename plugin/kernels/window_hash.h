// Hashes of rectangles of pixels that slide over a picture, after R. Karp and
// M. Rabin, "Efficient randomized pattern-matching algorithms", IBM Journal of
// Research and Development 31 (2), 1987, in two dimensions.
//
// A rectangle's hash is a polynomial of its pixels modulo a prime: down each
// column with one base, then across the columns with another. Equal rectangles
// have equal hashes; that others do, too, is rare, also for pictures made to
// that end, since nobody knows the bases beforehand.
//
// Across a row, column x counts with the base to the power of x, so that a
// rectangle's hash is a difference of two sums from the row's start, and has to
// be compared with the pattern's hash times that power. Nothing then waits for
// what lies to its left but one addition.
#pragma once

#include <cstdint>

#include "plugin/pixels/format.h"

namespace qrz {

/// The Mersenne prime 2^31 - 1. Numbers are congruent modulo it, and reduced to
/// its remainders only where that is needed.
constexpr uint32_t kHashPrime = 0x7FFFFFFF;

/// Congruent, and below 2^31 plus the bits above the lowest 31.
template <typename Number>
QRZ_INLINE Number hashFold(Number number) {
  return (number & kHashPrime) + (number >> 31);
}

/// The remainder of a number below 2^62.
inline uint32_t hashRemainder(uint64_t number) {
  const auto folded = static_cast<uint32_t>(hashFold(number));
  return folded >= kHashPrime ? folded - kHashPrime : folded;
}

inline uint32_t hashTimes(uint32_t a, uint32_t b) {
  return hashRemainder(static_cast<uint64_t>(a) * b);
}

/// `base` to the power of `exponent`, 0 or more.
inline uint32_t hashPower(uint32_t base, int32_t exponent) {
  uint32_t power = 1;
  for (; exponent > 0; exponent >>= 1) {
    if ((exponent & 1) != 0) power = hashTimes(power, base);
    base = hashTimes(base, base);
  }
  return power;
}

/// What one row further down means for a column's hash.
struct WindowStep {
  uint32_t base;
  /// Makes up for the power of the base that the leaving row has reached; 0 while
  /// no row leaves.
  uint32_t leavingFactor;
};

/// Whether a number below 2^62 is congruent to a remainder, as all bits or none.
QRZ_INLINE uint32_t isWanted(uint64_t number, uint32_t remainder) {
  // Below twice the prime now.
  const auto folded = static_cast<uint32_t>(hashFold(number));
  const bool isEither = (folded == remainder) | (folded == remainder + kHashPrime);
  return isEither ? ~0U : 0;
}

/// The bases of one search, below 2^29: then a column's hash stays below 2^32
/// though it is folded only once.
struct HashBases {
  uint32_t column, row;
};

/// Takes bases from the processor's clock. They decide about time, never about
/// what is found.
inline HashBases unpredictableBases() {
  constexpr uint32_t kLeast = 1 << 16;
  constexpr uint32_t kRange = (1 << 29) - kLeast;
  const uint64_t clock = __builtin_ia32_rdtsc();
  // An odd factor spreads the lowest bits, which change most, over the word.
  const uint32_t mixed =
      static_cast<uint32_t>(clock >> 32) ^ static_cast<uint32_t>(clock) * 0x9E3779B1U;
  const uint32_t again = (mixed ^ mixed >> 15) * 0x85EBCA77U;
  return {kLeast + mixed % kRange, kLeast + again % kRange};
}

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/window_hash.inc"
#include "plugin/kernels/for_each_level.h"
