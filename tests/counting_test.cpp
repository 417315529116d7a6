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
  return objectValue(memoryBlock(bytes));
}

Histogram counters(const Value& block) {
  Histogram result{};
  const auto& bytes = objectAs<MemoryBlock>(block)->bytes;
  EXPECT_EQ(bytes.size(), sizeof result);
  memcpy(result.data(), bytes.data(), std::min(bytes.size(), sizeof result));
  return result;
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

TEST_P(CountingTest, OneExactColour) {
  const auto picture = randomPicture(61, 5);
  const Unchanged unchanged(picture);
  const uint32_t there = picture->pixel(60, 4);
  for (const uint32_t color : {there, 0xFFFFFFU, 0U, there ^ 0x010000, there ^ 1}) {
    const auto expected = std::ranges::count(colorsOf(*picture), color);
    EXPECT_EQ(countColor(picture, color), expected);
    EXPECT_EQ(countColor(picture, color | 0xFF000000), expected);
  }
}

TEST_P(CountingTest, HistogramsAddUpAndNewOnesStartAtZero) {
  runtime().replacedServices["newMemoryBlock"] =
      reinterpret_cast<void*>(+[](int32_t size) -> Object* {
        return memoryBlock(std::vector<uint8_t>(static_cast<size_t>(size), 0xEE)).detach();
      });
  std::vector<Value> kept = {block({}), block({}), block({})};
  const auto before = kept;
  const Value shared = block({});
  Histograms all{};
  for (const int32_t width : {33, 1, 70}) {
    const auto picture = randomPicture(width, 3);
    const Unchanged unchanged(picture);
    Histograms expected{};
    add(*picture, expected);
    add(*picture, all);
    std::vector<Value> made = {Nil{}, Nil{}, Nil{}};
    std::vector<Value> one = {shared, shared, shared};
    for (auto* blocks : {&made, &kept, &one}) {
      EXPECT_EQ(countColors(picture, *blocks), width * 3);
    }
    expectCounters(made, expected);
  }
  EXPECT_EQ(kept, before) << "blocks that were passed stay";
  expectCounters(kept, all);
  Histogram sums{};
  for (size_t i = 0; i < 256; ++i) sums[i] = all[0][i] + all[1][i] + all[2][i];
  EXPECT_EQ(counters(shared), sums) << "one block three times";
}

TEST_P(CountingTest, TheFirst1024BytesOfABlockAreCounters) {
  const auto picture = randomPicture(5, 5);
  Histograms all{};
  add(*picture, all);
  for (const size_t size : {0U, 1U, 1020U, 1023U, 1024U, 1100U}) {
    const bool isEnough = size >= 1024;
    for (size_t position = 0; position < 3; ++position) {
      std::vector<Value> blocks = {block({}), block({}), block({})};
      const auto other = memoryBlock(std::vector<uint8_t>(size));
      blocks[position] = objectValue(other);
      EXPECT_EQ(countColors(picture, blocks), isEnough ? 25 : -1) << size;
      for (size_t i = 1024; i < size; ++i) EXPECT_EQ(other->bytes[i], 0);
      other->bytes.resize(1024);
      expectCounters(blocks, isEnough ? all : Histograms{});
    }
  }
}

TEST_P(CountingTest, NilCountsNothingButGetsItsBlocks) {
  EXPECT_EQ(countColor(nullptr, 0), 0);
  std::vector<Value> blocks = {Nil{}, block({}), Nil{}};
  EXPECT_EQ(countColors(nullptr, blocks), -1);
  expectCounters(blocks, {});
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
  static Calls callsOfCountColor(Storage storage, int32_t depth = 32) {
    return callsDuring([&] {
      const int32_t expected = depth == 16 ? 0 : 3;  // which cannot hold the colour
      EXPECT_EQ(countColor(picture(storage, depth), 0x104080), expected);
    });
  }
  static Calls callsOfCountColors(Storage storage, int32_t depth = 32) {
    std::vector<Value> blocks = {Nil{}, Nil{}, Nil{}};
    auto calls = callsDuring([&] { EXPECT_EQ(countColors(picture(storage, depth), blocks), 20); });
    std::erase_if(calls, [](const std::string& name) {
      return name == "newMemoryBlock" || name.starts_with("memoryBlock");
    });
    return calls;
  }
  const Calls inPlace = joined({openGWorld, closeGWorldLock});
};

TEST_F(CountingCallsTest, GWorlds) {
  EXPECT_EQ(callsOfCountColor(Storage::GWorld), inPlace);
  EXPECT_EQ(callsOfCountColor(Storage::GWorld), inPlace);
  EXPECT_EQ(callsOfCountColor(Storage::GWorld, 24), joined({refuseDepth, inPlace}));
  EXPECT_EQ(callsOfCountColor(Storage::Bitmap),
            joined({refuse, refuse, refuse, openBitmap, closeBitmap}))
      << "the row-table lock refuses, the row-table reader is still free";
}

TEST_F(CountingCallsTest, Bitmaps) {
  const Calls settled = joined({openBitmap, closeBitmapLock});
  EXPECT_EQ(callsOfCountColor(Storage::Bitmap), joined({refuse, settled}));
  EXPECT_EQ(callsOfCountColor(Storage::Bitmap), settled);
  EXPECT_EQ(callsOfCountColor(Storage::GWorld), joined({refuse, openGWorld, closeGWorld}));
}

TEST_F(CountingCallsTest, OthersAreCountedInPlaceOrInACopy) {
  const Calls copied = joined({makeCopy, openGWorld, dropCopy, closeGWorld});
  EXPECT_EQ(callsOfCountColor(Storage::GWorld, 16),
            joined({refuseDepth, refuse, refuseDepth, refuseDepth, copied}));
  EXPECT_EQ(callsOfCountColor(Storage::Context), joined({refuse, refuse, refuse, refuse, copied}));
  EXPECT_EQ(callsOfCountColor(Storage::GWorld, 24), joined({refuseDepth, refuse, inPlace}));
  EXPECT_EQ(callsOfCountColor(Storage::GWorld, 24), joined({refuseDepth, inPlace}));
}

TEST_F(CountingCallsTest, HistogramsTryTheRowTableFirst) {
  const Calls settled = joined({openGWorld, closeGWorld});
  EXPECT_EQ(callsOfCountColors(Storage::GWorld), joined({refuse, settled}));
  EXPECT_EQ(callsOfCountColors(Storage::GWorld), settled);
  EXPECT_EQ(callsOfCountColors(Storage::GWorld, 24),
            joined({refuseDepth, makeCopy, openGWorld, dropCopy, closeGWorld}));
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
  EXPECT_EQ(callsOfCountColor(Storage::GWorld), inPlace);
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
