// Writes the bundle.
#pragma once

#include <cstdint>
#include <vector>

#include "tools/machobundle/elf_image.h"

namespace machobundle {

/// The bytes of an i386 Mach-O bundle of the image: the same instructions and
/// data at the same addresses, with the header in the page before them. The same
/// image always gives the same bytes. Throws std::runtime_error if it cannot be
/// laid out.
std::vector<uint8_t> makeBundle(const ElfImage& image);

}  // namespace machobundle
