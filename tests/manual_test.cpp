// The manual: what it says of members is true, and every line in it runs.

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>

#include "host/files/file_bytes.h"
#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

namespace fs = std::filesystem;

constexpr const char* kDocs = QRZ_SOURCE_FOLDER "/docs";

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string textOfFile(const fs::path& path) {
  const auto bytes = readFile(path.string());
  return {bytes.begin(), bytes.end()};
}

class ManualTest : public FolderTest {
 protected:
  /// A command for the shell, in the folder, where ./run is this build's qrz.
  [[nodiscard]] Outcome inFolder(const std::string& command) const {
    return runCommand("cd " + folder + " && ln -sf " QRZ_BUILD_FOLDER "/qrz run && { " + command +
                      "\n}");
  }
};

TEST_F(ManualTest, TheOneInDocsIsOfToday) {
  const Outcome outcome = qrz("manual " + path("docs"));
  ASSERT_EQ(outcome.status, 0) << outcome.output;
  size_t files = 0;
  for (const auto& entry : fs::recursive_directory_iterator(path("docs"))) {
    // The page is made anew by whoever wants to look at it.
    if (!entry.is_regular_file() || entry.path().filename() == "index.html") continue;
    ++files;
    const fs::path kept = kDocs / fs::relative(entry.path(), path("docs"));
    ASSERT_TRUE(fs::exists(kept)) << kept << ": make the manual anew, by ./run manual docs";
    EXPECT_TRUE(readFile(kept.string()) == readFile(entry.path().string()))
        << kept << " is not of today; make the manual anew, by ./run manual docs";
  }
  const auto pictures = fs::directory_iterator(std::string(kDocs) + "/pictures");
  EXPECT_EQ(static_cast<size_t>(std::distance(pictures, fs::directory_iterator())) + 1, files)
      << "docs/pictures has files that nobody shows";
}

TEST_F(ManualTest, EveryExampleRunsAsALineForTheShell) {
  size_t count = 0;
  std::string picture;  // what the document shows for the line
  for (const std::string& line : linesOf(textOfFile(std::string(kDocs) + "/members.md"))) {
    const size_t after = line.rfind("](pictures/");
    if (after != std::string::npos) picture = line.substr(after + 2, line.rfind(')') - after - 2);
    if (line.starts_with("### ")) picture.clear();
    if (!line.starts_with("./run ")) continue;
    ++count;
    fs::remove(path("out.png"));
    const Outcome outcome = inFolder(line);
    ASSERT_EQ(outcome.status, 0) << line << '\n' << outcome.output;
    const bool makesPicture = line.ends_with(" -o out.png");
    EXPECT_EQ(fs::exists(path("out.png")), makesPicture) << line;
    EXPECT_EQ(outcome.output.empty(), makesPicture) << line << '\n' << outcome.output;
    if (makesPicture && picture.ends_with(".png")) {
      EXPECT_EQ(readImage(path("out.png")).pixels,
                readImage(std::string(kDocs) + "/" + picture).pixels)
          << line;
    }
  }
  EXPECT_GT(count, 68U);
}

TEST_F(ManualTest, MembersAreExplained) {
  EXPECT_EQ(qrz("members InvertGrayQRZ").output,
            R"(extension of Picture
  0x40004 method    InvertGrayQRZ(left as integer,top as integer,width as integer,height as integer) as picture
          Inverts the grey pixels of a rectangle and copies its others; the rest
          of the new picture is left as the host makes it, white.
          left     first column: any; what lies beside the picture is ignored
          top      first row: any; what lies above or below the picture is
                   ignored
          width    columns, counted from left: from 0 on; negative: as many as
                   the picture has
          height   rows, counted from top: from 0 on; negative: as many as the
                   picture has
          failure  Nil if the picture cannot be read or there is no memory for
                   the new one.
          example  self.InvertGrayQRZ(0, 0, 240, -1)
          try it   ./run apply 'self.InvertGrayQRZ(0, 0, 240, -1)' sample:greys -o out.png
  0x40004 method    InvertGrayQRZ as picture
          Inverts the grey pixels, whose red, green and blue are equal, and
          copies the others.
          failure  Nil if the picture cannot be read or there is no memory for
                   the new one.
          example  self.InvertGrayQRZ
          try it   ./run apply 'self.InvertGrayQRZ' sample:greys -o out.png
)");
  EXPECT_EQ(qrz("members self.invertgrayqrz").output, qrz("members Picture.InvertGrayQRZ").output);
  EXPECT_NE(qrz("members PictureSepiaQRZ.Run")
                .output.find("0x00000 method    Run as boolean\n"
                             "          Makes a weighted grey"),
            std::string::npos);
}

}  // namespace
}  // namespace host
