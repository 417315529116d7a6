// ChangeContrastQRZ: a slope about the middle grey 127.

#include "plugin/adjust/tone_curve.h"

namespace qrz {
namespace {

struct Contrast {
  double slope;

  uint32_t operator()(double value) const { return clampedByte((value - 127) * slope + 127); }
  [[nodiscard]] StraightTone line() const { return {slope, 127 - 127 * slope}; }
};

Contrast contrast(double x) { return {1 + x}; }

}  // namespace

/// A new picture of the picture's size with the distance of each channel from
/// 127 multiplied by 1 + x, cut to 0 to 255 and truncated; pads 0. 0 changes
/// nothing, -1 gives 127 everywhere, less inverts. Any number will do: what
/// becomes infinite gives 0 or 255, not-a-number 0. Nil if the picture cannot be
/// read or no new one can be made.
HostPicture ChangeContrastChannelsQRZ(HostPicture picture, double xr, double xg, double xb) {
  return mapTones(picture, contrast(xr), contrast(xg), contrast(xb));
}

/// The same value for all three channels.
HostPicture ChangeContrastQRZ(HostPicture picture, double x) {
  return ChangeContrastChannelsQRZ(picture, x, x, x);
}

}  // namespace qrz
