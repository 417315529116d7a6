// What the members that make pictures have in common: with rows at odd addresses and
// guard bytes around them, they read and write their pixels and no byte besides; and
// descriptions may name sizes that no picture has.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

#include "host/bench/members.h"
#include "platform/standin/standin.h"
#include "tests/support/checks.h"
#include "tests/support/sweep.h"

namespace host {
namespace {

constexpr const char* kToString = "PicturetoBinaryStringQRZ(p as picture) as string";
constexpr const char* kEmbeddedMask = "EmbeddedMaskQRZ(swap as boolean) as picture";
constexpr const char* kFind =
    "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean";

bool isPicture(const Type& type) { return sameName(type.name(), "Picture"); }

/// Any value of a type, or this picture.
Value anyOf(const Type& type, const Ref<Picture>& picture) {
  if (isPicture(type)) return objectValue(picture);
  switch (type.kind) {
    case Type::Kind::Integer:
      return 1;
    case Type::Kind::Double:
      return 0.5;
    case Type::Kind::Object:
      return objectValue(memoryBlock(std::vector<uint8_t>(256, 77)));
    default:
      return type.initialValue();
  }
}

/// A member of pictures, or a global one that takes pictures, that makes a picture; or the
/// method Run of a class.
struct PictureMaker {
  const Member* member;
  std::string className;  ///< empty for global methods

  [[nodiscard]] std::string text() const { return className + "." + member->declaration.text; }
  /// Besides the one that it works on.
  [[nodiscard]] bool takesAnother() const {
    const auto& parameters = member->declaration.parameters;
    return std::ranges::any_of(parameters, [&](const Parameter& parameter) {
      return isPicture(parameter.type) && (!className.empty() || &parameter != parameters.data());
    });
  }
  /// With the other picture for each that it takes.
  Ref<Picture> operator()(const Ref<Picture>& self, const Ref<Picture>& other) const {
    std::vector<Value> arguments;
    for (const Parameter& parameter : member->declaration.parameters) {
      const bool isSelf = className.empty() && arguments.empty();
      arguments.push_back(anyOf(parameter.type, isSelf ? self : other));
    }
    if (className == "Picture") return pictureOf(member->call(self.get(), arguments));
    if (className.empty()) return pictureOf(member->call(nullptr, arguments));
    const auto instance = newInstance(className);
    memberOf(className, "SourcePicture").assign(instance.get(), {}, objectValue(self));
    const bool runs = member->call(instance.get(), {}) == Value{true};
    const auto made = memberOf(className, "DestinationPicture").call(instance.get(), {});
    EXPECT_EQ(pictureOf(made) != nullptr, runs);
    return pictureOf(made);
  }
};

std::vector<PictureMaker> pictureMakers() {
  std::vector<PictureMaker> makers;
  for (const Member& member : runtime().registry.findClass("Picture")->members) {
    const auto& result = member.declaration.result;
    if (member.isRegistered && result && isPicture(*result)) makers.push_back({&member, "Picture"});
  }
  for (const Member& member : runtime().registry.globals()) {
    const auto& [text, name, parameters, result] = member.declaration;
    if (!result || !isPicture(*result) || parameters.empty()) continue;
    if (isPicture(parameters[0].type)) makers.push_back({&member, ""});
  }
  for (const char* name : {"PictureLut3DQRZ", "PictureSepiaQRZ"})
    makers.push_back({&memberOf(name, "Run"), name});
  EXPECT_GT(makers.size(), 22U);
  return makers;
}

// --- Rows at odd addresses --------------------------------------------------

constexpr uint8_t kGuard = 0xA5;
/// Guard bytes in front of each row and behind it.
constexpr int32_t kFront = 3;
constexpr int32_t kBack = 4;

/// A GWorld whose rows are an odd number of bytes apart.
Ref<Picture> guardedGWorld(int32_t width, int32_t height) {
  const int32_t rowBytes = kFront + 4 * width + kBack;
  const auto size = static_cast<size_t>(rowBytes) * static_cast<size_t>(height);
  auto* base = static_cast<uint8_t*>(malloc(size));
  memset(base, kGuard, size);
  GWorldPtr world = standin::newGWorldOver(base, width, height, 32, rowBytes);
  return makeObject<Picture>(gworldStore(world, true));
}

/// A bitmap record whose rows start at odd addresses.
Ref<Picture> guardedBitmap(int32_t width, int32_t height) {
  auto picture = Picture::create(Storage::Bitmap, width + 2, height);
  qrz::HostBitmap& bitmap = bitmapOf(picture);
  bitmap.width = width;
  for (int32_t y = 0; y < height; ++y) {
    memset(bitmap.rowTable[y], kGuard, static_cast<size_t>(kFront + 4 * width + kBack));
    bitmap.rowTable[y] += kFront;
  }
  return picture;
}

bool areGuards(const uint8_t* bytes, int32_t count) {
  return std::all_of(bytes, bytes + count, [](uint8_t byte) { return byte == kGuard; });
}

bool isIntact(const Ref<Picture>& picture) {
  const int32_t type = picture->store().type();
  bool result = true;
  for (int32_t y = 0; y < picture->height(); ++y) {
    if (type == qrz::kHostBitmap) {
      const uint8_t* row = bitmapOf(picture).rowTable[y];
      result &= areGuards(row - kFront, kFront) && areGuards(row + 4 * picture->width(), kBack);
    } else if (type == qrz::kGWorld) {
      const auto pixels = standin::pixelsOf(static_cast<GWorldPtr>(picture->store().data()));
      const uint8_t* row = pixels.base + y * pixels.rowBytes;
      result &= areGuards(row + 4 * picture->width(), kFront + kBack);
    }
  }
  return result;
}

struct Maker {
  const char* name;
  Ref<Picture> (*make)(int32_t width, int32_t height);
};

class GuardTest : public PluginTest, public testing::WithParamInterface<Maker> {
 protected:
  void SetUp() override {
    PluginTest::SetUp();
    runtime().replacedServices["newPicture"] =
        reinterpret_cast<void*>(+[](int32_t width, int32_t height, int32_t) -> Object* {
          return GetParam().make(width, height).detach();
        });
  }
  Ref<Picture> source(int32_t width, int32_t height) {
    auto picture = GetParam().make(width, height);
    std::vector<uint32_t> words(static_cast<size_t>(width) * static_cast<size_t>(height));
    for (uint32_t& word : words) word = random();
    picture->setPixels(words);
    return picture;
  }
  std::mt19937 random{5};
};
INSTANTIATE_TEST_SUITE_P(All, GuardTest,
                         testing::Values(Maker{"Bitmap", guardedBitmap},
                                         Maker{"GWorld", guardedGWorld}),
                         [](const auto& test) { return std::string(test.param.name); });

TEST_P(GuardTest, OnlyThePixelsAreWritten) {
  const auto picture = source(37, 4);
  const auto before = picture->pixels();
  for (const PictureMaker& make : pictureMakers()) {
    const auto result = make(picture, picture);
    ASSERT_TRUE(result) << make.text();
    EXPECT_TRUE(isIntact(result)) << make.text();
  }
  const auto inverted = mappedPixels(*picture, [](uint32_t rgb) { return 0x00FFFFFF - rgb; });
  EXPECT_TRUE(samePixels(*filter("InvertQRZ as picture", picture), inverted));
  EXPECT_TRUE(samePixels(*picture, before));
  EXPECT_TRUE(isIntact(picture));

  const auto mask = source(37, 4);
  assign("Picture", kEmbeddedMask, picture.get(), {false}, objectValue(mask));
  const auto levels = mask->pixels();
  auto expected = before;
  for (size_t i = 0; i < expected.size(); ++i) {
    expected[i] = (expected[i] & 0xFFFFFF) | (levels[i] & 0xFF0000) << 8;
  }
  EXPECT_TRUE(samePixels(*picture, expected));
  EXPECT_TRUE(isIntact(picture));
}

TEST_P(GuardTest, RowsAtOddAddressesAreRead) {
  const auto picture = source(37, 4);
  const auto part = GetParam().make(9, 2);
  drawPicture(*part, *picture, {0, 0, 9, 2, 28, 2, 9, 2});
  std::vector<Value> found = {objectValue(part), 0, 0};
  callByRef("Picture", kFind, picture.get(), found);
  EXPECT_EQ(found[1], Value{28});
  EXPECT_EQ(found[2], Value{2});
  const auto count = call("Picture", "CountColorQRZ(col as color) as integer", picture.get(),
                          {Color{picture->pixel(36, 3)}});
  EXPECT_EQ(count, Value{1});
  const Value text = call("", kToString, nullptr, {objectValue(picture)});
  const auto back =
      pictureOf(call("", "BinaryStringtoPictureQRZ(data as String) as Picture", nullptr, {text}));
  EXPECT_TRUE(samePixels(*back, colorsOf(*picture)));
  EXPECT_TRUE(isIntact(back));
  picture->fill(0, 0, 37, 4, 0);
  EXPECT_EQ(call("Picture", "isBlackQRZ as boolean", picture.get()), Value{true});
}

// --- Sizes that no picture has -----------------------------------------------

const std::string scrollParameters =
    "(delta as integer, wrap as boolean, scrollmask as boolean) as boolean";

Picture* liar = nullptr;
int32_t claimedWidth = 0;
int32_t claimedHeight = 0;

/// The host's own service, but for one picture.
void lockWithClaimedSize(Picture* picture, qrz::PictureDescription* description) {
  picture->lock(*description);
  if (picture != liar) return;
  description->width = claimedWidth;
  description->height = claimedHeight;
}

class SizeTest : public RepresentationTest {
 protected:
  void SetUp() override {
    RepresentationTest::SetUp();
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
  const auto other = randomPicture(8, 4);
  const std::pair<int32_t, int32_t> sizes[] = {
      {-10, 1}, {-13, 1}, {1, -10}, {-5, -5}, {INT_MIN, INT_MIN}, {0, 0},
      {0, 4},   {8, 0},   {-1, 4},  {8, -1},  {INT_MIN, 1}};
  for (const auto& [width, height] : sizes) {
    SCOPED_TRACE(testing::Message() << width << " x " << height);
    claimedWidth = width;
    claimedHeight = height;
    for (const PictureMaker& make : pictureMakers()) {
      // Recordings can be empty.
      if (make.text().starts_with("Picture.PicHandle") && width >= 0 && height >= 0) continue;
      EXPECT_FALSE(make(picture, other)) << make.text();
      EXPECT_TRUE(!make(other, picture) || !make.takesAnother()) << make.text();
    }
    for (const auto& [self, mask] : {std::pair{picture, other}, {other, picture}}) {
      const Unchanged unchanged(self);
      assign("Picture", kEmbeddedMask, self.get(), {false}, objectValue(mask));
    }
    EXPECT_EQ(call("Picture", "isWhiteQRZ as boolean", picture.get()), Value{true});
    EXPECT_EQ(call("Picture", "CountColorQRZ(col as color) as integer", picture.get(), {Color{0}}),
              Value{0});
    const Value text = call("", kToString, nullptr, {objectValue(picture)});
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

TEST_P(SizeTest, RowsTooLongForAStringGiveNone) {
  claimedWidth = INT_MAX / 3 + 1;
  claimedHeight = 1;
  EXPECT_EQ(call("", kToString, nullptr, {objectValue(picture)}), Value{std::string()});
}

// --- Descriptions without data -----------------------------------------------

class NoDataTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(NoDataTest);

TEST_P(NoDataTest, GivesNil) {
  const auto picture = randomPicture(8, 4);
  for (Picture* honest : {static_cast<Picture*>(nullptr), picture.get()}) {
    liar = honest;
    runtime().replacedServices["lockPictureDescription"] =
        reinterpret_cast<void*>(+[](Picture* locked, qrz::PictureDescription* description) {
          locked->lock(*description);
          if (locked != liar) description->data = nullptr;
        });
    for (const PictureMaker& make : pictureMakers()) {
      if (make.text().starts_with("Picture.PicHandle")) continue;  // which do not look at the data
      EXPECT_FALSE(make(picture, picture)) << make.text();
    }
    for (const std::string name : {"ScrollVerticalQRZ", "ScrollHorizontalQRZ"}) {
      call("Picture", name + scrollParameters, picture.get(), {3, false, false});
    }
  }
}

}  // namespace
}  // namespace host
