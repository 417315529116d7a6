// The shared filter frame with two and three sources, which no registered
// member shows yet.

#include "plugin/pixels/filter.h"

#include <gtest/gtest.h>

#include <algorithm>

#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "plugin/binding/host_service.h"
#include "tests/support/plugin_test.h"

namespace host {
namespace {

struct SameSize {
  template <typename Readers>
  bool operator()(const Readers& readers) const {
    return std::ranges::all_of(readers, [&](const auto& reader) {
      return reader.width() == readers[0].width() && reader.height() == readers[0].height();
    });
  }
};

/// Red of the first source, green of the second, blue of the last one.
struct CombineRow {
  template <typename Format>
  void row(qrz::PixelWord* destination, int32_t count, const qrz::PixelWord* first,
           const qrz::PixelWord* second, const qrz::PixelWord* third) const {
    for (int32_t x = 0; x < count; ++x) {
      destination[x] =
          Format::pack(Format::red(first[x]), Format::green(second[x]), Format::blue(third[x]));
    }
  }
  template <typename Format>
  void row(qrz::PixelWord* destination, int32_t count, const qrz::PixelWord* first,
           const qrz::PixelWord* second) const {
    row<Format>(destination, count, first, second, second);
  }
};

template <typename... Sources>
Ref<Picture> combined(const Sources&... sources) {
  const qrz::Pictures<sizeof...(sources)> handles{
      reinterpret_cast<qrz::HostPicture>(sources.get())...};
  const auto result =
      qrz::filterPictures(handles, SameSize(), qrz::Rectangle{1, 0, -1, 2}, CombineRow());
  return Ref<Picture>::adopt(reinterpret_cast<Picture*>(result));
}

class FilterTest : public testing::TestWithParam<Representation> {
 protected:
  void SetUp() override {
    addBuiltInClasses(runtime().registry);
    runtime().settings.newPictures = GetParam().newPictures;
    qrz::resolver = resolveService;
  }
  void TearDown() override {
    for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
  }
  static Ref<Picture> picture(int32_t width, int32_t height, uint32_t color) {
    auto made = Picture::create(GetParam().sources, width, height, GetParam().depth);
    made->fill(0, 0, width, height, color);
    return made;
  }
};
QRZ_ALL_REPRESENTATIONS(FilterTest);

TEST_P(FilterTest, PairsPixelsOfTwoAndThreeSources) {
  const auto red = picture(4, 3, 0xF80000);
  const auto green = picture(4, 3, 0x00F800);
  const auto blue = picture(4, 3, 0x0000F8);
  const uint32_t level = red->pixel(0, 0) >> 16;  // 16-bit pictures spread their bits
  const auto two = combined(red, green);
  const auto three = combined(red, green, blue);
  ASSERT_TRUE(two && three);
  for (int32_t y = 0; y < 3; ++y) {
    for (int32_t x = 0; x < 4; ++x) {
      const bool inside = x >= 1 && y < 2;
      EXPECT_EQ(two->pixel(x, y), inside ? level * 0x010100 : 0xFFFFFF) << x << ", " << y;
      EXPECT_EQ(three->pixel(x, y), inside ? level * 0x010101 : 0xFFFFFF) << x << ", " << y;
    }
  }
}

TEST_P(FilterTest, NilForSizesThatDoNotFitAndSourcesThatCannotBeRead) {
  const auto source = picture(4, 3, 0x123456);
  const auto lower = picture(4, 4, 0x123456);
  const Ref<Picture> nil;
  EXPECT_FALSE(combined(source, lower));
  EXPECT_FALSE(combined(source, source, lower));
  EXPECT_FALSE(combined(nil, source));
  EXPECT_FALSE(combined(source, nil));
  EXPECT_FALSE(combined(source, source, nil));
  EXPECT_TRUE(combined(source, source, source));
  EXPECT_EQ(source->references(), 1);
  EXPECT_EQ(source->locks(), 0);
}

TEST(FilterOrderTest, OpensInOrderAndClosesInReverse) {
  runtime().settings.newPictures = Storage::Bitmap;
  qrz::resolver = resolveService;
  const auto source = Picture::create(Storage::Bitmap, 2, 2);
  const Ref<Picture> nil;
  ASSERT_TRUE(combined(source, source));  // settles the latches
  EXPECT_EQ(callsDuring([&] { EXPECT_FALSE(combined(source, source, nil)); }),
            (std::vector<std::string>{"lockPictureDescription", "REALLockObject",
                                      "lockPictureDescription", "REALLockObject",
                                      "unlockPictureDescription", "REALUnlockObject",
                                      "unlockPictureDescription", "REALUnlockObject"}));
}

/// Calls of a create that should fail.
template <typename Path>
std::vector<std::string> failedCreate(int32_t width, int32_t height) {
  return callsDuring([&] {
    qrz::PictureWriter<Path> writer;
    EXPECT_FALSE(writer.create(width, height));
  });
}

TEST(WriterTest, UnusableBitmapSettlesThePath) {
  qrz::resolver = resolveService;
  runtime().replacedServices["newPicture"] =
      reinterpret_cast<void*>(+[](int32_t width, int32_t height, int32_t) -> Object* {
        auto made = Picture::create(Storage::Bitmap, width, height);
        static_cast<qrz::HostBitmap*>(made->store().data())->kind = 1;
        return made.detach();
      });
  const std::vector<std::string> released = {"lockPictureDescription", "unlockPictureDescription",
                                             "REALUnlockObject"};
  EXPECT_EQ(failedCreate<qrz::GWorldPath>(3, 3), released);
  EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::Unknown);
  EXPECT_EQ(failedCreate<qrz::RowTablePath>(3, 3), released);
  EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::RowTablePath);
  EXPECT_TRUE(failedCreate<qrz::GWorldPath>(3, 3).empty()) << "refused at once";
  EXPECT_TRUE(runtime().findLeaks().empty());
}

TEST(WriterTest, ContextSettlesThePathAndSizesAreTestedFirst) {
  qrz::resolver = resolveService;
  runtime().settings.newPictures = Storage::Context;
  EXPECT_TRUE(failedCreate<qrz::GWorldPath>(0, 3).empty());
  EXPECT_TRUE(failedCreate<qrz::RowTablePath>(3, -1).empty());
  {
    qrz::PictureWriter<qrz::GWorldPath> writer;
    EXPECT_TRUE(writer.create(3, 3));
    EXPECT_EQ(qrz::writerLatch, qrz::RepresentationLatch::GWorldPath);
    EXPECT_TRUE(failedCreate<qrz::RowTablePath>(3, 3).empty()) << "refused at once";
  }
  EXPECT_TRUE(runtime().findLeaks().empty()) << "a writer that was not finished leaks";
}

}  // namespace
}  // namespace host
