// Brightness, contrast and the custom line on every representation.

#include <cmath>

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

const Operation operations[] = {
    {"ChangeBrightnessLinearQRZ(x as double) as picture", 1, linear},
    {"ChangeBrightnessAbsoluteQRZ(x as double) as picture", 1, absolute},
    {"ChangeContrastQRZ(x as double) as picture", 1, contrast},
    {"ChangeCustomQRZ(a as double, b as double) as picture", 2, custom},
    {"ChangeBrightnessLinearQRZ(r as double, g as double, b as double) as picture", 3, linear},
    {"ChangeBrightnessAbsoluteQRZ(r as double, g as double, b as double) as picture", 3, absolute},
    {"ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture", 3, contrast},
};

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
  const auto picture = everyLevel();
  const auto pick = [&] { return hostileNumbers[random() % hostileNumbers.size()]; };
  for (const Operation& operation : operations) {
    for (const double value : hostileNumbers) {
      expectMapped(operation, picture, Arguments(operation.count, value));
    }
    for (int i = 0; i < 300; ++i) {
      Arguments x = randomArguments(operation.count);
      for (double& value : x) value = random() % 2 == 0 ? pick() : value;
      expectMapped(operation, picture, x);
    }
  }
}

}  // namespace
}  // namespace host
