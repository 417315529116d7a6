// The masks of pictures: embedded in the pads, held by the host, and boxed
// around what is coloured.

#include <algorithm>

#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"
#include "tests/support/rectangle.h"

namespace host {
namespace {

constexpr const char* kEmbedded = "EmbeddedMaskQRZ(swap as boolean) as picture";
constexpr const char* kHasMask = "HasMaskQRZ as boolean";
constexpr const char* kExtract = "ExtractColorRectangleMaskQRZ as picture";
const std::string extractFrom =
    "ExtractColorRectangleMaskQRZ" + rectangleParameters + " as picture";

uint32_t grey(uint32_t level) { return level * 0x010101; }

// --- The embedded mask -------------------------------------------------------

class EmbeddedMaskTest : public RepresentationTest {
 protected:
  /// Not a copy that the host draws, which has no pads to speak of.
  static bool isReadInPlace() {
    return GetParam().sources == Storage::Bitmap ||
           (GetParam().sources == Storage::GWorld && GetParam().depth == 32);
  }
  static uint32_t levelRead(uint32_t word, bool swap) {
    uint32_t level = isReadInPlace() ? word >> 24 : 0;
    if (GetParam().sources == Storage::Bitmap) level &= 0x7F;
    return swap ? 255 - level : level;
  }
  static void expectRead(const Ref<Picture>& picture, bool swap) {
    const Unchanged unchanged(picture);
    const auto mask = filter(kEmbedded, picture, {swap});
    ASSERT_TRUE(mask);
    auto expected = picture->pixels();
    for (uint32_t& word : expected) word = grey(levelRead(word, swap));
    EXPECT_TRUE(samePixels(*mask, expected)) << picture->describe() << (swap ? " swapped" : "");
    EXPECT_EQ(mask->references(), 1);
  }
  /// Where the mask picture has no pixel, the pads stay.
  static void expectAssigned(const Ref<Picture>& picture, const Ref<Picture>& mask, bool swap) {
    auto expected = picture->pixels();
    if (isReadInPlace()) {
      size_t i = 0;
      for (int32_t y = 0; y < picture->height(); ++y) {
        for (int32_t x = 0; x < picture->width(); ++x, ++i) {
          if (x >= mask->width() || y >= mask->height()) continue;
          const uint32_t red = mask->pixel(x, y) >> 16;
          expected[i] = (expected[i] & 0xFFFFFF) | (swap ? 255 - red : red) << 24;
        }
      }
    }
    {
      const Unchanged unchanged(mask);
      assign("Picture", kEmbedded, picture.get(), {swap}, objectValue(mask));
    }
    EXPECT_TRUE(samePixels(*picture, expected)) << mask->describe() << (swap ? " swapped" : "");
    EXPECT_EQ(picture->references(), 1);
    EXPECT_EQ(picture->locks(), 0);
  }
};
QRZ_ALL_REPRESENTATIONS(EmbeddedMaskTest);

TEST_P(EmbeddedMaskTest, ReadFromPicturesOfAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    expectRead(randomPicture(width, 1 + width % 5), width % 2 == 0);
    expectRead(randomPicture(width, 1 + width % 3), width % 2 == 1);
  }
}

TEST_P(EmbeddedMaskTest, EveryLevelIsRead) {
  const auto levels = drawnPicture(16, 16, [](int32_t x, int32_t y) {
    return static_cast<uint32_t>(16 * y + x) << 24 | 0x335577;
  });
  expectRead(levels, false);
  expectRead(levels, true);
}

TEST_P(EmbeddedMaskTest, AssignedToPicturesOfAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    for (const bool swap : {false, true}) {
      const int32_t height = 1 + width % 5;
      const auto picture = randomPicture(width, height);
      expectAssigned(picture, randomPicture(width, height), swap);
      expectRead(picture, swap);
    }
  }
}

TEST_P(EmbeddedMaskTest, OnlyTheOverlapWithTheMaskIsAssigned) {
  for (const auto& [width, height] : {std::pair{1, 1},
                                      {9, 3},
                                      {20, 20},
                                      {40, 2},
                                      {2, 40},
                                      {19, 20},
                                      {20, 19},
                                      {30, 30},
                                      {64, 1}}) {
    expectAssigned(randomPicture(20, 20), randomPicture(width, height), width % 2 == 0);
  }
}

TEST_P(EmbeddedMaskTest, PictureIsItsOwnMask) {
  const auto picture = randomPicture(21, 4);
  auto expected = picture->pixels();
  if (isReadInPlace()) {
    for (uint32_t& word : expected) word = (word & 0xFFFFFF) | (word & 0xFF0000) << 8;
  }
  assign("Picture", kEmbedded, picture.get(), {false}, objectValue(picture));
  EXPECT_TRUE(samePixels(*picture, expected));
}

TEST_P(EmbeddedMaskTest, NilGivesNilAndAssignsNothing) {
  const auto picture = randomPicture(5, 5);
  const Unchanged unchanged(picture);
  EXPECT_FALSE(filter(kEmbedded, nullptr, {false}));
  assign("Picture", kEmbedded, nullptr, {false}, objectValue(picture));
  EXPECT_EQ(callsDuring([&] {
              assign("Picture", kEmbedded, picture.get(), {true}, Nil{});
              assign("Picture", kEmbedded, nullptr, {true}, Nil{});
            }),
            Calls{});
}

TEST_P(EmbeddedMaskTest, FailingCallsLeaveNothingBehind) {
  const auto picture = randomPicture(6, 4);
  const auto mask = randomPicture(6, 4);
  expectNothingLeftByFailures([&] {
    {
      const Unchanged unchanged(picture);
      filter(kEmbedded, picture, {false});
    }
    const Unchanged unchanged(mask);
    assign("Picture", kEmbedded, picture.get(), {false}, objectValue(mask));
    EXPECT_EQ(picture->references(), 1);
    EXPECT_EQ(picture->locks(), 0);
  });
}

class EmbeddedMaskCallsTest : public PluginTest {};

TEST_F(EmbeddedMaskCallsTest, ReadAndAssigned) {
  const auto picture = Picture::create(Storage::GWorld, 3, 3);
  const auto mask = Picture::create(Storage::GWorld, 3, 3);
  EXPECT_EQ(callsDuring([&] { EXPECT_TRUE(filter(kEmbedded, picture, {false})); }),
            joined({openGWorld, createGWorld, finishGWorld, closeGWorld}));
  const auto assignMask = [&](const Ref<Picture>& assigned) {
    assign("Picture", kEmbedded, picture.get(), {false}, objectValue(assigned));
  };
  EXPECT_EQ(callsDuring([&] { assignMask(mask); }),
            joined({openGWorld, openGWorld, closeGWorld, closeGWorld}))
      << "readers do not clear the cache";
  const Unchanged unchanged(picture);
  EXPECT_EQ(callsDuring([&] { assignMask(Picture::create(Storage::Bitmap, 3, 3)); }),
            joined({openGWorld, refuse, closeGWorld}))
      << "a mask that the path cannot read";
}

TEST_F(EmbeddedMaskCallsTest, MaskIsReadThroughACopy) {
  const auto picture = Picture::create(Storage::GWorld, 3, 3);
  const auto mask = Picture::create(Storage::GWorld, 3, 3, 24);
  mask->fill(1, 1, 1, 1, 0x40FFFF);
  assign("Picture", kEmbedded, picture.get(), {false}, objectValue(mask));
  EXPECT_EQ(picture->pixels()[4], 0x40FFFFFF);
  EXPECT_EQ(picture->pixels()[5], 0xFFFFFFFF);
}

// --- The host's mask ---------------------------------------------------------

class HasMaskTest : public PluginTest {};

TEST_F(HasMaskTest, AsksTheHostAndGivesTheMaskBack) {
  const auto has = [](const Ref<Picture>& picture) {
    return std::get<bool>(call("Picture", kHasMask, picture.get()));
  };
  EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(has(nullptr)); }), Calls{});
  const auto picture = Picture::create(Storage::GWorld, 4, 4);
  EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(has(picture)); }), Calls{"REALGetPictureMask"});
  EXPECT_FALSE(picture->mask) << "the host is not asked to make one";
  picture->mask = Picture::create(Storage::Bitmap, 4, 4);
  const Unchanged unchanged(picture->mask);
  EXPECT_EQ(callsDuring([&] { EXPECT_TRUE(has(picture)); }),
            (Calls{"REALGetPictureMask", "REALUnlockObject"}));
}

// --- Boxes around what is coloured -------------------------------------------

/// A map with a ring of zeros around the picture.
class Map {
 public:
  Map(int32_t width, int32_t height)
      : stride_(width + 2),
        cells_(static_cast<size_t>(width + 2) * static_cast<size_t>(height + 2)) {}
  uint8_t& at(int32_t x, int32_t y) {
    return cells_[static_cast<size_t>(y + 1) * static_cast<size_t>(stride_) +
                  static_cast<size_t>(x + 1)];
  }
  /// Any cell of the box, its ends included.
  bool any(int32_t left, int32_t top, int32_t right, int32_t bottom) {
    for (int32_t y = top; y <= bottom; ++y) {
      for (int32_t x = left; x <= right; ++x) {
        if (at(x, y) != 0) return true;
      }
    }
    return false;
  }

 private:
  int32_t stride_;
  std::vector<uint8_t> cells_;
};

bool isColored(uint32_t word) {
  return (word >> 16 & 0xFF) != (word >> 8 & 0xFF) || (word >> 16 & 0xFF) != (word & 0xFF);
}

/// Boxes one coloured pixel after the other, from the first row each time.
class BoxFinder {
 public:
  BoxFinder(const Picture& picture, const Rectangle& r)
      : width_(picture.width()),
        height_(picture.height()),
        colored_(width_, height_),
        boxed_(width_, height_) {
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) {
        colored_.at(x, y) = contains(r, picture, x, y) && isColored(picture.pixel(x, y)) ? 1 : 0;
      }
    }
    while (boxFirst()) {
    }
  }
  std::vector<uint32_t> mask() {
    std::vector<uint32_t> words;
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) words.push_back(boxed_.at(x, y) != 0 ? 0 : 0xFFFFFF);
    }
    return words;
  }

 private:
  bool boxFirst() {
    for (int32_t y = 0; y < height_; ++y) {
      for (int32_t x = 0; x < width_; ++x) {
        if (colored_.at(x, y) == 0) continue;
        box(x, y);
        return true;
      }
    }
    return false;
  }
  void box(int32_t x, int32_t y) {
    int32_t left = x;
    int32_t right = x;
    int32_t top = y;
    int32_t bottom = y;
    bool grew = true;
    const auto step = [&grew](int32_t& side, int32_t by, bool grows) {
      if (grows) side += by;
      grew |= grows;
    };
    while (grew) {
      grew = false;
      step(top, -1, colored_.any(left, top - 1, right, top - 1));
      step(bottom, 1, colored_.any(left, bottom + 1, right, bottom + 1));
      step(left, -1, colored_.any(left - 1, top, left - 1, bottom));
      step(right, 1, colored_.any(right + 1, top, right + 1, bottom));
    }
    for (int32_t row = top; row <= bottom; ++row) {
      for (int32_t column = left; column <= right; ++column) {
        colored_.at(column, row) = 0;
        boxed_.at(column, row) = 1;
      }
    }
  }

  int32_t width_, height_;
  Map colored_, boxed_;
};

class BoxMaskTest : public RepresentationTest {
 protected:
  static void expectBoxed(const Ref<Picture>& picture, const Rectangle& r = {0, 0, -1, -1}) {
    const Unchanged unchanged(picture);
    const auto mask = filter(extractFrom, picture, values(r));
    ASSERT_TRUE(mask);
    EXPECT_TRUE(samePixels(*mask, BoxFinder(*picture, r).mask())) << testing::PrintToString(r);
    EXPECT_EQ(mask->references(), 1);
  }
  /// Greys, and colours where `colored` says so; the least coloured differ in
  /// one bit of one component.
  Ref<Picture> colorings(int32_t width, int32_t height,
                         const std::function<bool(int32_t, int32_t)>& colored) {
    return drawnPicture(width, height, [&](int32_t x, int32_t y) {
      const auto word = static_cast<uint32_t>(random());
      const uint32_t level = (word & 0xFF000000) | grey(word & 0xFF);
      return colored(x, y) ? level ^ 1U << (word >> 8) % 24 : level;
    });
  }
  bool oneIn(uint32_t count) { return random() % count == 0; }
};
QRZ_ALL_REPRESENTATIONS(BoxMaskTest);

TEST_P(BoxMaskTest, RandomPixelsOfAllDensities) {
  for (int32_t width = 1; width <= 70; ++width) {
    for (const uint32_t rarity : {150U, 30U, 12U, 6U, 3U, 2U}) {
      expectBoxed(
          colorings(width, 1 + width % 23, [&](int32_t, int32_t) { return oneIn(rarity); }));
    }
  }
}

TEST_P(BoxMaskTest, RandomBarsAndDiagonals) {
  for (int i = 0; i < 120; ++i) {
    const auto picture = colorings(50, 40, [](int32_t, int32_t) { return false; });
    for (int k = 0; k < 2 + i % 25; ++k) {
      const auto x = static_cast<int32_t>(random() % 50);
      const auto y = static_cast<int32_t>(random() % 40);
      const auto length = static_cast<int32_t>(random() % 14);
      // Bars, Ls and corners that touch.
      if (!oneIn(3)) picture->fill(x, y, length, 1 + length % 2, 0xFF0000);
      if (!oneIn(3)) picture->fill(x, y - length, 1, length, 0x0000FF);
      for (int32_t j = 0; i % 3 == 0 && j < length; ++j)
        picture->fill(x + j, y + j, 1, 1, 0x00FF00);
    }
    expectBoxed(picture);
    for (int k = 0; k < 5; ++k) expectBoxed(picture, randomRectangle(random, *picture));
  }
}

TEST_P(BoxMaskTest, RectanglesInsideAcrossAndOutside) {
  for (int i = 0; i < 200; ++i) {
    const auto picture = colorings(31 + i % 7, 13, [&](int32_t, int32_t) { return oneIn(9); });
    expectBoxed(picture, randomRectangle(random, *picture));
  }
}

TEST_P(BoxMaskTest, GreysAndSinglePixelsAndSeparateBoxes) {
  const auto boxed = [&](const Ref<Picture>& picture) {
    const auto mask = filter(kExtract, picture);
    std::vector<std::pair<int32_t, int32_t>> black;
    for (int32_t y = 0; y < mask->height(); ++y) {
      for (int32_t x = 0; x < mask->width(); ++x) {
        if (mask->pixel(x, y) == 0) black.emplace_back(x, y);
      }
    }
    return black;
  };
  using Pixels = std::vector<std::pair<int32_t, int32_t>>;
  const auto picture = colorings(20, 12, [](int32_t, int32_t) { return false; });
  EXPECT_EQ(boxed(picture), Pixels{});
  picture->fill(5, 7, 1, 1, 0x800000);
  EXPECT_EQ(boxed(picture), (Pixels{{5, 7}}));
  picture->fill(7, 7, 1, 1, 0x008000);
  picture->fill(6, 8, 1, 1, 0x000080);
  EXPECT_EQ(boxed(picture), (Pixels{{5, 7}, {7, 7}, {6, 8}})) << "corners do not count";
  picture->fill(5, 8, 1, 1, 0x000080);
  EXPECT_EQ(boxed(picture), (Pixels{{5, 7}, {6, 7}, {7, 7}, {5, 8}, {6, 8}, {7, 8}}));
}

TEST_P(BoxMaskTest, NilGivesNil) {
  EXPECT_FALSE(filter(kExtract, nullptr));
  EXPECT_FALSE(filter(extractFrom, nullptr, values({0, 0, 1, 1})));
}

TEST_P(BoxMaskTest, FailingCallsLeaveNothingBehind) {
  const auto picture = randomPicture(9, 5);
  const auto expected = BoxFinder(*picture, {0, 0, -1, -1}).mask();
  expectNothingLeftByFailures([&] {
    const Unchanged unchanged(picture);
    filter(kExtract, picture);
  });
  EXPECT_TRUE(samePixels(*filter(kExtract, picture), expected));
}

TEST_F(HasMaskTest, BoxesAreMadeWithOneReaderAndOneWriter) {
  const auto picture = Picture::create(Storage::GWorld, 4, 4);
  EXPECT_EQ(callsDuring([&] { filter(kExtract, picture); }),
            joined({openGWorld, createGWorld, finishGWorld, closeGWorld}));
}

// --- Shapes that take a careless search for ever ------------------------------

/// What is coloured, and what its boxes cover, by position and size.
struct Shape {
  const char* name;
  bool (*colored)(int32_t x, int32_t y, int32_t width, int32_t height);
  bool (*boxed)(int32_t x, int32_t y, int32_t width, int32_t height);
};

bool everything(int32_t, int32_t, int32_t, int32_t) { return true; }
bool specks(int32_t x, int32_t y, int32_t, int32_t) { return x % 9 == 4 && y % 7 == 3; }
bool checkerboard(int32_t x, int32_t y, int32_t, int32_t) { return (x + y) % 2 == 0; }
bool diagonals(int32_t x, int32_t y, int32_t, int32_t) { return (x + y) % 5 == 0; }
bool lines(int32_t, int32_t y, int32_t, int32_t) { return y % 2 == 0; }
bool columns(int32_t x, int32_t, int32_t, int32_t) { return x % 2 == 0; }
bool staircase(int32_t x, int32_t y, int32_t, int32_t) { return x == y || x == y + 1; }
bool square(int32_t x, int32_t, int32_t, int32_t height) { return x <= height; }
/// Teeth that hang apart until they meet at the bottom.
bool comb(int32_t x, int32_t y, int32_t, int32_t height) { return x % 2 == 0 || y == height - 1; }
/// Frames in frames, and the same with gaps that let a way through.
bool frames(int32_t x, int32_t y, int32_t width, int32_t height) {
  return std::min({x, y, width - 1 - x, height - 1 - y}) % 2 == 0;
}
bool spiral(int32_t x, int32_t y, int32_t width, int32_t height) {
  const int32_t depth = std::min({x + 1, y, width - 1 - x, height - 1 - y});
  return depth % 2 == 0;
}
/// Every box lies in the next one: a foot to the left, a leg upwards.
bool angles(int32_t x, int32_t y, int32_t width, int32_t height) {
  return std::min(width - 1 - x, height - 1 - y) % 2 == 0;
}

const Shape shapes[] = {
    {"specks", specks, specks},          {"checkerboard", checkerboard, checkerboard},
    {"diagonals", diagonals, diagonals}, {"lines", lines, lines},
    {"columns", columns, columns},       {"staircase", staircase, square},
    {"comb", comb, everything},          {"frames", frames, everything},
    {"spiral", spiral, everything},      {"angles", angles, everything},
};

class HostileBoxMaskTest : public RepresentationTest {
 protected:
  Ref<Picture> draw(const Shape& shape, int32_t width, int32_t height) {
    return drawnPicture(width, height, [&](int32_t x, int32_t y) {
      return shape.colored(x, y, width, height) ? 0xFF8080FFU : 0x00808080U;
    });
  }
  static std::vector<uint32_t> maskOf(const Shape& shape, int32_t width, int32_t height) {
    std::vector<uint32_t> words;
    words.reserve(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (int32_t y = 0; y < height; ++y) {
      for (int32_t x = 0; x < width; ++x) {
        words.push_back(shape.boxed(x, y, width, height) ? 0 : 0xFFFFFF);
      }
    }
    return words;
  }
};
INSTANTIATE_TEST_SUITE_P(All, HostileBoxMaskTest,
                         testing::Values(allRepresentations[0], allRepresentations[2]),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(HostileBoxMaskTest, ShapesOfAllSizes) {
  for (const Shape& shape : shapes) {
    SCOPED_TRACE(shape.name);
    for (const auto& [width, height] : {std::pair{41, 29}, {42, 28}, {30, 15}, {3000, 2000}}) {
      const auto picture = draw(shape, width, height);
      const auto expected = maskOf(shape, width, height);
      if (width < 100) {
        EXPECT_EQ(BoxFinder(*picture, {0, 0, -1, -1}).mask(), expected);
      }
      const auto mask = filter(kExtract, picture);
      ASSERT_TRUE(mask);
      EXPECT_TRUE(samePixels(*mask, expected));
    }
  }
}

TEST_P(HostileBoxMaskTest, LongAndThin) {
  for (const auto& [width, height] : {std::pair{8000000, 1}, {1, 8000000}, {1000000, 7}}) {
    const auto picture = emptyPicture(width, height);
    picture->fill(0, 0, width, height, 0x8080FF);
    const auto mask = filter(kExtract, picture);
    ASSERT_TRUE(mask);
    EXPECT_EQ(call("Picture", "isBlackQRZ as boolean", mask.get()), Value{true});
  }
}

TEST_P(HostileBoxMaskTest, ManySpecksOnALargePicture) {
  const auto picture = draw(shapes[0], 4000, 3000);
  const auto mask = filter(kExtract, picture);
  ASSERT_TRUE(mask);
  EXPECT_TRUE(samePixels(*mask, maskOf(shapes[0], 4000, 3000)));
}

}  // namespace
}  // namespace host
