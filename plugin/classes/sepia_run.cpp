// PictureSepiaQRZ.Run: a region of the source picture toned.

#include <algorithm>

#include "plugin/classes/sepia.h"
#include "plugin/pixels/convert.h"
#include "plugin/pixels/filter.h"

namespace qrz {
namespace {

/// Weights in 1024ths, whole numbers of a type that holds 255 times all three
/// together, and offsets in channel values.
template <typename Weight, typename Offset>
struct SepiaTone {
  Weight weightRed, weightGreen, weightBlue;
  Offset red, green, blue;
};
/// Single precision is exact up to 2^24, and quick at every CPU level.
using NarrowTone = SepiaTone<float, int32_t>;
using WideTone = SepiaTone<int64_t, int64_t>;

}  // namespace
}  // namespace qrz

#define QRZ_KERNEL "plugin/kernels/sepia.inc"
#include "plugin/kernels/for_each_level.h"

namespace qrz {
namespace {

template <typename Tone>
struct SepiaRow {
  Tone tone;

  template <typename Format>
  void row(PixelWord* destination, int32_t count, const PixelWord* source) const {
    QRZ_KERNEL_CALL(sepiaRow<Format>(destination, count, source, tone));
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

int64_t magnitude(int64_t value) { return value < 0 ? -value : value; }

/// Whether 255 times the weights stays below 2^24.
bool isNarrow(const WideTone& tone) {
  return magnitude(tone.weightRed) + magnitude(tone.weightGreen) + magnitude(tone.weightBlue) <=
         ((1 << 24) - 1) / 255;
}

/// The same with small weights. The luminance then stays inside ±16,384: an
/// offset far beyond that gives 0 or 255 whatever the pixel, and so does the limit.
NarrowTone narrow(const WideTone& tone) {
  const auto offset = [](int64_t value) {
    constexpr int64_t kLimit = 4'194'304;
    return static_cast<int32_t>(std::clamp(value, -kLimit, kLimit));
  };
  return {static_cast<float>(tone.weightRed),
          static_cast<float>(tone.weightGreen),
          static_cast<float>(tone.weightBlue),
          offset(tone.red),
          offset(tone.green),
          offset(tone.blue)};
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
    FilterInstance::drop(filter.DestinationPicture);
    filter.DestinationPicture = made;
  };
  const auto run = [&](const auto& operation) {
    return filterPicture(filter.SourcePicture, filter.region(), operation, store);
  };
  const WideTone tone = toneOf(sepia);
  HostPicture made =
      isNarrow(tone) ? run(SepiaRow<NarrowTone>{narrow(tone)}) : run(SepiaRow<WideTone>{tone});
  return made != nullptr ? 1 : 0;
}

}  // namespace qrz
