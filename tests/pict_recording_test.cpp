// PICT data as it is recorded: round trips, its layout, and what is refused.

#include <algorithm>
#include <cstring>

#include "host/core/runtime.h"
#include "tests/support/pict.h"

namespace host {
namespace {

class PictRecordingTest : public PictTest {};

// --- Round trips -------------------------------------------------------------

TEST_F(PictRecordingTest, RecordedPicturesShowTheSamePixels) {
  uint32_t last = 0;
  const std::pair<const char*, std::function<uint32_t()>> kinds[] = {
      {"random", [&] { return random(); }},
      {"flat", [] { return 0x12345678U; }},
      {"runs", [&] { return random() % 4 == 0 ? last = random() & 0x00FF00FF : last; }},
      {"short runs", [&] { return random() % 3 != 0 ? last = random() & 0x03010201 : last; }},
  };
  for (const int32_t width : {1, 2, 3, 42, 43, 62, 63, 66, 67, 83, 84, 200, 4000, 4095}) {
    for (const auto& [kind, pixel] : kinds) {
      const auto source = filled(width, 3, pixel);
      const auto picture = pictureOver(record(source));
      ASSERT_TRUE(picture);
      EXPECT_EQ(picture->describe(), "Picture " + std::to_string(width) + "x3 (PICT data)");
      EXPECT_TRUE(picture->pixels() == colors(*source)) << width << " wide, " << kind;
    }
  }
  const auto tall = randomPicture(2, 32767);
  EXPECT_TRUE(pictureOver(record(tall))->pixels() == colors(*tall));
}

TEST_F(PictRecordingTest, WhatIsDrawnGoesToTheRecordingOnly) {
  CGrafPtr screen = nullptr;
  GDHandle device = nullptr;
  GetGWorld(&screen, &device);
  const auto port = Picture::create(Storage::GWorld, 40, 30);
  const auto expected = Picture::create(Storage::GWorld, 40, 30);
  SetGWorld(static_cast<GWorldPtr>(port->store().data()), nullptr);
  PicHandle data = startRecording(40, 30);
  for (int i = 0; i < 20; ++i) {
    const auto number = [&](int low, int high) {
      return static_cast<int16_t>(low + static_cast<int>(random() % 1000) % (high - low));
    };
    const auto source = randomPicture(number(1, 20), number(1, 20));
    Rect rect{number(-10, 30), number(-10, 40), 0, 0};
    rect.bottom = static_cast<int16_t>(rect.top + number(0, 25));
    rect.right = static_cast<int16_t>(rect.left + number(0, 25));
    drawPrimitive(source, rect);
    drawPicture(*expected, *source,
                {rect.left, rect.top, rect.right - rect.left, rect.bottom - rect.top, 0, 0,
                 source->width(), source->height()});
  }
  ClosePicture();
  EXPECT_EQ(pictureOver(data)->pixels(), expected->pixels());
  EXPECT_EQ(port->pixels(), Words(40 * 30, 0x00FFFFFF));
  drawPrimitive(expected, {0, 0, 30, 40});
  EXPECT_EQ(port->pixels(), expected->pixels()) << "nothing is recorded any more";
  SetGWorld(screen, device);
}

// --- Layout ------------------------------------------------------------------

TEST_F(PictRecordingTest, LayoutOfNarrowPictures) {
  const Bytes expected =
      hex("008C 0000 0000 0002 0003 0011 02FF 0C00 FFFE 0000 00480000 00480000 00000000 0002 0003"
          "00000000 0001 000A 00000000 0002 0003"
          "009A 000000FF 800C 00000000 0002 0003 0000 0004 00000000 00480000 00480000 0010 0020"
          "0003 0008 00000000 00000000 00000000 00000000 0002 0003 00000000 0002 0003 0000"
          "0A 08 010203 0A0B0C 111213  04 F9 00 00 09 00FF");
  EXPECT_EQ(recordedBytes(pictureOf(3, 2, {0x010A11, 0x020B12, 0x030C13, 0, 0, 0x000009})),
            expected);
}

// --- What is refused ---------------------------------------------------------

TEST_F(PictRecordingTest, RecordingsThatCannotBe) {
  ClosePicture();  // of nothing
  standin::recordPixels({0, 0, 1, 1}, [](int32_t, int32_t, uint32_t*) { FAIL(); });
  EXPECT_EQ(OpenCPicture(nullptr), nullptr);
  for (const auto& [width, height] :
       {std::pair{0, 5}, {5, 0}, {4096, 5}, {32768, 5}, {5, 40000}, {65536, 1}}) {
    EXPECT_EQ(startRecording(width, height), nullptr) << width << " x " << height;
  }
  const auto refused = [](const std::function<void(OpenCPicParams&)>& change) {
    OpenCPicParams parameters = parametersFor(5, 5);
    change(parameters);
    return OpenCPicture(&parameters) == nullptr;
  };
  EXPECT_TRUE(refused([](auto& p) { p.srcRect = {-20000, 0, 20000, 5}; }));
  EXPECT_TRUE(refused([](auto& p) { p.version = 0; }));
  EXPECT_TRUE(refused([](auto& p) { p.hRes = 0; }));
  EXPECT_TRUE(refused([](auto& p) { p.vRes = 72 << 20; })) << "less than a pixel";
  runtime().setCallHook([](const char* call) { return strcmp(call, "OpenCPicture") != 0; });
  EXPECT_EQ(startRecording(5, 5), nullptr);
}

TEST_F(PictRecordingTest, OneRecordingAtATime) {
  PicHandle first = startRecording(5, 4);
  EXPECT_EQ(startRecording(5, 4), nullptr);
  EXPECT_EQ(standin::counts().recordings, 1);
  EXPECT_EQ(standin::counts().handles, 1);
  KillPicture(first);  // which ends it
  EXPECT_FALSE(standin::isRecording());
  PicHandle second = startRecording(5, 4);
  ASSERT_NE(second, nullptr);
  const auto picture = pictureOver(second);
  EXPECT_EQ(picture->pixels(), Words(20, 0x00FFFFFF)) << "a whole picture while it is open";
  ClosePicture();
  EXPECT_EQ(picture->pixels(), Words(20, 0x00FFFFFF)) << "nothing was drawn";
}

TEST_F(PictRecordingTest, NoMemoryGivesAnEmptyFrame) {
  PicHandle data = startRecording(200, 10);
  drawPrimitive(randomPicture(200, 10), {0, 0, 10, 200});
  const Bytes before = bytesOf(data);
  standin::recordPixels({0, 0, 10, 200}, [](int32_t y, int32_t count, uint32_t* words) {
    if (y == 5) throw std::bad_alloc();
    std::fill_n(words, count, 0);
  });
  drawPrimitive(randomPicture(200, 10), {0, 0, 10, 200});  // no longer recorded
  ClosePicture();
  const Bytes after = bytesOf(data);
  EXPECT_EQ(Bytes(after.begin() + 2, after.begin() + 10), Bytes(8, 0));
  EXPECT_EQ(Bytes(after.begin() + 10, after.end()), Bytes(before.begin() + 10, before.end()));
  EXPECT_EQ(pictureOver(data)->describe(), "Picture 0x0 (PICT data)");
}

}  // namespace
}  // namespace host
