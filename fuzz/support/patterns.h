// What pictures and memory blocks of a fuzz target hold.
#pragma once

#include <cstdint>
#include <vector>

#include "host/core/picture.h"

namespace fuzz {

inline uint32_t hashOf(uint32_t number) {
  number = (number ^ 61) ^ number >> 16;
  number *= 9;
  number ^= number >> 4;
  number *= 0x27D4EB2D;
  return number ^ number >> 15;
}

/// Black, white and others that members know.
inline uint32_t plainColor(uint32_t number) {
  constexpr uint32_t kColors[] = {0x000000, 0xFFFFFF, 0x010101, 0xFEFEFE, 0x808080,
                                  0xFF0000, 0x00FF00, 0x0000FF, 0x123456};
  return kColors[number % std::size(kColors)];
}

inline std::vector<uint8_t> noise(size_t size, uint32_t seed) {
  std::vector<uint8_t> bytes(size);
  for (size_t i = 0; i < size; ++i) bytes[i] = static_cast<uint8_t>(hashOf(i * 256 + seed));
  return bytes;
}

struct Pattern {
  uint32_t kind, seed;
  const host::Picture* other;  ///< to copy from; may be null
};

/// A word 0xPPRRGGBB.
inline uint32_t wordAt(const Pattern& pattern, uint32_t x, uint32_t y) {
  const uint32_t random = hashOf(y * 8192 + x + (pattern.seed << 20));
  switch (pattern.kind % 8) {
    case 0:
      return plainColor(pattern.seed);
    case 1:
      return random;
    case 2:
      return random % 3 != 0 ? random : random % 256 * 0x10101;
    case 3:
      return plainColor(random % (pattern.seed % 8 + 1));
    case 4:
      return (x * 5 + pattern.seed) % 256 << 16 | y * 7 % 256 << 8 | (x + y) % 256;
    case 5:
      // Windows of this size all differ from white by one pixel.
      return plainColor(x % (pattern.seed % 16 + 8) == 7 && y % (pattern.seed / 16 + 4) == 3 ? 0
                                                                                             : 1);
    default: {
      if (pattern.other == nullptr || pattern.other->store().type() == qrz::kPictData) return x;
      const uint32_t left = pattern.seed % 16;
      const uint32_t top = pattern.seed / 16;
      return pattern.other->pixel(static_cast<int32_t>(x + left), static_cast<int32_t>(y + top));
    }
  }
}

inline void paint(host::Picture& picture, const Pattern& pattern) {
  std::vector<uint32_t> words;
  words.reserve(static_cast<size_t>(picture.width() * picture.height()));
  for (int32_t y = 0; y < picture.height(); ++y) {
    for (int32_t x = 0; x < picture.width(); ++x) {
      words.push_back(wordAt(pattern, static_cast<uint32_t>(x), static_cast<uint32_t>(y)));
    }
  }
  picture.setPixels(words);
}

}  // namespace fuzz
