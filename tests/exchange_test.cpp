// Pictures to and from PICT data, GWorlds and binary strings.

#include <algorithm>
#include <cstdlib>

#include "host/core/plugin_classes.h"
#include "host/core/string_record.h"
#include "platform/standin/standin.h"
#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

constexpr const char* kToString = "PicturetoBinaryStringQRZ(p as picture) as string";
constexpr const char* kFromString = "BinaryStringtoPictureQRZ(data as String) as Picture";
constexpr const char* kPicHandle = "PicHandleQRZ as picture";
constexpr const char* kPicHandleData = "PicHandleDataQRZ as string";
constexpr const char* kFromPicHandleData =
    "BuildPictureWithPicHandleDataQRZ(data as string) as picture";
constexpr const char* kFromGWorld =
    "BuildPictureWithGWorldHandleQRZ(handle as integer, ByPassOwernerShip as boolean) as picture";

std::string toString(const Ref<Picture>& picture) {
  return std::get<std::string>(PluginTest::call("", kToString, nullptr, {objectValue(picture)}));
}
Ref<Picture> fromString(const std::string& text) {
  return pictureOf(PluginTest::call("", kFromString, nullptr, {text}));
}

Ref<Picture> pictOf(std::string_view data) {
  Handle handle = nullptr;
  EXPECT_EQ(PtrToHand(data.data(), &handle, static_cast<long>(data.size())), 0);
  return makeObject<Picture>(pictStore(handle));
}
Ref<Picture> picHandle(const Ref<Picture>& picture) {
  return PluginTest::filter(kPicHandle, picture);
}
std::string picHandleData(const Ref<Picture>& picture) {
  return std::get<std::string>(PluginTest::call("Picture", kPicHandleData, picture.get()));
}
Ref<Picture> fromPicHandleData(const std::string& data) {
  return pictureOf(PluginTest::call("", kFromPicHandleData, nullptr, {data}));
}

// --- The binary string -------------------------------------------------------

std::string bigEndian(uint32_t word) {
  std::string bytes;
  for (const int32_t shift : {24, 16, 8, 0}) bytes += static_cast<char>(word >> shift);
  return bytes;
}

/// A header and what follows it; the length is right unless another is given.
struct BinaryString {
  uint32_t width, height;
  std::string rest;
  uint32_t offset = 40;
  uint32_t depth = 32;
  int64_t length = -1;

  [[nodiscard]] std::string text() const {
    const auto whole = length < 0 ? static_cast<int64_t>(40 + rest.size()) : length;
    return "PPIC" + bigEndian(static_cast<uint32_t>(whole)) + bigEndian(width) + bigEndian(height) +
           bigEndian(depth) + bigEndian(offset) + std::string(16, '\0') + rest;
  }
};

std::string colorBytes(const std::vector<uint32_t>& words) {
  std::string bytes;
  for (const uint32_t word : words) bytes += bigEndian(word).substr(1);
  return bytes;
}

class BinaryStringTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(BinaryStringTest);

TEST_P(BinaryStringTest, ThereAndBack) {
  const auto picture = randomPicture(61, 5);
  const Unchanged unchanged(picture);
  const std::string text = toString(picture);
  EXPECT_EQ(text, (BinaryString{61, 5, colorBytes(picture->pixels())}.text()));
  EXPECT_TRUE(isNewPicture(fromString(text), 61, colorsOf(*picture)));
}

TEST_P(BinaryStringTest, HeadersAreBelievedAsFarAsThereArePixels) {
  constexpr uint32_t numbers[] = {
      0,          1,          2,          3,        4,          5,          7,
      37,         40,         41,         43,       97,         98,         100,
      0x5555,     0x8000,     65536,      0x10001,  0x20000,    0x40000000, 0x55555546,
      0x55555555, 0x55555556, 0x7FFFFFFF, 1U << 31, 0xFFFFFFFD, 0xFFFFFFFF};
  std::string rest;
  for (char c = 'A'; rest.size() < 60; ++c) rest += c;
  for (const uint32_t width : numbers) {
    for (const uint32_t height : numbers) {
      for (const uint32_t offset : numbers) {
        const std::string text = BinaryString{width, height, rest, offset, height}.text();
        const bool fits = width > 0 && height > 0 && width < 100 && height < 100 &&
                          offset <= text.size() && offset + 3 * width * height <= text.size();
        Ref<Picture> picture;
        const Calls calls = callsDuring([&] { picture = fromString(text); });
        // Nothing is asked for if there is too little.
        ASSERT_EQ(picture != nullptr, fits) << width << " x " << height << " at " << offset;
        ASSERT_EQ(calls.empty(), !fits);
        if (!fits) continue;
        ASSERT_EQ(picture->width(), static_cast<int32_t>(width));
        EXPECT_EQ(colorBytes(picture->pixels()), text.substr(offset, 3 * width * height));
      }
    }
  }
}

TEST_P(BinaryStringTest, HeadersMustNotLieAndNeedNotBeWhole) {
  const std::string text = BinaryString{5, 4, std::string(60, 'x')}.text();
  EXPECT_TRUE(fromString(text));
  for (const uint32_t length : {0U, 99U, 101U}) {
    EXPECT_FALSE(fromString(text.substr(0, 4) + bigEndian(length) + text.substr(8)));
  }
  for (const std::string magic : {"QPIC", "PPID"}) EXPECT_FALSE(fromString(magic + text.substr(4)));
  for (uint32_t size = 0; size < 43; ++size) {
    const BinaryString cut{1, 1, "xyz", 40, 32, size};
    EXPECT_FALSE(fromString(cut.text().substr(0, size))) << size;
  }
  // The reserved bytes are never looked at.
  const auto picture = fromString(BinaryString{1, 1, "", 24, 32, 27}.text().substr(0, 24) + "RGB");
  EXPECT_TRUE(isNewPicture(picture, 1, {0x524742}));
}

class ExchangeTest : public PluginTest {};

int32_t encodingSet;

TEST_F(ExchangeTest, EncodingOfRawBytesIsUnknown) {
  runtime().replacedServices["REALSetStringEncoding"] =
      reinterpret_cast<void*>(+[](StringRecord*, int32_t encoding) { encodingSet = encoding; });
  const auto picture = Picture::create(Storage::GWorld, 2, 2);
  EXPECT_EQ(callsDuring([&] { toString(picture); }),
            joined({openGWorld, {"REALBuildString"}, closeGWorld}));
  EXPECT_EQ(std::exchange(encodingSet, 0), 0xFFFF);
  picHandleData(pictOf("data"));
  EXPECT_EQ(encodingSet, 0xFFFF);
}

TEST_F(ExchangeTest, PicturesTooLargeForAStringGiveNil) {
  // Nothing but the sizes is real.
  for (const int32_t side : {26755, 30000, 46341, 65536}) {
    auto* base = static_cast<uint8_t*>(calloc(1, 64));
    GWorldPtr world = standin::newGWorldOver(base, side, side, 32, 64);
    const auto picture = makeObject<Picture>(gworldStore(world, true));
    EXPECT_EQ(callsDuring([&] { EXPECT_EQ(toString(picture), ""); }),
              joined({openGWorld, closeGWorld}));
  }
}

// --- PICT data ---------------------------------------------------------------

const std::string pictData("\0\0\0\1\0\2\0\4\0\7\x11\x01\xFF", 13);

TEST_F(ExchangeTest, PictDataIsHandedOutAsItIs) {
  const auto picture = pictOf(pictData);
  EXPECT_EQ(callsDuring([&] { EXPECT_EQ(picHandle(picture), picture); }),
            (Calls{"lockPictureDescription", "unlockPictureDescription", "REALLockObject"}));
  EXPECT_EQ(picture->references(), 1);
  Calls calls = callsDuring([&] { EXPECT_EQ(picHandleData(picture), pictData); });
  std::erase(calls, "GetHandleSize");
  EXPECT_EQ(calls, (Calls{"lockPictureDescription", "HLock", "REALBuildString",
                          "REALSetStringEncoding", "HUnlock", "unlockPictureDescription"}));
  EXPECT_EQ(standin::counts().handleLocks, 0);
  EXPECT_EQ(picHandleData(pictOf("")), "");
}

TEST_F(ExchangeTest, DataMakesAPicture) {
  for (const std::string& data : {pictData, std::string("x"), std::string(70000, 'y')}) {
    const auto picture = fromPicHandleData(data);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->store().type(), 1);
    EXPECT_EQ(picHandleData(picture), data);
  }
  EXPECT_EQ(fromPicHandleData(pictData)->width(), 5);
  EXPECT_EQ(callsDuring([] { EXPECT_TRUE(fromPicHandleData("")); }),
            (Calls{"PtrToHand", "REALBuildPictureFromPicHandle"}));
}

class RecordedTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(RecordedTest);

TEST_P(RecordedTest, PicturesShowTheirPixels) {
  const auto picture = randomPicture(61, 5);
  const Unchanged unchanged(picture);
  const auto recorded = picHandle(picture);
  EXPECT_TRUE(isNewPicture(recorded, 61, colorsOf(*picture)));
  EXPECT_EQ(recorded->store().type(), 1);
  // The plug-in reads the data as the host draws it, if the copy can be read.
  const bool isReadable = GetParam().newPictures == Storage::GWorld;
  EXPECT_EQ(toString(recorded), isReadable ? toString(picture) : "");
  const std::string data = picHandleData(picture);
  EXPECT_EQ(data, picHandleData(recorded)) << "the same data as a string";
  EXPECT_TRUE(isNewPicture(fromPicHandleData(data), 61, colorsOf(*picture)));
  // The frame, and in the extended header the resolutions and the source rectangle.
  const std::string frame = bigEndian(0) + bigEndian(5 << 16 | 61);
  EXPECT_EQ(data.substr(2, 8), frame);
  EXPECT_EQ(data.substr(16, 20),
            bigEndian(0xFFFE0000) + bigEndian(0x480000) + bigEndian(0x480000) + frame);
}

const Calls startRecording = {"ForeColor", "BackColor", "OpenCPicture"};
const Calls endRecording = {"drawPicturePrimitive", "ClosePicture"};

Calls callsOfPicHandleData(const Ref<Picture>& picture) {
  Calls calls = callsDuring([&] { EXPECT_FALSE(picHandleData(picture).empty()); });
  std::erase(calls, "GetHandleSize");
  return calls;
}

TEST_F(ExchangeTest, RecordingsAreKeptOrKilled) {
  const auto picture = Picture::create(Storage::GWorld, 3, 2);
  EXPECT_EQ(callsDuring([&] { EXPECT_TRUE(picHandle(picture)); }),
            joined({refuse, startRecording, endRecording, {"REALBuildPictureFromPicHandle"}}));
  EXPECT_EQ(callsOfPicHandleData(picture),
            joined({{"lockPictureDescription"},
                    startRecording,
                    endRecording,
                    {"HLock", "REALBuildString", "REALSetStringEncoding", "HUnlock", "KillPicture",
                     "unlockPictureDescription"}}));
  EXPECT_EQ(standin::counts().handles, 0);
}

TEST_F(ExchangeTest, PortGetsAWhiteBackground) {
  const auto port = Picture::create(Storage::GWorld, 2, 1);
  port->fill(0, 0, 2, 1, 0xFF);
  SetGWorld(static_cast<GWorldPtr>(port->store().data()), nullptr);
  BackColor(205);
  EXPECT_TRUE(picHandle(Picture::create(Storage::GWorld, 3, 2)));
  const Rect all = {0, 0, 1, 2};
  ScrollRect(&all, 1, 0, nullptr);
  EXPECT_EQ(port->pixel(0, 0), 0xFFFFFFU);
  EXPECT_EQ(port->pixel(1, 0), 0xFFU) << "nothing is drawn into the port";
}

TEST_F(ExchangeTest, PicturesTooLargeForPictDataGiveNil) {
  const Calls lock = {"lockPictureDescription"};
  const Calls unlock = {"unlockPictureDescription"};
  // The platform refuses the last one.
  for (const auto& [width, height] : {std::pair{32768, 1}, {1, 32768}, {65537, 1}, {4096, 2}}) {
    const Calls attempt = width == 4096 ? startRecording : Calls{};
    const auto picture = Picture::create(Storage::GWorld, width, height);
    const Unchanged unchanged(picture);
    EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(picHandle(picture)); }), joined({refuse, attempt}));
    EXPECT_EQ(callsDuring([&] { EXPECT_EQ(picHandleData(picture), ""); }),
              joined({lock, attempt, unlock}));
  }
}

// --- GWorlds -----------------------------------------------------------------

TEST_F(ExchangeTest, GWorldsBecomePictures) {
  const auto picture = [](GWorldPtr world, bool bypass) {
    return pictureOf(call("", kFromGWorld, nullptr,
                          {static_cast<int32_t>(reinterpret_cast<intptr_t>(world)), bypass}));
  };
  for (const bool owns : {true, false}) {
    auto* base = static_cast<uint8_t*>(calloc(64, 3));
    GWorldPtr world = standin::newGWorldOver(base, 3, 3, 32, 64);
    base[64 + 4 + 1] = 0x77;
    {
      const auto made = picture(world, owns);
      ASSERT_TRUE(made);
      EXPECT_EQ(made->store().data(), world);
      EXPECT_EQ(made->pixel(1, 1), 0x770000U);
      EXPECT_EQ(made->references(), 1);
    }
    EXPECT_EQ(standin::counts().worlds, owns ? 0 : 1);
    if (!owns) standin::disposeGWorld(world);
  }
  EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(picture(nullptr, true)); }), Calls{});
}

}  // namespace
}  // namespace host
