// isWhiteQRZ and isBlackQRZ on every representation.

#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"
#include "tests/support/rectangle.h"

namespace host {
namespace {

struct ColorTest {
  std::string name;
  uint32_t color;

  [[nodiscard]] std::string whole() const { return name + " as boolean"; }
  [[nodiscard]] std::string rectangle() const { return name + rectangleParameters + " as boolean"; }
};

const ColorTest colorTests[] = {{"isWhiteQRZ", 0xFFFFFF}, {"isBlackQRZ", 0x000000}};

class ColorTestsTest : public RepresentationTest {
 protected:
  static bool passes(const ColorTest& test, const Ref<Picture>& picture) {
    return std::get<bool>(call("Picture", test.whole(), picture.get()));
  }
  static bool passes(const ColorTest& test, const Ref<Picture>& picture, const Rectangle& r) {
    return std::get<bool>(call("Picture", test.rectangle(), picture.get(), values(r)));
  }
  /// Both tests against every pixel that the rectangle contains.
  static void expectAsPixels(const Ref<Picture>& picture, const Rectangle& r) {
    const Unchanged unchanged(picture);
    for (const ColorTest& test : colorTests) {
      bool expected = true;
      for (int32_t y = 0; y < picture->height(); ++y) {
        for (int32_t x = 0; x < picture->width(); ++x) {
          if (contains(r, *picture, x, y)) expected &= picture->pixel(x, y) == test.color;
        }
      }
      EXPECT_EQ(passes(test, picture, r), expected) << test.name << testing::PrintToString(r);
    }
  }
  /// One colour, with any pads.
  Ref<Picture> plainPicture(int32_t width, int32_t height, uint32_t color) {
    return drawnPicture(width, height, [&](int32_t, int32_t) {
      return (static_cast<uint32_t>(random()) & 0xFF000000) | color;
    });
  }
};
QRZ_ALL_REPRESENTATIONS(ColorTestsTest);

TEST_P(ColorTestsTest, RectanglesInsideAcrossAndOutside) {
  for (int i = 0; i < 40; ++i) {
    const ColorTest& test = colorTests[i % 2];
    const auto picture = plainPicture(23 + i, 11, test.color);
    EXPECT_TRUE(passes(test, picture));
    const int32_t x = 5 + i / 2;
    const int32_t y = i % 11;
    picture->fill(x, y, 2, 1, test.color ^ (i < 24 ? 1U << i : 0x108010U));
    expectAsPixels(picture, wholePicture);
    EXPECT_EQ(passes(test, picture), passes(test, picture, wholePicture));
    for (int k = 0; k < 20; ++k) expectAsPixels(picture, randomRectangle(random, *picture));
    // Up to the coloured pixels, and with one of them.
    for (const Rectangle& r :
         {Rectangle{x + 2, 0, -1, -1}, Rectangle{0, 0, x, -1}, Rectangle{0, y + 1, -1, -1},
          Rectangle{-1, -1, 90, y + 1}, Rectangle{x + 1, 0, 1, -1}, Rectangle{0, y, x + 1, 1}}) {
      expectAsPixels(picture, r);
    }
  }
}

TEST_P(ColorTestsTest, NilFails) {
  for (const ColorTest& test : colorTests) {
    EXPECT_FALSE(passes(test, nullptr));
    EXPECT_FALSE(passes(test, nullptr, {0, 0, 0, 0}));
  }
}

using ColorTestCallsTest = PluginTest;

TEST_F(ColorTestCallsTest, OneReaderAndNothingElse) {
  const auto picture = Picture::create(Storage::GWorld, 4, 4);
  for (const ColorTest& test : colorTests) {
    EXPECT_EQ(callsDuring([&] { call("Picture", test.whole(), picture.get()); }),
              joined({openGWorld, closeGWorld}));
  }
}

}  // namespace
}  // namespace host
