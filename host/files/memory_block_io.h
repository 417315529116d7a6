// Memory blocks from and to files. All raise an IOException with one clear line.
#pragma once

#include <string>

#include "host/core/memory_block.h"

namespace host {

/// The bytes of a file.
Ref<MemoryBlock> openBlock(const std::string& path);

/// Samples of two bytes, the signed levels of two channels: those of a WAV file, of the built-in
/// sound of a name such as "sample:chord", or the bytes of any other file as they are.
Ref<MemoryBlock> openSamples(const std::string& path);

/// The loudest levels of such samples in as many stretches of them; the count is above 0.
Ref<MemoryBlock> openPeaks(const std::string& path, int32_t count);

/// Writes all bytes.
void saveBlock(const MemoryBlock& block, const std::string& path);

}  // namespace host
