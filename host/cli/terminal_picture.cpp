#include "host/cli/terminal_picture.h"

#include <algorithm>
#include <array>
#include <optional>
#include <string_view>

#include "host/core/interrupt.h"

namespace host {
namespace {

uint32_t red(uint32_t pixel) { return pixel >> 16 & 0xFF; }
uint32_t green(uint32_t pixel) { return pixel >> 8 & 0xFF; }
uint32_t blue(uint32_t pixel) { return pixel & 0xFF; }

/// What shows through where the picture is transparent.
uint32_t groundAt(int32_t x, int32_t y) {
  constexpr int32_t kSquare = 4;
  return (x / kSquare + y / kSquare) % 2 == 0 ? 0x999999 : 0x666666;
}

/// The parts of a side that a pixel of the shorter side stands for: it takes `from` units of it,
/// each pixel of the longer side `to` units, so that all parts are whole numbers.
struct Scale {
  int64_t from, to;

  [[nodiscard]] int32_t first(int32_t pixel) const {
    return static_cast<int32_t>(pixel * from / to);
  }
  /// Behind the last one.
  [[nodiscard]] int32_t end(int32_t pixel) const {
    return static_cast<int32_t>(((pixel + 1) * from + to - 1) / to);
  }
  /// How much of the source pixel belongs to the pixel.
  [[nodiscard]] uint64_t part(int32_t source, int32_t pixel) const {
    return static_cast<uint64_t>(std::min((source + 1) * to, (pixel + 1) * from) -
                                 std::max(source * to, pixel * from));
  }
};

/// Sums of colours times their alpha, and of alphas. The parts of a picture of 128 megapixels times
/// 255 * 255 are far below 2^64.
struct Sum {
  uint64_t red = 0, green = 0, blue = 0, alpha = 0, parts = 0;

  void add(uint32_t pixel, uint64_t alphaOfPixel, uint64_t part) {
    const uint64_t weight = part * alphaOfPixel;
    red += weight * host::red(pixel);
    green += weight * host::green(pixel);
    blue += weight * host::blue(pixel);
    alpha += weight;
    parts += part;
  }
  [[nodiscard]] uint32_t before(uint32_t ground) const {
    const uint64_t whole = 255 * parts;
    const auto level = [whole, through = whole - alpha](uint64_t sum, uint32_t behind) {
      return static_cast<uint32_t>((sum + through * behind + whole / 2) / whole);
    };
    return level(red, host::red(ground)) << 16 | level(green, host::green(ground)) << 8 |
           level(blue, host::blue(ground));
  }
};

class Scaler {
 public:
  Scaler(const Image& image, PictureSize size)
      : image_(image), across_{image.width, size.width}, down_{image.height, size.height} {}

  /// The sums for a row of the shown picture.
  void addUp(int32_t y, std::vector<Sum>& sums) const {
    for (int32_t sourceY = down_.first(y); sourceY < down_.end(y); ++sourceY) {
      const uint32_t* row = image_.pixels.data() + int64_t{sourceY} * image_.width;
      const uint64_t part = down_.part(sourceY, y);
      for (int32_t x = 0; x < static_cast<int32_t>(sums.size()); ++x) {
        addRow(row, x, part, sums[static_cast<size_t>(x)]);
      }
      checkInterrupt();
    }
  }

 private:
  void addRow(const uint32_t* row, int32_t x, uint64_t part, Sum& sum) const {
    const int32_t end = across_.end(x);
    for (int32_t sourceX = across_.first(x); sourceX < end; ++sourceX) {
      const uint32_t pixel = row[sourceX];
      sum.add(pixel, image_.hasAlpha ? pixel >> 24 : 255, part * across_.part(sourceX, x));
    }
  }

  const Image& image_;
  Scale across_, down_;
};

std::string colorCode(const char* ground, uint32_t pixel) {
  return std::string("\033[") + ground + ";2;" + std::to_string(red(pixel)) + ";" +
         std::to_string(green(pixel)) + ";" + std::to_string(blue(pixel)) + "m";
}

uint32_t luminance(uint32_t pixel) {
  return (299 * red(pixel) + 587 * green(pixel) + 114 * blue(pixel) + 500) / 1000;
}

/// The pixels of a column in two rows; the second one may be below the picture.
struct Cell {
  uint32_t upper;
  std::optional<uint32_t> lower;
};

Cell cellAt(const TerminalPicture& picture, int32_t x, int32_t row) {
  const uint32_t* pixel = picture.pixels.data() + int64_t{row} * picture.size.width + x;
  if (row + 1 == picture.size.height) return {*pixel, std::nullopt};
  return {*pixel, pixel[picture.size.width]};
}

}  // namespace

PictureSize fittingSize(PictureSize size, PictureSize most) {
  if (size.width <= most.width && size.height <= most.height) return size;
  const auto scaled = [](int64_t side, int64_t to, int64_t from, int32_t limit) {
    return static_cast<int32_t>(std::clamp<int64_t>((side * to + from / 2) / from, 1, limit));
  };
  const bool isWide = int64_t{size.width} * most.height >= int64_t{size.height} * most.width;
  if (isWide) return {most.width, scaled(size.height, most.width, size.width, most.height)};
  return {scaled(size.width, most.height, size.height, most.width), most.height};
}

TerminalPicture scaledDown(const Image& image, PictureSize size) {
  const Scaler scaler(image, size);
  TerminalPicture shown{size, {}};
  for (int32_t y = 0; y < size.height; ++y) {
    std::vector<Sum> sums(static_cast<size_t>(size.width));
    scaler.addUp(y, sums);
    for (int32_t x = 0; x < size.width; ++x) {
      shown.pixels.push_back(sums[static_cast<size_t>(x)].before(groundAt(x, y)));
    }
  }
  return shown;
}

std::string coloredLine(const TerminalPicture& picture, int32_t row) {
  std::string line;
  std::optional<uint32_t> foreground;
  std::optional<uint32_t> background;
  for (int32_t x = 0; x < picture.size.width; ++x) {
    const Cell cell = cellAt(picture, x, row);
    if (foreground != cell.upper) line += colorCode("38", cell.upper);
    if (cell.lower && background != cell.lower) line += colorCode("48", *cell.lower);
    foreground = cell.upper;
    background = cell.lower;
    line += "▀";
  }
  return line + "\033[0m\n";
}

std::string plainLine(const TerminalPicture& picture, int32_t row) {
  constexpr std::string_view kRamp = " .:-=+*#%@";
  std::string line;
  for (int32_t x = 0; x < picture.size.width; ++x) {
    const Cell cell = cellAt(picture, x, row);
    const uint32_t both = luminance(cell.upper) + luminance(cell.lower.value_or(cell.upper));
    line += kRamp[both * kRamp.size() / 511];
  }
  return line + "\n";
}

}  // namespace host
