// Prints what the plug-in takes from the processor: the CPU level and the size of the
// largest cache.

#include <cinttypes>
#include <cstdio>

#include "plugin/kernels/level.h"
#include "plugin/pixels/streamed_rows.h"

int main() {
  constexpr const char* kLevels[] = {"SSE2", "SSSE3", "AVX2", "AVX512"};
  const int64_t bytes = qrz::detectCacheBytes();
  std::printf("%s ", kLevels[static_cast<int>(qrz::detectCpuLevel())]);
  std::printf(bytes == INT64_MAX ? "no caches\n" : "%" PRId64 "\n", bytes);
}
