// BinaryStringtoPictureQRZ: a picture from a string that
// PicturetoBinaryStringQRZ made.

#include "plugin/binding/strings.h"
#include "plugin/exchange/binary_string.h"
#include "plugin/kernels/triplets.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

uint32_t readBigEndian(const uint8_t* bytes) {
  uint32_t word = 0;
  for (int32_t i = 0; i < 4; ++i) word = word << 8 | bytes[i];
  return word;
}

/// The pixels of a string; a null pointer if the string is malformed.
struct Triplets {
  const uint8_t* bytes;
  int32_t width, height;  ///< at least 1
};

/// Checks that the string is one of ours and holds every pixel that it claims.
Triplets tripletsOf(const HostText& text) {
  const auto* bytes = reinterpret_cast<const uint8_t*>(text.bytes);
  const auto length = static_cast<uint32_t>(text.length);
  if (length < kStartOffset + 4) return {};
  if (readBigEndian(bytes + kMagicOffset) != kBinaryStringMagic) return {};
  if (readBigEndian(bytes + kLengthOffset) != length) return {};
  const auto width = static_cast<int32_t>(readBigEndian(bytes + kWidthOffset));
  const auto height = static_cast<int32_t>(readBigEndian(bytes + kHeightOffset));
  const uint32_t start = readBigEndian(bytes + kStartOffset);
  if (width < 1 || height < 1 || start > length) return {};
  // Counted in pixels and whole rows, since products of the sizes could overflow.
  const uint32_t pixels = (length - start) / kTripletBytes;
  if (pixels / static_cast<uint32_t>(width) < static_cast<uint32_t>(height)) return {};
  return {bytes + start, width, height};
}

}  // namespace

/// A new picture from the bytes of a string, pads 0. Nil if the string is nil
/// or malformed (another magic, a length that is not its own, a size below 1,
/// or pixels that it does not hold) or no new picture can be made. The pixels
/// are taken from wherever the header says that they start.
HostPicture BinaryStringtoPictureQRZ(HostString data) {
  const Triplets pixels = tripletsOf(textOf(data));
  if (pixels.bytes == nullptr) return nullptr;
  return drawNewPicture(pixels.width, pixels.height, [&](auto path, const auto& writer) {
    using Format = typename decltype(path)::Format;
    const uint8_t* row = pixels.bytes;
    for (int32_t y = 0; y < pixels.height; ++y) {
      QRZ_KERNEL_CALL(readTriplets<Format>(writer.row(y), pixels.width, row));
      row += kTripletBytes * pixels.width;
    }
  });
}

}  // namespace qrz
