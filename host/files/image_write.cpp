#include <stb/stb_image_write.h>

#include <algorithm>
#include <memory>
#include <new>
#include <optional>

#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/image_file.h"
#include "host/files/picture_limits.h"

namespace host {

namespace {

using Bytes = std::vector<uint8_t>;

constexpr int kJpegQuality = 95;
constexpr const char* kOutOfMemory =
    "writing the picture needs more memory than there is; make it smaller";

enum class WritableFormat { kPng, kJpeg, kBmp, kTga };

std::optional<WritableFormat> writableFormat(const std::string& path) {
  const std::string extension = extensionOf(path);
  if (extension == ".png") return WritableFormat::kPng;
  if (extension == ".jpg" || extension == ".jpeg") return WritableFormat::kJpeg;
  if (extension == ".bmp") return WritableFormat::kBmp;
  if (extension == ".tga") return WritableFormat::kTga;
  return std::nullopt;
}

// ---- Encoding ------------------------------------------------------------------------------

void checkImage(const Image& image) {
  if (image.width < 1 || image.height < 1) throw FileFault("the picture has no pixels");
  const auto width = static_cast<uint64_t>(image.width);
  const auto height = static_cast<uint64_t>(image.height);
  checkSize(width, height);
  if (image.pixels.size() != width * height) {
    throw FileFault("the picture has not as many pixels as its size says");
  }
}

/// These two formats keep the size in 16 bits.
void checkSide(WritableFormat format, const Image& image) {
  constexpr int32_t kMaxShort = 65535;
  if (format != WritableFormat::kJpeg && format != WritableFormat::kTga) return;
  if (std::max(image.width, image.height) > kMaxShort) {
    throw FileFault("more than 65535 pixels a side do not fit this format; use .png or .bmp");
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

Bytes encodeInMemory(WritableFormat format, const Image& image) {
  try {
    return encode(format, image);
  } catch (const FileFault& fault) {
    throw imageError("picture", fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError("picture", kOutOfMemory);
  }
}

}  // namespace

void checkWritableFormat(const std::string& path) {
  if (!writableFormat(path)) {
    throw imageError(path, "unknown picture format; use .png, .jpg, .bmp, .tga or .pict");
  }
}

void writeImage(const std::string& path, const Image& image) {
  checkWritableFormat(path);
  try {
    writeFile(path, encode(*writableFormat(path), image));
  } catch (const FileFault& fault) {
    throw imageError(path, fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError(path, kOutOfMemory);
  }
}

std::vector<uint8_t> encodePng(const Image& image) {
  return encodeInMemory(WritableFormat::kPng, image);
}

std::vector<uint8_t> encodeJpeg(const Image& image) {
  return encodeInMemory(WritableFormat::kJpeg, image);
}

}  // namespace host
