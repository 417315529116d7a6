#include "platform/standin/pack_bits.h"

#include <algorithm>

namespace standin {
namespace {

constexpr size_t kLongest = 128;
/// A shorter run costs no less than its bytes do among others.
constexpr size_t kShortestRun = 3;
constexpr uint8_t kNothing = 128;

size_t runLength(std::span<const uint8_t> bytes) {
  const size_t most = std::min(bytes.size(), kLongest);
  size_t length = 1;
  while (length < most && bytes[length] == bytes[0]) ++length;
  return length;
}

/// How many bytes pass before a run starts; at least one.
size_t literalLength(std::span<const uint8_t> bytes) {
  const size_t most = std::min(bytes.size(), kLongest);
  size_t length = 1;
  while (length < most && runLength(bytes.subspan(length)) < kShortestRun) ++length;
  return length;
}

}  // namespace

void packBits(std::span<const uint8_t> bytes, std::vector<uint8_t>& packed) {
  while (!bytes.empty()) {
    size_t length = runLength(bytes);
    if (length >= kShortestRun) {
      packed.push_back(static_cast<uint8_t>(257 - length));
      packed.push_back(bytes[0]);
    } else {
      length = literalLength(bytes);
      packed.push_back(static_cast<uint8_t>(length - 1));
      packed.insert(packed.end(), bytes.begin(), bytes.begin() + static_cast<ptrdiff_t>(length));
    }
    bytes = bytes.subspan(length);
  }
}

bool unpackBits(std::span<const uint8_t> packed, std::span<uint8_t> bytes) {
  while (!bytes.empty()) {
    if (packed.size() < 2) return false;
    const uint8_t count = packed[0];
    packed = packed.subspan(1);
    if (count == kNothing) continue;
    const bool isRun = count > kNothing;
    const size_t length = isRun ? 257U - count : count + 1U;
    const size_t stored = isRun ? 1 : length;
    const size_t written = std::min(length, bytes.size());
    if (packed.size() < std::min(stored, written)) return false;
    if (isRun) {
      std::fill_n(bytes.begin(), written, packed[0]);
    } else {
      std::copy_n(packed.begin(), written, bytes.begin());
    }
    bytes = bytes.subspan(written);
    packed = packed.subspan(std::min(stored, packed.size()));
  }
  return true;
}

}  // namespace standin
