#include <stb/stb_image.h>

#include <memory>
#include <new>
#include <span>
#include <string_view>

#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/image_file.h"
#include "host/files/picture_format.h"
#include "host/files/picture_limits.h"
#include "host/files/pnm.h"

namespace host {

namespace {

using Bytes = std::vector<uint8_t>;
using Decoded = std::unique_ptr<stbi_uc, void (*)(void*)>;

constexpr const char* kTooLargeForMemory =
    "the picture needs more memory than there is; make it smaller or close other pictures";

/// The words of the library's terse reasons, for pictures that are whole but not supported.
std::string_view unsupportedKind(std::string_view reason) {
  struct Kind {
    std::string_view reason;
    std::string_view words;
  };
  static constexpr Kind kKinds[] = {
      {"1/2/4/8/16-bit only", "this number of bits per sample"},
      {"only 8-bit", "more than 8 bits per sample"},
      {"no header height", "a picture without its height in the header"},
      {"bad component count", "this number of colour channels"},
      {"bad offset", "a gap between the header and the pixels"},
      {"bad masks", "this arrangement of colour bits"},
  };
  for (const Kind& kind : kKinds) {
    if (kind.reason == reason) return kind.words;
  }
  return {};
}

[[noreturn]] void failToDecode(PictureFormat format) {
  const char* text = stbi_failure_reason();
  const std::string_view reason = text != nullptr ? text : "";
  if (reason == "outofmem") throw FileFault(kTooLargeForMemory);
  if (reason == "too large") throw FileFault(std::string("the picture") + kTooLarge);
  const std::string name(formatName(format));
  const std::string kind(unsupportedKind(reason));
  if (kind.empty()) throw DamagedFile("what is in it makes no sense");
  throw FileFault(kind + " is not supported in " + name +
                  "; save the picture as an ordinary PNG and try again");
}

void checkHeaderSize(PictureFormat format, const Bytes& bytes) {
  int width = 0;
  int height = 0;
  int channels = 0;
  if (stbi_info_from_memory(bytes.data(), static_cast<int>(bytes.size()), &width, &height,
                            &channels) == 0) {
    failToDecode(format);
  }
  if (format == PictureFormat::kBmp) return;  // its height may be negative; already checked
  if (width < 0 || height < 0) throw DamagedFile("the size in the header is negative");
  checkSize(static_cast<uint64_t>(width), static_cast<uint64_t>(height));
}

std::vector<uint32_t> toWords(const stbi_uc* rgba, size_t count, bool withAlpha) {
  std::vector<uint32_t> words(count);
  for (size_t i = 0; i < count; ++i) {
    const stbi_uc* sample = rgba + 4 * i;
    const uint32_t alpha = withAlpha ? sample[3] : 0;
    words[i] = alpha << 24 | uint32_t{sample[0]} << 16 | uint32_t{sample[1]} << 8 | sample[2];
  }
  return words;
}

bool isOpaque(const stbi_uc* rgba, size_t count) {
  for (size_t i = 0; i < count; ++i) {
    if (rgba[4 * i + 3] != 255) return false;
  }
  return true;
}

Image decode(PictureFormat format, const Bytes& bytes) {
  checkStructure(format, bytes);
  checkHeaderSize(format, bytes);
  Image image;
  int channels = 0;
  const Decoded rgba(stbi_load_from_memory(bytes.data(), static_cast<int>(bytes.size()),
                                           &image.width, &image.height, &channels, 4),
                     &stbi_image_free);
  if (rgba == nullptr) failToDecode(format);
  const size_t count = static_cast<size_t>(image.width) * static_cast<size_t>(image.height);
  image.hasAlpha = channels == 2 || channels == 4;
  if (image.hasAlpha && alphaMayBePadding(format, bytes)) {
    image.hasAlpha = !isOpaque(rgba.get(), count);
  }
  image.pixels = toWords(rgba.get(), count, image.hasAlpha);
  return image;
}

Image decodeAny(const Bytes& bytes) {
  const PictureFormat format = detectFormat(bytes);
  const std::string name(formatName(format));
  if (format == PictureFormat::kUnknown || format == PictureFormat::kPict) {
    throw FileFault("is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT");
  }
  try {
    return format == PictureFormat::kPnm ? readPnm(bytes) : decode(format, bytes);
  } catch (const DamagedFile& damage) {
    throw FileFault("the " + name + " picture is damaged (" + damage.what() +
                    "); get an intact copy of the file");
  }
}

}  // namespace

std::vector<uint8_t> readPictureFile(const std::string& path) {
  try {
    return readFile(path);
  } catch (const FileFault& fault) {
    throw imageError(path, fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError(path, kTooLargeForMemory);
  }
}

Image readImage(const std::string& path) { return decodeImage(path, readPictureFile(path)); }

Image decodeImage(const std::string& path, const std::vector<uint8_t>& bytes) {
  try {
    return decodeAny(bytes);
  } catch (const FileFault& fault) {
    throw imageError(path, fault.what());
  } catch (const std::bad_alloc&) {
    throw imageError(path, kTooLargeForMemory);
  } catch (const std::logic_error& confusion) {  // the decoder gave up, see picture_library.cpp
    throw imageError(path, std::string("the picture is damaged (") + confusion.what() +
                               "); get an intact copy of the file");
  }
}

}  // namespace host
