// Hashes of rectangles of pixels that slide over a picture, after R. Karp and
// M. Rabin, "Efficient randomized pattern-matching algorithms", IBM Journal of
// Research and Development 31 (2), 1987, in two dimensions.
//
// A rectangle's hash is a polynomial of its pixels modulo a prime: down each
// column with one base, then across the columns with another. Equal rectangles
// have equal hashes; that others do, too, is rare, also for pictures made to
// that end, since nobody knows the bases beforehand.
#pragma once

#include "plugin/pixels/format.h"

namespace qrz {

/// Values 0 to 2^31 - 2, the remainders of the Mersenne prime 2^31 - 1.
constexpr uint32_t kHashPrime = 0x7FFFFFFF;

QRZ_INLINE uint32_t hashPlus(uint32_t a, uint32_t b) {
  const uint32_t sum = a + b;
  return sum >= kHashPrime ? sum - kHashPrime : sum;
}

QRZ_INLINE uint32_t hashMinus(uint32_t a, uint32_t b) { return hashPlus(a, kHashPrime - b); }

QRZ_INLINE uint32_t hashTimes(uint32_t a, uint32_t b) {
  const uint64_t product = static_cast<uint64_t>(a) * b;
  return hashPlus(static_cast<uint32_t>(product & kHashPrime),
                  static_cast<uint32_t>(product >> 31));
}

/// The bases of one search.
struct HashBases {
  uint32_t column, row;
};

/// Takes bases from the processor's clock. They decide about time, never about
/// what is found.
inline HashBases unpredictableBases() {
  constexpr uint32_t kLeast = 1 << 16;
  const uint64_t clock = __builtin_ia32_rdtsc();
  // An odd factor spreads the lowest bits, which change most, over the word.
  const uint32_t mixed =
      static_cast<uint32_t>(clock >> 32) ^ static_cast<uint32_t>(clock) * 0x9E3779B1U;
  const uint32_t again = (mixed ^ mixed >> 15) * 0x85EBCA77U;
  return {kLeast + mixed % (kHashPrime - kLeast), kLeast + again % (kHashPrime - kLeast)};
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

/// Pads do not count.
template <typename Format>
QRZ_INLINE uint32_t hashOfPixel(uint32_t word) {
  return RowTableFormat::pack(Format::red(word), Format::green(word), Format::blue(word));
}

}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/window_hash.inc"
#include "plugin/kernels/for_each_level.h"
