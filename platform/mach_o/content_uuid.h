// The identifier of a bundle, made from its contents.
#pragma once

#include <array>
#include <cstdint>
#include <span>

namespace mach_o {

using Identifier = std::array<uint8_t, 16>;

/// The 128-bit XXH3 hash of a file whose own identifier is zero, marked as a
/// UUID of version 8 (RFC 9562: made by a rule of its owner's).
Identifier contentUuid(std::span<const uint8_t> file);

/// Whether an identifier says that it was made by this rule.
inline bool isContentUuid(const Identifier& uuid) {
  return (uuid[6] & 0xF0) == 0x80 && (uuid[8] & 0xC0) == 0x80;
}

}  // namespace mach_o
