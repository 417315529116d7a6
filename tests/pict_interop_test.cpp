// PICT data that other programs read, and theirs: ImageMagick, netpbm, FFmpeg.
// Only where those programs are right; what they get wrong is tested against data
// laid out by hand.

#include <cstdlib>

#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

class PictInteropTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    // A photograph that ImageMagick has built in.
    shell("convert rose: -resize 400% -quality 90 photo.jpg");
  }

  /// Runs a command in the folder; a program that is missing fails, too.
  void shell(const std::string& command) const {
    const std::string line = "cd " + folder + " && (" + command + ") >log 2>&1 </dev/null";
    ASSERT_EQ(std::system(line.c_str()), 0) << command << "\n(see tools/setup)";
  }
  void apply(const std::string& expression, const std::string& input,
             const std::string& output) const {
    const std::string in = input.starts_with("sample:") ? input : path(input);
    const Outcome outcome = qrz("--check apply '" + expression + "' " + in + " -o " + path(output));
    ASSERT_EQ(outcome.status, 0) << outcome.output;
  }
  [[nodiscard]] Image image(const std::string& name) const {
    Image result = readImage(path(name));
    for (uint32_t& word : result.pixels) word &= 0x00FFFFFF;
    return result;
  }
  void expectSame(const std::string& name, const std::string& expected,
                  const std::string& what) const {
    ASSERT_FALSE(HasFatalFailure()) << what;
    const Image a = image(name);
    const Image b = image(expected);
    EXPECT_EQ(a.width, b.width) << what;
    EXPECT_EQ(a.height, b.height) << what;
    EXPECT_TRUE(a.pixels == b.pixels) << what;
  }
};

TEST_F(PictInteropTest, OthersReadWhatIsRecorded) {
  constexpr const char* kRecorded = "BuildPictureWithPicHandleDataQRZ(self.PicHandleDataQRZ)";
  for (const std::string source :
       {"photo.jpg", "sample:landscape", "sample:colors@84x50", "sample:edges@501x64",
        "sample:greys@1021x9", "sample:gradients@4095x5"}) {
    apply("self", source, "source.png");
    apply(kRecorded, source, "ours.pict");
    shell("convert ours.pict theirs.png");
    expectSame("theirs.png", "source.png", source + ", ImageMagick");
    shell("ffmpeg -v error -y -f qdraw_pipe -i ours.pict theirs.png");
    expectSame("theirs.png", "source.png", source + ", FFmpeg");
  }
}

TEST_F(PictInteropTest, WhatImageMagickWrites) {
  for (const std::string form :
       {"", "-alpha on -channel A -evaluate set 40% +channel", "+dither -colors 250",
        "+dither -colors 5", "-colorspace Gray", "-monochrome"}) {
    for (const std::string width : {"84", "320", "1021"}) {
      shell("convert photo.jpg -resize " + width + "x40! " + form +
            " form.png && convert form.png -write theirs.pict -alpha off expected.png");
      apply("self", "theirs.pict", "ours.png");
      expectSame("ours.png", "expected.png", form + " " + width);
    }
  }
  shell("convert photo.jpg theirs.pict && convert photo.jpg -negate expected.png");
  apply("self.InvertQRZ", "theirs.pict", "ours.png");
  expectSame("ours.png", "expected.png", "inverted");
}

TEST_F(PictInteropTest, WhatNetpbmWrites) {
  for (const std::string width : {"8", "63", "84", "200", "251", "320"}) {
    shell("convert photo.jpg -resize " + width + "x40! +dither -colors 200 expected.png && " +
          "convert expected.png ppm:- | ppmtopict >theirs.pict");
    apply("self", "theirs.pict", "ours.png");
    expectSame("ours.png", "expected.png", width);
  }
}

}  // namespace
}  // namespace host
