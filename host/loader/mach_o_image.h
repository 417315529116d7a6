// A Mach-O bundle in memory.
#pragma once

#include <functional>
#include <span>
#include <string>

#include "host/loader/mach_o_file.h"

namespace host {

/// The memory of a loaded bundle; it goes with this object.
class MachOImage {
 public:
  /// The address of a C function, or null.
  using Imports = std::function<void*(const std::string& name)>;

  /// Maps the bundle at `wanted` if that is free, else at any address, applies
  /// all relocations and sets the protections; no code runs. Throws
  /// std::runtime_error if an import is missing, std::bad_alloc without memory.
  MachOImage(const MachOFile& file, const Imports& imports, void* wanted = nullptr);
  MachOImage(const MachOImage&) = delete;
  MachOImage& operator=(const MachOImage&) = delete;
  ~MachOImage();

  /// All segments; what a segment does not let read must not be touched.
  [[nodiscard]] std::span<const uint8_t> bytes() const { return memory_; }
  [[nodiscard]] void* entryPoint() const { return entryPoint_; }

 private:
  void protect(const MachOFile& file);
  /// Where an address of the file is in memory.
  [[nodiscard]] uint8_t* at(uint32_t address) const { return memory_.data() + address; }

  std::span<uint8_t> memory_;
  void* entryPoint_ = nullptr;
};

/// What the process itself has: the platform's calls and the C library.
void* importFromProcess(const std::string& name);

}  // namespace host
