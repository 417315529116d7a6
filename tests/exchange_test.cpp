// Pictures to and from PICT data, GWorlds and binary strings.

#include <algorithm>
#include <climits>
#include <cstdlib>
#include <cstring>

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

Ref<Picture> pictureOf(const Value& value) { return Ref<Picture>::share(objectAs<Picture>(value)); }

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

TEST_P(BinaryStringTest, ThereAndBackInAllWidths) {
  for (int32_t width = 1; width <= 70; ++width) {
    const int32_t height = 1 + width % 5;
    const auto picture = randomPicture(width, height);
    const Unchanged unchanged(picture);
    auto pixels = picture->pixels();
    const std::string text = toString(picture);
    EXPECT_EQ(text, (BinaryString{static_cast<uint32_t>(width), static_cast<uint32_t>(height),
                                  colorBytes(pixels)}
                         .text()));
    const auto back = fromString(text);
    ASSERT_TRUE(back);
    for (uint32_t& word : pixels) word &= 0xFFFFFF;
    EXPECT_TRUE(samePixels(*back, pixels));
    EXPECT_EQ(back->references(), 1);
  }
}

TEST_P(BinaryStringTest, OnePixelTakes43Bytes) {
  const auto picture = drawnPicture(1, 1, [](int32_t, int32_t) { return 0xFF8000FFU; });
  const unsigned char expected[] = {'P', 'P', 'I', 'C', 0, 0,  0, 43, 0, 0,  0, 1, 0, 0,
                                    0,   1,   0,   0,   0, 32, 0, 0,  0, 40, 0, 0, 0, 0,
                                    0,   0,   0,   0,   0, 0,  0, 0,  0, 0,  0, 0};
  const std::string header(expected, expected + 40);
  EXPECT_EQ(toString(picture), header + colorBytes(picture->pixels()));
}

TEST_P(BinaryStringTest, HeadersThatAreRead) {
  const std::string pixels = "RGBrgb";
  const auto expectPixels = [](const BinaryString& string, const std::vector<uint32_t>& expected) {
    const auto picture = fromString(string.text());
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->width(), static_cast<int32_t>(string.width));
    EXPECT_TRUE(samePixels(*picture, expected));
  };
  expectPixels({2, 1, pixels}, {0x524742, 0x726762});
  expectPixels({1, 2, pixels}, {0x524742, 0x726762});
  expectPixels({2, 1, pixels, 40, 0}, {0x524742, 0x726762});
  expectPixels({1, 1, pixels}, {0x524742});
  expectPixels({1, 1, pixels, 43}, {0x726762});
  expectPixels({2, 1, pixels + "more"}, {0x524742, 0x726762});
  // The header itself is pixels, if the offset says so.
  expectPixels({2, 1, pixels, 0}, {0x505049, 0x430000});
  expectPixels({1, 1, "", 37}, {0});
}

TEST_P(BinaryStringTest, HeadersThatLieGiveNil) {
  const std::string pixels(60, 'x');
  const BinaryString lies[] = {
      {5, 4, pixels, 40, 32, 99},
      {5, 4, pixels, 40, 32, 101},
      {5, 4, pixels, 40, 32, 0},
      {5, 5, pixels},
      {7, 3, pixels},
      {5, 4, pixels, 41},
      {1, 1, pixels, 98},
      {1, 1, pixels, 100},
      {1, 1, pixels, 0x7FFFFFFF},
      {1, 1, pixels, 0xFFFFFFFD},
      {1, 1, pixels, 0x80000000},
      {0, 4, pixels},
      {5, 0, pixels},
      {0, 0, pixels},
      {0xFFFFFFFF, 1, pixels},
      {1, 0xFFFFFFFF, pixels},
      {0xFFFFFFFF, 0xFFFFFFFF, pixels},
      {0x80000000, 2, pixels},
      {0x10000, 0x10000, pixels},
      {0x8000, 0x20000, pixels},
      {0x55555556, 1, pixels},
      {1, 0x55555556, pixels},
      {0x55555555, 1, pixels},
      {0x5555, 0x10001, pixels},
      {0x40000000, 4, pixels},
      {0x7FFFFFFF, 0x7FFFFFFF, pixels},
      {5, 4, pixels, 0xFFFFFFFF},
      {0x55555546, 1, pixels, 40},
  };
  for (const BinaryString& lie : lies) {
    // No picture is asked for whose pixels there are not.
    EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(fromString(lie.text())); }), Calls{})
        << lie.width << " x " << lie.height << " at " << lie.offset << ", " << lie.length
        << " bytes";
  }
  EXPECT_FALSE(fromString("QPIC" + BinaryString{5, 4, pixels}.text().substr(4)));
  EXPECT_FALSE(fromString("PPID" + BinaryString{5, 4, pixels}.text().substr(4)));
}

TEST_P(BinaryStringTest, StringsThatEndInTheHeaderGiveNil) {
  for (uint32_t size = 0; size < 43; ++size) {
    const BinaryString cut{1, 1, "xyz", 40, 32, size};
    EXPECT_FALSE(fromString(cut.text().substr(0, size))) << size;
  }
}

TEST_P(BinaryStringTest, HeadersNeedNotBeWhole) {
  // The reserved bytes are never looked at.
  const BinaryString whole{1, 1, "", 24, 32, 27};
  const auto picture = fromString(whole.text().substr(0, 24) + "RGB");
  ASSERT_TRUE(picture);
  EXPECT_TRUE(samePixels(*picture, {0x524742}));
}

TEST_P(BinaryStringTest, RandomHeadersAreRefusedOrRead) {
  constexpr uint32_t numbers[] = {0,   1,      2,       3,          39,         40,        41,
                                  100, 0x5555, 0x10000, 0x7FFFFFFF, 0x80000000, 0xFFFFFFFF};
  const auto pick = [&] { return numbers[random() % std::size(numbers)]; };
  for (int i = 0; i < 500; ++i) {
    const BinaryString string{pick(), pick(), std::string(random() % 200, 'x'), pick()};
    const uint64_t last = uint64_t{string.offset} + uint64_t{string.width} * string.height * 3;
    const bool fits = string.width > 0 && string.height > 0 && string.width < 1000 &&
                      string.height < 1000 && last <= string.text().size();
    EXPECT_EQ(static_cast<bool>(fromString(string.text())), fits)
        << string.width << " x " << string.height << " at " << string.offset << " of "
        << string.text().size();
  }
}

TEST_P(BinaryStringTest, FailingCallsLeaveNothingBehind) {
  const auto picture = randomPicture(4, 3);
  const std::string text = BinaryString{4, 3, colorBytes(picture->pixels())}.text();
  expectNothingLeftByFailures([&] {
    const Unchanged unchanged(picture);
    const std::string made = toString(picture);
    EXPECT_TRUE(made.empty() || made.size() == text.size());
    fromString(text);
  });
  EXPECT_EQ(toString(picture), text);
}

class ExchangeTest : public PluginTest {};

int32_t encodingSet;

TEST_F(ExchangeTest, StringsHoldRawBytes) {
  const auto picture = Picture::create(Storage::GWorld, 2, 2);
  EXPECT_EQ(callsDuring([&] { toString(picture); }),
            joined({openGWorld, {"REALBuildString", "REALSetStringEncoding"}, closeGWorld}));
  EXPECT_EQ(toString(nullptr), "");
}

TEST_F(ExchangeTest, EncodingOfRawBytesIsUnknown) {
  runtime().replacedServices["REALSetStringEncoding"] =
      reinterpret_cast<void*>(+[](StringRecord*, int32_t encoding) { encodingSet = encoding; });
  toString(Picture::create(Storage::GWorld, 2, 2));
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

TEST_F(ExchangeTest, NilGivesNilWithoutACall) {
  EXPECT_EQ(callsDuring([] {
              EXPECT_FALSE(picHandle(nullptr));
              EXPECT_EQ(picHandleData(nullptr), "");
            }),
            Calls{});
}

TEST_F(ExchangeTest, DataMakesAPicture) {
  for (const std::string& data : {pictData, std::string("x"), std::string(70000, 'y')}) {
    const auto picture = fromPicHandleData(data);
    ASSERT_TRUE(picture);
    EXPECT_EQ(picture->store().type(), 1);
    EXPECT_EQ(picture->references(), 1);
    EXPECT_EQ(picHandleData(picture), data);
  }
  EXPECT_EQ(fromPicHandleData(pictData)->width(), 5);
  EXPECT_EQ(callsDuring([] { fromPicHandleData(pictData); }),
            (Calls{"PtrToHand", "REALBuildPictureFromPicHandle"}));
  EXPECT_EQ(callsDuring([] { EXPECT_TRUE(fromPicHandleData("")); }),
            (Calls{"PtrToHand", "REALBuildPictureFromPicHandle"}));
}

TEST_F(ExchangeTest, FailingCallsLeaveNothingBehind) {
  const auto pict = pictOf(pictData);
  const auto world = Picture::create(Storage::GWorld, 3, 3);
  expectNothingLeftByFailures([&] {
    const Unchanged unchanged(pict);
    const Unchanged unchangedToo(world);
    picHandle(pict);
    picHandle(world);
    picHandleData(pict);
    picHandleData(world);
    EXPECT_EQ(standin::counts().handleLocks, 0);
    EXPECT_EQ(standin::counts().handles, 1);
  });
}

bool failsAtPtrToHand(const char* called) { return std::string_view(called) != "PtrToHand"; }

TEST_F(ExchangeTest, NoHandleNoPicture) {
  runtime().setCallHook(failsAtPtrToHand);
  EXPECT_FALSE(fromPicHandleData(pictData));
}

class RecordedTest : public RepresentationTest {};
QRZ_ALL_REPRESENTATIONS(RecordedTest);

std::string halfWord(int32_t number) { return bigEndian(static_cast<uint32_t>(number)).substr(2); }

TEST_P(RecordedTest, PicturesOfAllWidthsShowTheirPixels) {
  for (int32_t width = 1; width <= 70; ++width) {
    const int32_t height = 1 + width % 5;
    const auto picture = randomPicture(width, height);
    const Unchanged unchanged(picture);
    auto expected = picture->pixels();
    for (uint32_t& word : expected) word &= 0xFFFFFF;
    const auto recorded = picHandle(picture);
    ASSERT_TRUE(recorded);
    EXPECT_EQ(recorded->store().type(), 1);
    EXPECT_EQ(recorded->references(), 1);
    EXPECT_TRUE(samePixels(*recorded, expected));
    // The plug-in reads the data as the host draws it, if the copy can be read.
    const bool isReadable = GetParam().newPictures == Storage::GWorld;
    EXPECT_EQ(toString(recorded), isReadable ? toString(picture) : "");
    const std::string data = picHandleData(picture);
    EXPECT_EQ(data, picHandleData(recorded)) << "the same data as a string";
    const auto back = fromPicHandleData(data);
    ASSERT_TRUE(back);
    EXPECT_TRUE(samePixels(*back, expected));
    // The frame, and in the extended header the resolutions and the source rectangle.
    const std::string frame = std::string(4, '\0') + halfWord(height) + halfWord(width);
    EXPECT_EQ(data.substr(2, 8), frame);
    EXPECT_EQ(data.substr(16, 20),
              bigEndian(0xFFFE0000) + bigEndian(0x480000) + bigEndian(0x480000) + frame);
  }
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

std::vector<std::string> callsWithoutRecording;

bool failsAtOpenCPicture(const char* called) {
  if (std::string_view(called).starts_with("resolve ")) return true;
  callsWithoutRecording.emplace_back(called);
  return callsWithoutRecording.back() != "OpenCPicture";
}

TEST_F(ExchangeTest, NoRecordingNoData) {
  const auto picture = Picture::create(Storage::GWorld, 3, 2);
  const Unchanged unchanged(picture);
  runtime().setCallHook(failsAtOpenCPicture);
  EXPECT_FALSE(picHandle(picture));
  EXPECT_EQ(std::exchange(callsWithoutRecording, {}), joined({refuse, startRecording}));
  EXPECT_EQ(picHandleData(picture), "");
  EXPECT_EQ(callsWithoutRecording,
            joined({{"lockPictureDescription"}, startRecording, {"unlockPictureDescription"}}));
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
  for (const auto& [width, height] : {std::pair{32768, 1}, {1, 32768}, {65537, 1}}) {
    const auto picture = Picture::create(Storage::GWorld, width, height);
    EXPECT_FALSE(picHandle(picture));
    EXPECT_EQ(picHandleData(picture), "");
  }
}

// --- GWorlds -----------------------------------------------------------------

int32_t ownership;

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

TEST_F(ExchangeTest, OwnershipIsPassedOn) {
  runtime().replacedServices["REALBuildPictureFromGWorld"] =
      reinterpret_cast<void*>(+[](GWorldPtr, int32_t owns) -> Object* {
        ownership = owns;
        return nullptr;
      });
  for (const bool owns : {true, false}) {
    call("", kFromGWorld, nullptr, {0x1000, owns});
    EXPECT_EQ(ownership, owns ? 1 : 0) << "one byte, zero-extended";
  }
}

// --- Strings that are nil ----------------------------------------------------

std::vector<qrz::MethodRecord*> globalRecords;

/// Sees the records of the global methods as they are registered.
class NilStringTest : public ExchangeTest {
 protected:
  void SetUp() override {
    runtime().replacedServices["PluginRegisterMethod"] =
        reinterpret_cast<void*>(+[](qrz::MethodRecord* record) {
          globalRecords.push_back(record);
          registerGlobalMethod(runtime().registry, *record);
        });
    ExchangeTest::SetUp();
  }
  static Ref<Picture> callWithNil(std::string_view declaration) {
    for (const qrz::MethodRecord* record : globalRecords) {
      if (record->declaration != declaration) continue;
      auto* function = reinterpret_cast<Object* (*)(StringRecord*)>(record->function);
      return pictureOf(objectValue(Ref<Object>::adopt(function(nullptr))));
    }
    throw std::logic_error("not registered: " + std::string(declaration));
  }
};

TEST_F(NilStringTest, IsEmpty) {
  EXPECT_FALSE(callWithNil(kFromString));
  const auto picture = callWithNil(kFromPicHandleData);
  ASSERT_TRUE(picture);
  EXPECT_EQ(standin::sizeOf(static_cast<Handle>(picture->store().data())), 0);
}

}  // namespace
}  // namespace host
