#include "plugin/kernels/level.h"

#include <cpuid.h>

#ifndef QRZ_LEVEL_CAP
#define QRZ_LEVEL_CAP AVX512
#endif

namespace qrz {
namespace {

/// Which register sets the operating system saves (XCR0).
uint32_t enabledRegisterState() {
  uint32_t low = 0;
  uint32_t high = 0;
  asm volatile("xgetbv" : "=a"(low), "=d"(high) : "c"(0));
  return low;
}

struct Features {
  uint32_t basic = 0;        ///< leaf 1, ecx
  uint32_t extended = 0;     ///< leaf 7, ebx
  uint32_t extendedToo = 0;  ///< leaf 7, ecx
};

Features processorFeatures() {
  Features features;
  uint32_t a = 0;
  uint32_t b = 0;
  uint32_t c = 0;
  uint32_t d = 0;
  __cpuid(1, a, b, features.basic, d);  // every processor with SSE2 has that leaf
  if (__get_cpuid_count(7, 0, &a, &b, &c, &d) != 0) {
    features.extended = b;
    features.extendedToo = c;
  }
  return features;
}

constexpr bool hasAll(uint32_t bits, uint32_t wanted) { return (bits & wanted) == wanted; }

CpuLevel highestLevel() {
  const Features has = processorFeatures();
  if (!hasAll(has.basic, bit_SSSE3)) return CpuLevel::SSE2;
  // The higher halves of the SSE registers; the mask registers and the halves above.
  constexpr uint32_t kStateOfAvx = 0x06;
  constexpr uint32_t kStateOfAvx512 = 0xE6;
  const uint32_t state = hasAll(has.basic, bit_OSXSAVE) ? enabledRegisterState() : 0;
  if (!hasAll(state, kStateOfAvx) || !hasAll(has.extended, bit_AVX2)) return CpuLevel::SSSE3;
  constexpr uint32_t kAvx512 = bit_AVX512F | bit_AVX512BW | bit_AVX512DQ | bit_AVX512VL;
  const bool hasAvx512 = hasAll(state, kStateOfAvx512) && hasAll(has.extended, kAvx512) &&
                         hasAll(has.extendedToo, bit_AVX512VBMI);
  return hasAvx512 ? CpuLevel::AVX512 : CpuLevel::AVX2;
}

}  // namespace

CpuLevel detectCpuLevel() {
  constexpr CpuLevel cap = CpuLevel::QRZ_LEVEL_CAP;
  const CpuLevel highest = highestLevel();
  return highest < cap ? highest : cap;
}

}  // namespace qrz
