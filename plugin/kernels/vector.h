// Vectors for kernels, of the same length at every CPU level: the compiler makes
// one register of them or several. Everything is inlined, so that it belongs to
// the level of the kernel that uses it.
#pragma once

#include <cstdint>
#include <cstring>

#include "plugin/pixels/format.h"

namespace qrz {

typedef uint16_t Levels __attribute__((vector_size(16)));       ///< 8 small numbers
typedef int16_t SignedLevels __attribute__((vector_size(16)));  ///< the same, compared quickly
typedef double Doubles __attribute__((vector_size(32)));        ///< 4 of them
typedef int32_t Integers __attribute__((vector_size(16)));      ///< 4 of them

constexpr int32_t kLevelsInVector = 8;

template <typename Vector, typename Element>
QRZ_INLINE Vector load(const Element* from) {
  Vector vector;
  memcpy(&vector, from, sizeof vector);
  return vector;
}

template <typename Vector, typename Element>
QRZ_INLINE void store(Element* to, Vector vector) {
  memcpy(to, &vector, sizeof vector);
}

/// All bits set where a > b, both below 32,768.
QRZ_INLINE Levels isGreater(Levels a, Levels b) {
  return reinterpret_cast<Levels>(reinterpret_cast<SignedLevels>(a) >
                                  reinterpret_cast<SignedLevels>(b));
}

/// `yes` where all bits of `mask` are set, `no` where none is.
QRZ_INLINE Levels choose(Levels mask, Levels yes, Levels no) { return (yes & mask) | (no & ~mask); }

QRZ_INLINE Doubles allOf(double value) { return Doubles{value, value, value, value}; }

/// Truncated to 0 to 255; 0 for what is not a number.
QRZ_INLINE Integers clampedBytes(Doubles values) {
  values = values > 0 ? values : allOf(0);
  values = values < 255 ? values : allOf(255);
  return __builtin_convertvector(values, Integers);
}

}  // namespace qrz
