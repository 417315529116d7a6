// qrz view: what a terminal shows, and plain text.

#include <cmath>
#include <csignal>
#include <cstdio>
#include <sstream>

#include "host/files/image_file.h"
#include "tests/support/command.h"

namespace host {
namespace {

using Rows = std::vector<std::vector<uint32_t>>;

constexpr const char* kHalfBlock = "\u2580";

/// The pixels that a terminal shows for half blocks. Colours have to be reset at line ends.
class TerminalPixels {
 public:
  explicit TerminalPixels(const std::string& output) {
    std::istringstream lines(output);
    for (std::string line; std::getline(lines, line);) addLine(line.substr(0, line.find('\r')));
  }
  Rows rows;

 private:
  void addLine(const std::string& line) {
    EXPECT_TRUE(line.ends_with("\033[0m")) << line;
    std::vector<uint32_t> upper;
    std::vector<uint32_t> lower;
    for (size_t at = 0; at < line.size();) {
      if (line.compare(at, 3, kHalfBlock) == 0) {
        EXPECT_TRUE(hasForeground_);
        upper.push_back(foreground_);
        if (hasBackground_) lower.push_back(background_);
        at += 3;
      } else {
        at += readCode(line.c_str() + at);
      }
    }
    rows.push_back(upper);
    if (!lower.empty()) rows.push_back(lower);
  }
  /// How long it is.
  size_t readCode(const char* text) {
    int ground = 0;
    uint32_t red = 0;
    uint32_t green = 0;
    uint32_t blue = 0;
    int size = 0;
    if (std::string_view(text).starts_with("\033[0m")) {
      hasForeground_ = hasBackground_ = false;
      return 4;
    }
    if (sscanf(text, "\033[%d;2;%u;%u;%um%n", &ground, &red, &green, &blue, &size) != 4) {
      ADD_FAILURE() << "no colour: " << text;
      return 1;
    }
    (ground == 38 ? foreground_ : background_) = red << 16 | green << 8 | blue;
    (ground == 38 ? hasForeground_ : hasBackground_) = true;
    return static_cast<size_t>(size);
  }

  uint32_t foreground_ = 0, background_ = 0;
  bool hasForeground_ = false, hasBackground_ = false;
};

/// What is left of the interval behind `low` and before `high` in the pixel at `at`.
double overlap(int at, double low, double high) {
  return std::max(0.0, std::min(at + 1.0, high) - std::max<double>(at, low));
}

/// A colour of the picture shrunk to width x height, before the chequered ground.
double averageOf(const Image& image, int x, int y, int width, int height, int shift) {
  const double ground = (x / 4 + y / 4) % 2 == 0 ? 0x99 : 0x66;
  const double across = 1.0 * image.width / width;
  const double down = 1.0 * image.height / height;
  double sum = 0;
  for (int sourceY = 0; sourceY < image.height; ++sourceY) {
    for (int sourceX = 0; sourceX < image.width; ++sourceX) {
      const double part = overlap(sourceX, x * across, (x + 1) * across) *
                          overlap(sourceY, y * down, (y + 1) * down);
      const uint32_t pixel = image.pixels[static_cast<size_t>(sourceY * image.width + sourceX)];
      const double alpha = image.hasAlpha ? (pixel >> 24) / 255.0 : 1;
      sum += part * (alpha * (pixel >> shift & 0xFF) + (1 - alpha) * ground);
    }
  }
  return sum / (across * down);
}

class ViewTest : public FolderTest {
 protected:
  [[nodiscard]] Outcome inFolder(const std::string& command) const {
    return runCommand("cd " + folder + " && export PATH=" QRZ_BUILD_FOLDER ":$PATH TERM=xterm && " +
                      "unset NO_COLOR && { " + command + "; }");
  }
  /// On a terminal of its own.
  [[nodiscard]] Outcome onTerminal(const std::string& command) const {
    return inFolder("script -qec '" + command + "' /dev/null");
  }
};

TEST_F(ViewTest, ColorsAreAveragesOfAreas) {
  struct Case {
    const char* sample;
    const char* setup;
    const char* options;
    int width, height;
  };
  const Case cases[] = {
      {"alpha@96x64", "stty cols 24 rows 80", "", 24, 16},       // four pixels by four
      {"alpha@61x47", "stty cols 40 rows 9", "", 21, 16},        // as high as the terminal
      {"landscape@100x30", "stty cols 41 rows 30", "", 41, 12},  // as wide
      {"colors@33x21", "stty cols 90 rows 30", "", 33, 21},  // not enlarged; the last row is odd
      {"alpha@64x200", "stty cols 80 rows 5", "--width 13", 13, 41},
      {"edges@300x2", "stty cols 0 rows 0", "", 80, 1},
      {"greys@1x90", "stty cols 0 rows 0", "", 1, 46},
  };
  for (const Case& each : cases) {
    ASSERT_EQ(inFolder("qrz apply self sample:" + std::string(each.sample) + " -o x.png").status,
              0);
    const Image image = readImage(path("x.png"));
    const Outcome outcome =
        onTerminal(std::string(each.setup) + "; qrz view x.png " + each.options);
    ASSERT_EQ(outcome.status, 0);
    const Rows rows = TerminalPixels(outcome.output).rows;
    ASSERT_EQ(rows.size(), static_cast<size_t>(each.height)) << each.sample;
    for (int y = 0; y < each.height; ++y) {
      const auto& row = rows[static_cast<size_t>(y)];
      ASSERT_EQ(row.size(), static_cast<size_t>(each.width)) << each.sample;
      for (int x = 0; x < each.width; ++x) {
        for (const int shift : {16, 8, 0}) {
          EXPECT_NEAR(row[static_cast<size_t>(x)] >> shift & 0xFF,
                      averageOf(image, x, y, each.width, each.height, shift), 0.5001)
              << each.sample << " at " << x << ", " << y;
        }
      }
    }
  }
}

TEST_F(ViewTest, PlainTextWhereThereAreNoColors) {
  write("x.ppm",
        "P3 3 3 255  0 0 0  255 255 255  255 0 0   0 0 0  255 255 255  0 0 0\n"
        "255 255 255  0 255 0  0 0 255");
  const std::string text = "x.ppm: 3 x 3\n @.\n@+.\n";
  const auto expect = [this](const std::string& command, int status, const std::string& output) {
    EXPECT_EQ(inFolder(command).output, output) << command;
    EXPECT_EQ(inFolder(command).status, status) << command;
  };
  expect("qrz view x.ppm", 0, text);
  expect("qrz view - <x.ppm", 0, "standard input" + text.substr(5));
  expect("qrz view x.ppm --width 1", 0, "x.ppm: 3 x 3\n=\n");
  expect("qrz apply self x.ppm -o - | qrz view - sample:greys@200x1 | awk '{print length($0)}'", 0,
         "21\n3\n3\n27\n80\n");
  for (const char* plainly : {"TERM=dumb", "NO_COLOR=1"}) {
    const std::string command = std::string(plainly) + " qrz view x.ppm | cat";
    expect(command, 0, text);
    std::string shown = onTerminal(std::string(plainly) + " qrz view x.ppm").output;
    std::erase(shown, '\r');
    EXPECT_EQ(shown, text) << plainly;
  }
  // It goes on after what cannot be shown.
  expect("echo >bad; qrz view . bad x.ppm", 1,
         ".: is a folder; give the name of a file\nbad: is no picture that can be read; use PNG, "
         "JPEG, BMP, GIF, TGA, PNM or PICT\n" +
             text);
  expect("qrz view - -", 2, "qrz: standard input holds one picture; name - once\n");
  expect("qrz view x.ppm --width 1001", 2,
         "qrz: --width is a number from 1 to 1000, not '1001'; `qrz --help` shows the usage\n");
  expect("qrz view x.ppm >/dev/full", 1, "standard output cannot be written\n");
  expect("qrz view x.ppm >&-", 1, "standard output cannot be written\n");
  // Several on a terminal are told apart by their names.
  const std::string several = onTerminal("qrz view sample:greys@1x1 x.ppm").output;
  EXPECT_TRUE(several.starts_with("sample:greys@1x1\r\n\033[38;2;")) << several;
  EXPECT_NE(several.find("\nx.ppm\r\n\033[38;2;0;0;0m"), std::string::npos) << several;
}

TEST_F(ViewTest, InterruptLeavesTheTerminalSane) {
  ASSERT_EQ(inFolder("mkfifo pipe").status, 0);
  Session session(folder, "view sample:landscape pipe");
  session.waitFor("\033[0m");
  session.send(SIGINT);
  const Outcome outcome = session.end();
  EXPECT_EQ(outcome.status, 128 + SIGINT);
  EXPECT_TRUE(outcome.output.ends_with("\033[0m\nqrz: interrupted\n")) << outcome.output;
  EXPECT_TRUE(session.isTerminalAsBefore());
}

}  // namespace
}  // namespace host
