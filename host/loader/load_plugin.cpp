#include "host/loader/load_plugin.h"

#include <dlfcn.h>
#include <elf.h>

#include <cstring>
#include <filesystem>
#include <memory>
#include <stdexcept>
#include <vector>

#include "host/core/runtime.h"
#include "host/files/file_bytes.h"
#include "host/loader/mach_o_image.h"

namespace host {
namespace {

namespace fs = std::filesystem;

using EntryPoint = void (*)(void* (*resolver)(const char*));

/// The name that a bundle's property list has for the file with its code; empty
/// without one.
std::string listedName(const fs::path& bundle) {
  const fs::path file = bundle / "Contents/Info.plist";
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return {};
  const auto bytes = readFile(file.string());
  const std::string_view text(reinterpret_cast<const char*>(bytes.data()), bytes.size());
  constexpr std::string_view kOpen = "<string>";
  const size_t open = text.find(kOpen, text.find("<key>CFBundleExecutable</key>"));
  if (open == std::string_view::npos) return {};
  const std::string_view name = text.substr(open + kOpen.size());
  return std::string(name.substr(0, name.find('<')));
}

/// The file with a bundle's code: the property list names it, or it bears the
/// folder's name.
fs::path executableOf(const fs::path& bundle) {
  std::string name = listedName(bundle);
  if (name.empty()) name = bundle.stem().string();
  return bundle / "Contents/MacOS" / fs::path(name).filename();
}

fs::path fileOf(const std::string& path) {
  std::error_code error;
  fs::path file = fs::canonical(path, error);  // "." has no name to go by
  if (fs::is_directory(file, error)) {
    file = executableOf(file);
    if (!fs::is_regular_file(file, error)) {
      throw std::runtime_error("is a folder, but no bundle with a plug-in in Contents/MacOS");
    }
  }
  if (!fs::is_regular_file(file, error)) {
    throw std::runtime_error("there is no plug-in; build it or name one with --plugin");
  }
  return file;
}

bool isElf(std::span<const uint8_t> file) {
  return file.size() >= SELFMAG && memcmp(file.data(), ELFMAG, SELFMAG) == 0;
}

EntryPoint loadSharedImage(const fs::path& file, std::span<const uint8_t> bytes) {
  if (!isElf(bytes)) {
    throw std::runtime_error("is no plug-in: neither an ELF image nor a Mach-O bundle");
  }
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw std::runtime_error(std::string("cannot be loaded as a plug-in: ") + dlerror());
  }
  auto* entry = reinterpret_cast<EntryPoint>(dlsym(library, "REALPluginMain"));
  if (entry == nullptr) {
    throw std::runtime_error("is no plug-in: it does not export REALPluginMain");
  }
  return entry;
}

EntryPoint loadBundle(std::span<const uint8_t> bytes) {
  const MachOFile file = readMachOFile(bytes);
  checkContents(file, bytes);
  // Never unmapped: the host keeps pointers into it.
  static auto* images = new std::vector<std::unique_ptr<MachOImage>>;
  images->push_back(std::make_unique<MachOImage>(file, importFromProcess));
  return reinterpret_cast<EntryPoint>(images->back()->entryPoint());
}

}  // namespace

void loadPlugin(const std::string& path) {
  EntryPoint entry = nullptr;
  try {
    const fs::path file = fileOf(path);
    const auto bytes = readFile(file.string());
    entry = isMachO(bytes) ? loadBundle(bytes) : loadSharedImage(file, bytes);
  } catch (const std::runtime_error& error) {
    throw std::runtime_error(path + ": " + error.what());
  }
  entry(resolveService);
}

}  // namespace host
