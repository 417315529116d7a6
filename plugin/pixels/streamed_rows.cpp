#include "plugin/pixels/streamed_rows.h"

#include <cpuid.h>

#include <algorithm>

namespace qrz {
namespace {

#ifndef QRZ_CACHE_BYTES

struct Cache {
  uint32_t type = 0;  ///< 0 if there is none
  uint64_t bytes = 0;
};

/// One of the caches that a leaf of cpuid lists.
Cache cacheAt(uint32_t leaf, uint32_t index) {
  uint32_t a = 0;
  uint32_t b = 0;
  uint32_t c = 0;
  uint32_t d = 0;
  if (__get_cpuid_count(leaf, index, &a, &b, &c, &d) == 0) return {};
  const uint64_t ways = (b >> 22) + 1;
  const uint64_t partitions = (b >> 12 & 0x3FF) + 1;
  const uint64_t lineBytes = (b & 0xFFF) + 1;
  return {a & 0x1F, ways * partitions * lineBytes * (uint64_t{c} + 1)};
}

/// Of the largest of them; 0 if it lists none.
uint64_t largestCacheBytes(uint32_t leaf) {
  uint64_t largest = 0;
  constexpr uint32_t kMost = 8;
  for (uint32_t i = 0; i < kMost; ++i) {
    const Cache cache = cacheAt(leaf, i);
    if (cache.type == 0) break;
    if (cache.bytes > largest) largest = cache.bytes;
  }
  return largest;
}

#endif

}  // namespace

int64_t detectCacheBytes() {
#ifdef QRZ_CACHE_BYTES
  return QRZ_CACHE_BYTES;
#else
  constexpr uint32_t kIntelLeaf = 4;
  constexpr uint32_t kAmdLeaf = 0x8000001D;
  const uint64_t bytes = std::max(largestCacheBytes(kIntelLeaf), largestCacheBytes(kAmdLeaf));
  return bytes != 0 && bytes <= INT64_MAX ? static_cast<int64_t>(bytes) : INT64_MAX;
#endif
}

}  // namespace qrz
