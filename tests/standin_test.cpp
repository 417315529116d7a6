// The platform stand-in, and what the host draws and keeps with it.

#include "platform/standin/standin.h"

#include <array>
#include <cstring>

#include "host/core/exception.h"
#include "tests/support/pict.h"

namespace host {
namespace {

using StandinTest = PictTest;

Words randomWords(const Picture& picture, std::mt19937& random) {
  Words words(static_cast<size_t>(picture.width()) * static_cast<size_t>(picture.height()));
  for (uint32_t& word : words) word = random() & 0x00F8F8F8;
  for (uint32_t& word : words) word |= (word >> 5) & 0x00070707;  // what 16 bits can hold
  return words;
}

TEST_F(StandinTest, StoresKeepWhatTheirDepthHolds) {
  for (const auto& [storage, depth, type] :
       {std::tuple{Storage::GWorld, 32, 4}, std::tuple{Storage::GWorld, 24, 4},
        std::tuple{Storage::GWorld, 16, 4}, std::tuple{Storage::Context, 32, 8},
        std::tuple{Storage::Bitmap, 32, 10}}) {
    const auto picture = Picture::create(storage, 13, 7, depth);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->store().type(), type);
    EXPECT_EQ(picture->pixels(), Words(13 * 7, 0x00FFFFFF)) << "a new picture";
    const auto words = randomWords(*picture, random);
    picture->setPixels(words);
    EXPECT_EQ(picture->pixels(), words) << picture->describe();
  }
  EXPECT_FALSE(Picture::create(Storage::GWorld, 0, 5));
  EXPECT_FALSE(Picture::create(Storage::Bitmap, 5, -1));
  EXPECT_FALSE(Picture::create(Storage::Context, 2000000000, 2000000000));
}

TEST_F(StandinTest, PixelLayoutsInMemory) {
  const auto first = [](const Ref<Picture>& picture) {
    const standin::Pixels pixels =
        standin::pixelsOf(static_cast<GWorldPtr>(picture->store().data()));
    EXPECT_GT(pixels.rowBytes, picture->width() * picture->depth() / 8) << "rows are padded";
    return std::vector<uint8_t>(pixels.base, pixels.base + 4);
  };
  const Words words = {0x9A123456, 0x00FFFFFF};
  const auto bytes = [&](int32_t depth) {
    const auto picture = Picture::create(Storage::GWorld, 2, 1, depth);
    picture->setPixels(words);
    return first(picture);
  };
  EXPECT_EQ(bytes(32), (std::vector<uint8_t>{0x9A, 0x12, 0x34, 0x56}));
  EXPECT_EQ(bytes(24), (std::vector<uint8_t>{0x12, 0x34, 0x56, 0xFF}));
  EXPECT_EQ(bytes(16), (std::vector<uint8_t>{0x08, 0xCA, 0x7F, 0xFF}));
}

TEST_F(StandinTest, ContextBecomesAGWorldOverTheSamePixels) {
  const auto picture = Picture::create(Storage::Context, 4, 3);
  picture->fill(1, 1, 2, 1, 0x336699);
  const auto before = picture->pixels();
  picture->clearCache();
  EXPECT_EQ(picture->store().type(), 4);
  EXPECT_EQ(picture->pixels(), before);
}

TEST_F(StandinTest, DisposedPortIsNoLongerCurrent) {
  CGrafPtr screen = nullptr;
  GDHandle device = nullptr;
  GetGWorld(&screen, &device);
  {
    const auto picture = Picture::create(Storage::GWorld, 3, 3);
    SetGWorld(static_cast<GWorldPtr>(picture->store().data()), nullptr);
  }
  CGrafPtr current = nullptr;
  GetGWorld(&current, &device);
  EXPECT_EQ(current, screen);
  Rect rect;
  SetRect(&rect, 0, 0, 3, 3);
  ScrollRect(&rect, 1, 1, nullptr);
}

TEST_F(StandinTest, HandlesCopyTheirBytes) {
  Handle handle = nullptr;
  char source[] = "abc";
  ASSERT_EQ(PtrToHand(source, &handle, 3), 0);
  source[0] = 'x';
  EXPECT_EQ(GetHandleSize(handle), 3);
  HLock(handle);
  EXPECT_EQ(standin::counts().handleLocks, 1);
  EXPECT_EQ(std::memcmp(*handle, "abc", 3), 0);
  HUnlock(handle);
  KillPicture(reinterpret_cast<PicHandle>(handle));
  ASSERT_EQ(PtrToHand(nullptr, &handle, 0), 0);
  EXPECT_EQ(GetHandleSize(handle), 0);
  standin::disposeHandle(handle);
  EXPECT_NE(PtrToHand(source, &handle, -1), 0);
}

// --- Drawing -----------------------------------------------------------------

TEST_F(StandinTest, PicturesAreDrawnScaledAndCut) {
  const auto source = Picture::create(Storage::GWorld, 6, 5);
  source->setPixels(randomWords(*source, random));
  for (int i = 0; i < 300; ++i) {
    const auto number = [&](int low, int high) {
      return low + static_cast<int32_t>(random() % static_cast<uint32_t>(high - low));
    };
    const Placement p{number(-5, 9), number(-5, 9), number(1, 14), number(1, 14),
                      number(-2, 5), number(-2, 4), number(1, 9),  number(1, 9)};
    const auto target = Picture::create(i % 2 == 0 ? Storage::Bitmap : Storage::GWorld, 8, 7);
    target->fill(0, 0, 8, 7, 0x102030);
    drawPicture(*target, *source, p);
    for (int32_t y = 0; y < 7; ++y) {
      for (int32_t x = 0; x < 8; ++x) {
        const int32_t sx = p.sourceX + (x - p.x) * p.sourceWidth / p.width;
        const int32_t sy = p.sourceY + (y - p.y) * p.sourceHeight / p.height;
        const bool covered = x >= p.x && x < p.x + p.width && y >= p.y && y < p.y + p.height &&
                             sx >= 0 && sx < 6 && sy >= 0 && sy < 5;
        ASSERT_EQ(target->pixel(x, y), covered ? source->pixel(sx, sy) : 0x102030U)
            << x << ", " << y << " in case " << i;
      }
    }
  }
}

TEST_F(StandinTest, DrawingTakesAnyNumbers) {
  const auto source = Picture::create(Storage::GWorld, 6, 5);
  const auto target = Picture::create(Storage::GWorld, 6, 5);
  source->fill(0, 0, 6, 5, 0x00FF00);
  drawPicture(*target, *source, {1, 1, 3, 2, 2, 2, kUpToTheEdge, kUpToTheEdge});
  EXPECT_EQ(target->pixel(3, 2), 0x00FF00U);
  EXPECT_EQ(target->pixel(4, 2), 0xFFFFFFU);
  const std::array<int32_t, 7> extremes = {INT32_MIN, INT32_MIN + 1, -1,          0,
                                           1,         INT32_MAX,     kUpToTheEdge};
  for (int i = 0; i < 2000; ++i) {
    const auto any = [&] { return extremes.at(random() % extremes.size()); };
    drawPicture(*target, *source, {any(), any(), any(), any(), any(), any(), any(), any()});
    target->pen = {0, any() % 7, any() % 7};
    drawLine(*target, any(), any(), any(), any());
    target->fill(any(), any(), any(), any(), 0);
  }
}

TEST_F(StandinTest, PicturesAreDrawnOntoThemselves) {
  const auto picture = Picture::create(Storage::GWorld, 1, 4);
  picture->setPixels({0xFF0000, 0x00FF00, 0x0000FF, 0x000000});
  drawPicture(*picture, *picture, {0, 1, 1, 4, 0, 0, 1, 4});
  EXPECT_EQ(picture->pixels(), (Words{0xFF0000, 0xFF0000, 0x00FF00, 0x0000FF}));
}

TEST_F(StandinTest, MasksOfMasks) {
  auto head = Picture::create(Storage::GWorld, 1, 1);
  EXPECT_THROW(setMask(*head, head), RaisedException);
  auto last = head;
  for (int i = 0; i < 100000; ++i) {
    auto next = Picture::create(Storage::Bitmap, 1, 1);
    setMask(*last, next);
    last = next;
  }
  EXPECT_THROW(setMask(*last, head), RaisedException) << "a circle";
  last = nullptr;
  head = nullptr;  // must not free each one inside the other
}

TEST_F(StandinTest, MasksLetTheGroundShowThrough) {
  const auto target = Picture::create(Storage::GWorld, 3, 1);
  target->setPixels({0x000000, 0x000000, 0x000000});
  const auto source = Picture::create(Storage::GWorld, 3, 1);
  source->mask = Picture::create(Storage::GWorld, 3, 1);
  source->mask->setPixels({0x000000, 0x808080, 0xFFFFFF});
  drawPicture(*target, *source, {0, 0, 3, 1, 0, 0, 3, 1});
  EXPECT_EQ(target->pixels(), (Words{0x000000, 0x808080, 0xFFFFFF}));
}

std::vector<std::string> rowsOfLine(int32_t x1, int32_t y1, int32_t x2, int32_t y2, int32_t pen) {
  const auto picture = Picture::create(Storage::GWorld, 5, 3);
  picture->pen = {0x00FF00, pen, pen};
  drawLine(*picture, x1, y1, x2, y2);
  std::vector<std::string> rows(3);
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 0; x < 5; ++x) {
      rows[static_cast<size_t>(y)] += picture->pixel(x, y) == 0x00FF00 ? '#' : '.';
    }
  }
  return rows;
}

TEST_F(StandinTest, LinesCoverBothEndsWithThePen) {
  using Rows = std::vector<std::string>;
  EXPECT_EQ(rowsOfLine(0, 0, 3, 1, 1), (Rows{"##...", "..##.", "....."}));
  EXPECT_EQ(rowsOfLine(1, 0, 1, 2, 1), (Rows{".#...", ".#...", ".#..."}));
  EXPECT_EQ(rowsOfLine(3, 1, 3, 1, 1), (Rows{".....", "...#.", "....."}));
  EXPECT_EQ(rowsOfLine(2, 2, 0, 0, 1), (Rows{"#....", ".#...", "..#.."}));
  EXPECT_EQ(rowsOfLine(-9, 1, 90, 1, 2), (Rows{".....", "#####", "#####"}));
  EXPECT_EQ(rowsOfLine(-1, -1, -1, -1, 2), (Rows{"#....", ".....", "....."}));
  EXPECT_EQ(rowsOfLine(-2147483647, -2147483647, 2147483647, 2147483647, 1),
            (Rows{"#....", ".#...", "..#.."}));
}

}  // namespace
}  // namespace host
