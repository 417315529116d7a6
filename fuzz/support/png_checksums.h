// The checksums of a PNG file, which random changes would hardly ever meet.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace fuzz {

/// Puts the right checksum behind each chunk of what begins like a PNG file.
void repairPngChecksums(std::span<uint8_t> file);

}  // namespace fuzz
