// InvertQRZ and InvertGrayQRZ on every representation.

#include <optional>

#include "tests/support/checks.h"
#include "tests/support/rectangle.h"

namespace host {
namespace {

struct Operation {
  std::string name;
  uint32_t (*map)(uint32_t rgb);

  [[nodiscard]] std::string whole() const { return name + " as picture"; }
  [[nodiscard]] std::string rectangle() const { return name + rectangleParameters + " as picture"; }
};

uint32_t invert(uint32_t rgb) {
  const uint32_t red = 255 - (rgb >> 16 & 0xFF);
  const uint32_t green = 255 - (rgb >> 8 & 0xFF);
  const uint32_t blue = 255 - (rgb & 0xFF);
  return red << 16 | green << 8 | blue;
}

uint32_t invertGray(uint32_t rgb) {
  const bool isGrey = (rgb >> 16 & 0xFF) == (rgb >> 8 & 0xFF) && (rgb >> 8 & 0xFF) == (rgb & 0xFF);
  return isGrey ? invert(rgb) : rgb;
}

const Operation operations[] = {
    {"InvertQRZ", invert},
    {"InvertGrayQRZ", invertGray},
};

class InvertTest : public RepresentationTest {
 protected:
  static void expectFiltered(const Operation& operation, const Ref<Picture>& source,
                             const std::optional<Rectangle>& r = {}) {
    const Unchanged unchanged(source);
    const auto result =
        r ? filter(operation.rectangle(), source, values(*r)) : filter(operation.whole(), source);
    const auto inside = [&](int32_t x, int32_t y) { return !r || contains(*r, *source, x, y); };
    EXPECT_TRUE(
        isNewPicture(result, source->width(), expectedPixels(*source, inside, operation.map)))
        << operation.name << testing::PrintToString(r);
  }
};
QRZ_ALL_REPRESENTATIONS(InvertTest);

TEST_P(InvertTest, WholePicturesOfAllWidths) {
  for (const Operation& operation : operations) {
    for (int32_t width = 1; width <= 70; ++width) {
      expectFiltered(operation, randomPicture(width, 1 + width % 5));
    }
  }
}

TEST_P(InvertTest, RectanglesInsideAcrossAndOutside) {
  const auto picture = randomPicture(37, 11);
  for (const Operation& operation : operations) {
    for (int i = 0; i < 300; ++i) {
      expectFiltered(operation, picture, randomRectangle(random, *picture));
    }
    expectFiltered(operation, picture, Rectangle{0, 0, -1, -1});
    expectFiltered(operation, picture, Rectangle{INT_MAX, INT_MAX, INT_MAX, INT_MAX});
    expectFiltered(operation, picture, Rectangle{INT_MIN, INT_MIN, INT_MAX, INT_MAX});
    expectFiltered(operation, picture, Rectangle{1, 1, INT_MAX, INT_MAX});
  }
}

}  // namespace
}  // namespace host
