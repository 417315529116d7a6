// Which instruction sets code uses while it runs.
#pragma once

#include <cstdint>
#include <functional>
#include <optional>

namespace host {

/// In ascending order. AVX2 and AVX512 are what is coded with a VEX and with an
/// EVEX prefix; SSE2 is all that belongs to none of the others.
enum class InstructionSet : int32_t { SSE2, SSSE3, AVX2, AVX512 };

/// Addresses in this process, from `begin` to before `end`.
struct CodeRange {
  uintptr_t begin = 0;
  uintptr_t end = 0;
};

/// The executable mapping that holds the address; empty if none does.
CodeRange codeAround(const void* address);

/// Runs a function once, one instruction at a time, and returns the highest
/// instruction set among those that lie in the range; nothing if none of them ran.
/// Code elsewhere, such as the C library's, does not count. Each instruction takes
/// some microseconds; after 100,000 of them the function goes on unwatched. It may
/// throw. Not for two threads at once, nor in a debugger.
std::optional<InstructionSet> highestInstructionSet(CodeRange code,
                                                    const std::function<void()>& function);

}  // namespace host
