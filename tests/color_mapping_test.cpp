// Colours through tables and by exact match, on every representation.

#include <numeric>

#include "tests/support/checks.h"

namespace host {
namespace {

constexpr const char* kTransform =
    "TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as picture";
constexpr const char* kReplace =
    "ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture";
constexpr const char* kExtract =
    "ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor as color) as "
    "picture";

using Table = std::vector<uint8_t>;

Table identity() {
  Table table(256);
  std::iota(table.begin(), table.end(), 0);
  return table;
}

class ColorMappingTest : public RepresentationTest {
 protected:
  void SetUp() override {
    guardMemoryBlocks();
    RepresentationTest::SetUp();
  }
  /// In the order red, green, blue.
  static Ref<Picture> transform(const Ref<Picture>& source, const Table& red, const Table& green,
                                const Table& blue) {
    return filter(kTransform, source,
                  {objectValue(memoryBlock(red)), objectValue(memoryBlock(blue)),
                   objectValue(memoryBlock(green))});
  }
  static Ref<Picture> replace(const Ref<Picture>& source, uint32_t search, uint32_t replacement) {
    return filter(kReplace, source, {Color{search}, Color{replacement}});
  }
  static Ref<Picture> extract(const Ref<Picture>& source, uint32_t search, uint32_t replacement,
                              uint32_t background) {
    return filter(kExtract, source, {Color{search}, Color{replacement}, Color{background}});
  }
  static void expectTransformed(const Ref<Picture>& source, const Table& red, const Table& green,
                                const Table& blue) {
    const Unchanged unchanged(source);
    const auto map = [&](uint32_t rgb) {
      return static_cast<uint32_t>(red[rgb >> 16] << 16 | green[rgb >> 8 & 0xFF] << 8 |
                                   blue[rgb & 0xFF]);
    };
    EXPECT_TRUE(isNewPicture(transform(source, red, green, blue), source->width(),
                             mappedPixels(*source, map)));
  }
  static void expectMatched(const Ref<Picture>& source, uint32_t search, uint32_t replacement,
                            uint32_t background) {
    const Unchanged unchanged(source);
    const auto map = [=](uint32_t rgb, uint32_t other) {
      return rgb == (search & 0xFFFFFF) ? replacement & 0xFFFFFF : other & 0xFFFFFF;
    };
    const auto replaced = mappedPixels(*source, [&](uint32_t rgb) { return map(rgb, rgb); });
    const auto extracted =
        mappedPixels(*source, [&](uint32_t rgb) { return map(rgb, background); });
    EXPECT_TRUE(isNewPicture(replace(source, search, replacement), source->width(), replaced))
        << std::hex << search;
    EXPECT_TRUE(
        isNewPicture(extract(source, search, replacement, background), source->width(), extracted))
        << std::hex << search;
  }
  Table randomTable(size_t size) {
    Table table(size);
    for (uint8_t& byte : table) byte = static_cast<uint8_t>(random());
    return table;
  }
};
QRZ_ALL_REPRESENTATIONS(ColorMappingTest);

TEST_P(ColorMappingTest, RandomTablesOnAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    expectTransformed(randomPicture(width, 1 + width % 5), randomTable(256), randomTable(256),
                      randomTable(256));
  }
  const auto source = randomPicture(300, 200);
  expectTransformed(source, randomTable(256), randomTable(257), randomTable(1000));
  expectTransformed(source, identity(), identity(), identity());
  Table inverse = identity();
  for (uint8_t& byte : inverse) byte = static_cast<uint8_t>(255 - byte);
  expectTransformed(source, inverse, identity(), identity());
  expectTransformed(source, identity(), identity(), Table(256));
  const auto table = memoryBlock(inverse);
  const Value one = objectValue(table);
  const auto inverted = mappedPixels(*source, [](uint32_t rgb) { return 0xFFFFFF - rgb; });
  EXPECT_TRUE(isNewPicture(filter(kTransform, source, {one, one, one}), 300, inverted));
}

TEST_P(ColorMappingTest, TablesAreThereAndLongEnough) {
  const auto source = randomPicture(20, 3);
  const Unchanged unchanged(source);
  const auto table = memoryBlock(identity());
  for (size_t i = 0; i < 3; ++i) {
    std::vector<Value> tables(3, objectValue(table));
    tables[i] = Nil{};
    EXPECT_TRUE(callsDuring([&] { EXPECT_FALSE(filter(kTransform, source, tables)); }).empty())
        << "table " << i << " is nil";
    for (const size_t size : {0U, 1U, 128U, 255U}) {
      tables[i] = objectValue(memoryBlock(randomTable(size)));
      EXPECT_FALSE(filter(kTransform, source, tables)) << size << " bytes of table " << i;
    }
  }
  EXPECT_EQ(table->references(), 1);
  EXPECT_FALSE(transform(nullptr, identity(), identity(), identity()));
}

TEST_P(ColorMappingTest, TablesAreFetchedWhenTheNewPictureIsThere) {
  const auto source = randomPicture(3, 3);
  transform(source, identity(), identity(), identity());  // settles the paths
  auto calls = callsDuring([&] { transform(source, identity(), identity(), identity()); });
  const auto newPicture = std::find(calls.rbegin(), calls.rend(), "newPicture").base();
  ASSERT_NE(newPicture, calls.begin());
  EXPECT_EQ(std::count(newPicture, calls.end(), "memoryBlockGetPtr"), 3);
  EXPECT_EQ(std::count(calls.begin(), newPicture, "memoryBlockGetPtr"), 0);
}

TEST_P(ColorMappingTest, ExactMatchesOnAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    const auto source = randomPicture(width, 1 + width % 5);
    const uint32_t there = source->pixel(width / 2, 0);
    expectMatched(source, there, random(), random());
    expectMatched(source, there | 0xFF000000, random(), random());
    expectMatched(source, there, there, random());
    expectMatched(source, there ^ 1U << random() % 24, random(), random());
    expectMatched(source, random(), random(), random());
    expectMatched(source, 0x000000, 0xFFFFFFFF, 0xFF000000);
    expectMatched(source, 0xFFFFFF, 0, random());
  }
}

}  // namespace
}  // namespace host
