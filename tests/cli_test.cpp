// qrz as its users run it: commands, messages, exit statuses, files.

#include <filesystem>
#include <fstream>
#include <set>

#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

namespace fs = std::filesystem;

class CliTest : public FolderTest {
 protected:
  [[nodiscard]] std::set<std::string> files() const {
    std::set<std::string> names;
    for (const auto& entry : fs::directory_iterator(folder)) {
      names.insert(entry.path().filename().string());
    }
    return names;
  }
  /// Expects the status and one line of exactly this text.
  void expectLine(const std::string& arguments, int status, const std::string& line) const {
    const Outcome outcome = qrz(arguments);
    EXPECT_EQ(outcome.status, status) << arguments;
    EXPECT_EQ(outcome.output, line + "\n") << arguments;
  }
  /// A small picture with alpha, as a file.
  [[nodiscard]] Image writeSample(const std::string& name) const {
    Image image{
        3, 2, true, {0x00112233, 0x80FF0000, 0xFF00FF00, 0x010000FF, 0xFE808080, 0x7FFFFFFF}};
    writeImage(path(name), image);
    return image;
  }
};

TEST_F(CliTest, ApplyWritesTheInvertedPictureInEveryMode) {
  const Image source = writeSample("in.png");
  for (const char* mode : {"gworld", "context", "bitmap"}) {
    const Outcome outcome =
        qrz("--check --pictures " + std::string(mode) + " apply self.InvertQRZ " + path("in.png") +
            " -o " + path("out.png"));
    EXPECT_EQ(outcome.output, "") << mode;
    ASSERT_EQ(outcome.status, 0) << mode;
    const Image result = readImage(path("out.png"));
    ASSERT_EQ(result.pixels.size(), source.pixels.size());
    for (size_t i = 0; i < source.pixels.size(); ++i) {
      EXPECT_EQ(result.pixels[i], ~source.pixels[i] & 0x00FFFFFF) << mode << " pixel " << i;
    }
  }
  EXPECT_EQ(files(), (std::set<std::string>{"in.png", "out.png"}));
}

TEST_F(CliTest, AlphaIsTheMaskAndComesBack) {
  const Image source = writeSample("in.tga");
  EXPECT_EQ(qrz("apply self " + path("in.tga") + " -o " + path("copy.png")).status, 0);
  EXPECT_EQ(readImage(path("copy.png")).pixels, source.pixels);
  EXPECT_EQ(qrz("apply self.Mask " + path("in.tga") + " -o " + path("mask.bmp")).status, 0);
  const Image mask = readImage(path("mask.bmp"));
  for (size_t i = 0; i < source.pixels.size(); ++i) {
    EXPECT_EQ(mask.pixels[i], (source.pixels[i] >> 24) * 0x010101) << i;
  }
}

TEST_F(CliTest, ApplyToSeveralFilesGoesOnAfterABadOne) {
  static_cast<void>(writeSample("a.png"));
  static_cast<void>(writeSample("b.png"));
  write("bad.png", "no picture");
  const Outcome outcome = qrz("apply self.InvertGrayQRZ " + path("a.png") + " " + path("bad.png") +
                              " " + path("b.png") + " -o " + path("out"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output,
            "2 of 3 done, 1 failed:\n" + path("bad.png") +
                ": is no picture that can be read; use PNG, JPEG, BMP, GIF, TGA, PNM or PICT\n");
  EXPECT_TRUE(fs::exists(path("out/a.png")));
  EXPECT_TRUE(fs::exists(path("out/b.png")));
  EXPECT_FALSE(fs::exists(path("out/bad.png")));
}

TEST_F(CliTest, ApplyNeverWritesOneFileTwice) {
  static_cast<void>(writeSample("a.png"));
  fs::create_directory(path("sub"));
  fs::copy(path("a.png"), path("sub/a.png"));
  const Outcome outcome =
      qrz("apply self " + path("a.png") + " " + path("sub/a.png") + " -o " + path("out"));
  EXPECT_EQ(outcome.status, 1);
  EXPECT_EQ(outcome.output, "1 of 2 done, 1 failed:\n" + path("sub/a.png") +
                                ": another file of this name was written to " + path("out/a.png") +
                                " already\n");
}

TEST_F(CliTest, FailuresSayWhatToDoAndLeaveNothing) {
  const std::string out = " -o " + path("out.png");
  expectLine("apply Nil sample:colors" + out, 1,
             "sample:colors: the result is nil, so there is no picture to write");
  expectLine("apply self.Width sample:colors", 0, "sample:colors: 480");
  expectLine("--plugin " QRZ_BUILD_FOLDER "/libplatform.so members", 1,
             "qrz: " QRZ_BUILD_FOLDER
             "/libplatform.so: is no plug-in: it does not export REALPluginMain");
  expectLine("members InvertQZR", 1,
             "no member or class is named 'InvertQZR'; did you mean 'InvertQRZ'?");
  EXPECT_EQ(qrz("--help").status, 0);
  EXPECT_TRUE(files().empty());
}

TEST_F(CliTest, GalleryShowsEveryRegisteredMember) {
  for (const char* pictures : {"bitmap", "gworld"}) {
    const Outcome outcome =
        qrz("--check --pictures " + std::string(pictures) + " gallery " + path("page"));
    ASSERT_EQ(outcome.status, 0) << outcome.output;
    EXPECT_NE(outcome.output.find(path("page/index.html")), std::string::npos);
  }
  std::ifstream file(path("page/index.html"));
  const std::string page{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  for (const char* name :
       {"self.InvertGrayQRZ(0, 0, 240, -1)", "PictureLut3DQRZ.Run", "PictureSepiaQRZ.FactorBlue",
        "FindPicture", "BuildPictureWithGWorldHandleQRZ", "PaintDesktopQRZ"}) {
    EXPECT_NE(page.find(name), std::string::npos) << name;
  }
  EXPECT_EQ(page.find(">Nil<"), std::string::npos);  // every example has something to show
  for (const auto& entry : fs::directory_iterator(path("page/pictures"))) {
    EXPECT_NE(page.find("pictures/" + entry.path().filename().string()), std::string::npos);
  }
}

TEST_F(CliTest, MembersAsTheHostSeesThem) {
  const Outcome old = qrz("--host-version 2010.028 members");
  EXPECT_NE(old.output.find("extension of Picture\n"), std::string::npos);
  EXPECT_NE(
      old.output.find("\n  0x40000 method    InvertGrayQRZ(left as integer,top as integer,width as "
                      "integer,height as integer) as picture\n"
                      "  0x40000 method    InvertGrayQRZ as picture\n"),
      std::string::npos);
  const Outcome lut = qrz("--host-version 2010.029 members picturelut3dqrz");
  EXPECT_EQ(lut.output.substr(0, lut.output.find('\n')),
            "class PictureLut3DQRZ  flags 0x00004, instance data 140000 bytes");
  EXPECT_NE(lut.output.find("0x40004 method    Run as boolean"), std::string::npos);
}

}  // namespace
}  // namespace host
