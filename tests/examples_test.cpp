// Every program in examples/ runs as it stands, and does what it claims.

#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <vector>

#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kPictures[] = {"gworld", "context", "bitmap"};

std::vector<std::string> exampleNames() {
  std::vector<std::string> names;
  for (const auto& entry : fs::directory_iterator(QRZ_SOURCE_FOLDER "/examples")) {
    names.push_back(entry.path().stem().string());
  }
  return names;
}

/// Examples write into the folder they are run in.
class ExampleTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    before_ = fs::current_path();
    fs::current_path(folder);
  }
  void TearDown() override {
    fs::current_path(before_);
    FolderTest::TearDown();
  }

  static Outcome run(const std::string& name, const std::string& arguments = {},
                     const std::string& pictures = "gworld") {
    return qrz("--check --pictures " + pictures + " run " QRZ_SOURCE_FOLDER "/examples/" + name +
               ".rbs " + arguments);
  }

 private:
  fs::path before_;
};

class EveryExampleTest : public ExampleTest, public testing::WithParamInterface<std::string> {};

TEST_P(EveryExampleTest, RunsTheSameOnEveryRepresentation) {
  const bool isSilent = GetParam() == "identity";  // prints and writes nothing
  std::string firstOutput;
  Image firstPicture;
  for (const char* pictures : kPictures) {
    const Outcome outcome = run(GetParam(), {}, pictures);
    ASSERT_EQ(outcome.status, 0) << pictures << ": " << outcome.output;
    if (firstOutput.empty()) firstOutput = outcome.output;
    EXPECT_EQ(outcome.output, firstOutput) << pictures;
    if (!fs::exists(GetParam() + ".png")) continue;
    const Image picture = readImage(GetParam() + ".png");
    if (firstPicture.pixels.empty()) firstPicture = picture;
    EXPECT_EQ(picture.pixels, firstPicture.pixels) << pictures;
    fs::remove(GetParam() + ".png");
  }
  if (isSilent) return;
  // The picture and the file to write can be given.
  const std::string source = GetParam() == "waveform" ? "sample:drums" : "sample:edges@90x61";
  const Outcome outcome = run(GetParam(), source + " other.png");
  EXPECT_EQ(outcome.status, 0) << outcome.output;
  EXPECT_TRUE(fs::exists("other.png")) << outcome.output;
}

INSTANTIATE_TEST_SUITE_P(Examples, EveryExampleTest, testing::ValuesIn(exampleNames()),
                         [](const auto& example) { return example.param; });

/// The colour of a pixel, without its top byte.
uint32_t colorAt(const Image& image, int32_t x, int32_t y) {
  return image.pixels[static_cast<size_t>(y * image.width + x)] & 0x00FFFFFF;
}

/// The sum of the channels of a pixel.
uint32_t lightAt(const Image& image, int32_t x, int32_t y) {
  const uint32_t color = colorAt(image, x, y);
  return (color >> 16) + (color >> 8 & 0xFF) + (color & 0xFF);
}

TEST_F(ExampleTest, RoundTripIsExact) {
  const std::string head = "wrote 460840 bytes to roundtrip.ppic\n";
  EXPECT_EQ(run("roundtrip").output, head + "all 153600 pixels are equal\n");
  EXPECT_EQ(fs::file_size("roundtrip.ppic"), 460840U);
}

TEST_F(ExampleTest, FindMarksThePlaceOrSaysThatThereIsNone) {
  EXPECT_EQ(run("find").output, "found at 168 153\nwrote find.png\n");
  const Image marked = readImage("find.png");
  EXPECT_EQ(colorAt(marked, 165, 150), 0xFF0080U);
  EXPECT_EQ(colorAt(marked, 168 + 96 + 2, 153 + 106 + 2), 0xFF0080U);
  EXPECT_NE(colorAt(marked, 168, 153), 0xFF0080U);
  EXPECT_EQ(run("find", "sample:colors none.png sample:greys@40x30").output, "not found\n");
  EXPECT_FALSE(fs::exists("none.png"));
}

TEST_F(ExampleTest, HistogramCountsEveryPixelAndDrawsThePeak) {
  EXPECT_EQ(run("histogram", "sample:edges@90x61").output,
            "counted 5490 pixels, wrote histogram.png\n");
  const Image bars = readImage("histogram.png");
  int32_t tallest = bars.height;
  for (int32_t y = bars.height - 1; y >= 0; --y) {
    for (int32_t x = 0; x < bars.width; ++x) {
      if (colorAt(bars, x, y) != 0x101418) tallest = y;
    }
  }
  EXPECT_EQ(tallest, 20);
}

TEST_F(ExampleTest, SepiaIsBrownAndDarkerTowardsTheEdges) {
  write("grey.pgm", "P5 80 60 255\n" + std::string(4800, '\x80'));
  ASSERT_EQ(run("sepia", "grey.pgm print.png").status, 0);
  const Image print = readImage("print.png");
  for (int32_t i = 1; i <= 30; ++i) {
    EXPECT_LE(lightAt(print, i - 1, 30), lightAt(print, i, 30)) << i;
    EXPECT_EQ(colorAt(print, i, 30), colorAt(print, 79 - i, 30)) << i;
    EXPECT_EQ(colorAt(print, i, 30), colorAt(print, 40, std::min(i, 29))) << i;
  }
  // 128 weighs 127; the last of seven steps darkens by 1, the first by 90.
  EXPECT_EQ(colorAt(print, 40, 30), 0xA28A66U);
  EXPECT_EQ(colorAt(print, 0, 0), 0x49310DU);
}

TEST_F(ExampleTest, WaveformOfASilentSoundAndOfNone) {
  write("silence.raw", std::string(400, '\0'));
  ASSERT_EQ(run("waveform", "silence.raw w.png 50").output, "wrote w.png\n");
  const Image wave = readImage("w.png");
  EXPECT_EQ(wave.width, 50);
  for (int32_t y = 0; y < wave.height; ++y) {
    EXPECT_EQ(colorAt(wave, 25, y), y == 150 ? 0x203F4EU : 0x88B5C4U) << y;
  }
  write("nothing.raw", "");
  EXPECT_EQ(run("waveform", "nothing.raw none.png").output, "nothing to draw in nothing.raw\n");
}

TEST_F(ExampleTest, DuotoneRunsFromInkToPaper) {
  ASSERT_EQ(run("duotone", "sample:greys duotone.png").status, 0);
  const Image print = readImage("duotone.png");
  EXPECT_EQ(colorAt(print, 10, 10), 0x1C1054U);
  EXPECT_EQ(colorAt(print, 470, 10), 0xFFD496U);
}

TEST_F(ExampleTest, GradeTakesALookAndNamesThem) {
  ASSERT_EQ(run("grade", "sample:greys night.png night").output, "wrote night.png, night\n");
  EXPECT_EQ(colorAt(readImage("night.png"), 10, 10), 0x000018U);
  EXPECT_EQ(run("grade", "sample:greys day.png day").output,
            "there is no look 'day'; use warm, night or faded\n");
}

}  // namespace
}  // namespace host
