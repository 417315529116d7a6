// ScrollHorizontalQRZ, ScrollVerticalQRZ and ScrollQRZ: what moves, what does
// not, and in which order.

#include <climits>
#include <cstdlib>
#include <cstring>

#include "platform/standin/standin.h"
#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

constexpr const char* kAlong[] = {
    "ScrollHorizontalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean",
    "ScrollVerticalQRZ(delta as integer, wrap as boolean, scrollmask as boolean) as boolean"};
constexpr const char* kBoth =
    "ScrollQRZ(deltaX as integer, deltaY as integer, wrap as boolean, scrollmask as boolean) as "
    "boolean";
enum Axis { Horizontal, Vertical };

bool scroll(Axis axis, const Ref<Picture>& picture, int32_t delta, bool wrap, bool mask = false) {
  return std::get<bool>(
      PluginTest::call("Picture", kAlong[axis], picture.get(), {delta, wrap, mask}));
}

bool scrollBoth(const Ref<Picture>& picture, int32_t dx, int32_t dy, bool wrap, bool mask = false) {
  return std::get<bool>(PluginTest::call("Picture", kBoth, picture.get(), {dx, dy, wrap, mask}));
}

int64_t modulo(int64_t value, int64_t size) { return (value % size + size) % size; }

/// The pixels after a move, as words: rotated, or with white coming in. Without
/// wrap only the low 16 bits of the distance count.
std::vector<uint32_t> moved(const Picture& picture, int32_t dx, int32_t dy, bool wrap) {
  const auto before = picture.pixels();
  const int32_t width = picture.width();
  const int32_t height = picture.height();
  std::vector<uint32_t> after;
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) {
      int64_t fromX = x - static_cast<int64_t>(wrap ? dx : static_cast<int16_t>(dx));
      int64_t fromY = y - static_cast<int64_t>(wrap ? dy : static_cast<int16_t>(dy));
      if (wrap) fromX = modulo(fromX, width);
      if (wrap) fromY = modulo(fromY, height);
      const bool inside = fromX >= 0 && fromX < width && fromY >= 0 && fromY < height;
      after.push_back(inside ? before[static_cast<size_t>(fromY * width + fromX)] : 0xFFFFFF);
    }
  }
  return after;
}

class ScrollTest : public RepresentationTest {
 protected:
  /// Rotation takes pixels of 4 or 3 bytes, ScrollRect any GWorld.
  static bool canMove(bool wrap) {
    return GetParam().sources == Storage::GWorld && (!wrap || GetParam().depth != 16);
  }
  static void expectMoved(const Ref<Picture>& picture, Axis axis, int32_t delta, bool wrap) {
    const bool moves = canMove(wrap) && delta != 0;
    const auto expected =
        moves ? moved(*picture, axis == Horizontal ? delta : 0, axis == Vertical ? delta : 0, wrap)
              : picture->pixels();
    EXPECT_EQ(scroll(axis, picture, delta, wrap), moves || delta == 0 || axis == Horizontal);
    EXPECT_TRUE(samePixels(*picture, expected)) << "by " << delta << (wrap ? " wrapped" : "");
    EXPECT_EQ(picture->references(), 1);
    EXPECT_EQ(picture->locks(), 0);
  }
  int32_t randomDelta(int32_t size) {
    const int32_t chosen[] = {INT_MIN, INT_MIN + 1, INT_MAX,  -size,     size,     2 * size,
                              1,       -1,          size / 2, -size / 2, size - 1, size + 1,
                              1 << 16, 65535,       32768,    -32769,    0};
    if (random() % 2 == 0) return chosen[random() % std::size(chosen)];
    return static_cast<int32_t>(random() % 200) - 100;
  }
};
QRZ_ALL_REPRESENTATIONS(ScrollTest);

TEST_P(ScrollTest, AlongOneAxis) {
  for (const int32_t size : {1, 2, 12, 60, 61}) {
    const auto wide = randomPicture(size, 3);
    const auto tall = randomPicture(3, size);
    for (int i = 0; i < 40; ++i) {
      expectMoved(wide, Horizontal, randomDelta(size), i % 2 == 0);
      expectMoved(tall, Vertical, randomDelta(size), i % 2 == 0);
    }
  }
}

TEST_P(ScrollTest, AlongBothAxesWithAndWithoutTheMask) {
  for (int i = 0; i < 300; ++i) {
    const auto picture = randomPicture(3 + i % 20, 2 + i % 13);
    picture->mask = randomPicture(9, 6);
    const bool wrap = i % 2 == 0;
    const bool isMaskMoved = i % 3 == 0;
    const int32_t dx = randomDelta(picture->width());
    const int32_t dy = randomDelta(picture->height());
    const auto after = [&](const Picture& source, bool moves) {
      return moves && canMove(wrap) ? moved(source, dx, dy, wrap) : source.pixels();
    };
    const auto expected = after(*picture, true);
    const auto expectedMask = after(*picture->mask, isMaskMoved);
    EXPECT_EQ(scrollBoth(picture, dx, dy, wrap, isMaskMoved), canMove(wrap) || dy == 0);
    EXPECT_TRUE(samePixels(*picture, expected)) << "by " << dx << ", " << dy;
    EXPECT_TRUE(samePixels(*picture->mask, expectedMask)) << "by " << dx << ", " << dy;
    EXPECT_EQ(picture->mask->references(), 1);
  }
}

TEST_P(ScrollTest, NilMovesLikeAPictureThatCannot) {
  for (const bool wrap : {false, true}) {
    EXPECT_TRUE(scroll(Horizontal, nullptr, 1, wrap));
    for (const int32_t delta : {0, 1}) {
      EXPECT_EQ(scroll(Vertical, nullptr, delta, wrap, true), delta == 0);
      EXPECT_EQ(scrollBoth(nullptr, 1, delta, wrap, true), delta == 0);
    }
  }
}

// --- Single GWorlds ----------------------------------------------------------

/// A GWorld of random bytes, those behind the last pixel of a row included.
Ref<Picture> randomWorld(int32_t width, int32_t height, int32_t depth, int32_t rowBytes) {
  std::mt19937 random{7};
  const auto size = static_cast<size_t>(rowBytes) * static_cast<size_t>(height);
  auto* base = static_cast<uint8_t*>(malloc(size + 1));
  for (size_t i = 0; i < size; ++i) base[i] = static_cast<uint8_t>(random());
  return makeObject<Picture>(
      gworldStore(standin::newGWorldOver(base, width, height, depth, rowBytes), true));
}

GWorldPtr worldOf(const Ref<Picture>& picture) {
  return static_cast<GWorldPtr>(picture->store().data());
}

std::vector<uint8_t> bytesOf(const Ref<Picture>& picture) {
  const standin::Pixels pixels = standin::pixelsOf(worldOf(picture));
  return {pixels.base, pixels.base + pixels.rowBytes * pixels.height};
}

const Calls scrollRect = {"GetGWorld",  "SetGWorld",  "NewRgn",   "SetRect",
                          "ScrollRect", "DisposeRgn", "SetGWorld"};
const Calls scrollPlain =
    joined({{"lockPictureDescription"}, scrollRect, {"unlockPictureDescription"}});
const Calls rotate = joined(
    {openGWorld,
     {"UnlockPixels", "unlockPictureDescription", "REALPictureClearCache", "REALUnlockObject"}});

class GWorldScrollTest : public PluginTest {
 protected:
  static Calls callsOf(const std::function<bool()>& work, bool expected = true) {
    return callsDuring([&] { EXPECT_EQ(work(), expected); });
  }
};

TEST_F(GWorldScrollTest, BytesBehindTheRowsStayOrMoveWithThem) {
  for (const int32_t depth : {32, 24}) {
    for (const int32_t delta : {1, 2, 3, 4, 5, 6, -1, -2, -3}) {
      const auto picture = randomWorld(7, 7, depth, 37);
      auto expected = bytesOf(picture);
      const auto before = expected;
      const int32_t pixelBytes = depth / 8;
      for (int32_t y = 0; y < 7; ++y) {
        for (int32_t x = 0; x < 7; ++x) {
          memcpy(expected.data() + 37 * y + pixelBytes * modulo(x + delta, 7),
                 before.data() + 37 * y + pixelBytes * x, static_cast<size_t>(pixelBytes));
        }
      }
      EXPECT_TRUE(scroll(Horizontal, picture, delta, true));
      EXPECT_EQ(bytesOf(picture), expected) << "by " << delta;
      for (int32_t y = 0; y < 7; ++y) {
        memcpy(expected.data() + 37 * modulo(y + delta, 7), bytesOf(picture).data() + 37 * y, 37);
      }
      EXPECT_TRUE(scroll(Vertical, picture, delta, true));
      EXPECT_EQ(bytesOf(picture), expected) << "by " << delta;
    }
  }
}

TEST_F(GWorldScrollTest, OnlySixteenBitsOfTheSizeAreScrolled) {
  // 40000 is negative in 16 bits and leaves an empty rectangle; 65540 is 4.
  const auto wide = Picture::create(Storage::GWorld, 40000, 2);
  wide->fill(3, 0, 1, 2, 0xFF);
  EXPECT_TRUE(scroll(Horizontal, wide, 1, false));
  EXPECT_EQ(wide->pixel(3, 0), 0xFFU);
  const auto wider = Picture::create(Storage::GWorld, 65540, 2);
  wider->fill(0, 0, 65540, 2, 0xFF);
  EXPECT_TRUE(scroll(Horizontal, wider, 3, false));
  EXPECT_EQ(wider->pixel(2, 1), 0xFFFFFFU);
  EXPECT_EQ(wider->pixel(3, 1), 0xFFU);
  EXPECT_EQ(wider->pixel(4, 1), 0xFFU);
  EXPECT_TRUE(scroll(Horizontal, wider, 4, true));
  EXPECT_EQ(wider->pixel(6, 1), 0xFFFFFFU) << "with wrap all of it counts";
}

TEST_F(GWorldScrollTest, CallsAlongEachAxis) {
  const auto world = Picture::create(Storage::GWorld, 4, 4);
  const auto bitmap = Picture::create(Storage::Bitmap, 4, 4);
  for (const Axis axis : {Horizontal, Vertical}) {
    EXPECT_EQ(callsOf([&] { return scroll(axis, world, 1, false); }), scrollPlain);
    EXPECT_EQ(callsOf([&] { return scroll(axis, bitmap, 1, false); }, axis == Horizontal), refuse);
    for (const bool wrap : {false, true}) {
      EXPECT_EQ(callsOf([&] { return scroll(axis, world, 0, wrap); }), Calls{});
    }
    for (const int32_t delta : {1, -1, 4, INT_MIN}) {
      EXPECT_EQ(callsOf([&] { return scroll(axis, world, delta, true); }), rotate)
          << "released even if nothing moves, by " << delta;
    }
  }
}

TEST_F(GWorldScrollTest, PortIsGivenBackAndItsBackgroundUsed) {
  const auto other = Picture::create(Storage::GWorld, 4, 4);
  const auto world = Picture::create(Storage::GWorld, 4, 4);
  const Unchanged unchanged(other);
  SetGWorld(worldOf(world), nullptr);
  BackColor(205);
  SetGWorld(worldOf(other), nullptr);
  CGrafPtr port = nullptr;
  GDHandle device = nullptr;
  GDHandle deviceBefore = nullptr;
  GetGWorld(&port, &deviceBefore);
  EXPECT_TRUE(scrollBoth(world, 1, -1, false));
  GetGWorld(&port, &device);
  EXPECT_EQ(port, worldOf(other));
  EXPECT_EQ(device, deviceBefore);
  EXPECT_EQ(world->pixel(0, 0), 0xFF0000U);
  EXPECT_EQ(world->pixel(3, 3), 0xFF0000U);
  EXPECT_EQ(world->pixel(1, 1), 0xFFFFFFU);
}

TEST_F(GWorldScrollTest, NothingIsRotatedOnceABitmapWasLocked) {
  const auto bitmap = Picture::create(Storage::Bitmap, 4, 4);
  call("Picture", "CountColorQRZ(col as color) as integer", bitmap.get(), {Color{0}});
  const auto world = Picture::create(Storage::GWorld, 4, 4);
  world->fill(0, 0, 1, 1, 0);
  const Unchanged unchanged(world);
  EXPECT_EQ(callsOf([&] { return scroll(Horizontal, world, 1, true); }), Calls{});
  EXPECT_EQ(callsOf([&] { return scroll(Vertical, world, 1, true); }, false), Calls{});
}

TEST_F(GWorldScrollTest, MaskBeforePictureAlongEachAxis) {
  const auto world = Picture::create(Storage::GWorld, 4, 4);
  world->mask = Picture::create(Storage::GWorld, 4, 4);
  const auto axisCalls = [](const Calls& move) {
    return joined({{"REALGetPictureMask"}, move, {"REALUnlockObject"}, move});
  };
  for (const bool wrap : {false, true}) {
    const Calls once = axisCalls(wrap ? rotate : scrollPlain);
    EXPECT_EQ(callsOf([&] { return scrollBoth(world, 1, 1, wrap, true); }), joined({once, once}));
    EXPECT_EQ(callsOf([&] { return scrollBoth(world, 0, 0, wrap, true); }),
              joined({axisCalls({}), axisCalls({})}))
        << "the mask comes before the distance";
  }
  world->mask = nullptr;
  EXPECT_EQ(callsOf([&] { return scroll(Vertical, world, 1, false, true); }),
            joined({{"REALGetPictureMask"}, scrollPlain}));
}

TEST_F(GWorldScrollTest, PictureStaysIfItsMaskDoes) {
  for (const bool wrap : {false, true}) {
    const auto world = Picture::create(Storage::GWorld, 4, 4);
    world->fill(0, 0, 1, 1, 0);
    world->mask = Picture::create(Storage::Bitmap, 4, 4);
    {
      const Unchanged unchanged(world);
      EXPECT_FALSE(scroll(Vertical, world, 1, wrap, true));
      EXPECT_TRUE(scroll(Vertical, world, 0, wrap, true));
    }
    EXPECT_TRUE(scroll(Horizontal, world, 1, wrap, true)) << "there a mask never stays";
    EXPECT_EQ(world->pixel(1, 0), 0U);
    EXPECT_EQ(world->mask->references(), 1);
  }
}

}  // namespace
}  // namespace host
