#include "tests/support/faults.h"

#include <dlfcn.h>
#include <gtest/gtest.h>
#include <link.h>
#include <sys/mman.h>

#include <algorithm>
#include <cstdlib>
#include <map>
#include <span>
#include <sstream>
#include <stdexcept>

#include "tests/support/plugin_test.h"

namespace host {
namespace {

/// Calls that fail alike, separated by spaces.
struct Group {
  std::string_view failure;  ///< what they yield; empty: they cannot fail
  std::string_view names;
  bool areServices = true;
};

// Not here is REALConvertString, for texts of a kind that no member makes.
constexpr Group kGroups[] = {
    {"",  // before any member is called; what gives back; what only tells the host something
     "RegisterPluginVersion REALGetRBVersion REALenterMovies PluginRegisterClass "
     "PluginRegisterClassExtension PluginRegisterMethod REALSetStringEncoding REALUnlockString "
     "REALLockObject REALUnlockObject RuntimeRaiseException RuntimeGraphicsDrawLine "
     "unlockPictureDescription REALPictureClearCache RuntimeGraphicsDrawPicture "},
    {"null",
     "REALBuildString PluginNewInstance REALLoadObjectMethod newPicture REALGetPictureMask "
     "pluginPictureGraphicsGetter REALBuildPictureFromPicHandle REALBuildPictureFromGWorld "
     "newMemoryBlock memoryBlockGetPtr "},
    {"false",
     "REALSetPropValueString REALGetPropValueInt REALSetPropValueInt REALLockPictureDescription "},
    {"0", "memoryBlockGetSize "},
    {"a lock, but no known type", "lockPictureDescription "},
    {"nothing is drawn", "drawPicturePrimitive "},
    {"nothing is drawn", "DrawPicture ", false},
    {"",
     "UnlockPixels GetPixRowBytes GetGWorld SetGWorld DisposeRgn SetRect ScrollRect ForeColor "
     "BackColor ClosePicture KillPicture HLock HUnlock ",
     false},
    {"null",
     "GetGWorldPixMap GetPixBaseAddr NewRgn OpenCPicture CGBitmapContextGetData calloc "
     "resolve:RuntimeGraphicsDrawPicture ",  // looked up for every call
     false},
    {"0",
     "GetPixDepth LockPixels GetHandleSize CGBitmapContextGetBytesPerRow "
     "CGBitmapContextGetBitsPerComponent CGBitmapContextGetBitsPerPixel ",
     false},
    {"an error code", "PtrToHand ", false},
};

Faults current;
int32_t made = 0;
std::string_view firstName;
uint64_t lookedUpBits = 0;
uint64_t failedBits = 0;

constexpr std::string_view kLookUp = "resolve ";

const FallibleCall* entryOf(std::string_view name) {
  const auto& calls = fallibleCalls();
  const auto found = std::ranges::find(calls, name, &FallibleCall::name);
  return found != calls.end() ? &*found : nullptr;
}

uint64_t bitOf(const FallibleCall* entry) {
  return uint64_t{1} << (entry - fallibleCalls().data());
}

/// False if the call is to fail.
bool pass(const char* event) {
  const std::string_view name = event;
  const FallibleCall* entry = entryOf(name);
  if (entry == nullptr && name.starts_with(kLookUp)) {
    const std::string_view service = name.substr(kLookUp.size());
    if (const FallibleCall* wanted = entryOf(service)) lookedUpBits |= bitOf(wanted);
    return !current.knowsNothing && service != current.lacking;
  }
  if (current.knowsNothing && name.starts_with(kLookUp)) return false;
  EXPECT_NE(entry, nullptr) << "nothing is said about how " << name << " fails";
  if (entry == nullptr || !entry->canFail || current.first == 0) return true;
  ++made;
  if (made < current.first || (made > current.first && !current.forGood)) return true;
  if (firstName.empty()) firstName = entry->name;
  failedBits |= bitOf(entry);
  return false;
}

bool isWatching = false;

void* allocate(size_t count, size_t size) {
  return isWatching && !pass("calloc") ? nullptr : calloc(count, size);
}

/// Lets the image find another function under the name of one that it imports.
void replaceImport(const link_map& image, std::string_view name, void* function) {
  std::map<int32_t, uintptr_t> values;
  for (const Elf32_Dyn* entry = image.l_ld; entry->d_tag != DT_NULL; ++entry) {
    values[entry->d_tag] = entry->d_un.d_val;
  }
  const auto* symbols = reinterpret_cast<const Elf32_Sym*>(values[DT_SYMTAB]);
  const auto* names = reinterpret_cast<const char*>(values[DT_STRTAB]);
  int32_t replaced = 0;
  for (const auto& [table, bytes] : {std::pair{DT_REL, DT_RELSZ}, {DT_JMPREL, DT_PLTRELSZ}}) {
    const auto* relocations = reinterpret_cast<const Elf32_Rel*>(values[table]);
    for (const Elf32_Rel& relocation : std::span(relocations, values[bytes] / sizeof(Elf32_Rel))) {
      if (name != names + symbols[ELF32_R_SYM(relocation.r_info)].st_name) continue;
      const uintptr_t slot = image.l_addr + relocation.r_offset;
      constexpr uintptr_t kPage = 4096;
      mprotect(reinterpret_cast<void*>(slot / kPage * kPage), kPage, PROT_READ | PROT_WRITE);
      *reinterpret_cast<void**>(slot) = function;
      ++replaced;
    }
  }
  if (replaced == 0) throw std::logic_error("not imported: " + std::string(name));
}

}  // namespace

const std::vector<FallibleCall>& fallibleCalls() {
  static const auto* calls = [] {
    auto* all = new std::vector<FallibleCall>;
    for (const Group& group : kGroups) {
      std::istringstream names{std::string(group.names)};
      for (std::string name; names >> name;) {
        std::ranges::replace(name, ':', ' ');
        all->push_back({name, !group.failure.empty(), group.areServices});
      }
    }
    return all;
  }();
  return *calls;
}

void watchAllocations() {
  void* image = dlopen(pluginPath().c_str(), RTLD_NOW | RTLD_NOLOAD);
  link_map* map = nullptr;
  if (image == nullptr || dlinfo(image, RTLD_DI_LINKMAP, &map) != 0) {
    throw std::logic_error(pluginPath() + " is not loaded");
  }
  replaceImport(*map, "calloc", reinterpret_cast<void*>(allocate));
}

FailingCalls::FailingCalls(const Faults& faults) {
  current = faults;
  made = 0;
  firstName = {};
  isWatching = true;
  runtime().setCallHook(pass);
}

FailingCalls::~FailingCalls() {
  runtime().setCallHook(nullptr);
  isWatching = false;
}

std::string_view firstFailed() { return firstName; }
uint64_t lookedUp() { return lookedUpBits; }
uint64_t failed() { return failedBits; }

}  // namespace host
