// ChangeBrightnessLinearQRZ: a fade of every channel towards white or black.

#include <cstring>

#include "plugin/adjust/tone_curve.h"

namespace qrz {
namespace {

/// The low eight bits of a number truncated toward zero, in two's complement,
/// for numbers of every size; 0 for what is not finite.
uint32_t lowByteOfTruncated(double value) {
  uint64_t bits = 0;
  memcpy(&bits, &value, sizeof bits);
  constexpr int32_t kFractionBits = 52;
  constexpr int32_t kBias = 1023 + kFractionBits;
  // The number is significand × 2^exponent.
  const int32_t exponent = static_cast<int32_t>((bits >> kFractionBits) & 0x7FF) - kBias;
  const uint64_t hidden = uint64_t{1} << kFractionBits;
  const uint64_t significand = (bits & (hidden - 1)) | hidden;
  // Beyond eight bits to the left only zeros are left (or infinity is meant);
  // beyond 52 to the right there is no whole part.
  if (exponent >= 8 || exponent < -kFractionBits) return 0;
  const uint64_t whole = exponent >= 0 ? significand << exponent : significand >> -exponent;
  const auto low = static_cast<uint32_t>(whole);
  return (bits >> 63 != 0 ? 0 - low : low) & 0xFF;
}

struct LinearBrightness {
  double factor, offset;

  uint32_t operator()(double value) const { return lowByteOfTruncated(value * factor + offset); }
  [[nodiscard]] StraightTone line() const { return {factor, offset}; }
};

LinearBrightness fade(double x) {
  if (0 > x) return {(x + 255) / 255, 0};
  return {(255 - x) / 255, x};
}

}  // namespace

/// A new picture of the picture's size with each channel moved towards 255 by
/// the fraction x / 255 of its distance (x from 0 to 255) or scaled towards 0 by
/// |x| / 255 (x from -255 to 0), truncated; pads 0. Numbers beyond these ranges
/// wrap: the low eight bits of the exact whole number are kept, and where it is
/// infinite or not a number, 0. Nil if the picture cannot be read or no new one
/// can be made.
HostPicture ChangeBrightnessLinearChannelsQRZ(HostPicture picture, double r, double g, double b) {
  return mapTones(picture, fade(r), fade(g), fade(b));
}

/// The same value for all three channels.
HostPicture ChangeBrightnessLinearQRZ(HostPicture picture, double x) {
  return ChangeBrightnessLinearChannelsQRZ(picture, x, x, x);
}

}  // namespace qrz
