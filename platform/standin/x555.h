// Pixels of 16 bits: 0RRRRRGGGGGBBBBB.
#pragma once

#include <cstdint>

namespace standin {

/// Five bits spread over eight, so that 31 becomes 255.
constexpr uint32_t expand5(uint32_t five) { return five << 3 | five >> 2; }

/// 0x00RRGGBB.
constexpr uint32_t rgbOf555(uint32_t word) {
  return expand5(word >> 10 & 31) << 16 | expand5(word >> 5 & 31) << 8 | expand5(word & 31);
}

}  // namespace standin
