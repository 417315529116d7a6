// InvertQRZ and InvertGrayQRZ on every representation.

#include <climits>

#include "tests/support/plugin_test.h"

namespace host {
namespace {

struct Operation {
  const char* whole;
  const char* rectangle;
  uint32_t (*map)(uint32_t rgb);
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
    {"InvertQRZ as picture",
     "InvertQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
     invert},
    {"InvertGrayQRZ as picture",
     "InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as picture",
     invertGray},
};

/// The rectangle rule, pixel by pixel and in wide arithmetic.
bool inRectangle(const Picture& picture, const std::vector<int32_t>& r, int32_t x, int32_t y) {
  const int64_t width = r[2] < 0 ? picture.width() : r[2];
  const int64_t height = r[3] < 0 ? picture.height() : r[3];
  return x >= r[0] && x < r[0] + width && y >= r[1] && y < r[1] + height;
}

std::vector<Value> values(const std::vector<int32_t>& integers) {
  return {integers.begin(), integers.end()};
}

class InvertTest : public RepresentationTest {
 protected:
  void expectFiltered(const Operation& operation, const Ref<Picture>& source,
                      const std::vector<int32_t>& rectangle) {
    const auto before = source->pixels();
    const auto result = rectangle.empty() ? filter(operation.whole, source)
                                          : filter(operation.rectangle, source, values(rectangle));
    ASSERT_TRUE(result);
    const auto inside = [&](int32_t x, int32_t y) {
      return rectangle.empty() || inRectangle(*source, rectangle, x, y);
    };
    EXPECT_TRUE(samePixels(*result, expectedPixels(*source, inside, operation.map)))
        << operation.whole << testing::PrintToString(rectangle);
    EXPECT_TRUE(samePixels(*source, before)) << "the source was changed";
    EXPECT_EQ(source->references(), 1);
    EXPECT_EQ(result->references(), 1);
    EXPECT_EQ(source->locks() + result->locks(), 0);
  }
};
QRZ_ALL_REPRESENTATIONS(InvertTest);

TEST_P(InvertTest, WholePicturesOfAllWidths) {
  for (const Operation& operation : operations) {
    for (int32_t width = 1; width <= 70; ++width) {
      expectFiltered(operation, randomPicture(width, 1 + width % 5), {});
    }
  }
}

TEST_P(InvertTest, RectanglesInsideAcrossAndOutside) {
  const auto picture = randomPicture(37, 11);
  const std::vector<int32_t> edges = {INT_MIN, -40, -5, -1, 0, 1, 10, 36, 37, 38, INT_MAX};
  std::uniform_int_distribution<size_t> pick(0, edges.size() - 1);
  for (const Operation& operation : operations) {
    for (int i = 0; i < 300; ++i) {
      expectFiltered(
          operation, picture,
          {edges[pick(random)], edges[pick(random)], edges[pick(random)], edges[pick(random)]});
    }
    expectFiltered(operation, picture, {0, 0, -1, -1});
    expectFiltered(operation, picture, {INT_MAX, INT_MAX, INT_MAX, INT_MAX});
    expectFiltered(operation, picture, {INT_MIN, INT_MIN, INT_MAX, INT_MAX});
    expectFiltered(operation, picture, {1, 1, INT_MAX, INT_MAX});
  }
}

TEST_P(InvertTest, TwiceGivesTheColoursBack) {
  const auto source = randomPicture(66, 9);
  const auto once = filter(operations[0].whole, source);
  ASSERT_TRUE(once);
  const auto twice = filter(operations[0].whole, once);
  ASSERT_TRUE(twice);
  const auto always = [](int32_t, int32_t) { return true; };
  const auto same = [](uint32_t rgb) { return rgb; };
  EXPECT_TRUE(samePixels(*twice, expectedPixels(*source, always, same)));
}

TEST_P(InvertTest, NilGivesNil) {
  for (const Operation& operation : operations) {
    EXPECT_FALSE(filter(operation.whole, nullptr));
    EXPECT_FALSE(filter(operation.rectangle, nullptr, values({0, 0, 1, 1})));
  }
}

}  // namespace
}  // namespace host
