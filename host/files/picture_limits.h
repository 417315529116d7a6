// How large a picture may be, for reading and writing alike.
#pragma once

#include <cstdint>

namespace host {

/// A 32-bit process holds a picture several times while it decodes, filters and encodes it.
inline constexpr uint64_t kMaxPixels = 128'000'000;

/// The picture library sums up the bytes of a row in 32 bits; this many columns stay far below.
inline constexpr uint64_t kMaxSide = 1'000'000;

/// What is said of a larger picture, after a phrase for it.
inline constexpr const char* kTooLarge =
    " is too large; at most 128 megapixels and 1000000 pixels a side are possible, make it smaller";

/// Throws FileFault unless 1 <= width, height <= kMaxSide and width * height <= kMaxPixels.
void checkSize(uint64_t width, uint64_t height);

}  // namespace host
