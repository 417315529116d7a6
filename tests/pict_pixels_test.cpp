// Pixels in PICT data in every form, against data laid out by hand.

#include "tests/support/pict_layout.h"

namespace host {
namespace {

constexpr uint32_t kWhite = 0x00FFFFFF;

class PictPixelsTest : public PictTest {
 protected:
  /// Random values with runs of equal ones.
  PictValues randomValues(int depth, int width, int height) {
    PictValues result{width, height, {}};
    uint32_t last = 0;
    for (int i = 0; i < width * height; ++i) {
      if (random() % 3 != 0) last = random();
      result.values.push_back(depth == 32 ? last : last & ((1U << depth) - 1));
    }
    return result;
  }

  std::vector<uint16_t> randomColors(int depth) {
    std::vector<uint16_t> colors(depth <= 8 ? 3U << depth : 0);
    for (uint16_t& color : colors) color = static_cast<uint16_t>(random());
    return colors;
  }

  /// The colour that a value stands for.
  static uint32_t colorOf(const PictPixels& pixels, uint32_t value,
                          const std::vector<uint16_t>& colors) {
    if (pixels.isPlainBitmap) return value != 0 ? 0 : kWhite;
    if (pixels.depth == 32) return value & 0x00FFFFFF;
    uint32_t color = 0;
    for (uint32_t k = 0; k < 3; ++k) {
      const uint32_t five = value >> (10 - 5 * k) & 31;
      const uint32_t eight =
          pixels.depth == 16 ? 8 * five + five / 4 : uint32_t{colors[3 * value + k]} >> 8;
      color = color << 8 | eight;
    }
    return color;
  }

  /// Puts a map anywhere in the plane into a frame anywhere, and draws it.
  void check(const PictPixels& pixels, int width, int rowBytes, int version) {
    const PictValues values = randomValues(pixels.depth, width, 3);
    const auto colors = randomColors(pixels.depth);
    PictLayout layout(version);
    layout.start(-7, 100, -4, 100 + width).putOpcode(pixels.opcode);
    putMap(layout, pixels, rowBytes, 5, -3, values, colors, random() % 2 == 0);
    layout.putBox(5, -3, 8, width - 3).putBox(-7, 100, -4, 100 + width).put16(0);
    if (pixels.opcode % 2 != 0) layout.put16(10).putBox(-7, 100, -4, 100 + width);
    putRows(layout, pixels, rowBytes, values, random);
    Words expected;
    for (const uint32_t value : values.values) expected.push_back(colorOf(pixels, value, colors));
    EXPECT_EQ(drawn(layout.finish(), width, 3), expected)
        << std::hex << "opcode " << pixels.opcode << std::dec << ", " << pixels.depth
        << " bits, pack type " << pixels.packType << ", " << pixels.components << " components, "
        << width << " wide, row bytes " << rowBytes << ", version " << version;
  }
};

TEST_F(PictPixelsTest, IndexedMapsAndBitmapsOfAnyRowBytes) {
  for (const int rowBytes : {2, 4, 6, 8, 10, 126, 128, 130, 200, 202, 248, 250, 252, 256, 1000}) {
    for (const int depth : {1, 2, 4, 8}) {
      for (const uint32_t opcode : {0x90U, 0x91U, 0x98U, 0x99U}) {
        for (const int version : {1, 2}) {
          for (const bool isPlain : {false, true}) {
            if (isPlain && depth != 1) continue;
            const PictPixels pixels{opcode, depth, 0, 1, isPlain, opcode >= 0x98};
            const int widest = 8 * rowBytes / depth;
            check(pixels, widest, rowBytes, version);
            check(pixels, std::max(1, widest - 8 / depth), rowBytes, version);
            check(pixels, std::max(1, widest / 2 - 1), rowBytes, version);
          }
        }
      }
    }
  }
}

TEST_F(PictPixelsTest, RowsOfTheUnpackedOpcodeThatArePackedAllTheSame) {
  for (const int rowBytes : {8, 250, 252}) {
    check({0x90, 8}, rowBytes, rowBytes, 2);
    check({0x91, 1, 0, 1, true}, 8 * rowBytes, rowBytes, 1);
  }
}

TEST_F(PictPixelsTest, DirectMapsOfEveryPackType) {
  for (const int width : {1, 2, 3, 4, 62, 63, 66, 67, 83, 84, 124, 125, 126, 127, 300, 4000}) {
    for (const uint32_t opcode : {0x9AU, 0x9BU}) {
      for (const int packType : {0, 1, 2, 4}) {
        for (const int components : {3, 4}) {
          check({opcode, 32, packType, components}, width, 4 * width, 2);
        }
      }
      for (const int packType : {0, 1, 3}) {
        const PictPixels pixels{opcode, 16, packType, 3};
        check(pixels, width, 2 * width, 2);
        check(pixels, width, 2 * width + 2, 2);
        check({0x98, 16, packType, 3}, width, 2 * width, 2);  // with a colour table
      }
    }
  }
}

TEST_F(PictPixelsTest, MapsThatCannotBe) {
  const auto draws = [&](const PictPixels& pixels, int rowBytes) {
    PictLayout layout(2);
    layout.start(0, 0, 2, 20).putOpcode(pixels.opcode);
    const PictValues values{20, 2, Words(40, 0)};
    putMap(layout, pixels, rowBytes, 0, 0, values, std::vector<uint16_t>(768), true);
    layout.putBox(0, 0, 2, 20).putBox(0, 0, 2, 20).put16(0);
    layout.put(Bytes(1000, 0));
    return drawn(layout.finish(), 20, 2) != Words(40, kWhite);
  };
  EXPECT_TRUE(draws({0x9A, 32, 1, 3}, 80));
  EXPECT_FALSE(draws({0x9A, 32, 1, 3}, 78)) << "rows too short for the pixels";
  EXPECT_FALSE(draws({0x9A, 32, 3, 3}, 80)) << "words of 32 bits";
  EXPECT_FALSE(draws({0x9A, 32, 5, 3}, 80));
  EXPECT_FALSE(draws({0x9A, 16, 2, 3}, 40));
  EXPECT_FALSE(draws({0x9A, 16, 4, 3}, 40));
  EXPECT_FALSE(draws({0x9A, 8, 1, 1}, 20)) << "indexed without colours";
  EXPECT_FALSE(draws({0x9A, 24, 1, 3}, 60));
  EXPECT_FALSE(draws({0x98, 3, 0, 1}, 20));
}

TEST_F(PictPixelsTest, ColorsThatAreMissingAreBlack) {
  PictLayout layout(2);
  layout.start(0, 0, 1, 4).putOpcode(0x98).put16(0x8004).putBox(0, 0, 1, 4);
  layout.put(hex("0000 0000 00000000 00480000 00480000 0000 0008 0001 0008")).put(Bytes(12, 0));
  layout.put32(0).put16(0).put16(1).put(hex("0002 1111 2222 3333  0300 EEEE EEEE EEEE"));
  layout.putBox(0, 0, 1, 4).putBox(0, 0, 1, 4).put16(0).put(hex("02 00 FF 02"));
  EXPECT_EQ(drawn(layout.finish(), 4, 1), (Words{0x112233, 0, 0, 0x112233}));
}

TEST_F(PictPixelsTest, SeveralMapsAndAllThatIsBetweenThem) {
  const PictPixels forms[] = {
      {0x98, 8}, {0x9A, 32, 4, 3}, {0x90, 1, 0, 1, true, false}, {0x9A, 16, 3, 3}};
  PictLayout layout(2);
  layout.start(0, 0, 8, 9);
  Words expected(9 * 8, kWhite);
  for (int i = 0; i < 4; ++i) {
    const PictPixels& pixels = forms[i];
    const PictValues values = randomValues(pixels.depth, 7, 3);
    const auto colors = randomColors(pixels.depth);
    const int rowBytes = rowBytesFor(pixels, 7);
    // A pattern with a pixel map, of the fill.
    const PictPixels patternPixels{0x98, 4};
    const PictValues pattern = randomValues(4, 9, 5);
    layout.putOpcode(0x14).put16(1).put(Bytes(8, 0x55));
    putMap(layout, patternPixels, 10, 0, 0, pattern, randomColors(4), false);
    putRows(layout, patternPixels, 10, pattern, random);
    layout.putOpcode(pixels.opcode);
    putMap(layout, pixels, rowBytes, 0, 0, values, colors, true);
    layout.putBox(1, 2, 3, 6).putBox(2 * i, i, 2 * i + 2, i + 4).put16(0);  // the middle
    putRows(layout, pixels, rowBytes, values, random);
    for (int k = 0; k < 8; ++k) {
      const uint32_t value = values.values[static_cast<size_t>((1 + k / 4) * 7 + 2 + k % 4)];
      expected[static_cast<size_t>((2 * i + k / 4) * 9 + i + k % 4)] =
          colorOf(pixels, value, colors);
    }
  }
  EXPECT_EQ(drawn(layout.finish(), 9, 8), expected);
}

TEST_F(PictPixelsTest, WhatIsDrawnIsLimited) {
  // One pixel on all of the canvas, again and again.
  PictLayout layout(2);
  layout.start(0, 0, 1000, 1000);
  constexpr uint32_t kMost = 1000;
  for (uint32_t i = 0; i < kMost; ++i) {
    layout.putOpcode(0x9A);
    const PictPixels pixels{0x9A, 32, 0, 3};
    putMap(layout, pixels, 4, 0, 0, {1, 1, {}}, {}, false);
    layout.putBox(0, 0, 1, 1).putBox(0, 0, 1000, 1000).put16(0).put32(i);
  }
  const Words words = drawn(layout.finish(), 1000, 1000);
  EXPECT_GE(words[0], 40U);
  EXPECT_LT(words[0], 200U);
  EXPECT_EQ(words, Words(1000 * 1000, words[0]));
}

}  // namespace
}  // namespace host
