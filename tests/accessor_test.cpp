// How the plug-in takes pictures and gives them back: the order of host and
// platform calls, the latches, the copy of pictures that it cannot address.

#include <algorithm>
#include <functional>
#include <map>
#include <utility>

#include "platform/standin/standin.h"
#include "plugin/binding/description.h"
#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/pict.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

constexpr const char* kInvert = "InvertQRZ as picture";

class AccessorTest : public PluginTest {
 protected:
  static Ref<Picture> picture(Storage storage, int32_t depth = 32) {
    auto made = Picture::create(storage, 5, 4, depth);
    made->fill(1, 1, 3, 2, 0x104080);
    return made;
  }
  static Calls callsOfInvert(const Ref<Picture>& source) {
    return callsDuring([&] { EXPECT_TRUE(filter(kInvert, source)); });
  }
  static bool inverts(const Ref<Picture>& source) {
    const auto result = filter(kInvert, source);
    return result && result->pixel(2, 2) == 0xEFBF7F && result->pixel(0, 0) == 0;
  }
};

// --- Order of calls ----------------------------------------------------------

TEST_F(AccessorTest, CallsOnGWorlds) {
  const auto source = picture(Storage::GWorld);
  const Calls expected = joined({openGWorld, createGWorld, finishGWorld, closeGWorld});
  EXPECT_EQ(callsOfInvert(source), expected);
  EXPECT_EQ(callsOfInvert(source), expected) << "the second time";
}

TEST_F(AccessorTest, CallsOnContexts) {
  runtime().settings.newPictures = Storage::Context;
  EXPECT_EQ(callsOfInvert(picture(Storage::GWorld)),
            joined({openGWorld, createContext, finishOther, closeGWorld}));
}

TEST_F(AccessorTest, CallsOnBitmaps) {
  runtime().settings.newPictures = Storage::Bitmap;
  const auto source = picture(Storage::Bitmap);
  const Calls settled = joined({openBitmap, createBitmap, finishOther, closeBitmap});
  EXPECT_EQ(callsOfInvert(source), joined({refuse, settled}));
  EXPECT_EQ(callsOfInvert(source), settled) << "once the latch is settled";
}

TEST_F(AccessorTest, CallsOnACopy) {
  const Calls copied =
      joined({makeCopy, openGWorld, dropCopy, createGWorld, finishGWorld, closeGWorld});
  for (const int32_t depth : {24, 16}) {
    EXPECT_EQ(callsOfInvert(picture(Storage::GWorld, depth)), joined({refuseDepth, copied}));
  }
  const auto pict = pictureOver(record(picture(Storage::GWorld)));
  EXPECT_EQ(callsOfInvert(pict), joined({refuse, copied}));
  EXPECT_TRUE(inverts(pict));
}

// --- The copy of pictures that cannot be addressed ---------------------------

TEST_F(AccessorTest, OlderDrawingServiceIsLookedUpOnEveryUse) {
  runtime().replacedServices["REALLoadObjectMethod"] = nullptr;
  const auto source = picture(Storage::GWorld, 24);
  EXPECT_TRUE(inverts(source));
  runtime().replacedServices["RuntimeGraphicsDrawPicture"] = nullptr;
  EXPECT_EQ(filter(kInvert, source)->pixel(2, 2), 0U) << "the copy stays as white as it is made";
}

std::vector<std::string> askedFor;

TEST_F(AccessorTest, WidthIsAskedBeforeHeight) {
  runtime().replacedServices["REALGetPropValueInt"] = reinterpret_cast<void*>(
      +[](Object* /*object*/, const char* name, int32_t* value) -> uint32_t {
        askedFor.emplace_back(name);
        *value = 4;
        return 1;
      });
  EXPECT_TRUE(inverts(picture(Storage::GWorld, 24)));
  EXPECT_EQ(askedFor, (std::vector<std::string>{"Width", "Height"}));
}

std::map<Picture*, qrz::PictureDescription*> lockedDescriptions;

TEST_F(AccessorTest, DescriptionIsNotReadAfterItWasUnlocked) {
  runtime().settings.newPictures = Storage::Bitmap;
  const auto source = picture(Storage::Bitmap);
  runtime().replacedServices["lockPictureDescription"] =
      reinterpret_cast<void*>(+[](Picture* locked, qrz::PictureDescription* description) {
        lockedDescriptions[locked] = description;
        locked->lock(*description);
      });
  runtime().replacedServices["unlockPictureDescription"] =
      reinterpret_cast<void*>(+[](Picture* locked) {
        *lockedDescriptions[locked] = {};
        locked->unlock();
      });
  // With the type still known, there is no attempt to draw a copy.
  EXPECT_EQ(callsDuring([&] { EXPECT_TRUE(filter(kInvert, source)); }),
            (Calls{"REALLockObject", "newPicture", "REALPictureClearCache", "REALUnlockObject"}));
}

TEST_F(AccessorTest, CopyThatCannotBeReadIsFreed) {
  runtime().settings.newPictures = Storage::Context;
  EXPECT_FALSE(filter(kInvert, picture(Storage::GWorld, 24)));
  EXPECT_TRUE(inverts(picture(Storage::GWorld))) << "the latch is still open";
}

// --- Latches -----------------------------------------------------------------

TEST_F(AccessorTest, FailedReadLeavesTheLatchOpen) {
  runtime().settings.newPictures = Storage::Bitmap;
  EXPECT_FALSE(filter(kInvert, picture(Storage::Context)));
  EXPECT_TRUE(inverts(picture(Storage::Bitmap)));
}

TEST_F(AccessorTest, BitmapsAreRefusedOnceAGWorldWasRead) {
  EXPECT_TRUE(inverts(picture(Storage::GWorld)));
  EXPECT_EQ(callsDuring([] { EXPECT_FALSE(filter(kInvert, picture(Storage::Bitmap))); }), refuse);
}

/// What a program does when the plug-in next has a copy drawn.
std::function<void()> meanwhile;

class MeanwhileTest : public AccessorTest {
 protected:
  static void runMeanwhile(std::function<void()> program) {
    meanwhile = std::move(program);
    runtime().setCallHook([](const char* call) {
      const bool isNow = std::string_view(call) == "DrawPicture" && meanwhile != nullptr;
      if (isNow) std::exchange(meanwhile, nullptr)();
      return true;
    });
  }
  void TearDown() override {
    runtime().setCallHook(nullptr);
    source = {};
    AccessorTest::TearDown();
  }
  Ref<Picture> source = picture(Storage::GWorld, 24);
};

TEST_F(MeanwhileTest, TheReaderSettlesOnBitmaps) {
  const auto bitmap = picture(Storage::Bitmap);
  runMeanwhile([&] { EXPECT_FALSE(filter(kInvert, bitmap)); });
  EXPECT_FALSE(filter(kInvert, source));
}

TEST_F(MeanwhileTest, BlocksShrink) {
  const auto block = memoryBlock(std::vector<uint8_t>(1024));
  const auto shrink = [&] { block->bytes.resize(16); };
  runMeanwhile(shrink);
  EXPECT_FALSE(
      filter("TransformColorsQRZ(red as memoryblock, blue as memoryblock, green as memoryblock) as "
             "picture",
             source, {objectValue(block), objectValue(block), objectValue(block)}));
  block->bytes.resize(1024);
  runMeanwhile(shrink);
  std::vector<Value> counted = {objectValue(block), Nil{}, Nil{}, 0};
  callByRef("Picture",
            "CountColorsQRZ(byref red as memoryblock, byref blue as memoryblock, byref green as "
            "memoryblock, byref count as integer)",
            source.get(), counted);
  EXPECT_EQ(counted[3], Value{-1});
}

TEST_F(MeanwhileTest, FiltersRunAsWell) {
  for (const std::string name : {"PictureLut3DQRZ", "PictureSepiaQRZ"}) {
    const Value made = runtime().registry.findClass(name)->constructors.front().call(nullptr, {});
    const auto run = [&] { EXPECT_EQ(call(name, "Run as boolean", objectOf(made)), Value{true}); };
    assign(name, "SourcePicture as Picture", objectOf(made), {}, objectValue(source));
    runMeanwhile(run);
    run();
  }
}

struct Flaw {
  const char* name;
  void (*apply)(qrz::HostBitmap&);
};

class UnusableBitmapTest : public AccessorTest, public testing::WithParamInterface<Flaw> {};
INSTANTIATE_TEST_SUITE_P(
    All, UnusableBitmapTest,
    testing::Values(Flaw{"Kind", [](qrz::HostBitmap& bitmap) { bitmap.kind = 1; }},
                    Flaw{"NotReady", [](qrz::HostBitmap& bitmap) { bitmap.ready = 0; }},
                    Flaw{"NoTable", [](qrz::HostBitmap& bitmap) { bitmap.rowTable = nullptr; }},
                    Flaw{"NoLastRow",
                         [](qrz::HostBitmap& bitmap) {
                           bitmap.rowTable[bitmap.height - 1] = nullptr;
                         }}),
    [](const auto& test) { return std::string(test.param.name); });

TEST_P(UnusableBitmapTest, SettlesTheReaderAllTheSame) {
  runtime().settings.newPictures = Storage::Bitmap;
  const auto unusable = picture(Storage::Bitmap);
  GetParam().apply(bitmapOf(unusable));
  EXPECT_FALSE(filter(kInvert, unusable));
  EXPECT_EQ(callsDuring([] { EXPECT_FALSE(filter(kInvert, picture(Storage::GWorld))); }), refuse);
  EXPECT_TRUE(inverts(picture(Storage::Bitmap)));
}

// --- New pictures that cannot be written -------------------------------------

/// A bitmap context of another pixel size.
class OddContext final : public PixelStore {
 public:
  OddContext(int32_t width, int32_t height, size_t component, size_t pixel)
      : bytes_(static_cast<size_t>(width) * static_cast<size_t>(height) * 8),
        context_(standin::newBitmapContext(bytes_.data(), static_cast<size_t>(width) * 8, component,
                                           pixel)),
        width_(width),
        height_(height) {}
  ~OddContext() override { standin::disposeBitmapContext(context_); }
  [[nodiscard]] int32_t type() const override { return qrz::kBitmapContext; }
  [[nodiscard]] void* data() override { return context_; }
  [[nodiscard]] std::string name() const override { return "odd context"; }
  [[nodiscard]] int32_t width() const override { return width_; }
  [[nodiscard]] int32_t height() const override { return height_; }
  void read(const Run& run, uint32_t* words) const override { std::fill_n(words, run.count, 0); }
  void write(const Run& /*run*/, const uint32_t* /*words*/) override {}

 private:
  std::vector<uint8_t> bytes_;
  CGContextRef context_;
  int32_t width_;
  int32_t height_;
};

template <size_t Component, size_t Pixel>
Object* newOddContext(int32_t width, int32_t height, int32_t /*depth*/) {
  auto store = std::make_unique<OddContext>(width, height, Component, Pixel);
  return makeObject<Picture>(std::move(store)).detach();
}

using NewPicture = Object* (*)(int32_t width, int32_t height, int32_t depth);

class OddContextTest : public AccessorTest, public testing::WithParamInterface<NewPicture> {};
INSTANTIATE_TEST_SUITE_P(All, OddContextTest,
                         testing::Values(newOddContext<8, 24>, newOddContext<16, 32>));

TEST_P(OddContextTest, IsReleased) {
  runtime().replacedServices["newPicture"] = reinterpret_cast<void*>(GetParam());
  EXPECT_FALSE(filter(kInvert, picture(Storage::GWorld)));
  EXPECT_EQ(callsDuring([] { EXPECT_FALSE(filter(kInvert, picture(Storage::GWorld))); }),
            joined({openGWorld,
                    {createContext.begin() + 1, createContext.end()},
                    {"unlockPictureDescription", "REALUnlockObject"},
                    closeGWorld}));
}

}  // namespace
}  // namespace host
