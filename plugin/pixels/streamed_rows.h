// Pixels written past the caches.
#pragma once

#include <emmintrin.h>

#include <cstdint>
#include <cstring>

#include "plugin/pixels/format.h"

namespace qrz {

/// What the processor's largest cache holds, in bytes. Found once, at the entry:
/// asking takes as long as inverting ten thousand pixels and more. Calls that read
/// and write more than this stream their pixels: a store into memory that no cache
/// holds first reads it; streamed stores do not, but are slower where a cache could
/// have taken them.
inline int64_t cacheBytes = INT64_MAX;

/// INT64_MAX if the processor does not say.
int64_t detectCacheBytes();

/// Copies pixels past the caches.
inline void streamPixels(PixelWord* destination, const PixelWord* source, int32_t count) {
  auto* to = reinterpret_cast<uint8_t*>(destination);
  const auto* from = reinterpret_cast<const uint8_t*>(source);
  auto size = static_cast<size_t>(count) * sizeof(PixelWord);
  constexpr size_t kVector = sizeof(__m128i);
  // Streamed stores are aligned.
  const size_t ahead = (0 - reinterpret_cast<uintptr_t>(to)) % kVector;
  const size_t head = ahead < size ? ahead : size;
  memcpy(to, from, head);
  for (to += head, from += head, size -= head; size >= kVector;
       to += kVector, from += kVector, size -= kVector) {
    _mm_stream_si128(reinterpret_cast<__m128i*>(to),
                     _mm_loadu_si128(reinterpret_cast<const __m128i*>(from)));
  }
  memcpy(to, from, size);
}

/// To be called before others may look at streamed pixels.
inline void endStream() { _mm_sfence(); }

}  // namespace qrz
