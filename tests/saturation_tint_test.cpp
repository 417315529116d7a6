// ChangeSaturationQRZ and TintPictureQRZ on every representation.

#include <algorithm>
#include <climits>

#include "tests/support/checks.h"

namespace host {
namespace {

constexpr const char* kSaturation = "ChangeSaturationQRZ(Amount as integer) as picture";
constexpr const char* kTint =
    "TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture";

uint32_t red(uint32_t rgb) { return rgb >> 16 & 0xFF; }
uint32_t green(uint32_t rgb) { return rgb >> 8 & 0xFF; }
uint32_t blue(uint32_t rgb) { return rgb & 0xFF; }

uint32_t saturated(uint32_t rgb, int32_t amount) {
  const int64_t k = static_cast<int64_t>(amount) + 255;
  const int64_t mean = (red(rgb) + green(rgb) + blue(rgb)) / 3;
  uint32_t result = 0;
  for (const int64_t level : {red(rgb), green(rgb), blue(rgb)}) {
    const int64_t moved = mean + (level - mean) * k / 255;
    result = result << 8 | static_cast<uint32_t>(std::clamp<int64_t>(moved, 0, 255));
  }
  return result;
}

uint32_t tinted(uint32_t rgb, uint32_t greyBase, uint32_t sepiaBase) {
  const double level =
      (red(rgb) * (red(greyBase) / 255.0) + green(rgb) * (green(greyBase) / 255.0)) +
      blue(rgb) * (blue(greyBase) / 255.0);
  uint32_t result = 0;
  for (const uint32_t tint : {red(sepiaBase), green(sepiaBase), blue(sepiaBase)}) {
    const double value = tint / 255.0 * level;
    result = result << 8 | (value > 255 ? 255 : static_cast<uint32_t>(value));
  }
  return result;
}

class SaturationTintTest : public RepresentationTest {
 protected:
  static Ref<Picture> saturate(const Ref<Picture>& source, int32_t amount) {
    return filter(kSaturation, source, {amount});
  }
  static Ref<Picture> tint(const Ref<Picture>& source, uint32_t greyBase, uint32_t sepiaBase) {
    return pictureOf(
        call("", kTint, nullptr, {objectValue(source), Color{greyBase}, Color{sepiaBase}}));
  }
  static void expectSaturated(const Ref<Picture>& source, int32_t amount) {
    const Unchanged unchanged(source);
    const auto map = [=](uint32_t rgb) { return saturated(rgb, amount); };
    EXPECT_TRUE(isNewPicture(saturate(source, amount), source->width(), mappedPixels(*source, map)))
        << "by " << amount;
  }
  static void expectTinted(const Ref<Picture>& source, uint32_t greyBase, uint32_t sepiaBase) {
    const Unchanged unchanged(source);
    const auto map = [=](uint32_t rgb) { return tinted(rgb, greyBase, sepiaBase); };
    EXPECT_TRUE(isNewPicture(tint(source, greyBase, sepiaBase), source->width(),
                             mappedPixels(*source, map)))
        << std::hex << greyBase << ", " << sepiaBase;
  }
};
QRZ_ALL_REPRESENTATIONS(SaturationTintTest);

TEST_P(SaturationTintTest, SaturationByAnyAmountOnAllWidths) {
  std::uniform_int_distribution<int32_t> sensible(-600, 600);
  for (int32_t width = 1; width <= 70; ++width) {
    const auto source = randomPicture(width, 1 + width % 5);
    expectSaturated(source, sensible(random));
    expectSaturated(source, static_cast<int32_t>(random()));
  }
  const auto source = randomPicture(97, 41);
  for (const int32_t amount :
       {INT_MIN, INT_MIN + 1, -12632512, -12632511,     -65536,        -33024,
        -32768,  -511,        -256,      -255,          -254,          -1,
        0,       1,           255,       32512,         32513,         32767,
        65535,   12632001,    12632002,  INT_MAX - 255, INT_MAX - 254, INT_MAX}) {
    expectSaturated(source, amount);
  }
  for (int32_t amount = -520; amount <= 520; amount += 7) expectSaturated(source, amount);
}

TEST_P(SaturationTintTest, TintWithAnyColoursOnAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    expectTinted(randomPicture(width, 1 + width % 5), random(), random());
  }
  const auto source = randomPicture(97, 41);
  const uint32_t bases[] = {0,        0xFFFFFF, 0x555555, 0x4C961D,
                            0xFF0000, 0x00FF00, 0x0000FF, 0x010101};
  for (const uint32_t greyBase : bases) {
    for (const uint32_t sepiaBase : bases) expectTinted(source, greyBase, sepiaBase);
  }
  expectTinted(source, 0xFF4C961D, 0xABFFE0B0);
}

}  // namespace
}  // namespace host
