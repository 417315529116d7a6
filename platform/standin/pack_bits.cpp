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

/// What a count announces, in units.
struct Run {
  size_t length;
  size_t stored;  ///< the same again and again if it is one
};

Run runOf(uint8_t count) {
  if (count == kNothing) return {0, 0};
  if (count > kNothing) return {257U - count, 1};
  return {count + 1U, count + 1U};
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

bool unpackBits(std::span<const uint8_t> packed, size_t unit, std::span<uint8_t> bytes) {
  while (!bytes.empty()) {
    if (packed.size() < 2) return false;
    const Run run = runOf(packed[0]);
    packed = packed.subspan(1);
    const size_t stored = unit * run.stored;
    const size_t written = std::min(unit * run.length, bytes.size());
    if (packed.size() < std::min(stored, written)) return false;
    for (size_t i = 0; i < written; i += stored) {
      std::copy_n(packed.begin(), std::min(stored, written - i),
                  bytes.begin() + static_cast<ptrdiff_t>(i));
    }
    bytes = bytes.subspan(written);
    packed = packed.subspan(std::min(stored, packed.size()));
  }
  return true;
}

size_t unpackedSize(std::span<const uint8_t> packed) {
  size_t size = 0;
  while (!packed.empty()) {
    const Run run = runOf(packed[0]);
    if (packed.size() < 1 + run.stored) return 0;
    size += run.length;
    packed = packed.subspan(1 + run.stored);
  }
  return size;
}

}  // namespace standin
