// A Mach-O bundle in memory.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "host/loader/mach_o_file.h"

namespace host {

/// Fresh pages, at `wanted` if they are free there; they go with this object.
/// Throws std::bad_alloc without memory.
class Pages {
 public:
  Pages(size_t size, void* wanted);
  Pages(const Pages&) = delete;
  Pages& operator=(const Pages&) = delete;
  ~Pages();

  [[nodiscard]] std::span<uint8_t> bytes() const { return bytes_; }

 private:
  std::span<uint8_t> bytes_;
};

/// A loaded bundle; its memory goes with this object.
class MachOImage {
 public:
  /// The address of a C function, or null.
  using Imports = std::function<void*(const std::string& name)>;

  /// Maps the bundle at `wanted` if that is free, else at any address, applies
  /// all relocations and sets the protections; no code runs. Throws
  /// std::runtime_error if an import is missing, std::bad_alloc without memory.
  MachOImage(const MachOFile& file, const Imports& imports, void* wanted = nullptr);

  /// All segments; what a segment does not let read must not be touched.
  [[nodiscard]] std::span<const uint8_t> bytes() const { return pages_.bytes(); }
  [[nodiscard]] void* entryPoint() const { return entryPoint_; }

 private:
  void protect(const MachOFile& file);
  /// Where an address of the file is in memory.
  [[nodiscard]] uint8_t* at(uint32_t address) const { return pages_.bytes().data() + address; }

  Pages pages_;
  void* entryPoint_;
};

/// What the process itself has: the platform's calls and the C library.
void* importFromProcess(const std::string& name);

}  // namespace host
