#include "fuzz/support/png_checksums.h"

#include <algorithm>
#include <array>

namespace {

uint32_t crcOf(std::span<const uint8_t> bytes) {
  uint32_t crc = 0xFFFFFFFF;
  for (const uint8_t byte : bytes) {
    crc ^= byte;
    for (int bit = 0; bit < 8; ++bit) crc = (crc & 1) != 0 ? crc >> 1 ^ 0xEDB88320 : crc >> 1;
  }
  return ~crc;
}

uint32_t wordAt(std::span<const uint8_t> bytes) {
  return uint32_t{bytes[0]} << 24 | uint32_t{bytes[1]} << 16 | uint32_t{bytes[2]} << 8 | bytes[3];
}

}  // namespace

void fuzz::repairPngChecksums(std::span<uint8_t> file) {
  constexpr std::array<uint8_t, 4> kStart = {0x89, 'P', 'N', 'G'};
  constexpr size_t kSignature = 8;
  constexpr size_t kAround = 12;  // the length, the kind and the checksum of a chunk
  if (file.size() < kSignature || !std::ranges::equal(file.first(4), kStart)) return;
  std::span<uint8_t> rest = file.subspan(kSignature);
  while (rest.size() >= kAround) {
    const size_t length = wordAt(rest);
    if (length > rest.size() - kAround) return;
    const uint32_t crc = crcOf(rest.subspan(4, 4 + length));
    for (size_t i = 0; i < 4; ++i) rest[8 + length + i] = static_cast<uint8_t>(crc >> (24 - 8 * i));
    rest = rest.subspan(kAround + length);
  }
}
