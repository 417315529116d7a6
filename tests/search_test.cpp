// FindPicture against a naive search, and on pictures that are hard to search.

#include <algorithm>

#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

constexpr const char* kFind =
    "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean";

struct Found {
  bool found;
  int32_t x, y;
  friend bool operator==(const Found&, const Found&) = default;
};
constexpr Found kNothing = {false, 0, 0};

void PrintTo(const Found& found, std::ostream* stream) {
  *stream << (found.found ? "found at " : "nothing at ") << found.x << ", " << found.y;
}

/// The variables hold other values before the call.
Found find(const Ref<Picture>& haystack, const Ref<Picture>& pattern) {
  std::vector<Value> arguments = {objectValue(pattern), 7, -3};
  const Value result = PluginTest::callByRef("Picture", kFind, haystack.get(), arguments);
  return {std::get<bool>(result), std::get<int32_t>(arguments[1]), std::get<int32_t>(arguments[2])};
}

Found findNaively(const Picture& haystack, const Picture& pattern) {
  const auto large = colorsOf(haystack);
  const auto small = colorsOf(pattern);
  const auto occursAt = [&](int32_t left, int32_t top) {
    for (int32_t y = 0; y < pattern.height(); ++y) {
      const uint32_t* row = &small[static_cast<size_t>(y * pattern.width())];
      const auto place = static_cast<size_t>((top + y) * haystack.width() + left);
      if (!std::equal(row, row + pattern.width(), &large[place])) return false;
    }
    return true;
  };
  for (int32_t y = 0; y + pattern.height() <= haystack.height(); ++y) {
    for (int32_t x = 0; x + pattern.width() <= haystack.width(); ++x) {
      if (occursAt(x, y)) return {true, x, y};
    }
  }
  return kNothing;
}

class SearchTest : public RepresentationTest {
 protected:
  /// Few colours with any pads, so that there are many partial matches.
  Ref<Picture> fewColors(int32_t width, int32_t height, uint32_t colors) {
    return drawnPicture(width, height, [&](int32_t, int32_t) {
      constexpr uint32_t palette[] = {0xFFFFFF, 0, 0xFF0000, 0xFFFF80};
      return palette[random() % colors] | (static_cast<uint32_t>(random()) & 0xFF000000);
    });
  }
  /// The rectangle with other pads, in the representation of the sources.
  Ref<Picture> cutOut(const Picture& from, int32_t left, int32_t top, int32_t width,
                      int32_t height) {
    return drawnPicture(width, height, [&](int32_t x, int32_t y) {
      return from.pixel(left + x, top + y) | (static_cast<uint32_t>(random()) & 0xFF000000);
    });
  }
  int32_t upTo(int32_t most) {
    return 1 + static_cast<int32_t>(random() % static_cast<uint32_t>(most));
  }
  static void expectAsNaive(const Ref<Picture>& haystack, const Ref<Picture>& pattern) {
    const Unchanged unchanged[] = {Unchanged(haystack), Unchanged(pattern)};
    EXPECT_EQ(find(haystack, pattern), findNaively(*haystack, *pattern))
        << pattern->describe() << " in " << haystack->describe();
  }
};
QRZ_ALL_REPRESENTATIONS(SearchTest);

TEST_P(SearchTest, RandomPatternsAndPartsOfThePicture) {
  for (int i = 0; i < 200; ++i) {
    const int32_t width = upTo(70);
    const int32_t height = upTo(15);
    const auto haystack = fewColors(width, height, 1 + static_cast<uint32_t>(i) % 4);
    expectAsNaive(haystack, fewColors(upTo(4), upTo(3), 2));
    const int32_t w = upTo(width);
    const int32_t h = upTo(height);
    const auto pattern = cutOut(*haystack, upTo(width - w + 1) - 1, upTo(height - h + 1) - 1, w, h);
    expectAsNaive(haystack, pattern);
    // One component of one pixel differs, if the depth keeps it.
    const int32_t x = upTo(w) - 1;
    const int32_t y = upTo(h) - 1;
    pattern->fill(x, y, 1, 1, pattern->pixel(x, y) ^ 1U << random() % 24);
    expectAsNaive(haystack, pattern);
  }
}

TEST_P(SearchTest, NearlyFlatPictures) {
  // Nearly every place matches for long, so that the search has to be clever.
  for (int i = 0; i < 120; ++i) {
    const int32_t width = 30 + upTo(40);
    const int32_t height = 25 + upTo(20);
    const int32_t period = upTo(4);
    const auto haystack = drawnPicture(width, height, [period](int32_t x, int32_t y) {
      return (x + y) % period == 0 ? 0xFFFFFFU : 0x00FF00U;
    });
    const auto flaws = static_cast<int32_t>(random() % 4);
    for (int32_t k = 0; k < flaws; ++k) haystack->fill(upTo(width) - 1, upTo(height) - 1, 1, 1, 0);
    const int32_t w = 10 + upTo(18);
    const int32_t h = 8 + upTo(12);
    const int32_t left = i % 4 == 0 ? width - w : upTo(width - w + 1) - 1;
    const int32_t top = i % 4 < 2 ? height - h : upTo(height - h + 1) - 1;
    if (i % 3 == 0) haystack->fill(left + w - 1, top + h - 1, 1, 1, 0xFF0000);
    const auto pattern = cutOut(*haystack, left, top, w, h);
    expectAsNaive(haystack, pattern);
    pattern->fill(w - 1, h - 1, 1, 1, 0x0000FF);
    EXPECT_EQ(find(haystack, pattern), kNothing);
  }
}

TEST_P(SearchTest, WholeTooLargeAndNil) {
  const auto haystack = randomPicture(21, 8);
  EXPECT_EQ(find(haystack, haystack), (Found{true, 0, 0}));
  for (const auto& [width, height] : {std::pair{22, 1}, {1, 9}, {22, 9}}) {
    EXPECT_EQ(find(haystack, randomPicture(width, height)), kNothing);
  }
  EXPECT_EQ(find(haystack, nullptr), kNothing);
  EXPECT_EQ(find(nullptr, haystack), kNothing);
}

// --- Which readers are opened ------------------------------------------------

class SearchCallsTest : public PluginTest {
 protected:
  static Calls callsOfFind(Storage haystack, Storage pattern, const Found& expected) {
    const auto large = Picture::create(haystack, 4, 4);
    const auto small = Picture::create(pattern, 2, 2);
    return callsDuring([&] { EXPECT_EQ(find(large, small), expected); });
  }
};
constexpr Found kAtOnce = {true, 0, 0};

TEST_F(SearchCallsTest, RowTableFirst) {
  const Calls settled = joined({openGWorld, openGWorld, closeGWorld, closeGWorld});
  EXPECT_EQ(callsOfFind(Storage::GWorld, Storage::GWorld, kAtOnce), joined({refuse, settled}));
  EXPECT_EQ(callsOfFind(Storage::GWorld, Storage::GWorld, kAtOnce), settled);
  EXPECT_EQ(callsOfFind(Storage::GWorld, Storage::Bitmap, kNothing),
            joined({openGWorld, refuse, closeGWorld}));
  EXPECT_EQ(callsOfFind(Storage::GWorld, Storage::Context, kAtOnce),
            joined({openGWorld, refuse, makeCopy, openGWorld, dropCopy, closeGWorld, closeGWorld}))
      << "a copy of the pattern alone";
}

TEST_F(SearchCallsTest, Bitmaps) {
  EXPECT_EQ(callsOfFind(Storage::Bitmap, Storage::Bitmap, kAtOnce),
            joined({openBitmap, openBitmap, closeBitmap, closeBitmap}));
  EXPECT_EQ(callsOfFind(Storage::Bitmap, Storage::GWorld, kNothing),
            joined({openBitmap, refuse, closeBitmap}));
}

// --- Pictures that take a careless search for ever ---------------------------

class HostileSearchTest : public RepresentationTest {
 protected:
  using Word = std::function<uint32_t(int32_t, int32_t)>;
  static constexpr int32_t kWidth = 4000;
  static constexpr int32_t kHeight = 3000;

  /// Both are drawn the same; the last pixel of the pattern is another, and
  /// occurs in the picture nowhere, then in the last place.
  void expectFoundLast(const Word& word, int32_t width, int32_t height) {
    const auto haystack = drawnPicture(kWidth, kHeight, word);
    const auto pattern = drawnPicture(width, height, [&](int32_t x, int32_t y) {
      return word(kWidth - width + x, kHeight - height + y);
    });
    pattern->fill(width - 1, height - 1, 1, 1, 0xFFFF00);
    EXPECT_EQ(find(haystack, pattern), kNothing);
    haystack->fill(kWidth - 1, kHeight - 1, 1, 1, 0xFFFF00);
    EXPECT_EQ(find(haystack, pattern), (Found{true, kWidth - width, kHeight - height}));
  }
};
QRZ_NATIVE_REPRESENTATIONS(HostileSearchTest);

TEST_P(HostileSearchTest, FlatStripedAndCheckered) {
  const auto expectPeriodic = [&](int32_t dx, int32_t dy, int32_t period) {
    const auto word = [=](int32_t x, int32_t y) {
      return (dx * x + dy * y) % period == 0 ? 0U : 0xFFFFFFU;
    };
    expectFoundLast(word, 2000, 1500);
  };
  expectPeriodic(1, 0, 2);
  expectPeriodic(0, 1, 3);
  expectPeriodic(1, 1, 2);
  expectPeriodic(1, 7, 1999);  // long equal stretches that end now and then
  const auto white = [](int32_t, int32_t) { return 0xFFFFFFU; };
  for (const auto& [width, height] : {std::pair{2000, 1500}, {2000, 1}, {1, 1500}}) {
    expectFoundLast(white, width, height);
  }
}

TEST_P(HostileSearchTest, AllButOnePixelInTheMiddle) {
  const auto haystack = emptyPicture(kWidth, kHeight);
  const auto pattern = emptyPicture(1000, 1000);
  pattern->fill(500, 500, 1, 1, 0);
  EXPECT_EQ(find(haystack, pattern), kNothing);
  haystack->fill(3499, 2499, 1, 1, 0);
  EXPECT_EQ(find(haystack, pattern), (Found{true, 2999, 1999}));
}

}  // namespace
}  // namespace host
