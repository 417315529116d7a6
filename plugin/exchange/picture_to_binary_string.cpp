// PicturetoBinaryStringQRZ: a picture's size and colours as a string of bytes.

#include "plugin/binding/strings.h"
#include "plugin/exchange/binary_string.h"
#include "plugin/kernels/triplets.h"
#include "plugin/pixels/buffer.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

void writeBigEndian(uint8_t* bytes, uint32_t word) {
  for (int32_t i = 0; i < 4; ++i) bytes[i] = static_cast<uint8_t>(word >> (24 - 8 * i));
}

void writeHeader(uint8_t* bytes, int32_t width, int32_t height, int32_t length) {
  writeBigEndian(bytes + kMagicOffset, kBinaryStringMagic);
  writeBigEndian(bytes + kLengthOffset, static_cast<uint32_t>(length));
  writeBigEndian(bytes + kWidthOffset, static_cast<uint32_t>(width));
  writeBigEndian(bytes + kHeightOffset, static_cast<uint32_t>(height));
  writeBigEndian(bytes + kDepthOffset, kBinaryStringDepth);
  writeBigEndian(bytes + kStartOffset, kHeaderBytes);
}

/// The string of an open picture; null if it would leave 31 bits or there is no
/// memory.
template <typename Path>
HostString binaryStringOf(const PictureReader<Path>& reader) {
  const int64_t rowBytes = int64_t{kTripletBytes} * reader.width();
  // Two steps: the product of three 32-bit numbers could leave 64 bits.
  if (rowBytes > INT32_MAX || rowBytes * reader.height() > INT32_MAX - kHeaderBytes) return nullptr;
  const auto length = static_cast<int32_t>(rowBytes * reader.height() + kHeaderBytes);
  const Buffer<uint8_t> bytes(length);
  if (!bytes) return nullptr;
  writeHeader(bytes.data(), reader.width(), reader.height(), length);
  for (int32_t y = 0; y < reader.height(); ++y) {
    uint8_t* row = bytes.data() + kHeaderBytes + rowBytes * y;
    QRZ_KERNEL_CALL(writeTriplets<typename Path::Format>(row, reader.width(), reader.row(y)));
  }
  return MakeHostString(reinterpret_cast<const char*>(bytes.data()), length, kRawBytes);
}

}  // namespace

/// A new string with the picture's size and its red, green and blue: a header
/// of 40 bytes (see binary_string.h) and three bytes a pixel, raw. Nil if the
/// picture cannot be read, the string would be longer than 2,147,483,647 bytes
/// or there is no memory.
HostString PicturetoBinaryStringQRZ(HostPicture p) {
  HostString result = nullptr;
  readPictures(Pictures<1>{p},
               [&](auto /*path*/, const auto& readers) { result = binaryStringOf(readers[0]); });
  return result;
}

}  // namespace qrz
