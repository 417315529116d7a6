// PICT data as it is drawn, also laid out by hand and damaged.

#include <algorithm>
#include <sstream>

#include "host/core/runtime.h"
#include "tests/support/pict.h"

namespace host {
namespace {

class PictDrawingTest : public PictTest {};

TEST_F(PictDrawingTest, ResolutionsScaleToTheFrame) {
  const auto source = randomPicture(12, 8);
  for (const int32_t dpi : {36, 48, 72, 144}) {
    OpenCPicParams parameters = parametersFor(12, 8);
    parameters.hRes = dpi << 16;
    PicHandle data = OpenCPicture(&parameters);
    drawPrimitive(source, parameters.srcRect);
    ClosePicture();
    const auto picture = pictureOver(data);
    ASSERT_EQ(picture->width(), 12 * 72 / dpi);
    ASSERT_EQ(picture->height(), 8);
    for (int32_t x = 0; x < picture->width(); ++x) {
      EXPECT_EQ(picture->pixel(x, 5), source->pixel(x * dpi / 72, 5)) << dpi << " dpi";
    }
  }
}

/// Two pixels, red and green, in a frame of four by one.
Bytes twoPixels(const std::string& before, const std::string& opcode = "009A",
                const std::string& region = "", const std::string& components = "0003",
                const std::string& row = "07 05 FF00 00FF 0000") {
  Bytes map =
      hex("000000FF 8008 0000 0000 0001 0002 0000 0004 00000000 00480000 00480000 0010"
          "0020" +
          components +
          "0008 00000000 00000000 00000000"
          "0000 0000 0001 0002 0000 0001 0001 0003 0000");
  return joined({hex("0000 0000 0000 0001 0004 0011 02FF 0C00 FFFF 0000 00000000 00000000 00000000"
                     "00000000 00000000"),
                 hex(before + opcode), map, hex(region + row), hex("00FF")});
}

constexpr uint32_t kRed = 0x00FF0000;
constexpr uint32_t kGreen = 0x0000FF00;
constexpr uint32_t kWhite = 0x00FFFFFF;

TEST_F(PictDrawingTest, OtherOpcodesAreSkipped) {
  const std::string data(2 * 260, 'E');
  std::istringstream opcodes(
      "0000, 0002 0102030405060708, 0004 0100, 0005 0024, 0008 0008, "
      "0010 0001000100010001, 0012 0002 0102030405060708 000000000000, 001A FFFF00000000, "
      "001C, 001E, 0023 0102, 0024 0003 EEEEEE00, 0028 00010002 04 41424344 00, "
      "0028 00010002 03 414243, 0029 01 02 4141, 002B 0101 01 41, "
      "002C 0007 0004 04 41424344 00, 002E 0008 0000000000000000, 0031 0000000000010001, "
      "0038, 0047 0000000000010001, 0061 000000000001000100000000, 0068 00000000, "
      "0070 000E 0000000000010001 00000000, 0078, 0081 000C 0000000000010001 0000, 0088, "
      "0092 0003 EEEEEE00, 009C 0002 EEEE, 00A0 0001, 00A1 0064 0003 EEEEEE00, "
      "00A2 0001 EE00, 00B0, 00D0 00000003 EEEEEE00, 0100 EEEE, 01FF EEEE, 0200 EEEEEEEE, "
      "8000, 80FF, 8100 00000005 EEEEEEEEEE 00, 8200 00000002 EEEE");
  for (std::string before; std::getline(opcodes, before, ',');) {
    EXPECT_EQ(drawn(twoPixels(before), 4, 1), (Words{kWhite, kRed, kGreen, kWhite})) << before;
  }
  EXPECT_EQ(drawn(twoPixels("7F00" + data.substr(0, 2 * 254)), 4, 1)[1], kRed);
  EXPECT_EQ(drawn(twoPixels("FFFF 00000104" + data), 4, 1)[1], kRed);
  for (const std::string before : {"0070 0001", "0001 0004", "00FF", "00D0 7FFFFFFF",
                                   "FFFF FFFFFFFF", "0012 0001 0102030405060708"}) {
    EXPECT_EQ(drawn(twoPixels(before), 4, 1), Words(4, kWhite)) << before;
  }
}

TEST_F(PictDrawingTest, ClipsOriginsRegionsAndAlpha) {
  const std::string region = "000A 0000 0002 0001 0009";
  const Words rightOnly = {kWhite, kWhite, kGreen, kWhite};
  EXPECT_EQ(drawn(twoPixels("0001" + region), 4, 1), rightOnly);
  EXPECT_EQ(drawn(twoPixels("", "009B", region), 4, 1), rightOnly);
  EXPECT_EQ(drawn(twoPixels("000C 0001 0000"), 4, 1), (Words{kRed, kGreen, kWhite, kWhite}));
  EXPECT_EQ(drawn(twoPixels("", "009A", "", "0004", "09 07 1122 FF00 00FF 0000"), 4, 1),
            (Words{kWhite, kRed, kGreen, kWhite}));
  EXPECT_EQ(drawn(twoPixels(""), 8, 2),
            (Words{kWhite, kWhite, kRed, kRed, kGreen, kGreen, kWhite, kWhite, kWhite, kWhite, kRed,
                   kRed, kGreen, kGreen, kWhite, kWhite}));
  EXPECT_EQ(drawn(twoPixels("", "009A", "", "0003", "08 80 05 FF00 00FF 0000"), 4, 1),
            (Words{kWhite, kRed, kGreen, kWhite}))
      << "a count of 128 stands for nothing";
  std::string farOrigin;
  for (int i = 0; i < 70000; ++i) farOrigin += "000C 7FFF 7FFF";
  EXPECT_EQ(drawn(twoPixels(farOrigin), 4, 1), Words(4, kWhite));
}

TEST_F(PictDrawingTest, TruncatedDataShowsWhatCameBefore) {
  const auto source = randomPicture(70, 3);
  const Bytes data = recordedBytes(source);
  ptrdiff_t before = 0;
  for (size_t size = 0; size <= data.size(); ++size) {
    const Words words = drawn({data.begin(), data.begin() + static_cast<ptrdiff_t>(size)}, 70, 3);
    Words expected = colors(*source);
    const ptrdiff_t count = std::ranges::mismatch(words, expected).in1 - words.begin();
    std::fill(expected.begin() + count, expected.end(), kWhite);
    EXPECT_EQ(words, expected);
    EXPECT_GE(count, before) << size << " bytes";
    before = count;
  }
  EXPECT_EQ(before, 210);
}

/// An exception could not pass through the plug-in.
TEST_F(PictDrawingTest, WhatIsTooLargeToDrawIsLeftUndoneForThePlugin) {
  const Bytes data = hex("0000 0000 0000 7FFF 7FFF 1101 FF");
  Handle handle = nullptr;
  ASSERT_EQ(PtrToHand(data.data(), &handle, static_cast<long>(data.size())), 0);
  const auto picture = pictureOver(reinterpret_cast<PicHandle>(handle));
  EXPECT_EQ(picture->describe(), "Picture 32767x32767 (PICT data)");
  const auto copy = pictureOf(2, 1, {kRed, kGreen});
  const auto graphics = makeObject<Graphics>(copy);
  using Draw =
      void(void*, void*, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t, int32_t);
  auto* draw = reinterpret_cast<Draw*>(resolveService("RuntimeGraphicsDrawPicture"));
  draw(graphics.get(), picture.get(), 0, 0, 2, 1, 0, 0, 2, 1);
  EXPECT_EQ(copy->pixels(), (Words{kRed, kGreen}));
}

}  // namespace
}  // namespace host
