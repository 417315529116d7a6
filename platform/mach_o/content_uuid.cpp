#include "platform/mach_o/content_uuid.h"

#define XXH_INLINE_ALL
#include <xxhash.h>

#include <algorithm>

namespace mach_o {

Identifier contentUuid(std::span<const uint8_t> file) {
  XXH128_canonical_t hash;
  XXH128_canonicalFromHash(&hash, XXH3_128bits(file.data(), file.size()));
  Identifier uuid{};
  std::ranges::copy(hash.digest, uuid.begin());
  uuid[6] = static_cast<uint8_t>((uuid[6] & 0x0F) | 0x80);
  uuid[8] = static_cast<uint8_t>((uuid[8] & 0x3F) | 0x80);
  return uuid;
}

}  // namespace mach_o
