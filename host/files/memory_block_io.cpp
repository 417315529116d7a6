#include "host/files/memory_block_io.h"

#include <new>
#include <stdexcept>
#include <utility>

#include "host/core/exception.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/sound_file.h"
#include "host/samples/sample_sounds.h"

namespace host {
namespace {

using Bytes = std::vector<uint8_t>;

constexpr std::string_view kSamplePrefix = "sample:";

[[noreturn]] void raiseTooLarge(const std::string& path) {
  raise("IOException", fileMessage(path, "is too large for the memory of this process"));
}

/// Runs an action on a file; what goes wrong becomes an exception of the script.
template <typename Action>
auto guarded(const std::string& path, const Action& action) {
  try {
    return action();
  } catch (const FileFault& fault) {
    raise("IOException", fileMessage(path, fault.what()));
  } catch (const std::bad_alloc&) {
    raiseTooLarge(path);
  } catch (const std::length_error&) {
    raiseTooLarge(path);
  }
}

Bytes makeSound(const std::string& name) {
  std::string known;
  for (const SampleSound& sound : sampleSounds()) {
    if (sound.name == name) return sound.make();
    known += (known.empty() ? "" : ", ") + std::string(sound.name);
  }
  throw FileFault("no such sample sound; there are " + known);
}

Bytes readSamples(const std::string& path) {
  if (path.starts_with(kSamplePrefix)) return makeSound(path.substr(kSamplePrefix.size()));
  Bytes bytes = readFile(path);
  return isWave(bytes) ? levelPairs(bytes) : bytes;
}

}  // namespace

Ref<MemoryBlock> openBlock(const std::string& path) {
  return guarded(path, [&path] { return makeObject<MemoryBlock>(readFile(path)); });
}

Ref<MemoryBlock> openSamples(const std::string& path) {
  return guarded(path, [&path] { return makeObject<MemoryBlock>(readSamples(path)); });
}

Ref<MemoryBlock> openPeaks(const std::string& path, int32_t count) {
  return guarded(path, [&path, count] {
    return makeObject<MemoryBlock>(peaksOf(readSamples(path), static_cast<size_t>(count)));
  });
}

void saveBlock(const MemoryBlock& block, const std::string& path) {
  guarded(path, [&block, &path] { writeFile(path, block.bytes); });
}

}  // namespace host
