// What of the plug-in's linked ELF image goes into the bundle.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>
#include <vector>

namespace machobundle {

/// A stretch of memory that the sections of one kind take up. Addresses are
/// those that the image was linked for.
struct Area {
  uint32_t begin = 0;
  uint32_t end = 0;        ///< exclusive
  uint32_t alignment = 1;  ///< a power of two

  [[nodiscard]] bool isEmpty() const { return begin == end; }
  [[nodiscard]] bool contains(uint32_t address, uint32_t size = 1) const {
    return address >= begin && address <= end && size <= end - address;
  }
};

/// Bytes at an address.
struct Piece {
  uint32_t address;
  std::span<const uint8_t> bytes;
};

/// A word that the loader completes.
struct FixUp {
  uint32_t address;
  uint32_t word;            ///< an address in the image; for an import, what is added to its own
  std::string_view import;  ///< empty if the word is an address in the image
};

/// Views of the file's bytes.
struct ElfImage {
  Area code, constants, data, zeroFill;
  std::vector<Piece> pieces;              ///< of code, constants and data
  std::vector<FixUp> fixUps;              ///< in ascending order, all in `data`
  std::vector<std::string_view> imports;  ///< in ascending order
  uint32_t entryPoint = 0;                ///< the address of REALPluginMain, in `code`
};

/// Reads an i386 ELF image that runs no code when it is loaded, needs no library
/// and exports REALPluginMain alone. Throws std::runtime_error, which names what
/// is not known or not allowed.
ElfImage readElfImage(std::span<const uint8_t> file);

}  // namespace machobundle
