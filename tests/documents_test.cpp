// The documents: their commands run as they stand, and made the pictures that are shown.

#include <filesystem>
#include <set>
#include <sstream>

#include "host/files/file_bytes.h"
#include "tests/support/command.h"

namespace host {
namespace {

namespace fs = std::filesystem;

const fs::path kSource = QRZ_SOURCE_FOLDER;

struct Document {
  std::string text;
  std::vector<std::string> commands;  ///< lines that begin with ./run, or run qrz in parallel
  std::set<std::string> pictures;     ///< shown, relative to the document
};

/// What stands between the first two of these; empty if they do not occur.
std::string between(const std::string& text, const std::string& left, const std::string& right) {
  const size_t from = text.find(left);
  if (from == std::string::npos) return {};
  const size_t first = from + left.size();
  return text.substr(first, text.find(right, first) - first);
}

bool isCommand(const std::string& line) {
  if (line.starts_with("parallel build/release/qrz ")) return true;
  // With a comment alone it makes everything.
  return line.starts_with("./run ") && line.find_first_not_of(' ', 5) != line.find('#');
}

Document readDocument(const fs::path& path) {
  const auto bytes = readFile(path.string());
  Document document{{bytes.begin(), bytes.end()}, {}, {}};
  std::istringstream stream(document.text);
  for (std::string line; std::getline(stream, line);) {
    if (line.starts_with("'   ")) line.erase(0, 4);  // in a program's comment
    if (isCommand(line)) document.commands.push_back(line);
    if (line.starts_with("![")) document.pictures.insert(between(line, "](", ")"));
  }
  return document;
}

/// In a folder like a clone, where ./run is this build's qrz and a reader's own files are.
class DocumentsTest : public FolderTest {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    fs::create_directories(path("examples/pictures"));
    fs::create_directories(path("build"));
    for (const auto& entry : fs::directory_iterator(kSource / "examples")) {
      if (entry.is_regular_file()) fs::copy(entry.path(), path("examples"));
    }
    fs::create_symlink(QRZ_BUILD_FOLDER, path("build/release"));
    fs::create_symlink(QRZ_BUILD_FOLDER "/qrz", path("run"));
    fs::create_directories(path("photos"));
    for (const char* name :
         {"photo.jpg", "photos/a.jpg", "photos/b.jpg", "screen.png", "button.png"}) {
      ASSERT_EQ(qrz("apply self sample:colors@60x40 -o " + path(name)).status, 0);
    }
    ASSERT_EQ(qrz("run " + (kSource / "examples/roundtrip.rbs").string() + " sample:edges@9x9 " +
                  path("song.wav"))
                  .status,
              0);
  }

  void runAll(const Document& document) const {
    for (const std::string& command : document.commands) {
      const bool isSlow = command.starts_with("./run bench");
      const bool lacksBundle = command.find("PictureQRZ.bundle") != std::string::npos &&
                               !fs::exists(path("build/release/PictureQRZ.bundle"));
      if (isSlow || lacksBundle) continue;
      const Outcome outcome = runCommand("cd " + folder + " && {\n" + command + "\n}");
      EXPECT_EQ(outcome.status, 0) << command << '\n' << outcome.output;
    }
  }

  /// What the commands made is what the document shows.
  void expectMade(const std::set<std::string>& pictures, const std::string& below) const {
    for (const std::string& picture : pictures) {
      const std::string file = below + picture;
      ASSERT_TRUE(fs::exists(path(file))) << file << " is shown, but no command makes it";
      EXPECT_TRUE(readFile(path(file)) == readFile((kSource / file).string()))
          << file << " is not what its command makes";
    }
  }
};

TEST_F(DocumentsTest, Readme) {
  const Document document = readDocument(kSource / "README.md");
  write("swap.rbs", between(document.text, "(`swap.rbs`):\n\n```\n", "```"));
  EXPECT_GT(document.commands.size(), 15U);
  runAll(document);
  EXPECT_FALSE(document.pictures.empty());
  expectMade(document.pictures, "");
}

TEST_F(DocumentsTest, Examples) {
  const Document document = readDocument(kSource / "examples/README.md");
  runAll(document);
  expectMade(document.pictures, "examples/");
  size_t programs = 0;
  for (const auto& entry : fs::directory_iterator(kSource / "examples")) {
    if (entry.path().extension() != ".rbs") continue;
    ++programs;
    const std::string name = entry.path().filename().string();
    EXPECT_NE(document.text.find("(" + name + ")"), std::string::npos) << name;
    const Document comments = readDocument(entry.path());
    EXPECT_EQ(comments.commands.size(), 1U) << name;
    runAll(comments);
  }
  EXPECT_EQ(document.pictures.size(), programs);
}

TEST(DocumentLinksTest, LeadSomewhere) {
  size_t count = 0;
  for (const char* folder : {".", "docs", "examples"}) {
    for (const auto& entry : fs::directory_iterator(kSource / folder)) {
      if (entry.path().extension() != ".md") continue;
      const std::string text = readDocument(entry.path()).text;
      for (size_t at = text.find("]("); at != std::string::npos; at = text.find("](", at + 1)) {
        const std::string link = between(text.substr(at), "](", ")");
        const std::string target = link.substr(0, link.find('#'));
        if (target.find(':') != std::string::npos) continue;
        ++count;
        EXPECT_TRUE(fs::exists(entry.path().parent_path() / target)) << entry << ": " << target;
      }
    }
  }
  EXPECT_GT(count, 150U);
}

TEST_F(DocumentsTest, Contributing) { runAll(readDocument(kSource / "CONTRIBUTING.md")); }

}  // namespace
}  // namespace host
