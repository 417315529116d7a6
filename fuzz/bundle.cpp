// Bundles from anywhere: read, mapped and relocated; nothing of them runs.

#include <cstdlib>
#include <stdexcept>

#include "fuzz/support/checks.h"
#include "host/loader/mach_o_image.h"

namespace {

void load(std::span<const uint8_t> bytes) {
  const host::MachOFile file = host::readMachOFile(bytes);
  const host::MachOImage image(file,
                               [](const std::string&) { return reinterpret_cast<void*>(&malloc); });
  const auto code = image.bytes();
  const auto* entry = static_cast<const uint8_t*>(image.entryPoint());
  fuzz::expect(entry >= code.data() && entry < code.data() + code.size());
  host::checkContents(file, bytes);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  try {
    load({bytes, size});
  } catch (const std::runtime_error&) {
    // Refused.
  }
  return 0;
}
