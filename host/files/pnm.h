// Reader for the PNM family of plain picture files.
#pragma once

#include <cstdint>
#include <span>

#include "host/files/image.h"

namespace host {

/// Reads P1 to P6: black and white, grey, or red-green-blue, as text or as bytes. Samples of any
/// maximum from 1 to 65535 are scaled to 0..255, rounded. Comments in headers, and between the
/// numbers of the text kinds, are skipped. Of several pictures in a row, the first is read.
/// Throws DamagedFile, or FileFault for too large pictures, whatever the bytes are.
Image readPnm(std::span<const uint8_t> bytes);

}  // namespace host
