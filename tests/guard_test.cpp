// What the members that make pictures have in common: nil gives nil, and failing
// hosts leave nothing behind; with rows at odd addresses and guard bytes around
// them, they read and write their pixels and no byte besides.

#include <cstdlib>
#include <cstring>

#include "platform/standin/standin.h"
#include "tests/support/checks.h"
#include "tests/support/rectangle.h"

namespace host {
namespace {

/// A member that makes a picture.
struct MemberCall {
  std::string declaration;
  std::vector<Value> arguments;
  bool isGlobal = false;

  Ref<Picture> on(const Ref<Picture>& self) const {
    if (isGlobal) return pictureOf(PluginTest::call("", declaration, nullptr, arguments));
    return PluginTest::filter(declaration, self, arguments);
  }
};

/// Each of them; wherever it takes a picture, it gets this one.
std::vector<MemberCall> memberCalls(const Ref<Picture>& picture) {
  const Value self = objectValue(picture);
  const Value table = objectValue(memoryBlock(std::vector<uint8_t>(256, 77)));
  const Color one{0x4C961D};
  const Color two{0xFFE0B0};
  const std::string rectangle = rectangleParameters + " as picture";
  const std::string ofChannels = "(r as double, g as double, b as double) as picture";
  return {
      {"InvertQRZ as picture", {}},
      {"InvertQRZ" + rectangle, {1, 1, -1, 2}},
      {"InvertGrayQRZ as picture", {}},
      {"InvertGrayQRZ" + rectangle, {1, 1, -1, 2}},
      {"EmbeddedMaskQRZ(swap as boolean) as picture", {true}},
      {"ExtractColorRectangleMaskQRZ as picture", {}},
      {"ExtractColorRectangleMaskQRZ" + rectangle, {1, 1, -1, 2}},
      {"ChangeBrightnessLinearQRZ(x as double) as picture", {0.5}},
      {"ChangeBrightnessLinearQRZ" + ofChannels, {0.5, 1.0, 2.0}},
      {"ChangeBrightnessAbsoluteQRZ(x as double) as picture", {0.5}},
      {"ChangeBrightnessAbsoluteQRZ" + ofChannels, {0.5, 1.0, 2.0}},
      {"ChangeContrastQRZ(x as double) as picture", {0.5}},
      {"ChangeContrastQRZ(xr as double, xg as double, xb as double) as picture", {0.5, 1.0, 2.0}},
      {"ChangeCustomQRZ(a as double, b as double) as picture", {0.5, 1.0}},
      {"ChangeSaturationQRZ(Amount as integer) as picture", {100}},
      {"ReplaceRedChannelQRZ(RedChannel as picture) as picture", {self}},
      {"ReplaceGreenChannelQRZ(GreenChannel as picture) as picture", {self}},
      {"ReplaceBlueChannelQRZ(BlueChannel as picture) as picture", {self}},
      {"TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as "
       "picture",
       {table, table, table}},
      {"ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture", {one, two}},
      {"ExtractColorQRZ(SearchColor as color, ReplaceWithColor as color, BackGroundColor as "
       "color) as picture",
       {one, two, one}},
      {"CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture",
       {self, self, self},
       true},
      {"MergePictureQRZ(source1 as picture, source2 as picture) as picture", {self, self}, true},
      {"TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture",
       {self, one, two},
       true},
  };
}

class MembersTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(MembersTest);

TEST_P(MembersTest, NilGivesNil) {
  const auto picture = randomPicture(5, 4);
  const Unchanged unchanged(picture);
  for (const bool isGlobal : {false, true}) {
    for (const MemberCall& member : memberCalls(isGlobal ? nullptr : picture)) {
      if (member.isGlobal != isGlobal) continue;
      EXPECT_FALSE(member.on(nullptr)) << member.declaration;
    }
  }
}

TEST_P(MembersTest, FailingHostsLeaveNothing) {
  const auto picture = randomPicture(5, 4);
  for (const MemberCall& member : memberCalls(picture)) {
    SCOPED_TRACE(member.declaration);
    expectNothingLeftByFailures([&] {
      const Unchanged unchanged(picture);
      member.on(picture);
    });
    EXPECT_TRUE(member.on(picture)) << "it works the next time";
  }
}

// --- Rows at odd addresses --------------------------------------------------

constexpr uint8_t kGuard = 0xA5;

/// The bitmap record over one block; before, between and behind the rows lie
/// guard bytes, so that rows start at odd addresses.
class GuardedBitmap final : public PixelStore {
 public:
  GuardedBitmap(int32_t width, int32_t height)
      : stride_(4 * static_cast<size_t>(width) + 5),
        bytes_(stride_ * static_cast<size_t>(height) + 9, kGuard),
        rows_(static_cast<size_t>(height)) {
    for (size_t y = 0; y < rows_.size(); ++y) rows_[y] = bytes_.data() + 9 + y * stride_;
    record_.width = width;
    record_.height = height;
    record_.ready = 1;
    record_.rowTable = rows_.data();
  }
  [[nodiscard]] int32_t type() const override { return qrz::kHostBitmap; }
  [[nodiscard]] void* data() override { return &record_; }
  [[nodiscard]] std::string name() const override { return "guarded bitmap"; }
  [[nodiscard]] int32_t width() const override { return record_.width; }
  [[nodiscard]] int32_t height() const override { return record_.height; }
  void read(const Run& run, uint32_t* words) const override {
    memcpy(words, address(run), 4 * static_cast<size_t>(run.count));
  }
  void write(const Run& run, const uint32_t* words) override {
    memcpy(address(run), words, 4 * static_cast<size_t>(run.count));
  }

  [[nodiscard]] bool isIntact() const {
    std::vector<uint8_t> copy = bytes_;
    for (uint8_t* row : rows_) {
      const auto offset = static_cast<size_t>(row - bytes_.data());
      memset(copy.data() + offset, kGuard, 4 * static_cast<size_t>(record_.width));
    }
    return copy == std::vector<uint8_t>(copy.size(), kGuard);
  }

 private:
  [[nodiscard]] uint8_t* address(const Run& run) const {
    return rows_[static_cast<size_t>(run.y)] + 4 * run.x;
  }

  size_t stride_;
  std::vector<uint8_t> bytes_;
  std::vector<uint8_t*> rows_;
  qrz::HostBitmap record_{};
};

Ref<Picture> guardedBitmap(int32_t width, int32_t height) {
  return makeObject<Picture>(std::make_unique<GuardedBitmap>(width, height));
}

/// A GWorld whose rows are an odd number of bytes apart.
Ref<Picture> guardedGWorld(int32_t width, int32_t height) {
  const int32_t rowBytes = 4 * width + 7;
  const auto size = static_cast<size_t>(rowBytes) * static_cast<size_t>(height);
  auto* base = static_cast<uint8_t*>(malloc(size));
  memset(base, kGuard, size);
  GWorldPtr world = standin::newGWorldOver(base, width, height, 32, rowBytes);
  return makeObject<Picture>(gworldStore(world, true));
}

bool isIntact(const Picture& picture) {
  if (const auto* bitmap = dynamic_cast<const GuardedBitmap*>(&picture.store())) {
    return bitmap->isIntact();
  }
  auto& store = const_cast<PixelStore&>(picture.store());
  const standin::Pixels pixels = standin::pixelsOf(static_cast<GWorldPtr>(store.data()));
  for (int32_t y = 0; y < pixels.height; ++y) {
    for (int32_t i = 4 * pixels.width; i < pixels.rowBytes; ++i) {
      if (pixels.base[y * pixels.rowBytes + i] != kGuard) return false;
    }
  }
  return true;
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
  std::vector<std::pair<const char*, Value>> instances;
  for (const char* name : {"PictureLut3DQRZ", "PictureSepiaQRZ"}) {
    const Class* type = runtime().registry.findClass(name);
    instances.emplace_back(name, type->constructors.front().call(nullptr, {}));
  }
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = source(width, 4);
    const auto before = picture->pixels();
    for (const MemberCall& member : memberCalls(picture)) {
      const auto result = member.on(picture);
      ASSERT_TRUE(result);
      EXPECT_TRUE(isIntact(*result)) << member.declaration << " of width " << width;
    }
    for (const auto& [name, instance] : instances) {
      Object* object = objectOf(instance);
      assign(name, "SourcePicture as Picture", object, {}, objectValue(picture));
      EXPECT_EQ(call(name, "Run as boolean", object), Value{true});
      const auto result = pictureOf(call(name, "DestinationPicture as Picture", object));
      EXPECT_TRUE(isIntact(*result)) << name << " of width " << width;
    }
    const auto inverted = mappedPixels(*picture, [](uint32_t rgb) { return 0x00FFFFFF - rgb; });
    EXPECT_TRUE(samePixels(*filter("InvertQRZ as picture", picture), inverted));
    EXPECT_TRUE(isIntact(*picture));
    EXPECT_TRUE(samePixels(*picture, before));
  }
}

TEST_P(GuardTest, OnlyThePadsAreAssigned) {
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = source(width, 3);
    const auto mask = source(width, 3);
    const auto levels = mask->pixels();
    auto expected = picture->pixels();
    for (size_t i = 0; i < expected.size(); ++i) {
      expected[i] = (expected[i] & 0xFFFFFF) | (levels[i] & 0xFF0000) << 8;
    }
    assign("Picture", "EmbeddedMaskQRZ(swap as boolean) as picture", picture.get(), {false},
           objectValue(mask));
    EXPECT_TRUE(samePixels(*picture, expected));
    EXPECT_TRUE(isIntact(*picture)) << width;
  }
}

TEST_P(GuardTest, RowsAtOddAddressesAreReadAsOthers) {
  const auto results = [](const Ref<Picture>& picture, const Ref<Picture>& part) {
    std::vector<Value> found = {objectValue(part), 0, 0};
    const Value color = Color{picture->pixel(0, 0)};
    return std::vector<Value>{
        call("", "PicturetoBinaryStringQRZ(p as picture) as string", nullptr,
             {objectValue(picture)}),
        call("Picture", "CountColorQRZ(col as color) as integer", picture.get(), {color}),
        call("Picture", "isBlackQRZ as boolean", picture.get()),
        callByRef("Picture",
                  "FindPicture(pic as picture, byref x as integer, byref y as integer) as boolean",
                  picture.get(), found),
        found[1],
        found[2]};
  };
  for (int32_t width = 1; width <= 70; ++width) {
    const auto odd = source(width, 3);
    const auto oddPart = GetParam().make((width + 1) / 2, 2);
    drawPicture(*oddPart, *odd, {0, 0, (width + 1) / 2, 2, width / 2, 1, (width + 1) / 2, 2});
    const auto storage = odd->store().type() == qrz::kGWorld ? Storage::GWorld : Storage::Bitmap;
    const auto even = Picture::create(storage, width, 3);
    even->setPixels(odd->pixels());
    const auto evenPart = Picture::create(storage, oddPart->width(), 2);
    evenPart->setPixels(oddPart->pixels());
    const auto expected = results(even, evenPart);
    EXPECT_EQ(std::get<bool>(expected[3]), true);
    EXPECT_EQ(std::get<int32_t>(expected[5]), 1);
    EXPECT_TRUE(results(odd, oddPart) == expected) << width;
    const Value back =
        call("", "BinaryStringtoPictureQRZ(data as String) as Picture", nullptr, {expected[0]});
    EXPECT_TRUE(isIntact(*objectAs<Picture>(back))) << width;
    EXPECT_EQ(call("", "PicturetoBinaryStringQRZ(p as picture) as string", nullptr, {back}),
              expected[0]);
  }
}

}  // namespace
}  // namespace host
