// ChangeBrightnessAbsoluteQRZ: an offset added to every channel.

#include "plugin/adjust/tone_curve.h"

namespace qrz {
namespace {

struct AbsoluteBrightness {
  double offset;

  uint32_t operator()(double value) const { return clampedByte(value + offset); }
  [[nodiscard]] StraightTone line() const { return {1, offset}; }
};

}  // namespace

/// A new picture of the picture's size with r, g and b added to its channels,
/// cut to 0 to 255 and truncated; pads 0. Any number will do: an infinite one
/// gives 0 or 255, not-a-number 0. Nil if the picture cannot be read or no new
/// one can be made.
HostPicture ChangeBrightnessAbsoluteChannelsQRZ(HostPicture picture, double r, double g, double b) {
  return mapTones(picture, AbsoluteBrightness{r}, AbsoluteBrightness{g}, AbsoluteBrightness{b});
}

/// The same value for all three channels.
HostPicture ChangeBrightnessAbsoluteQRZ(HostPicture picture, double x) {
  return ChangeBrightnessAbsoluteChannelsQRZ(picture, x, x, x);
}

}  // namespace qrz
