// CountColorQRZ and CountColorsQRZ, and the locks and readers that they take in
// turn.

#include <algorithm>
#include <array>
#include <cstring>
#include <numeric>

#include "host/core/memory_block.h"
#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

constexpr const char* kCountColor = "CountColorQRZ(col as color) as integer";
constexpr const char* kCountColors =
    "CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as "
    "memoryblock, byref count as integer)";

const Calls closeGWorldLock = {"UnlockPixels", "unlockPictureDescription", "REALPictureClearCache",
                               "REALUnlockObject"};
const Calls closeBitmapLock = {"unlockPictureDescription", "REALPictureClearCache",
                               "REALUnlockObject"};

using Histogram = std::array<uint32_t, 256>;
/// In the order of the arguments: red, green and blue components.
using Histograms = std::array<Histogram, 3>;

int32_t countColor(const Ref<Picture>& picture, uint32_t color) {
  return std::get<int32_t>(PluginTest::call("Picture", kCountColor, picture.get(), {Color{color}}));
}

/// The count; the blocks that come back are left in `blocks`.
int32_t countColors(const Ref<Picture>& picture, std::vector<Value>& blocks) {
  std::vector<Value> arguments = blocks;
  arguments.emplace_back(12345);
  PluginTest::callByRef("Picture", kCountColors, picture.get(), arguments);
  const auto count = std::get<int32_t>(arguments.back());
  arguments.pop_back();
  blocks = std::move(arguments);
  return count;
}

Value block(const Histogram& counters) {
  std::vector<uint8_t> bytes(sizeof counters);
  memcpy(bytes.data(), counters.data(), sizeof counters);
  return objectValue(makeObject<MemoryBlock>(bytes));
}

Histogram counters(const Value& block) {
  Histogram result{};
  const auto& bytes = objectAs<MemoryBlock>(block)->bytes;
  EXPECT_EQ(bytes.size(), sizeof result);
  memcpy(result.data(), bytes.data(), std::min(bytes.size(), sizeof result));
  return result;
}

/// The calls without those for memory blocks.
Calls pictureCalls(const std::function<void()>& work) {
  Calls calls = callsDuring(work);
  std::erase_if(calls, [](const std::string& name) {
    return name == "newMemoryBlock" || name.starts_with("memoryBlock");
  });
  return calls;
}

void add(const Picture& picture, Histograms& histograms) {
  for (const uint32_t word : picture.pixels()) {
    ++histograms[0][word >> 16 & 0xFF];
    ++histograms[1][word >> 8 & 0xFF];
    ++histograms[2][word & 0xFF];
  }
}

void expectCounters(const std::vector<Value>& blocks, const Histograms& expected) {
  for (size_t i = 0; i < 3; ++i) EXPECT_EQ(counters(blocks[i]), expected[i]) << "block " << i;
}

class CountingTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(CountingTest);

TEST_P(CountingTest, OneColourInPicturesOfAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = randomPicture(width, 1 + width % 5);
    const uint32_t chosen = picture->pixel(width / 2, 0);
    for (int32_t x = 0; x < width; ++x) {
      // The colour, and others that differ in one bit.
      if (random() % 3 == 0) picture->fill(x, 0, 1, 1, chosen);
      if (random() % 3 == 0) picture->fill(x, 0, 1, 1, chosen ^ 1U << random() % 24);
    }
    const Unchanged unchanged(picture);
    for (const uint32_t color : {chosen, 0xFFFFFFU, 0U, chosen ^ 0x010000, chosen ^ 1}) {
      const auto pixels = picture->pixels();
      const auto expected = std::ranges::count_if(
          pixels, [color](uint32_t word) { return (word & 0xFFFFFF) == color; });
      EXPECT_EQ(countColor(picture, color), expected) << width;
      EXPECT_EQ(countColor(picture, color | 0xFF000000), expected) << width;
    }
  }
}

TEST_P(CountingTest, HistogramsOfPicturesOfAllWidths) {
  std::vector<Value> kept = {block({}), block({}), block({})};
  Histograms all{};
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = randomPicture(width, 1 + width % 5);
    const Unchanged unchanged(picture);
    Histograms expected{};
    add(*picture, expected);
    add(*picture, all);
    std::vector<Value> made = {Nil{}, Nil{}, Nil{}};
    EXPECT_EQ(countColors(picture, made), width * picture->height());
    expectCounters(made, expected);
    EXPECT_EQ(countColors(picture, kept), width * picture->height());
  }
  expectCounters(kept, all);
}

TEST_P(CountingTest, OneColourAndItsHistograms) {
  const auto picture = drawnPicture(19, 6, [&](int32_t, int32_t) {
    return (static_cast<uint32_t>(random()) & 0xFF000000) | 0x123456;
  });
  const uint32_t color = picture->pixel(0, 0);  // 0x123456, or what 16 bits leave of it
  EXPECT_EQ(countColor(picture, color), 114);
  EXPECT_EQ(countColor(picture, color ^ 1), 0);
  const Value old = block({});
  std::vector<Value> blocks = {Nil{}, old, Nil{}};
  Histograms expected{};
  for (int times = 1; times <= 2; ++times) {
    EXPECT_EQ(countColors(picture, blocks), 114);
    add(*picture, expected);
    expectCounters(blocks, expected);
    EXPECT_EQ(objectOf(blocks[1]), objectOf(old)) << "a block that was passed stays";
  }
  EXPECT_EQ(expected[1][color >> 8 & 0xFF], 228U);
}

TEST_P(CountingTest, OneBlockThreeTimesIsCountedIntoThreeTimes) {
  const auto picture = randomPicture(33, 3);
  const Value shared = block({});
  std::vector<Value> blocks = {shared, shared, shared};
  EXPECT_EQ(countColors(picture, blocks), 99);
  Histograms separate{};
  add(*picture, separate);
  Histogram expected{};
  for (size_t i = 0; i < 256; ++i) expected[i] = separate[0][i] + separate[1][i] + separate[2][i];
  EXPECT_EQ(counters(shared), expected);
}

TEST_P(CountingTest, OnlyTheFirst1024BytesOfABlockAreCounters) {
  const auto picture = randomPicture(5, 5);
  const std::vector<uint8_t> bytes(1100, 7);
  const auto large = makeObject<MemoryBlock>(bytes);
  std::vector<Value> blocks = {objectValue(large), Nil{}, Nil{}};
  EXPECT_EQ(countColors(picture, blocks), 25);
  EXPECT_NE(large->bytes, bytes);
  EXPECT_TRUE(std::equal(bytes.begin() + 1024, bytes.end(), large->bytes.begin() + 1024));
}

TEST_P(CountingTest, ShortBlocksAreRefused) {
  const auto picture = randomPicture(5, 5);
  for (const size_t size : {size_t{0}, size_t{1}, size_t{1020}, size_t{1023}}) {
    for (size_t position = 0; position < 3; ++position) {
      std::vector<Value> blocks = {block({}), block({}), block({})};
      const auto small = makeObject<MemoryBlock>(std::vector<uint8_t>(size, 9));
      blocks[position] = objectValue(small);
      EXPECT_EQ(countColors(picture, blocks), -1) << size;
      EXPECT_EQ(small->bytes, std::vector<uint8_t>(size, 9));
      for (size_t i = 0; i < 3; ++i) {
        if (i != position) {
          EXPECT_EQ(counters(blocks[i]), Histogram{}) << "nothing is written";
        }
      }
    }
  }
}

TEST_P(CountingTest, NothingBehindABlockIsTouched) {
  guardMemoryBlocks();
  const auto picture =
      drawnPicture(256, 1, [](int32_t x, int32_t) { return static_cast<uint32_t>(x) * 0x010101; });
  for (const size_t size : {size_t{1024}, size_t{1023}, size_t{4}}) {
    const auto small = memoryBlock(std::vector<uint8_t>(size));
    std::vector<Value> blocks = {objectValue(small), objectValue(small), objectValue(small)};
    EXPECT_EQ(countColors(picture, blocks), size == 1024 ? 256 : -1);
  }
}

TEST_P(CountingTest, NewBlocksAreClearedBeforeCounting) {
  runtime().replacedServices["newMemoryBlock"] = reinterpret_cast<void*>(+[](int32_t size)
                                                                             -> Object* {
    return makeObject<MemoryBlock>(std::vector<uint8_t>(static_cast<size_t>(size), 0xEE)).detach();
  });
  const auto picture = randomPicture(8, 8);
  Histograms expected{};
  add(*picture, expected);
  std::vector<Value> blocks = {Nil{}, Nil{}, Nil{}};
  EXPECT_EQ(countColors(picture, blocks), 64);
  expectCounters(blocks, expected);
}

TEST_P(CountingTest, NilCountsNothingButGetsItsBlocks) {
  EXPECT_EQ(countColor(nullptr, 0), 0);
  std::vector<Value> blocks = {Nil{}, block({}), Nil{}};
  EXPECT_EQ(countColors(nullptr, blocks), -1);
  expectCounters(blocks, {});
}

int32_t blocksToGive;

TEST_P(CountingTest, WithoutAllBlocksNothingIsCounted) {
  const auto picture = randomPicture(4, 4);
  for (int32_t given = 0; given < 3; ++given) {
    blocksToGive = given;
    runtime().replacedServices["newMemoryBlock"] =
        reinterpret_cast<void*>(+[](int32_t size) -> Object* {
          if (--blocksToGive < 0) return nullptr;
          return makeObject<MemoryBlock>(std::vector<uint8_t>(static_cast<size_t>(size))).detach();
        });
    std::vector<Value> blocks = {Nil{}, Nil{}, Nil{}};
    EXPECT_EQ(pictureCalls([&] { EXPECT_EQ(countColors(picture, blocks), -1); }), Calls{});
    const auto kept = std::ranges::count_if(
        blocks, [](const Value& value) { return objectOf(value) != nullptr; });
    EXPECT_EQ(kept, given);
  }
}

TEST_P(CountingTest, FailingCallsLeaveNothingBehind) {
  const auto picture = randomPicture(7, 4);
  expectNothingLeftByFailures([&] {
    const Unchanged unchanged(picture);
    const int32_t count = countColor(picture, picture->pixel(0, 0));
    EXPECT_GE(count, 0);
    std::vector<Value> blocks = {Nil{}, block({}), Nil{}};
    const int32_t counted = countColors(picture, blocks);
    EXPECT_TRUE(counted == -1 || counted == 28);
    Histogram sums = counters(blocks[1]);
    EXPECT_EQ(std::accumulate(sums.begin(), sums.end(), 0U), counted == 28 ? 28U : 0U);
  });
}

// --- Which lock or reader is taken -------------------------------------------

class CountingCallsTest : public PluginTest {
 protected:
  /// A picture with 3 pixels of the colour 0x104080.
  static Ref<Picture> picture(Storage storage, int32_t depth = 32) {
    auto made = Picture::create(storage, 5, 4, depth);
    made->fill(1, 1, 3, 1, 0x104080);
    return made;
  }
  static Calls callsOfCountColor(const Ref<Picture>& counted) {
    return callsDuring([&] { EXPECT_EQ(countColor(counted, 0x104080), 3); });
  }
  static Calls callsOfCountColors(const Ref<Picture>& counted) {
    std::vector<Value> blocks = {Nil{}, Nil{}, Nil{}};
    auto calls = pictureCalls([&] { EXPECT_EQ(countColors(counted, blocks), 20); });
    EXPECT_EQ(counters(blocks[0])[0x10], 3U);
    return calls;
  }
};

TEST_F(CountingCallsTest, GWorldsAreCountedInPlace) {
  const Calls expected = joined({openGWorld, closeGWorldLock});
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld)), expected);
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld)), expected);
}

TEST_F(CountingCallsTest, BitmapsAreCountedInPlace) {
  const Calls settled = joined({openBitmap, closeBitmapLock});
  EXPECT_EQ(callsOfCountColor(picture(Storage::Bitmap)), joined({refuse, settled}));
  EXPECT_EQ(callsOfCountColor(picture(Storage::Bitmap)), settled);
}

TEST_F(CountingCallsTest, GWorldsOfDepth24AreCountedInPlace) {
  const Calls inPlace = joined({openGWorld, closeGWorldLock});
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld, 24)),
            joined({refuseDepth, refuse, inPlace}));
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld, 24)), joined({refuseDepth, inPlace}));
}

TEST_F(CountingCallsTest, OthersAreCountedInACopy) {
  EXPECT_EQ(callsDuring([] { countColor(picture(Storage::GWorld, 16), 0); }),
            joined({refuseDepth, refuse, refuseDepth, refuseDepth, makeCopy, openGWorld, dropCopy,
                    closeGWorld}));
  EXPECT_EQ(callsOfCountColor(picture(Storage::Context)),
            joined({refuse, refuse, refuse, refuse, makeCopy, openGWorld, dropCopy, closeGWorld}));
}

TEST_F(CountingCallsTest, LocksAndReadersSettleIndependently) {
  EXPECT_EQ(countColor(picture(Storage::GWorld), 0x104080), 3);
  EXPECT_EQ(callsOfCountColor(picture(Storage::Bitmap)),
            joined({refuse, refuse, refuse, openBitmap, closeBitmap}))
      << "the row-table lock refuses, the row-table reader is still free";
}

TEST_F(CountingCallsTest, ReadersServeGWorldsOnceABitmapWasLocked) {
  EXPECT_EQ(countColor(picture(Storage::Bitmap), 0x104080), 3);
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld)), joined({refuse, openGWorld, closeGWorld}));
}

TEST_F(CountingCallsTest, HistogramsTryTheRowTableFirst) {
  const Calls settled = joined({openGWorld, closeGWorld});
  EXPECT_EQ(callsOfCountColors(picture(Storage::GWorld)), joined({refuse, settled}));
  EXPECT_EQ(callsOfCountColors(picture(Storage::GWorld)), settled);
  EXPECT_EQ(callsOfCountColors(picture(Storage::GWorld, 24)),
            joined({refuseDepth, makeCopy, openGWorld, dropCopy, closeGWorld}));
}

TEST_F(CountingCallsTest, HistogramsOfBitmaps) {
  const Calls expected = joined({openBitmap, closeBitmap});
  EXPECT_EQ(callsOfCountColors(picture(Storage::Bitmap)), expected);
}

TEST_F(CountingCallsTest, UnusableBitmapsSettleNoLock) {
  for (void (*spoil)(qrz::HostBitmap&) : {
           +[](qrz::HostBitmap& bitmap) { bitmap.kind = 1; },
           +[](qrz::HostBitmap& bitmap) { bitmap.ready = 0; },
           +[](qrz::HostBitmap& bitmap) { bitmap.rowTable = nullptr; },
       }) {
    const auto unusable = picture(Storage::Bitmap);
    spoil(bitmapOf(unusable));
    EXPECT_EQ(countColor(unusable, 0x104080), 0);
    EXPECT_EQ(unusable->locks(), 0);
  }
  EXPECT_EQ(callsOfCountColor(picture(Storage::GWorld)), joined({openGWorld, closeGWorldLock}));
}

TEST_F(CountingCallsTest, RowsWithoutAddressAreNotFollowed) {
  const auto holed = picture(Storage::Bitmap);
  bitmapOf(holed).rowTable[0] = nullptr;
  bitmapOf(holed).rowTable[3] = nullptr;
  EXPECT_EQ(countColor(holed, 0x104080), 3) << "the lock does not test the rows";
  std::vector<Value> blocks = {Nil{}, Nil{}, Nil{}};
  EXPECT_EQ(countColors(holed, blocks), -1) << "the reader does";
  expectCounters(blocks, {});
}

}  // namespace
}  // namespace host
