// Compiles one kernel text once per CPU level. A kernel's header defines what its
// text needs and then says:
//
//   #define QRZ_KERNEL "plugin/kernels/invert.inc"
//   #include "plugin/kernels/for_each_level.h"
//
// QRZ_KERNEL_CALL calls a kernel at the chosen level. A text holds functions and
// what belongs to them, and includes nothing; the vectors of its level
// (vectors.inc) are there. All of it belongs to its level, so that nothing compiled
// for one can serve another; what it calls per pixel from outside is marked
// QRZ_INLINE. (No include guard: included once per kernel text.)

#if defined(__clang__)
#include <immintrin.h>
#else
// GCC 12 takes the results that its own header leaves open for uninitialized.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Wmaybe-uninitialized"
#pragma GCC diagnostic ignored "-Wuninitialized"
#include <immintrin.h>
#pragma GCC diagnostic pop
#endif

#include <cstdint>
#include <cstring>

#include "plugin/kernels/level.h"
#include "plugin/pixels/format.h"

// QRZ_UNROLL stands before a plain loop over pixels: four vectors at a time, which
// GCC does not do of its own accord.
#ifndef QRZ_BEGIN_LEVEL
#define QRZ_PRAGMA(...) _Pragma(#__VA_ARGS__)
#if defined(__clang__)
#define QRZ_UNROLL QRZ_PRAGMA(clang loop unroll_count(4))
#define QRZ_BEGIN_LEVEL(targets) \
  QRZ_PRAGMA(clang attribute push(__attribute__((target(targets))), apply_to = function))
#define QRZ_END_LEVEL QRZ_PRAGMA(clang attribute pop)
#else
#define QRZ_UNROLL QRZ_PRAGMA(GCC unroll 4)
#define QRZ_BEGIN_LEVEL(targets) \
  QRZ_PRAGMA(GCC push_options) QRZ_PRAGMA(GCC target(targets ",fpmath=sse"))
#define QRZ_END_LEVEL QRZ_PRAGMA(GCC pop_options)
#endif
#endif

namespace qrz::sse2 {
#define QRZ_LEVEL SSE2
#define QRZ_REGISTER_BYTES 16
#include "plugin/kernels/vectors.inc"
#include QRZ_KERNEL
#undef QRZ_LEVEL
#undef QRZ_REGISTER_BYTES
}  // namespace qrz::sse2

QRZ_BEGIN_LEVEL("ssse3")
namespace qrz::ssse3 {
#define QRZ_LEVEL SSSE3
#define QRZ_REGISTER_BYTES 16
#include "plugin/kernels/vectors.inc"
#include QRZ_KERNEL  // NOLINT(readability-duplicate-include): once per level
#undef QRZ_LEVEL
#undef QRZ_REGISTER_BYTES
}  // namespace qrz::ssse3
QRZ_END_LEVEL

QRZ_BEGIN_LEVEL("avx2")
namespace qrz::avx2 {
#define QRZ_LEVEL AVX2
#define QRZ_REGISTER_BYTES 32
#include "plugin/kernels/vectors.inc"
#include QRZ_KERNEL  // NOLINT(readability-duplicate-include)
#undef QRZ_LEVEL
#undef QRZ_REGISTER_BYTES
}  // namespace qrz::avx2
QRZ_END_LEVEL

QRZ_BEGIN_LEVEL("avx512f,avx512bw,avx512dq,avx512vl,avx512vbmi")
namespace qrz::avx512 {
#define QRZ_LEVEL AVX512
#define QRZ_REGISTER_BYTES 64
#include "plugin/kernels/vectors.inc"
#include QRZ_KERNEL  // NOLINT(readability-duplicate-include)
#undef QRZ_LEVEL
#undef QRZ_REGISTER_BYTES
}  // namespace qrz::avx512
QRZ_END_LEVEL

#undef QRZ_KERNEL

/// Calls a kernel, a name with its template arguments and arguments, at a level.
#ifndef QRZ_KERNEL_CALL
#define QRZ_KERNEL_CALL_AT(level, ...)                \
  ((level) == CpuLevel::AVX512  ? avx512::__VA_ARGS__ \
   : (level) == CpuLevel::AVX2  ? avx2::__VA_ARGS__   \
   : (level) == CpuLevel::SSSE3 ? ssse3::__VA_ARGS__  \
                                : sse2::__VA_ARGS__)
/// At the chosen level.
#define QRZ_KERNEL_CALL(...) QRZ_KERNEL_CALL_AT(cpuLevel, __VA_ARGS__)
/// At the chosen level or the one for rows of so many pixels.
#define QRZ_ROW_KERNEL_CALL(count, ...) QRZ_KERNEL_CALL_AT(cpuLevelFor(count), __VA_ARGS__)
#endif
