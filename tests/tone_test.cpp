// Brightness, contrast and the custom line on every representation.

#include <cmath>
#include <limits>

#include "tests/support/checks.h"

namespace host {
namespace {

using Arguments = std::vector<double>;

/// One operation: what becomes of level v of a channel (0 red … 2 blue).
struct Operation {
  const char* declaration;
  size_t count;
  uint32_t (*level)(double v, const Arguments& x, size_t channel);
};

double of(const Arguments& x, size_t channel) { return x.size() == 1 ? x[0] : x[channel]; }

uint32_t clamped(double t) {
  if (t > 255) return 255;
  return t > 0 ? static_cast<uint32_t>(t) : 0;
}

uint32_t lowByte(double t) {
  if (!std::isfinite(t)) return 0;
  return static_cast<uint32_t>(static_cast<int32_t>(std::fmod(std::trunc(t), 256))) & 0xFF;
}

uint32_t linear(double v, const Arguments& arguments, size_t channel) {
  const double x = of(arguments, channel);
  const double factor = (0 > x ? x + 255 : 255 - x) / 255;
  return lowByte(v * factor + (0 > x ? 0 : x));
}

uint32_t absolute(double v, const Arguments& x, size_t channel) {
  return clamped(v + of(x, channel));
}

uint32_t contrast(double v, const Arguments& x, size_t channel) {
  return clamped((v - 127) * (1 + of(x, channel)) + 127);
}

uint32_t custom(double v, const Arguments& x, size_t /*channel*/) {
  return clamped(v * x[0] + x[1]);
}

const Operation kLinear = {"ChangeBrightnessLinearQRZ(x as double) as picture", 1, linear};
const Operation kAbsolute = {"ChangeBrightnessAbsoluteQRZ(x as double) as picture", 1, absolute};
const Operation kContrast = {"ChangeContrastQRZ(x as double) as picture", 1, contrast};
const Operation kCustom = {"ChangeCustomQRZ(a as double, b as double) as picture", 2, custom};
const Operation kLinear3 = {
    "ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture", 3, linear};
const Operation kAbsolute3 = {
    "ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture", 3, absolute};
const Operation kContrast3 = {
    "ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture", 3, contrast};

const Operation operations[] = {kLinear,  kAbsolute,  kContrast, kCustom,
                                kLinear3, kAbsolute3, kContrast3};

class ToneTest : public RepresentationTest {
 protected:
  static Ref<Picture> run(const Operation& operation, const Ref<Picture>& source,
                          const Arguments& x) {
    return filter(operation.declaration, source, {x.begin(), x.end()});
  }
  static void expectMapped(const Operation& operation, const Ref<Picture>& source,
                           const Arguments& x) {
    const Unchanged unchanged(source);
    const auto map = [&](uint32_t rgb) {
      return operation.level(rgb >> 16, x, 0) << 16 | operation.level(rgb >> 8 & 0xFF, x, 1) << 8 |
             operation.level(rgb & 0xFF, x, 2);
    };
    EXPECT_TRUE(
        isNewPicture(run(operation, source, x), source->width(), mappedPixels(*source, map)))
        << operation.declaration << testing::PrintToString(x);
  }
  /// Arguments of all magnitudes, most of them sensible.
  Arguments randomArguments(size_t count) {
    const double scales[] = {1, 4, 255, 255, 1e3, 1e12};
    std::uniform_real_distribution<double> part(-1, 1);
    Arguments x(count);
    for (double& value : x) value = scales[random() % 6] * part(random);
    return x;
  }
  /// Every level in every channel, as far as the depth can hold them.
  Ref<Picture> everyLevel() {
    auto picture = emptyPicture(256, 1);
    std::vector<uint32_t> words(256);
    for (uint32_t i = 0; i < 256; ++i) words[i] = i << 16 | (255 - i) << 8 | (i * 73 & 0xFF);
    picture->setPixels(words);
    return picture;
  }
};
QRZ_ALL_REPRESENTATIONS(ToneTest);

TEST_P(ToneTest, RandomArgumentsOnAllWidths) {
  for (const Operation& operation : operations) {
    for (int32_t width = 1; width <= 70; ++width) {
      expectMapped(operation, randomPicture(width, 1 + width % 5),
                   randomArguments(operation.count));
    }
    expectMapped(operation, randomPicture(300, 200), randomArguments(operation.count));
  }
}

TEST_P(ToneTest, EveryLevelWithHostileArguments) {
  using Limits = std::numeric_limits<double>;
  const Arguments hostile = {Limits::quiet_NaN(),
                             Limits::infinity(),
                             -Limits::infinity(),
                             Limits::max(),
                             Limits::lowest(),
                             Limits::denorm_min(),
                             -0.0,
                             0.0,
                             -1.0,
                             255.0,
                             -255.0,
                             std::nextafter(255.0, 300.0),
                             2147483647.5,
                             -2147483649.0,
                             4294967301.5,
                             -4294967301.5,
                             9007199254740993.0,
                             -1e16,
                             1e18,
                             -9223372036854775808.,
                             1.8446744073709552e19,
                             1e25,
                             -1e300};
  const auto picture = everyLevel();
  const auto pick = [&] { return hostile[random() % hostile.size()]; };
  for (const Operation& operation : operations) {
    for (const double value : hostile) {
      expectMapped(operation, picture, Arguments(operation.count, value));
    }
    for (int i = 0; i < 200; ++i) {
      Arguments x = randomArguments(operation.count);
      for (double& value : x) value = random() % 2 == 0 ? pick() : value;
      expectMapped(operation, picture, x);
    }
  }
}

TEST_P(ToneTest, WorkedLevels) {
  if (GetParam().depth == 16) return;  // which cannot hold these levels
  struct Worked {
    const Operation& operation;
    Arguments x;
    std::vector<uint32_t> from, to;
  };
  const std::vector<Worked> examples = {
      {kLinear, {128}, {0, 100, 255}, {128, 177, 255}},
      {kLinear, {-100}, {0, 100, 255}, {0, 60, 155}},
      {kLinear, {300}, {0, 128, 255}, {44, 21, 255}},
      {kLinear, {255}, {0, 99, 255}, {255, 255, 255}},
      {kLinear, {-255}, {0, 99, 255}, {0, 0, 0}},
      {kLinear, {0}, {0, 99, 255}, {0, 99, 255}},
      {kContrast, {0}, {0, 99, 255}, {0, 99, 255}},
      {kContrast, {1}, {0, 100, 127, 200, 255}, {0, 73, 127, 255, 255}},
      {kContrast, {-0.5}, {0, 100, 200, 255}, {63, 113, 163, 191}},
      {kContrast, {-1}, {0, 99, 127, 255}, {127, 127, 127, 127}},
      {kContrast, {-2}, {0, 100, 255}, {254, 154, 0}},
      {kAbsolute, {10}, {250, 5}, {255, 15}},
      {kAbsolute, {-10}, {250, 5}, {240, 0}},
      {kAbsolute, {0.9}, {0, 99, 254, 255}, {0, 99, 254, 255}},
      {kCustom, {1, 0}, {0, 99, 255}, {0, 99, 255}},
      {kCustom, {-1, 255}, {0, 99, 255}, {255, 156, 0}},
  };
  for (const Worked& worked : examples) {
    const auto source = emptyPicture(static_cast<int32_t>(worked.from.size()), 1);
    std::vector<uint32_t> greys = worked.from;
    for (uint32_t& grey : greys) grey = 0x77000000 | grey * 0x010101;
    source->setPixels(greys);
    std::vector<uint32_t> expected = worked.to;
    for (uint32_t& grey : expected) grey *= 0x010101;
    EXPECT_TRUE(isNewPicture(run(worked.operation, source, worked.x), source->width(), expected))
        << worked.operation.declaration << testing::PrintToString(worked.x);
  }
}

TEST_P(ToneTest, EveryParameterBelongsToItsChannel) {
  const auto source = randomPicture(33, 3);
  const auto keep = [&](uint32_t kept, uint32_t set) {
    return mappedPixels(*source, [=](uint32_t rgb) { return (rgb & kept) | set; });
  };
  EXPECT_TRUE(isNewPicture(run(kLinear3, source, {255, 0, 0}), 33, keep(0x00FFFF, 0xFF0000)));
  EXPECT_TRUE(isNewPicture(run(kAbsolute3, source, {0, 255, 0}), 33, keep(0xFF00FF, 0x00FF00)));
  EXPECT_TRUE(isNewPicture(run(kContrast3, source, {0, 0, -1}), 33, keep(0xFFFF00, 0x00007F)));
}

}  // namespace
}  // namespace host
