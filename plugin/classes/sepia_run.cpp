// PictureSepiaQRZ.Run: a region of the source picture toned.

#include <algorithm>

#include "plugin/classes/sepia.h"
#include "plugin/kernels/sepia.h"
#include "plugin/pixels/convert.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

struct SepiaRow {
  NarrowTone tone;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_ROW_KERNEL_CALL(count, sepiaRow<Format>(destination, count, source, tone));
  }
};

struct WideSepiaRow {
  WideTone tone;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(wideSepiaRow<Format>(destination, count, source, tone));
  }
};

WideTone toneOf(const PictureSepia& sepia) {
  return {saturatedInteger(sepia.FactorRed * 1024.0),
          saturatedInteger(sepia.FactorGreen * 1024.0),
          saturatedInteger(sepia.FactorBlue * 1024.0),
          sepia.SepiaRed,
          sepia.SepiaGreen,
          sepia.SepiaBlue};
}

/// Whether 16 bits hold the weights.
bool isNarrow(const WideTone& tone) {
  const auto fits = [](int64_t weight) { return weight >= INT16_MIN && weight <= INT16_MAX; };
  return fits(tone.weightRed) && fits(tone.weightGreen) && fits(tone.weightBlue);
}

/// The same with small weights. The luminance then stays inside ±24,480: an
/// offset far beyond that gives 0 or 255 whatever the pixel, and so does the limit.
NarrowTone narrow(const WideTone& tone) {
  const auto number = [](int64_t value) {
    return static_cast<int16_t>(std::clamp<int64_t>(value, INT16_MIN, INT16_MAX));
  };
  return {number(tone.weightRed), number(tone.weightGreen), number(tone.weightBlue),
          number(tone.red),       number(tone.green),       number(tone.blue)};
}

}  // namespace

/// Tones the region MinX, MinY, MaxX, MaxY of SourcePicture into a new picture
/// of the source's size, which becomes DestinationPicture; an earlier one is
/// released. Each channel becomes the luminance, a weighted sum of the pixel's
/// channels in 1024ths, plus the channel's offset, cut to 0 to 255; pads 0.
/// Pixels outside the region are not written. A region that starts left of or
/// above the picture starts at the picture's edge. Weights beyond 32 bits in
/// 1024ths count as the nearest number inside, not-a-number as 0; the sums are
/// exact whatever weights and offsets are. 1 if there is a new picture, otherwise
/// 0, and DestinationPicture stays.
int32_t RunSepiaQRZ(HostObject instance) {
  auto& sepia = instanceData<PictureSepia>(sepiaClass, instance);
  FilterInstance& filter = sepia.filter;
  if (filter.SourcePicture == nullptr) return 0;
  const auto store = [&filter](HostPicture made) {
    FilterInstance::replace(filter.DestinationPicture, made);
  };
  const auto run = [&](const auto& operation) {
    return filterPicture(filter.SourcePicture, filter.region(), operation, store);
  };
  const WideTone tone = toneOf(sepia);
  HostPicture made = isNarrow(tone) ? run(SepiaRow{narrow(tone)}) : run(WideSepiaRow{tone});
  return made != nullptr ? 1 : 0;
}

}  // namespace qrz
