// The members that change each colour by itself, on every representation: what their
// arguments mean.

#include <algorithm>
#include <climits>
#include <numeric>

#include "tests/support/checks.h"
#include "tests/support/rectangle.h"
#include "tests/support/tones.h"

namespace host {
namespace {

using Arguments = std::vector<Value>;
using Map = std::function<uint32_t(uint32_t)>;

uint32_t invert(uint32_t rgb) { return 0xFFFFFF - rgb; }

class AdjustTest : public RepresentationTest {
 protected:
  /// A global member takes the source among its arguments.
  static void expectMapped(const std::string& declaration, const Ref<Picture>& source,
                           const Arguments& arguments, const Map& map,
                           const Rectangle& r = wholePicture) {
    const Unchanged unchanged(source);
    const bool isGlobal = declaration.starts_with("Tint");
    const auto result = isGlobal ? pictureOf(call("", declaration, nullptr, arguments))
                                 : filter(declaration, source, arguments);
    const auto inside = [&](int32_t x, int32_t y) { return contains(r, *source, x, y); };
    EXPECT_TRUE(isNewPicture(result, source->width(), expectedPixels(*source, inside, map)))
        << declaration << " of " << testing::PrintToString(arguments);
  }
};
QRZ_ALL_REPRESENTATIONS(AdjustTest);

// --- Inversion ---------------------------------------------------------------

TEST_P(AdjustTest, InvertedInsideAcrossAndOutside) {
  const std::pair<std::string, Map> operations[] = {
      {"InvertQRZ", invert}, {"InvertGrayQRZ", [](uint32_t rgb) {
                                return rgb == (rgb & 0xFF) * 0x010101 ? invert(rgb) : rgb;
                              }}};
  const auto picture = randomPicture(37, 11);
  const auto wide = randomPicture(2077, 3);
  for (const auto& [name, map] : operations) {
    const std::string inRectangle = name + rectangleParameters + " as picture";
    const auto expectInverted = [&, &map = map](const Ref<Picture>& source, const Rectangle& r) {
      expectMapped(inRectangle, source, values(r), map, r);
    };
    for (int i = 0; i < 200; ++i) expectInverted(picture, randomRectangle(random, *picture));
    for (const int32_t most : {INT_MIN, 1, INT_MAX}) {
      expectInverted(picture, {most, most, INT_MAX, INT_MAX});
    }
    expectInverted(wide, {5, 1, -1, -1});
    expectMapped(name + " as picture", wide, {}, map);
  }
}

// --- Tones -------------------------------------------------------------------

TEST_P(AdjustTest, TonesOfAnyArguments) {
  // Every level in every channel, as far as the depth can hold them.
  const auto levels = drawnPicture(256, 1, [](int32_t x, int32_t) {
    const auto i = static_cast<uint32_t>(x);
    return i << 16 | (255 - i) << 8 | (i * 73 & 0xFF);
  });
  const double scales[] = {1, 4, 255, 255, 1e3, 1e12};
  std::uniform_real_distribution<double> part(-1, 1);
  const auto sensible = [&] { return scales[random() % std::size(scales)] * part(random); };
  const auto hostile = [&] { return hostileNumbers[random() % hostileNumbers.size()]; };
  for (const Tone& tone : tones) {
    const auto expectTone = [&](const Ref<Picture>& source, const std::vector<double>& x) {
      expectMapped(tone.declaration, source, {x.begin(), x.end()},
                   [&](uint32_t rgb) { return tone(rgb, x); });
    };
    for (const double value : hostileNumbers)
      expectTone(levels, std::vector<double>(tone.count, value));
    for (int i = 0; i < 300; ++i) {
      std::vector<double> x(tone.count);
      for (double& value : x) value = i % 2 == 0 && random() % 2 == 0 ? hostile() : sensible();
      expectTone(levels, x);
    }
    expectTone(randomPicture(1031, 3), std::vector<double>(tone.count, 0.5));
  }
}

TEST_P(AdjustTest, SaturationByAnyAmount) {
  const auto source = randomPicture(97, 41);
  const auto expectSaturated = [&](int32_t amount) {
    expectMapped("ChangeSaturationQRZ(Amount as integer) as picture", source, {amount},
                 [=](uint32_t rgb) {
                   const int64_t mean = ((rgb >> 16) + (rgb >> 8 & 0xFF) + (rgb & 0xFF)) / 3;
                   return eachChannel(rgb, [&](int64_t level, size_t) {
                     const int64_t moved = (level - mean) * (int64_t{amount} + 255) / 255;
                     return std::clamp<int64_t>(mean + moved, 0, 255);
                   });
                 });
  };
  for (const int32_t amount :
       {INT_MIN, INT_MIN + 1, -12632512, -12632511,     -65536,        -33024,
        -32768,  -511,        -256,      -255,          -254,          -1,
        0,       1,           255,       32512,         32513,         32767,
        65535,   12632001,    12632002,  INT_MAX - 255, INT_MAX - 254, INT_MAX}) {
    expectSaturated(amount);
  }
  for (int32_t amount = -520; amount <= 520; amount += 7) expectSaturated(amount);
  for (int i = 0; i < 20; ++i) expectSaturated(static_cast<int32_t>(random()));
}

TEST_P(AdjustTest, TintWithAnyColours) {
  const auto source = randomPicture(97, 41);
  const auto expectTinted = [&](uint32_t greyBase, uint32_t sepiaBase) {
    const auto fraction = [](uint32_t color, int shift) { return (color >> shift & 0xFF) / 255.0; };
    expectMapped(
        "TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as "
        "picture",
        source, {objectValue(source), Color{greyBase}, Color{sepiaBase}}, [=](uint32_t rgb) {
          const double level =
              ((rgb >> 16) * fraction(greyBase, 16) + (rgb >> 8 & 0xFF) * fraction(greyBase, 8)) +
              (rgb & 0xFF) * fraction(greyBase, 0);
          return eachChannel(sepiaBase & 0xFFFFFF,
                             [=](int32_t tint, size_t) { return clamped(tint / 255.0 * level); });
        });
  };
  const uint32_t bases[] = {0,        0xFFFFFF, 0x555555, 0x4C961D,   0xFF0000,
                            0x00FF00, 0x0000FF, 0x010101, 0xABFFE0B0, random()};
  for (const uint32_t greyBase : bases) {
    for (const uint32_t sepiaBase : bases) expectTinted(greyBase, sepiaBase);
  }
}

// --- Tables ------------------------------------------------------------------

constexpr const char* kTransform =
    "TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as picture";

using Table = std::vector<uint8_t>;

class TransformTest : public AdjustTest {
 protected:
  Table randomTable(size_t size = 256) {
    Table table(size);
    for (uint8_t& byte : table) byte = static_cast<uint8_t>(random());
    return table;
  }
  static Value identity() {
    Table table(256);
    std::iota(table.begin(), table.end(), 0);
    return objectValue(memoryBlock(table));
  }
};
QRZ_ALL_REPRESENTATIONS(TransformTest);

TEST_P(TransformTest, EachChannelHasItsTable) {
  const auto source = randomPicture(1031, 7);
  const Table tables[] = {randomTable(), randomTable(257), randomTable(1000)};
  const auto value = [&](size_t i) { return objectValue(memoryBlock(tables[i])); };
  const auto mapped = [&](uint32_t rgb) {
    return eachChannel(
        rgb, [&](int32_t level, size_t i) { return tables[i][static_cast<size_t>(level)]; });
  };
  // In the order red, blue, green.
  expectMapped(kTransform, source, {value(0), value(2), value(1)}, mapped);
  expectMapped(kTransform, source, {value(0), identity(), identity()},
               [&](uint32_t rgb) { return (mapped(rgb) & 0xFF0000) | (rgb & 0x00FFFF); });
  expectMapped(kTransform, source, {identity(), identity(), identity()},
               [](uint32_t rgb) { return rgb; });
}

TEST_P(TransformTest, TablesAreFetchedWhenTheNewPictureIsThere) {
  const auto source = randomPicture(3, 3);
  const auto transform = [&] { filter(kTransform, source, {identity(), identity(), identity()}); };
  transform();  // settles the paths
  auto calls = callsDuring(transform);
  const auto newPicture = std::find(calls.rbegin(), calls.rend(), "newPicture").base();
  ASSERT_NE(newPicture, calls.begin());
  EXPECT_EQ(std::count(newPicture, calls.end(), "memoryBlockGetPtr"), 3);
  EXPECT_EQ(std::count(calls.begin(), newPicture, "memoryBlockGetPtr"), 0);
}

// --- Exact matches -----------------------------------------------------------

TEST_P(AdjustTest, ExactMatchesWhateverTheTopBytes) {
  const auto source = randomPicture(61, 9);
  const auto expectMatched = [&](uint32_t search, uint32_t found, uint32_t others) {
    const auto matched = [=](uint32_t rgb, uint32_t other) {
      return (rgb == (search & 0xFFFFFF) ? found : other) & 0xFFFFFF;
    };
    expectMapped("ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture",
                 source, {Color{search}, Color{found}},
                 [=](uint32_t rgb) { return matched(rgb, rgb); });
    expectMapped(
        "ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor "
        "as color) as picture",
        source, {Color{search}, Color{found}, Color{others}},
        [=](uint32_t rgb) { return matched(rgb, others); });
  };
  const uint32_t there = source->pixel(30, 0);
  expectMatched(there, random(), random());
  expectMatched(there | 0xFF000000, random(), random());
  expectMatched(there, there, random());
  for (int bit = 0; bit < 24; ++bit) expectMatched(there ^ 1U << bit, random(), random());
  expectMatched(0x000000, 0xFFFFFFFF, 0xFF000000);
  expectMatched(0xFFFFFF, 0, random());
}

}  // namespace
}  // namespace host
