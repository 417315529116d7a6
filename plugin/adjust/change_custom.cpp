// ChangeCustomQRZ: every channel through a straight line.

#include "plugin/adjust/tone_curve.h"

namespace qrz {
namespace {

struct StraightLine {
  double slope, offset;

  uint32_t operator()(double value) const { return clampedByte(value * slope + offset); }
  [[nodiscard]] StraightTone line() const { return {slope, offset}; }
};

}  // namespace

/// A new picture of the picture's size with each channel v replaced by
/// a × v + b, cut to 0 to 255 and truncated; pads 0. Any number will do: what
/// becomes infinite gives 0 or 255, not-a-number 0. Nil if the picture cannot be
/// read or no new one can be made.
HostPicture ChangeCustomQRZ(HostPicture picture, double a, double b) {
  const StraightLine line{a, b};
  return mapTones(picture, line, line, line);
}

}  // namespace qrz
