// Clips and masks in PICT data that are no rectangles.

#include "tests/support/pict_layout.h"

namespace host {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;
constexpr int kWidth = 20;
constexpr int kHeight = 12;
// Where the frame starts.
constexpr int kLeft = 30;
constexpr int kTop = -5;

using Bits = std::vector<bool>;  // one for each pixel

bool isInside(const Bits& bits, int x, int y) {
  if (x < 0 || y < 0 || x >= kWidth || y >= kHeight) return false;
  return bits[static_cast<size_t>(y * kWidth + x)];
}

/// The rows of a region: where an odd number of four neighbours is inside, the
/// region has a corner.
Bytes rowsOf(const Bits& bits) {
  PictLayout rows(1);
  for (int y = 0; y <= kHeight; ++y) {
    bool isEmpty = true;
    for (int x = 0; x <= kWidth; ++x) {
      const bool changesHere = isInside(bits, x, y) != isInside(bits, x - 1, y);
      const bool changesAbove = isInside(bits, x, y - 1) != isInside(bits, x - 1, y - 1);
      if (changesHere == changesAbove) continue;
      if (isEmpty) rows.put16(static_cast<uint32_t>(kTop + y));
      isEmpty = false;
      rows.put16(static_cast<uint32_t>(kLeft + x));
    }
    if (!isEmpty) rows.put16(0x7FFF);
  }
  return rows.put16(0x7FFF).bytes();
}

void putFrame(PictLayout& layout) { layout.putBox(kTop, kLeft, kTop + kHeight, kLeft + kWidth); }

class PictRegionTest : public PictTest {
 protected:
  Bits randomBits() {
    const uint32_t kind = random() % 4;
    Bits bits;
    for (uint32_t y = 0; y < kHeight; ++y) {
      for (uint32_t x = 0; x < kWidth; ++x) {
        const bool shapes[] = {random() % 2 != 0, x / 3 % 2 != 0, y / 2 % 2 != 0, x + y < 18};
        bits.push_back(shapes[kind]);
      }
    }
    return bits;
  }

  /// Puts a region around the frame with these rows.
  static void putRegion(PictLayout& layout, const Bytes& rows) {
    layout.put16(static_cast<uint32_t>(10 + rows.size()));
    putFrame(layout);
    layout.put(rows);
  }

  /// Random pixels that fill the frame.
  Bytes clippedData(int version, const Bytes& clip, const Bytes& mask) {
    values = {kWidth, kHeight, {}};
    for (int i = 0; i < kWidth * kHeight; ++i) values.values.push_back(random() & 0x00FFFFFF);
    const PictPixels pixels{0x9B, 32, 4, 3};
    PictLayout layout(version);
    layout.start(kTop, kLeft, kTop + kHeight, kLeft + kWidth).putOpcode(0x01);
    putRegion(layout, clip);
    layout.putOpcode(pixels.opcode);
    putMap(layout, pixels, 4 * kWidth, kTop, kLeft, values, {}, false);
    putFrame(layout);  // from the map's coordinates
    putFrame(layout);  // to the same of the picture
    layout.put16(0);
    putRegion(layout, mask);
    putRows(layout, pixels, 4 * kWidth, values, random);
    return layout.finish();
  }

  PictValues values;  ///< of the data
};

TEST_F(PictRegionTest, PixelsInsideTheClipAndTheMaskAreDrawn) {
  for (int i = 0; i < 300; ++i) {
    const Bits clip = randomBits();
    const Bits mask = randomBits();
    const Bytes data = clippedData(1 + i % 2, rowsOf(clip), rowsOf(mask));
    for (const int scale : {1, 3}) {
      Words expected;
      for (int y = 0; y < kHeight * scale; ++y) {
        for (int x = 0; x < kWidth * scale; ++x) {
          const auto pixel = static_cast<size_t>(y / scale * kWidth + x / scale);
          expected.push_back(clip[pixel] && mask[pixel] ? values.values[pixel] : kWhite);
        }
      }
      ASSERT_EQ(drawn(data, kWidth * scale, kHeight * scale), expected) << i << " " << scale;
    }
  }
}

TEST_F(PictRegionTest, NothingOutsideTheBoxOfARegionIsDrawn) {
  const Bytes rows = hex("8000 8000 7FFE 7FFF 7FFE 8000 7FFE 7FFF 7FFF");
  const Bytes data = clippedData(2, rows, rows);
  EXPECT_EQ(drawn(data, kWidth, kHeight), values.values);
  EXPECT_EQ(drawn(clippedData(2, rows, hex("7FFF")), kWidth, kHeight),
            Words(kWidth * kHeight, kWhite));
}

TEST_F(PictRegionTest, DamagedRegionsEndTheDrawing) {
  const Bytes whole = rowsOf(Bits(kWidth * kHeight, true));
  const Words nothing(kWidth * kHeight, kWhite);
  for (const char* rows : {
           "FFFB",                                          // a row without an end
           "FFFB 001E 0032",                                // the same with edges
           "FFFB 001E 0032 7FFF 0007 001E 0032 7FFF",       // no end of the region
           "FFFB 001E 7FFF 0007 001E 7FFF 7FFF",            // an odd number of edges
           "FFFB 0032 001E 7FFF 0007 001E 0032 7FFF 7FFF",  // to the left
           "FFFB 001E 001E 7FFF 0007 001E 0032 7FFF 7FFF",  // the same edge twice
           "0007 001E 0032 7FFF FFFB 001E 0032 7FFF 7FFF",  // upwards
           "FFFB 001E 0032 7FFF FFFB 001E 0032 7FFF 7FFF",  // the same row twice
       }) {
    EXPECT_EQ(drawn(clippedData(2, hex(rows), whole), kWidth, kHeight), nothing) << rows;
    EXPECT_EQ(drawn(clippedData(2, whole, hex(rows)), kWidth, kHeight), nothing) << rows;
  }
  const Bytes more = joined({whole, hex("EEEE")});  // no damage
  const Bytes data = clippedData(2, more, more);
  EXPECT_EQ(drawn(data, kWidth, kHeight), values.values);
  PictLayout tooShort(2);
  tooShort.start(0, 0, 1, 1).putOpcode(0x01).put16(9).put(Bytes(7, 0));
  EXPECT_EQ(drawn(tooShort.finish(), 1, 1), Words(1, kWhite));
}

/// Many edges that change in many rows, and few pixels: it ends soon.
TEST_F(PictRegionTest, ClipsOfManyEdgesAreLimited) {
  PictLayout rows(1);
  rows.put16(0x8000);
  for (uint32_t x = 0; x < 16000; ++x) rows.put16(0x8000 + x);
  rows.put16(0x7FFF);
  for (uint32_t y = 1; y < 4000; ++y) rows.put16(0x8000 + y).put32(0x70007001).put16(0x7FFF);
  rows.put16(0x7FFF);
  const PictPixels pixels{0x9A, 32, 0, 3};
  PictLayout layout(2);
  layout.start(-0x8000, -0x8000, 0x7000, 0x7000).putOpcode(0x01);
  layout.put16(static_cast<uint32_t>(10 + rows.bytes().size()));
  layout.putBox(-0x8000, -0x8000, 0x7FFF, 0x7FFF).put(rows.bytes());
  for (uint32_t i = 0; i < 3000; ++i) {
    layout.putOpcode(0x9A);
    putMap(layout, pixels, 4, 0, 0, {1, 1, {}}, {}, false);
    layout.putBox(0, 0, 1, 1).putBox(-0x8000, -0x8000, 0x7000, 0x7000).put16(0).put32(i);
  }
  const Words words = drawn(layout.finish(), 4, 4);
  EXPECT_TRUE(std::all_of(words.begin(), words.end(),
                          [](uint32_t word) { return word == kWhite || word < 10; }));
}

/// One column drawn again and again behind a clip of many edges.
TEST_F(PictRegionTest, ColumnsBehindManyEdgesAreLimited) {
  constexpr int kSize = 4000;
  PictLayout rows(1);
  for (const int y : {0, kSize}) {
    rows.put16(static_cast<uint32_t>(y));
    for (uint32_t x = 0; x < kSize; ++x) rows.put16(x);
    rows.put16(0x7FFF);
  }
  rows.put16(0x7FFF);
  PictLayout layout(2);
  layout.start(0, 0, kSize, kSize).putOpcode(0x01);
  layout.put16(static_cast<uint32_t>(10 + rows.bytes().size()));
  layout.putBox(0, 0, kSize, kSize).put(rows.bytes());
  for (int i = 0; i < 100000; ++i) {
    layout.putOpcode(0x90).put16(2).putBox(0, 0, 1, 1).putBox(0, 0, 1, 1);
    layout.putBox(0, kSize - 2, kSize, kSize).put16(0).put16(0x8000);
  }
  const Words words = drawn(layout.finish(), kSize, kSize);
  EXPECT_EQ(words[kSize - 2], 0U) << "between an even and an odd edge";
  EXPECT_EQ(words[kSize - 1], kWhite);
}

}  // namespace
}  // namespace host
