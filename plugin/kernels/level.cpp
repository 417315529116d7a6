#include "plugin/kernels/level.h"

#include <cpuid.h>

#ifndef QRZ_LEVEL_CAP
#define QRZ_LEVEL_CAP AVX2
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

bool hasAvx2() {
  uint32_t a = 0;
  uint32_t b = 0;
  uint32_t c = 0;
  uint32_t d = 0;
  constexpr uint32_t kXmmAndYmm = 6;
  if (__get_cpuid(1, &a, &b, &c, &d) == 0 || (c & bit_OSXSAVE) == 0) return false;
  if ((enabledRegisterState() & kXmmAndYmm) != kXmmAndYmm) return false;
  return __get_cpuid_count(7, 0, &a, &b, &c, &d) != 0 && (b & bit_AVX2) != 0;
}

}  // namespace

CpuLevel detectCpuLevel() {
  constexpr CpuLevel cap = CpuLevel::QRZ_LEVEL_CAP;
  return cap >= CpuLevel::AVX2 && hasAvx2() ? CpuLevel::AVX2 : CpuLevel::SSE2;
}

}  // namespace qrz
