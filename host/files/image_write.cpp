#include <fcntl.h>
#include <stb/stb_image_write.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <new>
#include <optional>
#include <utility>

#include "host/files/image_file.h"
#include "host/files/picture_fault.h"
#include "host/files/picture_limits.h"

namespace host {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int kJpegQuality = 95;
constexpr const char* kOutOfMemory =
    "writing the picture needs more memory than there is; make it smaller";

enum class WritableFormat { kPng, kJpeg, kBmp, kTga };

std::string lowerExtension(const std::string& path) {
  const size_t slash = path.rfind('/');
  const size_t dot = path.rfind('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string extension = path.substr(dot);
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return extension;
}

std::optional<WritableFormat> writableFormat(const std::string& path) {
  const std::string extension = lowerExtension(path);
  if (extension == ".png") return WritableFormat::kPng;
  if (extension == ".jpg" || extension == ".jpeg") return WritableFormat::kJpeg;
  if (extension == ".bmp") return WritableFormat::kBmp;
  if (extension == ".tga") return WritableFormat::kTga;
  return std::nullopt;
}

// ---- Encoding ------------------------------------------------------------------------------

void checkImage(const Image& image) {
  if (image.width < 1 || image.height < 1) throw PictureFault("the picture has no pixels");
  const auto width = static_cast<uint64_t>(image.width);
  const auto height = static_cast<uint64_t>(image.height);
  checkSize(width, height);
  if (image.pixels.size() != width * height) {
    throw PictureFault("the picture has not as many pixels as its size says");
  }
}

/// These two formats keep the size in 16 bits.
void checkSide(WritableFormat format, const Image& image) {
  constexpr int32_t kMaxShort = 65535;
  if (format != WritableFormat::kJpeg && format != WritableFormat::kTga) return;
  if (std::max(image.width, image.height) > kMaxShort) {
    throw PictureFault("more than 65535 pixels a side do not fit this format; use .png or .bmp");
  }
}

Bytes toSamples(const Image& image, bool withAlpha) {
  const size_t channels = withAlpha ? 4 : 3;
  Bytes samples(image.pixels.size() * channels);
  uint8_t* sample = samples.data();
  for (const uint32_t pixel : image.pixels) {
    sample[0] = static_cast<uint8_t>(pixel >> 16);
    sample[1] = static_cast<uint8_t>(pixel >> 8);
    sample[2] = static_cast<uint8_t>(pixel);
    if (withAlpha) sample[3] = static_cast<uint8_t>(pixel >> 24);
    sample += channels;
  }
  return samples;
}

/// Collects what the library writes. It must not throw through the library, which would lose its
/// own memory, so it remembers a failure instead.
struct Sink {
  Bytes bytes;
  bool full = false;

  static void add(void* context, void* data, int size) {
    Sink& sink = *static_cast<Sink*>(context);
    const auto* first = static_cast<const uint8_t*>(data);
    try {
      if (!sink.full) sink.bytes.insert(sink.bytes.end(), first, first + size);
    } catch (const std::bad_alloc&) {
      sink.full = true;
    }
  }
};

/// The library packs PNG in memory of its own, at most the samples and twice their packed form
/// with some growth at once, and cannot give it back when it runs out. Asking for as much
/// beforehand throws std::bad_alloc in time. Plain calls, because a compiler may drop new
/// expressions whose result is unused.
void rehearsePngMemory(size_t sampleBytes) {
  using Block = std::unique_ptr<void, void (*)(void*)>;
  const Block samples(::operator new(sampleBytes), &::operator delete);
  const Block packed(::operator new(sampleBytes / 4 * 9), &::operator delete);
}

bool encodeInto(Sink& sink, WritableFormat format, const Image& image, bool withAlpha) {
  const Bytes samples = toSamples(image, withAlpha);
  const int channels = withAlpha ? 4 : 3;
  const int width = image.width;
  const int height = image.height;
  switch (format) {
    case WritableFormat::kPng:
      rehearsePngMemory(samples.size());
      return stbi_write_png_to_func(&Sink::add, &sink, width, height, channels, samples.data(),
                                    width * channels) != 0;
    case WritableFormat::kJpeg:
      return stbi_write_jpg_to_func(&Sink::add, &sink, width, height, channels, samples.data(),
                                    kJpegQuality) != 0;
    case WritableFormat::kBmp:
      return stbi_write_bmp_to_func(&Sink::add, &sink, width, height, channels, samples.data()) !=
             0;
    case WritableFormat::kTga:
      return stbi_write_tga_to_func(&Sink::add, &sink, width, height, channels, samples.data()) !=
             0;
  }
  return false;
}

Bytes encode(WritableFormat format, const Image& image) {
  checkImage(image);
  checkSide(format, image);
  const bool withAlpha = image.hasAlpha && format != WritableFormat::kJpeg;
  Sink sink;
  if (!encodeInto(sink, format, image, withAlpha) || sink.full) throw std::bad_alloc();
  return std::move(sink.bytes);
}

// ---- Storing -------------------------------------------------------------------------------

[[noreturn]] void failToStore(int error) {
  throw PictureFault(std::string("cannot be written: ") + std::strerror(error) +
                     "; choose another folder or make room");
}

/// The file a symbolic link stands for, or the path itself.
std::string resolveLink(const std::string& path) {
  const std::unique_ptr<char, void (*)(void*)> real(realpath(path.c_str(), nullptr), &std::free);
  return real != nullptr ? real.get() : path;
}

std::string folderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

/// The permissions for the new file: those of the file it replaces, if there is one.
std::optional<mode_t> replacedMode(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    throw PictureFault("is a folder or device, no ordinary file; choose another name");
  }
  if (access(path.c_str(), W_OK) != 0) failToStore(errno);
  return status.st_mode & 07777;
}

/// A file beside the target which vanishes again unless it is moved onto the target.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder) {
    constexpr int kTries = 1000;
    for (int i = 0; i < kTries && descriptor_ < 0; ++i) {
      name_ = folder + ".picture-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp";
      descriptor_ = open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (descriptor_ < 0 && errno != EEXIST) failToStore(errno);
    }
    if (descriptor_ < 0) failToStore(EEXIST);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!moved_) unlink(name_.c_str());
  }

  void write(const Bytes& bytes) const {
    size_t done = 0;
    while (done < bytes.size()) {
      const ssize_t count = ::write(descriptor_, bytes.data() + done, bytes.size() - done);
      if (count == 0) failToStore(ENOSPC);
      if (count < 0 && errno != EINTR) failToStore(errno);
      if (count > 0) done += static_cast<size_t>(count);
    }
  }
  void setMode(mode_t mode) const {
    if (fchmod(descriptor_, mode) != 0) failToStore(errno);
  }
  void moveTo(const std::string& target) {
    // Some file systems tell of a full disk only here.
    if (close(std::exchange(descriptor_, -1)) != 0) failToStore(errno);
    if (rename(name_.c_str(), target.c_str()) != 0) failToStore(errno);
    moved_ = true;
  }

 private:
  std::string name_;
  int descriptor_ = -1;
  bool moved_ = false;
};

void store(const std::string& path, const Bytes& bytes) {
  if (path.find('\0') != std::string::npos) {
    throw PictureFault("the name contains a zero byte; choose another one");
  }
  const std::string target = resolveLink(path);
  const std::optional<mode_t> mode = replacedMode(target);
  TemporaryFile file(folderOf(target));
  file.write(bytes);
  if (mode) file.setMode(*mode);
  file.moveTo(target);
}

}  // namespace

void checkWritableFormat(const std::string& path) {
  if (!writableFormat(path)) {
    throw imageError(path, "unknown picture format; use .png, .jpg, .bmp or .tga");
  }
}

void writeImage(const std::string& path, const Image& image) {
  checkWritableFormat(path);
  try {
    store(path, encode(*writableFormat(path), image));
  } catch (const PictureFault& fault) {
    throw imageError(path, fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError(path, kOutOfMemory);
  }
}

std::vector<uint8_t> encodePng(const Image& image) {
  try {
    return encode(WritableFormat::kPng, image);
  } catch (const PictureFault& fault) {
    throw imageError("picture", fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError("picture", kOutOfMemory);
  }
}

}  // namespace host
