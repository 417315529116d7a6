// Picture files from anywhere: opened as programs open them, in little memory, and
// what was opened saved in each format and opened again.

#include <sys/mman.h>
#include <unistd.h>

#include <filesystem>
#include <string>

#include "fuzz/support/checks.h"
#include "fuzz/support/memory_limit.h"
#include "fuzz/support/png_checksums.h"
#include "host/core/exception.h"
#include "host/core/runtime.h"
#include "host/files/picture_io.h"

namespace {

using fuzz::expect;
using host::Image;

constexpr size_t kMemory = size_t{16} << 20;
/// Larger pictures are only opened.
constexpr int32_t kLargestSide = 32;

/// A file in memory, by the name that the system has for it.
class MemoryFile {
 public:
  MemoryFile() : path_("/proc/self/fd/" + std::to_string(file_)) { expect(file_ >= 0); }

  [[nodiscard]] const std::string& path() const { return path_; }
  void hold(const uint8_t* bytes, size_t size) const {
    expect(ftruncate(file_, 0) == 0);
    expect(pwrite(file_, bytes, size, 0) == static_cast<ssize_t>(size));
  }

 private:
  int file_ = memfd_create("picture", 0);
  std::string path_;
};

Image savedAndOpened(host::Picture& picture, const char* extension) {
  static const std::string start = std::filesystem::temp_directory_path() / "saved";
  const std::string path = start + extension;
  host::savePicture(picture, path);
  return host::imageOf(*host::openPicture(path));
}

void expectSame(const Image& given, const Image& made) {
  expect(given.width == made.width && given.height == made.height);
  expect(given.hasAlpha == made.hasAlpha && given.pixels == made.pixels);
}

void expectSameSize(const Image& given, const Image& made) {
  expect(given.width == made.width && given.height == made.height && !made.hasAlpha);
}

/// Where the picture is opaque it is the same on white.
void expectSameOnWhite(const Image& given, const Image& made) {
  expectSameSize(given, made);
  for (size_t i = 0; i < given.pixels.size(); ++i) {
    const bool isOpaque = !given.hasAlpha || given.pixels[i] >> 24 == 255;
    expect(!isOpaque || (given.pixels[i] & 0x00FFFFFF) == made.pixels[i]);
  }
}

void saveAndOpen(host::Picture& picture) {
  const Image image = host::imageOf(picture);
  for (const char* extension : {".png", ".bmp", ".tga"}) {
    expectSame(image, savedAndOpened(picture, extension));
  }
  expectSameSize(image, savedAndOpened(picture, ".jpg"));
  expectSameOnWhite(image, savedAndOpened(picture, ".pict"));
}

void open(const std::string& path) {
  const fuzz::MemoryLimit memory(kMemory);
  host::Ref<host::Picture> picture;
  try {
    picture = host::openPicture(path);
  } catch (const host::RaisedException& raised) {
    expect(raised.instance->className() == "IOException");
    return;
  }
  if (picture->width() <= kLargestSide && picture->height() <= kLargestSide) saveAndOpen(*picture);
}

}  // namespace

extern "C" size_t LLVMFuzzerMutate(uint8_t* bytes, size_t size, size_t most);

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t most,
                                          unsigned /*seed*/) {
  const size_t changed = LLVMFuzzerMutate(bytes, size, most);
  fuzz::repairPngChecksums({bytes, changed});
  return changed;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  static const MemoryFile file;
  file.hold(bytes, size);
  open(file.path());
  expect(host::runtime().findLeaks().empty());
  return 0;
}
