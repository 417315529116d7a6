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

TEST_P(ColorTestsTest, OnePixelInPicturesOfAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    const int32_t height = 1 + width % 4;
    for (const ColorTest& test : colorTests) {
      const auto picture = plainPicture(width, height, test.color);
      EXPECT_TRUE(passes(test, picture)) << width;
      const auto x = static_cast<int32_t>(random() % static_cast<uint32_t>(width));
      const auto y = static_cast<int32_t>(random() % static_cast<uint32_t>(height));
      picture->fill(x, y, 1, 1, test.color ^ 0x800000U >> 8 * (random() % 3));
      EXPECT_FALSE(passes(test, picture)) << width;
      expectAsPixels(picture, {x, y, 1, 1});
      expectAsPixels(picture, {x + 1, 0, -1, -1});
      expectAsPixels(picture, {0, 0, x, -1});
      expectAsPixels(picture, {0, y + 1, -1, -1});
      expectAsPixels(picture, {-1, -1, width, y + 1});
    }
  }
}

TEST_P(ColorTestsTest, RectanglesInsideAcrossAndOutside) {
  for (int i = 0; i < 40; ++i) {
    const uint32_t color = colorTests[i % 2].color;
    const auto picture = plainPicture(23 + i, 11, color);
    picture->fill(5 + i, i % 11, 2, 1, color ^ 0x108010);
    for (int k = 0; k < 20; ++k) expectAsPixels(picture, randomRectangle(random, *picture));
  }
}

TEST_P(ColorTestsTest, EveryBitOfAColourCounts) {
  for (const ColorTest& test : colorTests) {
    for (int bit = 0; bit < 24; ++bit) {
      const auto picture = plainPicture(9, 2, test.color);
      picture->fill(8, 1, 1, 1, test.color ^ 1U << bit);
      expectAsPixels(picture, {0, 0, -1, -1});
    }
  }
}

TEST_P(ColorTestsTest, NoPixelPassesNilFails) {
  const auto picture = plainPicture(7, 5, 0x123456);
  for (const ColorTest& test : colorTests) {
    for (const Rectangle& r :
         {Rectangle{0, 0, 0, -1}, Rectangle{0, 0, -1, 0}, Rectangle{7, 0, -1, -1},
          Rectangle{0, 5, 3, 3}, Rectangle{-7, 0, -1, -1}, Rectangle{0, -9, 4, 9}}) {
      EXPECT_TRUE(passes(test, picture, r)) << testing::PrintToString(r);
    }
    EXPECT_FALSE(passes(test, nullptr));
    EXPECT_FALSE(passes(test, nullptr, {0, 0, 0, 0}));
  }
}

TEST_P(ColorTestsTest, FailingCallsMakeItFalse) {
  const auto picture = plainPicture(6, 3, 0xFFFFFF);
  expectNothingLeftByFailures([&] {
    const Unchanged unchanged(picture);
    // A picture that could not be drawn into its copy is as white as a new one.
    passes(colorTests[0], picture);
    EXPECT_FALSE(passes(colorTests[1], picture));
  });
  EXPECT_TRUE(passes(colorTests[0], picture));
}

using ColorTestCallsTest = PluginTest;

TEST_F(ColorTestCallsTest, OneReaderAndNothingElse) {
  const auto picture = Picture::create(Storage::GWorld, 4, 4);
  picture->fill(0, 0, 1, 1, 0);
  for (const ColorTest& test : colorTests) {
    EXPECT_EQ(callsDuring([&] { call("Picture", test.whole(), picture.get()); }),
              joined({openGWorld, closeGWorld}));
  }
}

TEST_F(ColorTestCallsTest, PictureThatCannotBeReadIsNeither) {
  runtime().settings.newPictures = Storage::Context;
  const auto picture = Picture::create(Storage::Context, 4, 4);
  for (const ColorTest& test : colorTests) {
    EXPECT_EQ(call("Picture", test.whole(), picture.get()), Value{false});
    EXPECT_EQ(call("Picture", test.rectangle(), picture.get(), values({0, 0, 0, 0})), Value{false});
  }
}

}  // namespace
}  // namespace host
