// Every program in examples/ runs as it stands, and does what it claims.

#include <gtest/gtest.h>

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
    if (entry.path().extension() == ".rbs") names.push_back(entry.path().stem().string());
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

struct Claim {
  const char* name;
  const char* arguments;
  const char* output;
};

TEST_F(ExampleTest, EachDoesWhatItClaims) {
  write("grey.pgm", "P5 80 60 255\n" + std::string(4800, '\x80'));
  write("silence.raw", std::string(400, '\0'));
  write("nothing.raw", "");
  for (const auto& [name, arguments, output] : {
           Claim{"roundtrip", "",
                 "wrote 460840 bytes to roundtrip.ppic\nall 153600 pixels are equal\n"},
           Claim{"identity", "",
                 "0 0 57 becomes 0 0 56\n100 100 100 becomes 100 100 100\n"
                 "255 255 255 becomes 255 255 255\n"
                 "34976 of 38400 pixels are the same, wrote identity.png\n"},
           Claim{"find", "", "found at 168 153\nwrote find.png\n"},
           Claim{"find", "sample:colors none.png sample:greys@40x30", "not found\n"},
           Claim{"histogram", "sample:edges@90x61", "counted 5490 pixels, wrote histogram.png\n"},
           Claim{"sepia", "grey.pgm sepia.png", "wrote sepia.png\n"},
           Claim{"waveform", "silence.raw w.png 50", "wrote w.png\n"},
           Claim{"waveform", "nothing.raw none.png", "nothing to draw in nothing.raw\n"},
           Claim{"duotone", "sample:greys", "wrote duotone.png\n"},
           Claim{"grade", "sample:greys night.png night", "wrote night.png, night\n"},
           Claim{"grade", "sample:greys none.png day",
                 "there is no look 'day'; use warm, night or faded\n"},
       }) {
    EXPECT_EQ(run(name, arguments).output, output) << name;
  }
  EXPECT_FALSE(fs::exists("none.png"));
  const struct {
    const char* picture;
    int32_t x, y;
    uint32_t color;
  } places[] = {
      {"find.png", 165, 150, 0xFF0080},
      {"find.png", 266, 261, 0xFF0080},
      // 128 weighs 127; the last of seven steps darkens by 1, the first by 90.
      {"sepia.png", 40, 30, 0xA28A66},
      {"sepia.png", 0, 0, 0x49310D},
      {"w.png", 25, 149, 0x88B5C4},
      {"w.png", 25, 150, 0x203F4E},
      {"duotone.png", 10, 10, 0x1C1054},
      {"duotone.png", 470, 10, 0xFFD496},
      {"night.png", 10, 10, 0x000018},
  };
  for (const auto& [picture, x, y, color] : places) {
    EXPECT_EQ(colorAt(readImage(picture), x, y), color) << picture << ' ' << x << ", " << y;
  }
}

}  // namespace
}  // namespace host
