#include "host/loader/load_plugin.h"

#include <dlfcn.h>
#include <elf.h>
#include <fcntl.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
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
constexpr const char* kEntryPoint = "REALPluginMain";

/// The name that a bundle's property list has for the file with its code; empty
/// without one.
std::string listedName(const fs::path& bundle) {
  const fs::path file = bundle / "Contents/Info.plist";
  std::error_code error;
  if (!fs::is_regular_file(file, error)) return {};
  const auto bytes = readOrdinaryFile(file.string());
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

template <typename Record>
Record recordAt(std::span<const uint8_t> file, size_t offset) {
  if (offset > file.size() || sizeof(Record) > file.size() - offset) {
    throw std::runtime_error("is truncated; build or copy it again");
  }
  Record record;
  memcpy(&record, file.data() + offset, sizeof record);
  return record;
}

/// Refuses what the system's loader would not: it would touch what a truncated
/// file lacks.
void checkElf(std::span<const uint8_t> file) {
  if (file.size() < EI_NIDENT || memcmp(file.data(), ELFMAG, SELFMAG) != 0) {
    throw std::runtime_error("is no plug-in: neither an ELF image nor a Mach-O bundle");
  }
  if (file[EI_CLASS] != ELFCLASS32) {
    throw std::runtime_error("is no plug-in: an ELF image, but not of 32 bits");
  }
  const auto header = recordAt<Elf32_Ehdr>(file, 0);
  for (size_t i = 0; i < header.e_phnum; ++i) {
    const auto segment = recordAt<Elf32_Phdr>(file, header.e_phoff + i * sizeof(Elf32_Phdr));
    if (segment.p_type != PT_LOAD || segment.p_filesz == 0) continue;
    const auto end = uint64_t{segment.p_offset} + segment.p_filesz - 1;
    recordAt<uint8_t>(file, static_cast<size_t>(std::min<uint64_t>(end, SIZE_MAX)));
  }
}

EntryPoint entryPointOf(void* library) {
  return reinterpret_cast<EntryPoint>(dlsym(library, kEntryPoint));
}

/// In a child process: whatever the system's loader and the entry point do stays unseen.
[[noreturn]] void tryToLoad(const fs::path& file) {
  for (const int signal : {SIGALRM, SIGSEGV, SIGBUS, SIGFPE, SIGILL}) std::signal(signal, SIG_DFL);
  constexpr rlimit kNoCore{0, 0};
  setrlimit(RLIMIT_CORE, &kNoCore);
  const int nowhere = open("/dev/null", O_RDWR);
  dup2(nowhere, STDOUT_FILENO);
  dup2(nowhere, STDERR_FILENO);
  constexpr unsigned kMostSeconds = 20;
  alarm(kMostSeconds);
  if (void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL)) {
    if (const EntryPoint entry = entryPointOf(library)) entry(resolveService);
  }
  _exit(0);
}

/// Refuses what would end this process, since the system's loader trusts the file.
void checkLoading(const fs::path& file) {
  const pid_t child = fork();
  if (child == 0) tryToLoad(file);
  if (child < 0) return;  // There may be too many processes.
  int status = 0;
  pid_t waited = -1;
  do {
    waited = waitpid(child, &status, 0);
  } while (waited < 0 && errno == EINTR);
  if (waited == child && status != 0) {
    throw std::runtime_error("is damaged; build or copy it again");
  }
}

EntryPoint loadSharedImage(const fs::path& file, std::span<const uint8_t> bytes) {
  checkElf(bytes);
  checkLoading(file);
  void* library = dlopen(file.c_str(), RTLD_NOW | RTLD_LOCAL);
  if (library == nullptr) {
    throw std::runtime_error(std::string("cannot be loaded as a plug-in: ") + dlerror());
  }
  const EntryPoint entry = entryPointOf(library);
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
