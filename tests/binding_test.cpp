// Host helpers that operations share and no registered member shows alone:
// strings, exceptions, properties, copies by row, the writer's latch. The plug-in's
// own objects are linked into this program, with the headless host behind them.

#include <gtest/gtest.h>

#include <array>

#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/core/string_record.h"
#include "plugin/binding/exceptions.h"
#include "plugin/binding/properties.h"
#include "plugin/binding/services.h"
#include "plugin/binding/strings.h"
#include "plugin/frame/catalogue.h"
#include "plugin/frame/registration.h"
#include "plugin/pixels/buffer.h"
#include "plugin/pixels/copy.h"
#include "plugin/pixels/host_bitmap.h"
#include "plugin/pixels/writer.h"
#include "tests/support/calls.h"
#include "tests/support/plugin_test.h"

extern "C" void REALPluginMain(qrz::HostResolver hostResolver);

namespace host {
namespace {

class BindingTest : public testing::Test {
 protected:
  void SetUp() override {
    if (runtime().registry.classes().empty()) addBuiltInClasses(runtime().registry);
    qrz::resolver = resolveService;
  }
  void TearDown() override {
    for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
  }
};

struct Text {
  std::string bytes;
  int32_t encoding;
};

Text made(std::string_view bytes, int32_t encoding) {
  auto* string = reinterpret_cast<StringRecord*>(
      qrz::MakeHostString(bytes.data(), static_cast<int32_t>(bytes.size()), encoding));
  if (string == nullptr) return {"nil", 0};
  Text text{std::string(string->text()), string->encoding};
  EXPECT_EQ(string->references, 1);
  releaseString(string);
  return text;
}

TEST_F(BindingTest, StringsKeepTheirBytesUnlessTheyAreWide) {
  using namespace std::string_view_literals;
  EXPECT_EQ(made("\0\xFFxy"sv, qrz::kRawBytes).bytes, "\0\xFFxy"sv);
  EXPECT_EQ(made("abc", qrz::kASCII).encoding, qrz::kASCII);
  const Text wide = made("h\0\xE9\0\x3D\xD8\x00\xDE\x00\xD8"sv, qrz::kUTF16);
  EXPECT_EQ(wide.bytes, "h\xC3\xA9\xF0\x9F\x98\x80\xEF\xBF\xBD");
  EXPECT_EQ(wide.encoding, qrz::kUTF8);
  EXPECT_EQ(made("\xAC\x20\0\0"sv, qrz::kUTF32).bytes, "\xE2\x82\xAC");
  EXPECT_EQ(made("", qrz::kASCII).bytes, "nil");
  EXPECT_EQ(qrz::MakeHostString(nullptr, 3, qrz::kASCII), nullptr);
  EXPECT_EQ(qrz::textOf(nullptr).length, 0);
  uint32_t withoutBuffer[] = {1, 0, 1, 5};
  EXPECT_EQ(qrz::textOf(reinterpret_cast<qrz::HostString>(&withoutBuffer)).length, 0);
}

TEST_F(BindingTest, FailedConversionFreesTheString) {
  runtime().setCallHook(
      [](const char* call) { return std::string_view(call) != "REALConvertString"; });
  EXPECT_EQ(made("ab", qrz::kUTF16).bytes, "nil");
  runtime().setCallHook(
      [](const char* call) { return std::string_view(call) != "REALBuildString"; });
  EXPECT_EQ(made("ab", qrz::kASCII).bytes, "nil");
  runtime().setCallHook(nullptr);
}

std::string raised() {
  try {
    runtime().deliverPendingException();
  } catch (const RaisedException& exception) {
    const auto& object = dynamic_cast<const ExceptionObject&>(*exception.instance);
    EXPECT_EQ(object.references(), 1);
    return object.className() + ": " + object.message;
  }
  return "nothing";
}

TEST_F(BindingTest, ExceptionsCarryTheirMessage) {
  qrz::RaiseNilObjectException("The channel picture is nil.");
  EXPECT_EQ(raised(), "NilObjectException: The channel picture is nil.");
  qrz::RaiseHostException("OutOfBoundsException", nullptr);
  EXPECT_EQ(raised(), "OutOfBoundsException: ");
  qrz::RaiseHostException("OutOfBoundsException", "");
  EXPECT_EQ(raised(), "OutOfBoundsException: ");
  qrz::RaiseHostException("NoSuchClass", "message");
  EXPECT_EQ(raised(), "nothing");
}

uint32_t lastFlag = 0;

uint32_t answerWithGarbage(Object* /*object*/, const char* /*name*/, uint32_t value) {
  lastFlag = value;
  return 0xFFFFFF00 | (value & 1);
}

TEST_F(BindingTest, BooleansCrossAsOneByteBothWays) {
  qrz::HostService<qrz::HostBoolean(qrz::HostObject, const char*, qrz::HostBoolean)> service{
      "asks"};
  runtime().replacedServices["asks"] = reinterpret_cast<void*>(answerWithGarbage);
  for (const uint8_t flag : {uint8_t{0}, uint8_t{1}, uint8_t{0xFF}}) {
    EXPECT_EQ(service(nullptr, "", flag), flag & 1);
    EXPECT_EQ(lastFlag, flag) << "the word is not zero-extended";
  }
  runtime().replacedServices.clear();
}

TEST_F(BindingTest, NothingIsDoneWithNothing) {
  EXPECT_EQ(qrz::GetWidthProperty(nullptr), 0);
  qrz::resolver = nullptr;
  EXPECT_EQ(qrz::HostService<int32_t()>{"REALenterMovies"}(), 0);
  REALPluginMain(nullptr);
  EXPECT_EQ(qrz::resolver, nullptr);
  for (const int64_t count : {int64_t{-1}, int64_t{INT32_MAX} / 4 + 1, INT64_MAX}) {
    EXPECT_FALSE(qrz::Buffer<uint32_t>(count)) << count;
  }
}

TEST_F(BindingTest, OldFlagsBringTheirNewOnesAlong) {
  uint32_t& flags = qrz::globalMethods().begin()->flags;
  qrz::resolver = [](const char* /*name*/) -> void* { return nullptr; };
  for (const auto& [version, expected] : {std::pair{2010.028, 0x80001U}, {2010.029, 0x80009U}}) {
    flags = 0x80001;
    qrz::HostVersion = version;
    qrz::PluginEntry();
    EXPECT_EQ(flags, expected) << version;
  }
}

// --- Copies by row -----------------------------------------------------------

Ref<Picture> striped(Storage storage, int32_t width, int32_t height, uint32_t seed) {
  auto picture = Picture::create(storage, width, height);
  std::vector<uint32_t> words(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (size_t i = 0; i < words.size(); ++i) words[i] = seed + static_cast<uint32_t>(i) * 0x01234567;
  picture->setPixels(words);
  return picture;
}

bool copyRows(const Ref<Picture>& to, const Ref<Picture>& from, const qrz::DrawGeometry& geometry) {
  return qrz::CopyRows(reinterpret_cast<qrz::HostPicture>(to.get()),
                       reinterpret_cast<qrz::HostPicture>(from.get()), geometry);
}

TEST_F(BindingTest, CopyRowsCopiesWholeBitmapsOnly) {
  const auto source = striped(Storage::Bitmap, 5, 3, 1);
  const auto destination = striped(Storage::Bitmap, 5, 3, 77);
  const auto before = destination->pixels();
  const qrz::DrawGeometry whole{0, 0, 5, 3, 0, 0, 5, 3};
  for (int field = 0; field < 8; ++field) {
    std::array<int32_t, 8> numbers = {0, 0, 5, 3, 0, 0, 5, 3};
    numbers.at(static_cast<size_t>(field)) += 1;
    const auto& n = numbers;
    EXPECT_FALSE(copyRows(destination, source, {n[0], n[1], n[2], n[3], n[4], n[5], n[6], n[7]}));
  }
  EXPECT_FALSE(copyRows(destination, nullptr, whole));
  EXPECT_FALSE(copyRows(nullptr, source, whole));
  EXPECT_FALSE(copyRows(destination, striped(Storage::Bitmap, 5, 4, 1), whole));
  EXPECT_FALSE(copyRows(destination, striped(Storage::Bitmap, 4, 3, 1), whole));
  EXPECT_FALSE(copyRows(destination, striped(Storage::GWorld, 5, 3, 1), whole));
  EXPECT_FALSE(copyRows(striped(Storage::GWorld, 5, 3, 1), source, whole));
  const auto odd = striped(Storage::Bitmap, 5, 3, 1);
  qrz::HostBitmap& record = bitmapOf(odd);
  const auto expectRefused = [&](auto& field, auto value) {
    std::swap(field, value);
    EXPECT_FALSE(copyRows(destination, odd, whole));
    EXPECT_FALSE(copyRows(odd, source, whole));
    std::swap(field, value);
  };
  expectRefused(record.kind, 1);
  expectRefused(record.rowTable, static_cast<uint8_t**>(nullptr));
  EXPECT_EQ(destination->pixels(), before);

  EXPECT_TRUE(copyRows(destination, source, whole));
  EXPECT_EQ(destination->pixels(), source->pixels());
  // What has no pixels is copied, too.
  uint8_t* rows[] = {nullptr, record.rowTable[1], record.rowTable[2]};
  uint8_t** table = record.rowTable;
  record.rowTable = rows;
  EXPECT_TRUE(copyRows(destination, odd, whole));
  EXPECT_TRUE(copyRows(odd, destination, whole));
  record.rowTable = table;
  bitmapOf(destination).width = record.width = 0;
  EXPECT_TRUE(copyRows(destination, odd, whole));
  bitmapOf(destination).width = record.width = 5;
}

TEST_F(BindingTest, BitmapsWithoutARecordAreNotCopied) {
  const auto source = striped(Storage::Bitmap, 5, 3, 1);
  const auto destination = striped(Storage::Bitmap, 5, 3, 77);
  static const Picture* withoutData = nullptr;
  runtime().replacedServices["REALLockPictureDescription"] = reinterpret_cast<void*>(
      +[](Picture* picture, qrz::PictureDescription* description, int32_t /*type*/) -> uint32_t {
        picture->lock(*description);
        if (picture == withoutData) description->data = nullptr;
        return 1;
      });
  for (const auto& picture : {source, destination}) {
    withoutData = picture.get();
    EXPECT_FALSE(copyRows(destination, source, {0, 0, 5, 3, 0, 0, 5, 3}));
  }
  runtime().replacedServices.clear();
}

TEST_F(BindingTest, DrawingFallsBackToCopyingRows) {
  const auto source = striped(Storage::Bitmap, 4, 4, 9);
  const auto destination = striped(Storage::Bitmap, 4, 4, 3);
  const auto graphics = makeObject<Graphics>(destination);
  const auto draw = [&](const Ref<Graphics>& into, const Ref<Picture>& drawn) {
    return qrz::DrawPictureInto(reinterpret_cast<qrz::HostGraphics>(into.get()),
                                reinterpret_cast<qrz::HostPicture>(destination.get()),
                                reinterpret_cast<qrz::HostPicture>(drawn.get()),
                                {0, 0, 4, 4, 0, 0, 4, 4});
  };
  EXPECT_FALSE(draw(graphics, nullptr));
  EXPECT_TRUE(draw(nullptr, source));
  EXPECT_EQ(destination->pixels(), source->pixels());
  destination->fill(0, 0, 4, 4, 0);
  runtime().replacedServices["REALLoadObjectMethod"] = nullptr;
  runtime().replacedServices["RuntimeGraphicsDrawPicture"] = nullptr;
  EXPECT_TRUE(draw(graphics, source));
  EXPECT_EQ(destination->pixels(), source->pixels());
  runtime().replacedServices.clear();
  EXPECT_EQ(qrz::MakeCopy32(nullptr, 4, 4), nullptr);
}

// --- New pictures ------------------------------------------------------------

using WriterTest = BindingTest;

/// Calls of a create that should fail.
template <typename Path>
Calls failedCreate(int32_t width, int32_t height) {
  return callsDuring([&] {
    qrz::PictureWriter<Path> writer;
    EXPECT_FALSE(writer.create(width, height));
  });
}

TEST_F(WriterTest, UnusableBitmapSettlesThePath) {
  runtime().replacedServices["newPicture"] =
      reinterpret_cast<void*>(+[](int32_t width, int32_t height, int32_t) -> Object* {
        auto made = Picture::create(Storage::Bitmap, width, height);
        static_cast<qrz::HostBitmap*>(made->store().data())->kind = 1;
        return made.detach();
      });
  const Calls released = {"lockPictureDescription", "unlockPictureDescription", "REALUnlockObject"};
  EXPECT_EQ(failedCreate<qrz::GWorldPath>(3, 3), released);
  EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::Unknown);
  EXPECT_EQ(failedCreate<qrz::RowTablePath>(3, 3), released);
  EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::RowTablePath);
  EXPECT_TRUE(failedCreate<qrz::GWorldPath>(3, 3).empty()) << "refused at once";
}

TEST_F(WriterTest, ContextSettlesThePathAndSizesAreTestedFirst) {
  runtime().settings.newPictures = Storage::Context;
  EXPECT_TRUE(failedCreate<qrz::GWorldPath>(0, 3).empty());
  EXPECT_TRUE(failedCreate<qrz::RowTablePath>(3, -1).empty());
  qrz::PictureWriter<qrz::GWorldPath> writer;  // never finished
  EXPECT_TRUE(writer.create(3, 3));
  EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::GWorldPath);
  EXPECT_TRUE(failedCreate<qrz::RowTablePath>(3, 3).empty()) << "refused at once";
}

}  // namespace
}  // namespace host
