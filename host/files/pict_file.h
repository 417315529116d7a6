// PICT files: 512 bytes for the application that wrote them, then PICT data. Files
// with the data alone are about, too.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>

namespace host {

/// True for PICT data of version 2, which hardly anything else can be.
bool holdsPictVersion2(std::span<const uint8_t> bytes);

/// The PICT data in the bytes of a file that is of no format with a signature at
/// its start; nothing if there is none.
std::optional<std::span<const uint8_t>> pictDataIn(std::span<const uint8_t> bytes);

/// Whether the extension is .pict or .pct.
bool isPictName(const std::string& path);

/// Writes PICT data behind 512 zero bytes. Throws FileFault.
void writePict(const std::string& path, std::span<const uint8_t> data);

}  // namespace host
