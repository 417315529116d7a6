// Compiles one kernel text once per CPU level. Use:
//
//   #define QRZ_KERNEL "plugin/kernels/invert.inc"
//   #include "plugin/kernels/for_each_level.h"
//
// and call a kernel of it at the chosen level with QRZ_KERNEL_CALL. A text
// holds functions only and includes nothing: what it uses is included before.
// Everything in it belongs to its level, so nothing compiled for one level can
// serve another; what it calls per pixel from outside is marked QRZ_INLINE.
// (No include guard: included once per kernel text.)

#include <cstdint>

#include "plugin/kernels/level.h"
#include "plugin/pixels/format.h"

namespace qrz::sse2 {
#include QRZ_KERNEL
}  // namespace qrz::sse2

#if defined(__clang__)
#pragma clang attribute push(__attribute__((target("avx2"))), apply_to = function)
#else
#pragma GCC push_options
#pragma GCC target("avx2,fpmath=sse")
#endif
namespace qrz::avx2 {
#include QRZ_KERNEL  // NOLINT(readability-duplicate-include): once per level
}  // namespace qrz::avx2
#if defined(__clang__)
#pragma clang attribute pop
#else
#pragma GCC pop_options
#endif

#undef QRZ_KERNEL

/// Calls `kernel`, a name with its template arguments, at the chosen level.
#ifndef QRZ_KERNEL_CALL
#define QRZ_KERNEL_CALL(...) (cpuLevel == CpuLevel::AVX2 ? avx2::__VA_ARGS__ : sse2::__VA_ARGS__)
#endif
