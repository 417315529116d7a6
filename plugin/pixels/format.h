// The 32-bit pixel formats, read as native (little-endian) words.
#pragma once

#include <cstdint>

/// For what kernels call per pixel: a compiler may refuse to inline a function
/// of the baseline into one of a higher CPU level of its own accord.
#define QRZ_INLINE inline __attribute__((always_inline))

namespace qrz {

/// A pixel in memory. Rows may start at any byte address, and the host and the
/// platform see the same memory as other types.
typedef uint32_t PixelWord __attribute__((aligned(1), may_alias));

/// Where the 8-bit channels sit in a word. The three colour channels lie side
/// by side; the remaining byte is the pad (alpha or nothing).
template <int RedShift, int GreenShift, int BlueShift, int PadShift>
struct PixelFormat {
  static constexpr int redShift = RedShift;
  static constexpr int greenShift = GreenShift;
  static constexpr int blueShift = BlueShift;
  /// Whether red, green and blue follow each other upwards.
  static constexpr bool isInOrder = GreenShift == RedShift + 8 && BlueShift == GreenShift + 8;
  /// Where the colour channels start.
  static constexpr int lowestShift = PadShift == 0 ? 8 : 0;

  static constexpr uint32_t colorMask =
      (0xFFU << RedShift) | (0xFFU << GreenShift) | (0xFFU << BlueShift);

  static QRZ_INLINE constexpr uint32_t red(uint32_t word) { return (word >> RedShift) & 0xFF; }
  static QRZ_INLINE constexpr uint32_t green(uint32_t word) { return (word >> GreenShift) & 0xFF; }
  static QRZ_INLINE constexpr uint32_t blue(uint32_t word) { return (word >> BlueShift) & 0xFF; }
  static QRZ_INLINE constexpr uint32_t pad(uint32_t word) { return (word >> PadShift) & 0xFF; }

  /// Whether red, green and blue are equal; of a vector of words, of each of them.
  template <typename Word>
  static QRZ_INLINE constexpr auto isGrey(Word word) {
    // Shifted down by a channel, the word lines up each channel with a
    // neighbour: a grey pixel differs in neither.
    constexpr uint32_t lowerTwo = colorMask & (colorMask >> 8);
    return ((word ^ (word >> 8)) & lowerTwo) == 0;
  }

  /// Channels 0 to 255; the pad becomes 0.
  static QRZ_INLINE constexpr uint32_t pack(uint32_t red, uint32_t green, uint32_t blue) {
    return (red << RedShift) | (green << GreenShift) | (blue << BlueShift);
  }
  /// A pad value, 0 to 255, in its place.
  static QRZ_INLINE constexpr uint32_t ofPad(uint32_t pad) { return pad << PadShift; }
  /// The pixel of a host colour 0x00RRGGBB, whose bits 24 to 31 are ignored.
  static QRZ_INLINE constexpr uint32_t ofColor(uint32_t color) {
    return pack((color >> 16) & 0xFF, (color >> 8) & 0xFF, color & 0xFF);
  }
};

/// Bytes X, R, G, B in memory order.
using GWorldFormat = PixelFormat<8, 16, 24, 0>;
/// Words 0x00RRGGBB.
using RowTableFormat = PixelFormat<16, 8, 0, 24>;

}  // namespace qrz
