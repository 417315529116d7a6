#include "host/bench/instruction_trace.h"

#include <signal.h>
#include <ucontext.h>

#include <algorithm>
#include <cstddef>
#include <cstdio>
#include <fstream>
#include <string>

namespace host {
namespace {

/// As many as take two seconds on a slow machine; a call takes a tenth of them.
constexpr int32_t kMostSteps = 100'000;
constexpr int32_t kNothing = -1;
constexpr greg_t kTrapFlag = 0x100;

// What the signal handler reads and writes, and nothing else.
CodeRange watched;
volatile sig_atomic_t steps = 0;
volatile sig_atomic_t highest = kNothing;

/// Enough of an instruction to tell its instruction set.
struct Opcode {
  uint8_t bytes[4] = {};
};

/// Zeros where the range ends.
Opcode opcodeAt(uintptr_t address) {
  Opcode opcode;
  const size_t size = std::min<size_t>(sizeof opcode.bytes, watched.end - address);
  for (size_t i = 0; i < size; ++i) {
    opcode.bytes[i] = reinterpret_cast<const uint8_t*>(address)[i];
  }
  return opcode;
}

InstructionSet setOf(const Opcode& opcode) {
  const auto [first, second, third, fourth] = opcode.bytes;
  // With a second byte below they are BOUND, LES and LDS of an operand in memory.
  if (second >= 0xC0) {
    if (first == 0x62) return InstructionSet::AVX512;
    if (first == 0xC4 || first == 0xC5) return InstructionSet::AVX2;
  }
  if (first == 0x66 && second == 0x0F) {
    const bool isPairwise = fourth <= 0x0B;  // PSHUFB and arithmetic
    const bool isAbsolute = fourth >= 0x1C && fourth <= 0x1E;
    if (third == 0x38 && (isPairwise || isAbsolute)) return InstructionSet::SSSE3;
    if (third == 0x3A && fourth == 0x0F) return InstructionSet::SSSE3;  // PALIGNR
  }
  return InstructionSet::SSE2;
}

/// Before each instruction.
void onStep(int /*signal*/, siginfo_t* /*info*/, void* context) {
  auto& registers = static_cast<ucontext_t*>(context)->uc_mcontext.gregs;
  const auto address = static_cast<uintptr_t>(registers[REG_EIP]);
  if (address >= watched.begin && address < watched.end) {
    const auto set = static_cast<sig_atomic_t>(setOf(opcodeAt(address)));
    if (set > highest) highest = set;
  }
  steps = steps + 1;
  if (steps >= kMostSteps) registers[REG_EFL] &= ~kTrapFlag;
}

/// While one lives, its thread is stopped before each instruction.
class SingleSteps {
 public:
  SingleSteps() {
    struct sigaction action {};
    action.sa_sigaction = onStep;
    action.sa_flags = SA_SIGINFO;
    sigaction(SIGTRAP, &action, &old_);
    asm volatile("pushfl\n\torl %0, (%%esp)\n\tpopfl" : : "i"(kTrapFlag) : "memory", "cc");
  }
  SingleSteps(const SingleSteps&) = delete;
  SingleSteps& operator=(const SingleSteps&) = delete;
  ~SingleSteps() {
    asm volatile("pushfl\n\tandl %0, (%%esp)\n\tpopfl" : : "i"(~kTrapFlag) : "memory", "cc");
    sigaction(SIGTRAP, &old_, nullptr);
  }

 private:
  struct sigaction old_ {};
};

}  // namespace

CodeRange codeAround(const void* address) {
  const auto wanted = reinterpret_cast<uintptr_t>(address);
  std::ifstream maps("/proc/self/maps");
  for (std::string line; std::getline(maps, line);) {
    unsigned long begin = 0;
    unsigned long end = 0;
    char execute = '-';
    if (sscanf(line.c_str(), "%lx-%lx %*c%*c%c", &begin, &end, &execute) != 3) continue;
    if (execute == 'x' && wanted >= begin && wanted < end) return {begin, end};
  }
  return {};
}

std::optional<InstructionSet> highestInstructionSet(CodeRange code,
                                                    const std::function<void()>& function) {
  watched = code;
  steps = 0;
  highest = kNothing;
  {
    const SingleSteps inSteps;
    function();
  }
  if (highest == kNothing) return std::nullopt;
  return static_cast<InstructionSet>(highest);
}

}  // namespace host
