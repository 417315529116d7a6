#include "host/files/picture_io.h"

#include <algorithm>
#include <new>

#include "host/core/exception.h"
#include "host/core/pict_recording.h"
#include "host/core/runtime.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/image_file.h"
#include "host/files/pict_file.h"
#include "host/files/picture_format.h"
#include "host/files/picture_limits.h"
#include "host/files/picture_size.h"
#include "host/samples/samples.h"
#include "platform/standin/standin.h"

namespace host {
namespace {

constexpr std::string_view kSamplePrefix = "sample:";
constexpr PictureSize kSampleSize{480, 320};

/// The level as a grey pixel.
uint32_t grey(uint32_t level) { return level << 16 | level << 8 | level; }

/// The size after an '@' in the path, such as 4000x3000, cut off the name.
PictureSize takeSize(std::string& name) {
  const size_t at = name.find('@');
  if (at == std::string::npos) return kSampleSize;
  const auto size = parseSize(name.substr(at + 1));
  if (!size) {
    throw FileFault("the size after '@' is width x height in pixels, such as 640x480");
  }
  checkSize(static_cast<uint64_t>(size->width), static_cast<uint64_t>(size->height));
  name.resize(at);
  return *size;
}

Image drawSample(const std::string& path) {
  std::string name = path.substr(kSamplePrefix.size());
  const PictureSize size = takeSize(name);
  std::string known;
  for (const Sample& sample : samples()) {
    if (sample.name == name) return sample.draw(size.width, size.height);
    known += (known.empty() ? "" : ", ") + std::string(sample.name);
  }
  throw FileFault("no such sample picture; there are " + known);
}

/// A picture that holds PICT data, of the size of its frame and without a mask.
Ref<Picture> pictureOfPict(std::span<const uint8_t> data) {
  const Rect frame = standin::pictFrame(data);
  checkSize(static_cast<uint64_t>(std::max(frame.right - frame.left, 0)),
            static_cast<uint64_t>(std::max(frame.bottom - frame.top, 0)));
  Handle handle = nullptr;
  if (PtrToHand(data.data(), &handle, static_cast<long>(data.size())) != 0) return nullptr;
  return makeObject<Picture>(pictStore(handle));
}

/// The picture in the bytes of a file; its name is only for messages.
Ref<Picture> pictureIn(const std::vector<uint8_t>& bytes, const std::string& name) {
  const bool isPict = detectFormat(bytes) == PictureFormat::kPict;
  if (isPict) return pictureOfPict(*pictDataIn(bytes));
  return pictureOf(decodeImage(name, bytes));
}

Ref<Picture> openFile(const std::string& path) {
  if (path.starts_with(kSamplePrefix)) return pictureOf(drawSample(path));
  return pictureIn(readPictureFile(path), path);
}

/// What `open` opens; raises an IOException for what is wrong with it.
template <typename Open>
Ref<Picture> opened(const std::string& name, Open open) {
  try {
    if (auto picture = open()) return picture;
    throw std::bad_alloc();
  } catch (const ImageError& error) {
    raise("IOException", error.what());
  } catch (const FileFault& fault) {
    raise("IOException", fileMessage(name, fault.what()));
  } catch (const std::bad_alloc&) {
    raise("IOException", fileMessage(name, "is too large for the memory of this process"));
  }
}

void saveAsPict(Picture& picture, const std::string& path) {
  try {
    const auto data = pictDataOf(picture);
    if (data.empty()) {
      throw FileFault(
          "more than 4095 pixels across or 32767 down do not fit this format; use .png or "
          ".bmp");
    }
    writePict(path, data);
  } catch (const FileFault& fault) {
    throw imageError(path, fault.what());
  }
}

}  // namespace

Image imageOf(const Picture& picture) {
  Image image{picture.width(), picture.height(), static_cast<bool>(picture.mask), picture.pixels()};
  for (uint32_t& word : image.pixels) word &= 0x00FFFFFF;
  if (!picture.mask) return image;
  const Picture& mask = *picture.mask;
  size_t i = 0;
  for (int32_t y = 0; y < image.height; ++y) {
    for (int32_t x = 0; x < image.width; ++x, ++i) {
      // Where the mask does not reach, the picture is opaque.
      const bool covered = x < mask.width() && y < mask.height();
      image.pixels[i] |= (covered ? mask.pixel(x, y) & 0xFF : 255) << 24;
    }
  }
  return image;
}

Ref<Picture> pictureOf(const Image& image) {
  const Storage storage = runtime().storageOfOpenedPictures();
  auto picture = Picture::create(storage, image.width, image.height);
  if (!picture) return nullptr;
  picture->setPixels(image.pixels);
  if (!image.hasAlpha) return picture;
  picture->mask = Picture::create(storage, image.width, image.height);
  if (!picture->mask) return nullptr;
  std::vector<uint32_t> levels(image.pixels.size());
  for (size_t i = 0; i < levels.size(); ++i) levels[i] = grey(image.pixels[i] >> 24);
  picture->mask->setPixels(levels);
  return picture;
}

Ref<Picture> openPicture(const std::string& path) {
  return opened(path, [&path] { return openFile(path); });
}

Ref<Picture> openStandardInput() {
  return opened(kStandardInput, [] { return pictureIn(readStandardInput(), kStandardInput); });
}

void checkPictureName(const std::string& path) {
  if (!isPictName(path)) checkWritableFormat(path);
}

void savePicture(Picture& picture, const std::string& path) {
  try {
    if (isPictName(path)) return saveAsPict(picture, path);
    writeImage(path, imageOf(picture));
  } catch (const ImageError& error) {
    raise("IOException", error.what());
  } catch (const std::bad_alloc&) {
    raise("IOException", fileMessage(path, "not enough memory to write the picture"));
  }
}

void writeToStandardOutput(const Picture& picture) {
  try {
    writeStandardOutput(encodePng(imageOf(picture)));
  } catch (const ImageError& error) {
    raise("IOException", error.what());
  } catch (const FileFault& fault) {
    raise("IOException", fault.what());
  } catch (const std::bad_alloc&) {
    raise("IOException", "standard output: not enough memory to write the picture");
  }
}

}  // namespace host
