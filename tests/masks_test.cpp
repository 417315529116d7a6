// The masks of pictures: embedded in the pads, held by the host, and boxed
// around what is coloured.

#include <algorithm>
#include <array>
#include <optional>

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
    auto expected = picture->pixels();
    for (uint32_t& word : expected) word = grey(levelRead(word, swap));
    EXPECT_TRUE(isNewPicture(filter(kEmbedded, picture, {swap}), picture->width(), expected))
        << (swap ? "swapped" : "");
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

TEST_P(EmbeddedMaskTest, ReadAndAssignedWhereTheMaskReaches) {
  const auto picture = randomPicture(61, 20);
  for (const bool swap : {false, true}) {
    for (const auto& [width, height] :
         {std::pair{61, 20}, {1, 1}, {60, 21}, {62, 19}, {7, 40}, {100, 3}}) {
      expectRead(picture, swap);
      expectAssigned(picture, randomPicture(width, height), swap);
    }
    expectRead(picture, swap);
  }
  expectRead(randomPicture(1031, 3), false);
  auto expected = picture->pixels();
  if (isReadInPlace()) {
    for (uint32_t& word : expected) word = (word & 0xFFFFFF) | (word & 0xFF0000) << 8;
  }
  assign("Picture", kEmbedded, picture.get(), {false}, objectValue(picture));
  EXPECT_TRUE(samePixels(*picture, expected)) << "its own mask";
}

TEST_P(EmbeddedMaskTest, NilAssignsNothing) {
  const auto picture = randomPicture(5, 5);
  const Unchanged unchanged(picture);
  assign("Picture", kEmbedded, nullptr, {false}, objectValue(picture));
  assign("Picture", kEmbedded, picture.get(), {true}, Nil{});
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

bool isColored(uint32_t rgb) { return rgb >> 16 != (rgb >> 8 & 0xFF) || rgb >> 16 != (rgb & 0xFF); }

/// The boxes around what is coloured inside the rectangle, one after the other.
std::vector<uint32_t> boxedMask(const Picture& picture, const Rectangle& r) {
  // Black outside, like every picture.
  const auto colored = Picture::create(Storage::Bitmap, picture.width(), picture.height());
  const auto mask = Picture::create(Storage::Bitmap, picture.width(), picture.height());
  const auto any = [&](int32_t left, int32_t top, int32_t right, int32_t bottom) {
    for (int32_t y = top; y <= bottom; ++y) {
      for (int32_t x = left; x <= right; ++x) {
        if (colored->pixel(x, y) != 0) return true;
      }
    }
    return false;
  };
  const auto boxAround = [&](int32_t x, int32_t y) {
    int32_t left = x;
    int32_t top = y;
    int32_t right = x;
    int32_t bottom = y;
    for (bool grew = true; grew;) {
      const int32_t before = left + top - right - bottom;
      if (any(left, top - 1, right, top - 1)) --top;
      if (any(left, bottom + 1, right, bottom + 1)) ++bottom;
      if (any(left - 1, top, left - 1, bottom)) --left;
      if (any(right + 1, top, right + 1, bottom)) ++right;
      grew = left + top - right - bottom != before;
    }
    for (const auto& covered : {colored, mask}) {
      covered->fill(left, top, right - left + 1, bottom - top + 1, 0);
    }
  };
  for (int32_t y = 0; y < picture.height(); ++y) {
    for (int32_t x = 0; x < picture.width(); ++x) {
      const bool counts = contains(r, picture, x, y) && isColored(picture.pixel(x, y));
      colored->fill(x, y, 1, 1, counts ? 1 : 0);
    }
  }
  for (int32_t y = 0; y < picture.height(); ++y) {
    for (int32_t x = 0; x < picture.width(); ++x) {
      if (colored->pixel(x, y) != 0) boxAround(x, y);
    }
  }
  return mask->pixels();
}

class BoxMaskTest : public RepresentationTest {
 protected:
  static void expectBoxed(const Ref<Picture>& picture, const std::optional<Rectangle>& r = {}) {
    const Unchanged unchanged(picture);
    const auto mask = r ? filter(extractFrom, picture, values(*r)) : filter(kExtract, picture);
    const auto expected = boxedMask(*picture, r.value_or(wholePicture));
    EXPECT_TRUE(isNewPicture(mask, picture->width(), expected)) << testing::PrintToString(r);
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

TEST_P(BoxMaskTest, RandomPixelsBarsAndDiagonals) {
  for (int i = 0; i < 150; ++i) {
    const uint32_t rarity =
        std::array{100000U, 150U, 30U, 12U, 6U, 2U}.at(static_cast<size_t>(i) % 6);
    const auto picture =
        colorings(1 + i % 70, 1 + i % 43, [&](int32_t, int32_t) { return oneIn(rarity); });
    for (int k = i % 2 == 0 ? 0 : i % 25; k > 0; --k) {
      const auto x = static_cast<int32_t>(random() % 50);
      const auto y = static_cast<int32_t>(random() % 40);
      const auto length = static_cast<int32_t>(random() % 14);
      // Bars, Ls and corners that touch.
      if (!oneIn(3)) picture->fill(x, y, length, 1 + length % 2, 0xFF0000);
      if (!oneIn(3)) picture->fill(x, y - length, 1, length, 0x0000FF);
      for (int32_t j = 0; i % 3 == 0 && j < length; ++j) picture->fill(x + j, y + j, 1, 1, 0xFF00);
    }
    expectBoxed(picture);
    for (int k = 0; k < 3; ++k) expectBoxed(picture, randomRectangle(random, *picture));
  }
}

TEST_P(BoxMaskTest, OnePixelBelowALongBar) {
  const auto picture = emptyPicture(150, 4);
  picture->fill(10, 0, 130, 1, 0xFF0000);
  picture->fill(139, 1, 1, 1, 0xFF0000);
  picture->fill(75, 2, 1, 1, 0xFF0000);
  expectBoxed(picture);
}

// --- Shapes that take a careless search for ever ------------------------------

/// A pixel and the picture's size.
struct Place {
  int32_t x, y, width, height;
};

/// The distance from the picture's edge.
int32_t depthOf(const Place& p) {
  return std::min({p.x, p.y, p.width - 1 - p.x, p.height - 1 - p.y});
}

struct Shape {
  const char* name;
  bool (*isColored)(const Place& p);
  bool isOneBox = true;  ///< that covers the picture, or each coloured pixel is a box's
};

const Shape shapes[] = {
    {"checkerboard", [](const Place& p) { return (p.x + p.y) % 2 == 0; }, false},
    {"lines", [](const Place& p) { return p.y % 2 == 0; }, false},
    {"columns", [](const Place& p) { return p.x % 2 == 0; }, false},
    {"teeth that hang apart until they meet at the bottom",
     [](const Place& p) { return p.x % 2 == 0 || p.y == p.height - 1; }},
    {"frames", [](const Place& p) { return depthOf(p) % 2 == 0; }},
    {"a spiral",
     [](const Place& p) {
       return std::min({p.x + 1, p.y, p.width - 1 - p.x, p.height - 1 - p.y}) % 2 == 0;
     }},
    {"boxes that each lie in the next one: a foot to the left, a leg upwards",
     [](const Place& p) { return std::min(p.width - 1 - p.x, p.height - 1 - p.y) % 2 == 0; }},
};

class HostileBoxMaskTest : public RepresentationTest {};
QRZ_NATIVE_REPRESENTATIONS(HostileBoxMaskTest);

TEST_P(HostileBoxMaskTest, Shapes) {
  constexpr int32_t kWidth = 3000;
  constexpr int32_t kHeight = 2000;
  for (const Shape& shape : shapes) {
    const auto picture = drawnPicture(kWidth, kHeight, [&](int32_t x, int32_t y) {
      return shape.isColored({x, y, kWidth, kHeight}) ? 0xFF8080FFU : 0x00808080U;
    });
    const auto expected = mappedPixels(
        *picture, [&](uint32_t rgb) { return shape.isOneBox || isColored(rgb) ? 0U : 0xFFFFFFU; });
    EXPECT_TRUE(isNewPicture(filter(kExtract, picture), kWidth, expected)) << shape.name;
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

}  // namespace
}  // namespace host
