#include "host/loader/mach_o_image.h"

#include <dlfcn.h>
#include <sys/mman.h>

#include <cstring>
#include <new>
#include <stdexcept>

#include "platform/mach_o/format.h"

namespace host {
namespace {

uint32_t addressOf(const void* pointer) {
  return static_cast<uint32_t>(reinterpret_cast<uintptr_t>(pointer));
}

void addTo(uint8_t* place, uint32_t value) {
  uint32_t word = 0;
  memcpy(&word, place, sizeof word);
  word += value;
  memcpy(place, &word, sizeof word);
}

int protectionOf(uint32_t bits) {
  return ((bits & mach_o::kRead) != 0 ? PROT_READ : PROT_NONE) |
         ((bits & mach_o::kWrite) != 0 ? PROT_WRITE : PROT_NONE) |
         ((bits & mach_o::kExecute) != 0 ? PROT_EXEC : PROT_NONE);
}

std::vector<uint32_t> addressesOf(const std::vector<std::string>& names,
                                  const MachOImage::Imports& imports) {
  std::vector<uint32_t> addresses;
  std::string missing;
  for (const std::string& name : names) {
    addresses.push_back(addressOf(imports(name)));
    if (addresses.back() == 0) missing += (missing.empty() ? "" : ", ") + name;
  }
  if (!missing.empty()) {
    throw std::runtime_error("imports what this process does not have: " + missing);
  }
  return addresses;
}

}  // namespace

Pages::Pages(size_t size, void* wanted) {
  void* memory = mmap(wanted, size, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
  if (memory == MAP_FAILED) throw std::bad_alloc();
  bytes_ = {static_cast<uint8_t*>(memory), size};
}

Pages::~Pages() { munmap(bytes_.data(), bytes_.size()); }

MachOImage::MachOImage(const MachOFile& file, const Imports& imports, void* wanted)
    : pages_(file.segments.back().end(), wanted), entryPoint_(at(file.entryPoint)) {
  const std::vector<uint32_t> addresses = addressesOf(file.imports, imports);
  for (const auto& segment : file.segments) {
    if (!segment.bytes.empty()) {
      memcpy(at(segment.address), segment.bytes.data(), segment.bytes.size());
    }
  }
  for (const uint32_t place : file.localFixUps) addTo(at(place), addressOf(at(0)));
  for (const auto& [place, import] : file.importFixUps) addTo(at(place), addresses[import]);
  protect(file);
}

void MachOImage::protect(const MachOFile& file) {
  for (const auto& segment : file.segments) {
    if (mprotect(at(segment.address), segment.size, protectionOf(segment.protection)) != 0) {
      throw std::runtime_error("cannot be given the protections that it asks for");
    }
  }
}

void* importFromProcess(const std::string& name) { return dlsym(RTLD_DEFAULT, name.c_str()); }

}  // namespace host
