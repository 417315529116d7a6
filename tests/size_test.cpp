// Pictures whose descriptions name sizes that no picture has.

#include <climits>

#include "tests/support/checks.h"

namespace host {
namespace {

constexpr const char* kFind =
    "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean";
const std::string scrollParameters =
    "(delta as integer, wrap as boolean, scrollmask as boolean) as boolean";

using LockDescription = uint32_t (*)(void* picture, qrz::PictureDescription* description);

LockDescription lockDescription = nullptr;
Picture* liar = nullptr;
int32_t claimedWidth = 0;
int32_t claimedHeight = 0;

/// The host's own service, but for one picture.
uint32_t lockWithClaimedSize(void* picture, qrz::PictureDescription* description) {
  lockDescription(picture, description);
  if (picture != liar) return 0;
  description->width = claimedWidth;
  description->height = claimedHeight;
  return 0;
}

class SizeTest : public RepresentationTest {
 protected:
  void SetUp() override {
    RepresentationTest::SetUp();
    lockDescription = reinterpret_cast<LockDescription>(resolveService("lockPictureDescription"));
    runtime().replacedServices["lockPictureDescription"] =
        reinterpret_cast<void*>(lockWithClaimedSize);
    picture = randomPicture(8, 4);
    liar = picture.get();
  }
  void TearDown() override {
    liar = nullptr;
    picture = {};
    RepresentationTest::TearDown();
  }

  Ref<Picture> picture;
};
QRZ_NATIVE_REPRESENTATIONS(SizeTest);

TEST_P(SizeTest, BelowOneAreEmptyPictures) {
  const auto pixels = picture->pixels();
  const auto other = randomPicture(2, 2);
  const std::pair<int32_t, int32_t> sizes[] = {
      {-10, 1}, {-13, 1}, {1, -10}, {-5, -5}, {INT_MIN, INT_MIN},
      {0, 4},   {8, 0},   {-1, 4},  {8, -1},  {INT_MIN, 1}};
  for (const auto& [width, height] : sizes) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    claimedWidth = width;
    claimedHeight = height;
    EXPECT_FALSE(filter("InvertQRZ as picture", picture));
    EXPECT_FALSE(filter("ExtractColorRectangleMaskQRZ as picture", picture));
    EXPECT_EQ(call("Picture", "isWhiteQRZ as boolean", picture.get()), Value{true});
    EXPECT_EQ(call("Picture", "CountColorQRZ(col as color) as integer", picture.get(), {Color{0}}),
              Value{0});
    const Value text = call("", "PicturetoBinaryStringQRZ(p as picture) as string", nullptr,
                            {objectValue(picture)});
    EXPECT_EQ(std::get<std::string>(text).size(), 40U);

    for (const auto& [haystack, pattern] : {std::pair{picture, other}, {other, picture}}) {
      std::vector<Value> place = {objectValue(pattern), 7, 7};
      EXPECT_EQ(callByRef("Picture", kFind, haystack.get(), place), Value{false});
    }
    std::vector<Value> counted = {Nil{}, Nil{}, Nil{}, 7};
    callByRef("Picture",
              "CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as "
              "memoryblock, byref count as integer)",
              picture.get(), counted);
    EXPECT_EQ(counted[3], Value{0});
    for (const std::string name : {"ScrollVerticalQRZ", "ScrollHorizontalQRZ"}) {
      call("Picture", name + scrollParameters, picture.get(), {3, true, false});
    }
    EXPECT_TRUE(samePixels(*picture, pixels));
    EXPECT_EQ(picture->locks(), 0);
  }
}

TEST_P(SizeTest, RowsThatDoNotHoldTheirPixelsAreNotRotated) {
  if (GetParam().sources != Storage::GWorld) return;
  const auto pixels = picture->pixels();
  claimedWidth = 1000;
  claimedHeight = 4;
  const auto scroll = [&](const std::string& name) {
    return call("Picture", name + scrollParameters, picture.get(), {3, true, false});
  };
  EXPECT_EQ(scroll("ScrollHorizontalQRZ"), Value{true});
  EXPECT_EQ(scroll("ScrollVerticalQRZ"), Value{false});
  EXPECT_TRUE(samePixels(*picture, pixels));
}

}  // namespace
}  // namespace host
