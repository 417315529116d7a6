// PackBits: runs of equal bytes. A count below 128 is followed by that many
// bytes and one more; a count n above 128 by one byte, which stands for 257 - n.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace standin {

/// Appends the packed bytes; never the count 128, which some readers expand.
void packBits(std::span<const uint8_t> bytes, std::vector<uint8_t>& packed);

/// Fills `bytes` and ignores what is packed beyond it; false if there is less.
/// Counts are of units of one or two bytes.
bool unpackBits(std::span<const uint8_t> packed, size_t unit, std::span<uint8_t> bytes);

/// How much is packed, in units of one byte; 0 if the last run is not whole.
size_t unpackedSize(std::span<const uint8_t> packed);

}  // namespace standin
