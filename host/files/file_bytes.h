// Whole files as bytes.
#pragma once

#include <cstdint>
#include <span>
#include <string>
#include <vector>

namespace host {

/// The bytes of a file of at most 512 MB. Throws FileFault if it cannot be read, std::bad_alloc
/// without memory.
std::vector<uint8_t> readFile(const std::string& path);

/// Writes a file, which appears under its name only when it is complete; an existing file keeps
/// its permissions, and a symbolic link goes on pointing to its file. Throws FileFault if it
/// cannot be written; nothing is left behind then, and an existing file stays as it was.
void writeFile(const std::string& path, std::span<const uint8_t> bytes);

/// Throws a FileFault if writeFile could not write the file; leaves everything as it is.
void checkWritable(const std::string& path);

/// The end of the name from its last dot on, in lower case; empty without one.
std::string extensionOf(const std::string& path);

}  // namespace host
