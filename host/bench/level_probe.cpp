#include "host/bench/level_probe.h"

#include <cstdint>

#include "host/bench/members.h"
#include "host/bench/subject.h"

namespace host {
namespace {

// The host and the C library, built for SSE2, leave the upper halves alone, too.
// No target attribute: it would have the compiler clear them at the function's end.

/// Sets all bits of the eight vector registers, 256 bits each.
void fillRegisters() {
  asm volatile(
      "vcmptrueps %%ymm0, %%ymm0, %%ymm0\n\t"
      "vmovaps %%ymm0, %%ymm1\n\t"
      "vmovaps %%ymm0, %%ymm2\n\t"
      "vmovaps %%ymm0, %%ymm3\n\t"
      "vmovaps %%ymm0, %%ymm4\n\t"
      "vmovaps %%ymm0, %%ymm5\n\t"
      "vmovaps %%ymm0, %%ymm6\n\t"
      "vmovaps %%ymm0, %%ymm7\n\t"
      :
      :
      : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
}

/// Whether all bits of the upper halves are still set. Clears them.
bool areUpperHalvesFilled() {
  int32_t signs = 0;
  asm volatile(
      "vandps %%ymm0, %%ymm1, %%ymm0\n\t"
      "vandps %%ymm2, %%ymm3, %%ymm2\n\t"
      "vandps %%ymm4, %%ymm5, %%ymm4\n\t"
      "vandps %%ymm6, %%ymm7, %%ymm6\n\t"
      "vandps %%ymm0, %%ymm2, %%ymm0\n\t"
      "vandps %%ymm4, %%ymm6, %%ymm4\n\t"
      "vandps %%ymm0, %%ymm4, %%ymm0\n\t"
      "vextractf128 $1, %%ymm0, %%xmm0\n\t"
      "vmovmskps %%xmm0, %0\n\t"
      "vzeroupper\n\t"
      : "=r"(signs)
      :
      : "xmm0", "xmm1", "xmm2", "xmm3", "xmm4", "xmm5", "xmm6", "xmm7");
  return signs == 0xF;
}

}  // namespace

std::string observedLevel() {
  for (const NamedMember& named : registeredMembers()) {
    if (named.name != "InvertQRZ") continue;
    if (__builtin_cpu_supports("avx") == 0) return "SSE2";
    const Subject subject = makeSubject(Content::White, {64, 64});
    // Once before, so that nothing is looked up or loaded any more.
    named.member->call(subject.picture.get(), {});
    fillRegisters();
    const Value result = named.member->call(subject.picture.get(), {});
    return areUpperHalvesFilled() ? "SSE2" : "AVX2";
  }
  return "unknown";
}

}  // namespace host
