// ReplaceRedChannelQRZ, ReplaceGreenChannelQRZ, ReplaceBlueChannelQRZ: a
// picture with one channel taken from another.

#include "plugin/binding/exceptions.h"
#include "plugin/kernels/channels.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct ReplaceChannelRow {
  HostColor channel;  ///< 255 in the channel that is replaced

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source,
           const PixelWord* other) const {
    QRZ_KERNEL_CALL(
        replaceChannelRow<Format>(destination, count, source, other, Format::ofColor(channel)));
  }
};

/// The channel picture may be larger; what lies beyond the picture is ignored.
struct NotLargerThanTheOther {
  template <typename Readers>
  bool operator()(const Readers& readers) const {
    return readers[0].width() <= readers[1].width() && readers[0].height() <= readers[1].height();
  }
};

HostPicture replaceChannel(HostPicture picture, HostPicture channelPicture, HostColor channel) {
  if (channelPicture == nullptr) {
    RaiseNilObjectException("The channel picture is nil.");
    return nullptr;
  }
  return filterPictures(Pictures<2>{picture, channelPicture}, NotLargerThanTheOther(), wholePicture,
                        ReplaceChannelRow{channel});
}

}  // namespace

/// A new picture of the picture's size with the red of RedChannel and its own
/// green and blue; pads 0. Nil if either cannot be read, RedChannel is smaller
/// in either direction, or no new picture can be made. A nil RedChannel raises a
/// NilObjectException.
HostPicture ReplaceRedChannelQRZ(HostPicture picture, HostPicture RedChannel) {
  return replaceChannel(picture, RedChannel, 0xFF0000);
}

/// The same for green.
HostPicture ReplaceGreenChannelQRZ(HostPicture picture, HostPicture GreenChannel) {
  return replaceChannel(picture, GreenChannel, 0x00FF00);
}

/// The same for blue.
HostPicture ReplaceBlueChannelQRZ(HostPicture picture, HostPicture BlueChannel) {
  return replaceChannel(picture, BlueChannel, 0x0000FF);
}

}  // namespace qrz
