// Changes to programs that leave most of them programs.
#pragma once

#include <cstddef>
#include <cstdint>

namespace fuzz {

/// In place, as LLVMFuzzerCustomMutator does: a word becomes another one of the text or a
/// common value, a line is repeated elsewhere, or any bytes change. Returns the new
/// size.
size_t mutateText(uint8_t* bytes, size_t size, size_t most, unsigned seed);

}  // namespace fuzz
