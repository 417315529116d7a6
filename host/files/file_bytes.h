// Whole files as bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

/// More than any picture worth reading, and all that a 32-bit process can well hold.
inline constexpr size_t kMaxFileBytes = size_t{512} << 20;

/// The bytes of a file of at most so many. Throws FileFault if it cannot be read, std::bad_alloc
/// without memory.
std::vector<uint8_t> readFile(const std::string& path, size_t most = kMaxFileBytes);

/// The same, but refuses pipes and devices, which may have no end.
std::vector<uint8_t> readOrdinaryFile(const std::string& path);

/// All that is left of standard input. Throws like readFile.
std::vector<uint8_t> readStandardInput();

/// Writes a file, which appears under its name only when it is complete; an existing file keeps
/// its permissions, and a symbolic link goes on pointing to its file, be it there or not. Throws
/// FileFault if it cannot be written; nothing is left behind then, and an existing file stays as it
/// was.
void writeFile(const std::string& path, std::span<const uint8_t> bytes);

/// Writes past std::cout, which must not hold anything back. Throws Interrupted, or a FileFault
/// whose line is complete.
void writeStandardOutput(std::span<const uint8_t> bytes);

/// Throws a FileFault if writeFile could not write the file; leaves everything as it is.
void checkWritable(const std::string& path);

/// The end of the name from its last dot on, in lower case; empty without one.
std::string extensionOf(const std::string& path);

}  // namespace host
