// The CPU level that the row kernels run at.
#pragma once

#include <cstdint>

namespace qrz {

/// Levels in ascending order; every Intel machine that the host runs on has
/// SSE2. All levels give the same bytes.
enum class CpuLevel : int32_t {
  SSE2 = 0,
  SSSE3 = 1,  ///< bytes shuffled within 16
  AVX2 = 2,   ///< vectors of 32 bytes
  AVX512 = 3  ///< vectors of 64 bytes and look-ups in tables of bytes: F, BW, DQ, VL, VBMI
};

/// Chosen once, at the entry, before any kernel runs.
inline CpuLevel cpuLevel = CpuLevel::SSE2;

/// The level for rows of `count` pixels, which some kernels take four vectors at a
/// time: shorter vectors are quicker than those that a row does not fill.
inline CpuLevel cpuLevelFor(int32_t count) {
  const CpuLevel fitting = count >= 64   ? CpuLevel::AVX512
                           : count >= 32 ? CpuLevel::AVX2
                                         : CpuLevel::SSSE3;
  return cpuLevel < fitting ? cpuLevel : fitting;
}

/// The highest level that the processor has and the operating system has
/// enabled, and not above the cap that the build may have set.
CpuLevel detectCpuLevel();

}  // namespace qrz
