// An i386 Mach-O bundle, read and checked.
#pragma once

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <vector>

namespace host {

/// Whether the bytes start as a Mach-O file does, of whatever processor.
bool isMachO(std::span<const uint8_t> file);

/// Addresses are those in the file; the image may be mapped at any other. The
/// bytes are views of the file's.
struct MachOFile {
  struct Segment {
    std::string name;
    uint32_t address = 0, size = 0;  ///< whole pages
    std::span<const uint8_t> bytes;  ///< the start of it; the rest is zeros
    uint32_t protection = 0;         ///< bits of mach_o::kRead, kWrite, kExecute

    [[nodiscard]] uint32_t end() const { return address + size; }
  };
  struct ImportFixUp {
    uint32_t address;
    size_t import;  ///< its number among the imports
  };

  std::vector<Segment> segments;          ///< one after the other, from address 0 on
  std::vector<std::string> imports;       ///< C functions, without the underscore
  std::vector<uint32_t> localFixUps;      ///< words that hold an address of the image
  std::vector<ImportFixUp> importFixUps;  ///< words to which an import's address is added
  std::optional<size_t> uuidOffset;       ///< of the identifier in the file, if there is one
  uint32_t entryPoint = 0;                ///< of REALPluginMain, in a segment with instructions
};

/// Reads a bundle of classic relocations. Every fix-up lies in the bytes of a
/// segment that can be written, none twice. Throws std::runtime_error, which
/// says what is damaged or not known.
MachOFile readMachOFile(std::span<const uint8_t> file);

/// Throws std::runtime_error if the bundle, which was read from these bytes, says
/// that its identifier was made from its contents, and they have changed since.
void checkContents(const MachOFile& file, std::span<const uint8_t> bytes);

}  // namespace host
