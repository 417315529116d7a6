// Rows at odd addresses with guard bytes around them: whatever the width, the
// members read and write their pixels and no byte besides.

#include <cstdlib>
#include <cstring>
#include <map>

#include "platform/standin/standin.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

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
  const auto instance = [](const char* className) {
    return runtime().registry.findClass(className)->constructors.front().call(nullptr, {});
  };
  const std::map<const char*, Value> instances = {{"PictureLut3DQRZ", instance("PictureLut3DQRZ")},
                                                  {"PictureSepiaQRZ", instance("PictureSepiaQRZ")}};
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = source(width, 4);
    const auto before = picture->pixels();
    const Value self = objectValue(picture);
    const std::vector<std::pair<const char*, std::vector<Value>>> members = {
        {"InvertQRZ as picture", {}},
        {"InvertGrayQRZ as picture", {}},
        {"EmbeddedMaskQRZ(swap as boolean) as picture", {true}},
        {"ExtractColorRectangleMaskQRZ as picture", {}},
        {"ChangeContrastQRZ(x as double) as picture", {0.5}},
        {"ChangeSaturationQRZ(Amount as integer) as picture", {100}},
        {"ReplaceRedChannelQRZ(RedChannel as picture) as picture", {self}},
        {"ReplaceColorQRZ(SearchColor as color, ReplaceWithColor as color) as picture",
         {Color{1}, Color{2}}},
    };
    for (const auto& [member, arguments] : members) {
      const auto result = filter(member, picture, arguments);
      ASSERT_TRUE(result);
      EXPECT_TRUE(isIntact(*result)) << member << " of width " << width;
    }
    const std::vector<std::pair<const char*, std::vector<Value>>> globals = {
        {"CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture",
         {self, self, self}},
        {"MergePictureQRZ(source1 as picture, source2 as picture) as picture", {self, self}},
        {"TintPictureQRZ(source as picture, GreyBase as color, SepiaBase as color) as picture",
         {self, Color{0x4C961D}, Color{0xFFE0B0}}},
    };
    for (const auto& [member, arguments] : globals) {
      const Value result = call("", member, nullptr, arguments);
      EXPECT_TRUE(isIntact(*objectAs<Picture>(result))) << member << " of width " << width;
    }
    for (const auto& [name, object] : instances) {
      assign(name, "SourcePicture as Picture", objectOf(object), {}, self);
      EXPECT_EQ(call(name, "Run as boolean", objectOf(object)), Value{true});
      const Value result = call(name, "DestinationPicture as Picture", objectOf(object));
      EXPECT_TRUE(isIntact(*objectAs<Picture>(result))) << name << " of width " << width;
    }
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

TEST_P(GuardTest, RowsAtOddAddressesAreInverted) {
  for (int32_t width = 1; width <= 70; ++width) {
    const auto picture = source(width, 3);
    const auto result = filter("InvertQRZ as picture", picture);
    ASSERT_TRUE(result);
    const auto always = [](int32_t, int32_t) { return true; };
    const auto invert = [](uint32_t rgb) { return 0x00FFFFFF - rgb; };
    EXPECT_TRUE(samePixels(*result, expectedPixels(*picture, always, invert)));
  }
}

}  // namespace
}  // namespace host
