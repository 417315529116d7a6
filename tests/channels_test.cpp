// Replacing, combining and merging channels on every representation.

#include <algorithm>
#include <map>

#include "host/core/exception.h"
#include "tests/support/checks.h"

namespace host {
namespace {

struct Replacement {
  const char* declaration;
  uint32_t channel;  ///< the bits that come from the channel picture
};

const Replacement replacements[] = {
    {"ReplaceRedChannelQRZ(RedChannel as picture) as picture", 0xFF0000},
    {"ReplaceGreenChannelQRZ(GreenChannel as picture) as picture", 0x00FF00},
    {"ReplaceBlueChannelQRZ(BlueChannel as picture) as picture", 0x0000FF},
};
constexpr const char* kCombine =
    "CombinePicturesQRZ(red as picture, blue as picture, green as picture) as picture";
constexpr const char* kMerge = "MergePictureQRZ(source1 as picture, source2 as picture) as picture";

Ref<Picture> replace(const Replacement& replacement, const Ref<Picture>& picture,
                     const Ref<Picture>& channel) {
  return PluginTest::filter(replacement.declaration, picture, {objectValue(channel)});
}
Ref<Picture> combine(const Ref<Picture>& red, const Ref<Picture>& blue, const Ref<Picture>& green) {
  return pictureOf(PluginTest::call("", kCombine, nullptr,
                                    {objectValue(red), objectValue(blue), objectValue(green)}));
}
Ref<Picture> merge(const Ref<Picture>& first, const Ref<Picture>& second) {
  return pictureOf(
      PluginTest::call("", kMerge, nullptr, {objectValue(first), objectValue(second)}));
}

class ChannelsTest : public RepresentationTest {
 protected:
  /// The replacements, the merged pictures, and all three combined.
  static std::vector<Ref<Picture>> everything(const Ref<Picture>& a, const Ref<Picture>& b,
                                              const Ref<Picture>& c) {
    std::vector<Ref<Picture>> results;
    for (const Replacement& replacement : replacements) {
      results.push_back(replace(replacement, a, b));
    }
    results.push_back(merge(a, b));
    results.push_back(combine(a, c, b));
    return results;
  }
  static void expectNil(const Ref<Picture>& a, const Ref<Picture>& b, const Ref<Picture>& c) {
    for (const auto& result : everything(a, b, c)) EXPECT_FALSE(result);
  }
  static void expectAll(const Ref<Picture>& a, const Ref<Picture>& b, const Ref<Picture>& c) {
    const Unchanged unchanged[] = {Unchanged(a), Unchanged(b), Unchanged(c)};
    const bool fits = a->width() == b->width() && a->height() == b->height();
    const auto results = everything(a, b, c);
    std::vector<uint32_t> expected[5];
    for (int32_t y = 0; y < a->height(); ++y) {
      for (int32_t x = 0; x < a->width(); ++x) {
        const uint32_t p = a->pixel(x, y);
        const uint32_t q = b->pixel(x, y);
        uint32_t lighter = 0;
        for (size_t k = 0; k < 3; ++k) {
          const uint32_t channel = replacements[k].channel;
          expected[k].push_back((p & ~channel) | (q & channel));
          lighter |= std::max(p & channel, q & channel);
        }
        expected[3].push_back(lighter);
        expected[4].push_back((p & 0xFF0000) | (q & 0x00FF00) | (c->pixel(x, y) & 0x0000FF));
      }
    }
    for (size_t k = 0; k < 5; ++k) {
      if (k < 3 || fits) {
        EXPECT_TRUE(isNewPicture(results[k], a->width(), expected[k])) << k;
      } else {
        EXPECT_FALSE(results[k]) << k;
      }
    }
  }
};
QRZ_ALL_REPRESENTATIONS(ChannelsTest);

TEST_P(ChannelsTest, RandomPictures) {
  const auto a = randomPicture(1031, 3);
  expectAll(a, randomPicture(1031, 3), randomPicture(1031, 3));
  expectAll(a, a, a);
}

TEST_P(ChannelsTest, LargerChannelPicturesAreCutAndSmallerOnesRefused) {
  const auto a = randomPicture(37, 9);
  for (const auto& [width, height] :
       {std::pair{38, 9}, {37, 10}, {41, 30}, {36, 9}, {37, 8}, {36, 10}, {38, 8}, {1, 1}}) {
    const auto other = randomPicture(width, height);
    width < 37 || height < 9 ? expectNil(a, other, a) : expectAll(a, other, a);
    EXPECT_FALSE(merge(other, a));
    EXPECT_FALSE(combine(a, other, a));
    EXPECT_FALSE(combine(a, other, other));
  }
}

TEST_P(ChannelsTest, NilChannelRaisesAndOpensNothing) {
  const auto source = randomPicture(4, 4);
  const Unchanged unchanged(source);
  for (const Replacement& replacement : replacements) {
    for (const Ref<Picture>& picture : {source, Ref<Picture>()}) {
      std::string message = "nothing was raised";
      const auto calls = callsDuring([&] {
        try {
          replace(replacement, picture, nullptr);
        } catch (const RaisedException& raised) {
          EXPECT_EQ(raised.instance->className(), "NilObjectException");
          message = dynamic_cast<const ExceptionObject&>(*raised.instance).message;
        }
      });
      EXPECT_EQ(message, "The channel picture is nil.");
      EXPECT_EQ(calls, (std::vector<std::string>{"PluginNewInstance", "REALBuildString",
                                                 "REALSetStringEncoding", "RuntimeRaiseException",
                                                 "REALSetPropValueString", "REALUnlockString"}));
    }
  }
}

std::map<const Picture*, std::string> names;
std::string locks;

using ChannelCallsTest = PluginTest;

TEST_F(ChannelCallsTest, ReadersOpenInOrderAndCloseInReverse) {
  auto& services = runtime().replacedServices;
  services["lockPictureDescription"] =
      reinterpret_cast<void*>(+[](Picture* picture, qrz::PictureDescription* description) {
        locks += " +" + names[picture];
        picture->lock(*description);
      });
  services["unlockPictureDescription"] = reinterpret_cast<void*>(+[](Picture* picture) {
    locks += " -" + names[picture];
    picture->unlock();
  });
  const auto picture = [](const char* name, int32_t width) {
    auto made = Picture::create(Storage::GWorld, width, 4);
    names[made.get()] = name;
    return made;
  };
  const auto a = picture("a", 5);
  const auto b = picture("b", 5);
  const auto c = picture("c", 5);
  const auto small = picture("small", 4);
  const Ref<Picture> nil;
  const auto expectLocks = [&](const Ref<Picture>& result, const std::string& expected) {
    EXPECT_EQ(std::exchange(locks, {}), expected);
    EXPECT_EQ(result != nullptr, expected.find("+ ") != std::string::npos) << expected;
  };
  expectLocks(merge(a, b), " +a +b + - -b -a");
  expectLocks(merge(a, small), " +a +small -small -a");
  expectLocks(merge(a, nil), "");
  expectLocks(merge(nil, b), "");
  expectLocks(combine(a, c, b), " +a +b +c + - -c -b -a");
  expectLocks(combine(a, small, b), " +a +b +small -small -b -a");
  expectLocks(combine(a, nil, b), " +a +b -b -a");
  expectLocks(combine(a, c, nil), " +a -a");
  expectLocks(combine(nil, c, b), "");
  for (const Replacement& replacement : replacements) {
    expectLocks(replace(replacement, a, b), " +a +b + - -b -a");
    expectLocks(replace(replacement, a, small), " +a +small -small -a");
    expectLocks(replace(replacement, nil, b), "");
  }
}

TEST_P(ChannelsTest, PicturesOfSeveralRepresentationsTogether) {
  if (GetParam().newPictures != Storage::GWorld) return;  // copies can be read only as GWorlds
  const auto a = randomPicture(23, 7);
  const auto filled = [&](Storage storage, int32_t depth) {
    auto picture = Picture::create(storage, 23, 7, depth);
    picture->setPixels(randomPicture(23, 7)->pixels());
    return picture;
  };
  const auto deep = filled(Storage::GWorld, 24);
  const auto context = filled(Storage::Context, 32);
  expectAll(a, deep, context);
  expectAll(context, a, deep);
  expectAll(deep, context, filled(Storage::GWorld, 32));
}

TEST_P(ChannelsTest, FurtherPicturesInARepresentationThatCannotBeRead) {
  const auto a = randomPicture(5, 4);
  const bool isBitmap = GetParam().newPictures == Storage::Bitmap;
  const auto foreign = Picture::create(isBitmap ? Storage::GWorld : Storage::Bitmap, 5, 4);
  const Unchanged unchanged[] = {Unchanged(a), Unchanged(foreign)};
  expectNil(a, foreign, a);
  EXPECT_FALSE(merge(foreign, a)) << "the paths are settled";
}

}  // namespace
}  // namespace host
