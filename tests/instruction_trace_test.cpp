// The instruction sets that code is seen to use, of hand-made code.

#include "host/bench/instruction_trace.h"

#include <gtest/gtest.h>
#include <signal.h>
#include <sys/mman.h>

#include <algorithm>
#include <span>
#include <stdexcept>
#include <vector>

namespace host {
namespace {

using enum InstructionSet;

/// A function of machine code.
class Code {
 public:
  explicit Code(std::span<const uint8_t> code)
      : page_(mmap(nullptr, kSize, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0)) {
    auto* end = std::ranges::copy(code, static_cast<uint8_t*>(page_)).out;
    *end = 0xC3;  // ret
    mprotect(page_, kSize, PROT_READ | PROT_EXEC);
  }
  Code(const Code&) = delete;
  Code& operator=(const Code&) = delete;
  ~Code() { munmap(page_, kSize); }

  void operator()() const { reinterpret_cast<void (*)()>(page_)(); }
  [[nodiscard]] const void* address() const { return page_; }

 private:
  static constexpr size_t kSize = 4096;
  void* page_;
};

TEST(InstructionTrace, HighestSetThatRuns) {
  const bool hasSsse3 = __builtin_cpu_supports("ssse3") != 0;
  const bool hasAvx2 = __builtin_cpu_supports("avx2") != 0;
  const bool hasAvx512 = __builtin_cpu_supports("avx512f") != 0;
  const struct {
    const char* text;
    std::vector<uint8_t> code;
    InstructionSet expected;
    bool isPossible;
  } cases[] = {
      {"pxor", {0x66, 0x0F, 0xEF, 0xC0}, SSE2, true},
      {"pshufb", {0x66, 0x0F, 0x38, 0x00, 0xC0}, SSSE3, hasSsse3},
      {"pmulhrsw", {0x66, 0x0F, 0x38, 0x0B, 0xC0}, SSSE3, hasSsse3},
      {"pabsd", {0x66, 0x0F, 0x38, 0x1E, 0xC0}, SSSE3, hasSsse3},
      {"palignr", {0x66, 0x0F, 0x3A, 0x0F, 0xC1, 4}, SSSE3, hasSsse3},
      {"vzeroupper, pxor", {0xC5, 0xF8, 0x77, 0x66, 0x0F, 0xEF, 0xC0}, AVX2, hasAvx2},
      {"vpshufb", {0xC4, 0xE2, 0x79, 0x00, 0xC0}, AVX2, hasAvx2},
      {"vpxord, vzeroupper",
       {0x62, 0xF1, 0x7D, 0x48, 0xEF, 0xC0, 0xC5, 0xF8, 0x77},
       AVX512,
       hasAvx512},
      {"a jump over vzeroupper", {0xEB, 3, 0xC5, 0xF8, 0x77}, SSE2, true},
  };
  for (const auto& [text, bytes, expected, isPossible] : cases) {
    if (!isPossible) continue;
    const Code code(bytes);
    const auto run = [&code] { code(); };
    EXPECT_EQ(highestInstructionSet(codeAround(code.address()), run), expected) << text;
    EXPECT_EQ(highestInstructionSet({}, run), std::nullopt) << text;
  }
}

TEST(InstructionTrace, LeavesNothingBehind) {
  signal(SIGTRAP, SIG_IGN);
  const auto fails = [] { throw std::runtime_error("on purpose"); };
  EXPECT_THROW(highestInstructionSet({}, fails), std::runtime_error);
  EXPECT_EQ(signal(SIGTRAP, SIG_DFL), SIG_IGN);
}

TEST(InstructionTrace, OnlyExecutableMappingsHoldCode) {
  const int32_t variable = 0;
  EXPECT_EQ(codeAround(&variable).end, 0U);
  const Code code({});
  const CodeRange range = codeAround(code.address());
  EXPECT_LE(range.begin, reinterpret_cast<uintptr_t>(code.address()));
  EXPECT_GT(range.end, reinterpret_cast<uintptr_t>(code.address()));
}

}  // namespace
}  // namespace host
