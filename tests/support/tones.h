// The members that take a straight line through each channel, as plain numbers.
#pragma once

#include <cmath>
#include <cstdint>
#include <vector>

namespace host {

/// What `level(value, channel)` makes of the channels, 0 red to 2 blue.
template <typename Level>
uint32_t eachChannel(uint32_t rgb, const Level& level) {
  uint32_t result = 0;
  for (size_t i = 0; i < 3; ++i) {
    const auto value = static_cast<int32_t>(rgb >> (16 - 8 * i) & 0xFF);
    result = result << 8 | static_cast<uint32_t>(level(value, i));
  }
  return result;
}

inline uint32_t clamped(double t) {
  if (t > 255) return 255;
  return t > 0 ? static_cast<uint32_t>(t) : 0;
}

inline uint32_t lowByte(double t) {
  if (!std::isfinite(t)) return 0;
  return static_cast<uint32_t>(static_cast<int32_t>(std::fmod(std::trunc(t), 256))) & 0xFF;
}

/// What becomes of level v of a channel.
struct Tone {
  const char* declaration;
  size_t count;
  double (*level)(double v, double x, double last);
  bool wraps = false;

  /// Of a pixel, with all the member's arguments.
  [[nodiscard]] uint32_t operator()(uint32_t rgb, const std::vector<double>& x) const {
    return eachChannel(rgb, [&](double v, size_t channel) {
      const double t = level(v, x[x.size() == 3 ? channel : 0], x.back());
      return wraps ? lowByte(t) : clamped(t);
    });
  }
};

inline double linear(double v, double x, double /*last*/) {
  const double factor = (0 > x ? x + 255 : 255 - x) / 255;
  return v * factor + (0 > x ? 0 : x);
}
inline double absolute(double v, double x, double /*last*/) { return v + x; }
inline double contrast(double v, double x, double /*last*/) { return (v - 127) * (1 + x) + 127; }
inline double custom(double v, double x, double last) { return v * x + last; }

inline const Tone tones[] = {
    {"ChangeBrightnessLinearQRZ(x as double) as picture", 1, linear, true},
    {"ChangeBrightnessAbsoluteQRZ(x as double) as picture", 1, absolute},
    {"ChangeContrastQRZ(x as double) as picture", 1, contrast},
    {"ChangeCustomQRZ(a as double, b as double) as picture", 2, custom},
    {"ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture", 3, linear,
     true},
    {"ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture", 3, absolute},
    {"ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture", 3, contrast},
};

}  // namespace host
