// RenderSamplesQRZ: bars and outlines, in every representation of new pictures.

#include <algorithm>
#include <climits>
#include <cmath>
#include <stdexcept>
#include <utility>

#include "tests/support/checks.h"

namespace host {
namespace {

constexpr const char* kRender =
    "RenderSamplesQRZ(Samples as memoryblock, SampleCount as integer, Smooth as integer, "
    "Width as integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, "
    "ForeColor as color=&c274C5A, OutLineColor as color=&c203F4E) as Picture";

/// The arguments of RenderSamplesQRZ.
struct Waveform {
  std::vector<uint8_t> bytes;
  int32_t count = 0, smooth = 1, width = 0, height = 0, outline = 0;
  uint32_t back = 0x88B5C4, fore = 0x274C5A, line = 0x203F4E;
};

/// A plain renderer: the waveform in words 0x00RRGGBB. Its size is to be drawable.
class RenderedWaveform {
 public:
  explicit RenderedWaveform(const Waveform& waveform) {
    const auto held = static_cast<int32_t>(waveform.bytes.size() / 2);
    samples_ = waveform.count < 1 ? held : std::min(waveform.count, held);
    height_ = waveform.height > 0 ? waveform.height : 500;
    width_ = waveform.width > 0 ? waveform.width : samples_;
    columns_.resize(static_cast<size_t>(width_));
    pixels_.resize(columns_.size() * static_cast<size_t>(height_), waveform.back & 0xFFFFFF);
    spread(waveform);
    drawBars(waveform);
    if (waveform.outline == 1) {
      for (const Segment& s : outline()) drawThin(s, waveform.line);
    }
    if (waveform.outline > 1) drawWithHostPen(waveform.outline, waveform.line & 0xFFFFFF);
  }
  [[nodiscard]] int32_t width() const { return width_; }
  [[nodiscard]] const std::vector<uint32_t>& pixels() const { return pixels_; }

 private:
  struct Column {
    double first = 0, second = 0;
  };
  /// A stretch of the outline.
  struct Segment {
    int32_t x0, y0, x1, y1;
  };

  void spread(const Waveform& waveform) {
    const auto value = [&](int64_t index) {
      return static_cast<double>(static_cast<int8_t>(waveform.bytes[static_cast<size_t>(index)]));
    };
    const double alpha = 2.0 / (waveform.smooth + 1);
    double peak = 100.0;
    Column average;
    if (samples_ > 0) average = columns_[0] = {value(0), value(1)};
    for (int64_t i = 0; i < samples_; ++i) {
      average.first = average.first * (1 - alpha) + value(2 * i) * alpha;
      average.second = average.second * (1 - alpha) + value(2 * i + 1) * alpha;
      if (average.second > peak) peak = average.second;
      columns_[static_cast<size_t>(i * width_ / samples_)] = average;
    }
    for (Column& column : columns_) {
      column.first = column.first * 0.5 / peak * height_;
      column.second = column.second * 0.5 / peak * height_;
    }
  }

  /// The row that a column's value reaches.
  [[nodiscard]] int32_t row(double value) const {
    const int32_t middle = height_ / 2;
    const double y = middle + value;
    if (std::isnan(y)) return 0;
    return static_cast<int32_t>(std::clamp(y, -2147483648.0, 2147483647.0));
  }

  void drawBars(const Waveform& waveform) {
    const int32_t middle = height_ / 2;
    for (int32_t x = 0; x < width_; ++x) {
      const Column& column = columns_[static_cast<size_t>(x)];
      for (const int32_t end : {row(column.first), row(column.second)}) {
        const int32_t low = std::clamp(std::min(middle, end), 0, height_ - 1);
        const int32_t high = std::clamp(std::max(middle, end), 0, height_ - 1);
        for (int32_t y = low; y <= high; ++y) plot(x, y, waveform.fore, 0);
      }
    }
  }

  /// In the order of drawing.
  [[nodiscard]] std::vector<Segment> outline() const {
    std::vector<Segment> segments;
    std::pair<int32_t, int32_t> first = {0, height_ / 2};
    std::pair<int32_t, int32_t> second = first;
    for (int32_t x = 0; x < width_; ++x) {
      const Column& column = columns_[static_cast<size_t>(x)];
      const int32_t ends[] = {row(column.first), row(column.second)};
      segments.push_back({first.first, first.second, x, ends[0]});
      segments.push_back({second.first, second.second, x, ends[1]});
      first = {x, ends[0]};
      second = {x, ends[1]};
    }
    return segments;
  }

  /// Wu's line with a 16-bit accumulator and 8 bits of intensity.
  void drawThin(Segment s, uint32_t color) {
    if (s.y0 > s.y1) s = {s.x1, s.y1, s.x0, s.y0};
    int32_t x = s.x0;
    int32_t y = s.y0;
    const int32_t direction = s.x1 >= s.x0 ? 1 : -1;
    const int32_t dx = std::abs(s.x1 - s.x0);
    const int32_t dy = s.y1 - s.y0;
    if (dx > INT16_MAX || dy > INT16_MAX) throw std::logic_error("too far for thin lines");
    plot(x, y, color, 0);
    if (dx == 0 || dy == 0 || dx == dy) {
      for (int32_t i = std::max(dx, dy); i > 0; --i) {
        plot(x += dx == 0 ? 0 : direction, y += dy == 0 ? 0 : 1, color, 0);
      }
      return;
    }
    const bool isSteep = dy > dx;
    const auto step = static_cast<uint16_t>(65536U * static_cast<uint32_t>(std::min(dx, dy)) /
                                            static_cast<uint32_t>(std::max(dx, dy)));
    uint16_t accumulator = 0;
    for (int32_t i = std::max(dx, dy) - 1; i > 0; --i) {
      const uint16_t old = std::exchange(accumulator, static_cast<uint16_t>(accumulator + step));
      const bool carries = accumulator <= old;
      if (isSteep || carries) ++y;
      if (!isSteep || carries) x += direction;
      const uint32_t weight = accumulator / 256;
      plot(x, y, color, weight);
      plot(isSteep ? x + direction : x, isSteep ? y : y + 1, color, 255 - weight);
    }
    plot(s.x1, s.y1, color, 0);
  }

  void drawWithHostPen(int32_t size, uint32_t color) {
    const auto canvas = Picture::create(Storage::Bitmap, width_, height_);
    canvas->setPixels(pixels_);
    const int32_t widest = INT16_MAX;  // of the host's pens
    canvas->pen = {color, std::min(size, widest), std::min(size, widest)};
    const auto moved = [half = size / 2](int64_t coordinate) {
      return static_cast<int32_t>(std::max<int64_t>(coordinate - half, INT32_MIN));
    };
    for (const Segment& s : outline()) {
      drawLine(*canvas, moved(s.x0), moved(s.y0), moved(s.x1), moved(s.y1));
    }
    pixels_ = canvas->pixels();
  }

  /// Blends the colour in: all of it at weight 0, nothing of it at 255.
  void plot(int32_t x, int32_t y, uint32_t color, uint32_t weight) {
    if (x < 0 || y < 0 || x >= width_ || y >= height_) return;
    uint32_t& pixel = pixels_[static_cast<size_t>(y) * columns_.size() + static_cast<size_t>(x)];
    uint32_t blended = 0;
    for (const int32_t shift : {16, 8, 0}) {
      const uint32_t old = pixel >> shift & 0xFF;
      blended = blended << 8 | (old * weight + (color >> shift & 0xFF) * (255 - weight)) / 255;
    }
    pixel = blended;
  }

  int32_t samples_, width_, height_;
  std::vector<Column> columns_;
  std::vector<uint32_t> pixels_;
};

class WaveformTest : public RepresentationTest {
 protected:
  static Ref<Picture> render(const Waveform& w) {
    const auto block = memoryBlock(w.bytes);
    const Value made = call("", kRender, nullptr,
                            {objectValue(block), w.count, w.smooth, w.width, w.height, w.outline,
                             Color{w.back}, Color{w.fore}, Color{w.line}});
    EXPECT_EQ(block->references(), 1);
    EXPECT_EQ(block->bytes, w.bytes);
    return pictureOf(made);
  }
  static void expectRendered(const Waveform& w) {
    const RenderedWaveform expected(w);
    const auto result = render(w);
    EXPECT_TRUE(isNewPicture(result, expected.width(), expected.pixels()))
        << w.bytes.size() << " bytes, arguments "
        << testing::PrintToString(std::vector{w.count, w.smooth, w.width, w.height, w.outline});
  }
  std::vector<uint8_t> randomBytes(size_t count) {
    std::vector<uint8_t> bytes(count);
    for (uint8_t& byte : bytes) byte = static_cast<uint8_t>(random());
    return bytes;
  }
  int32_t below(int32_t limit) {
    return std::uniform_int_distribution<int32_t>(0, limit - 1)(random);
  }
};
INSTANTIATE_TEST_SUITE_P(All, WaveformTest,
                         testing::Values(allRepresentations[0], allRepresentations[1],
                                         allRepresentations[2]),
                         [](const auto& test) { return std::string(test.param.name); });

const std::vector<uint8_t> fourSamples = {10, 20, static_cast<uint8_t>(-20), 40, 0, 0, 50, 100};

TEST_P(WaveformTest, RandomSamplesOfAllWidths) {
  const int32_t smooths[] = {1, 1, 2, 3, 7, 40, 1000000, INT_MAX - 1, INT_MIN};
  for (int32_t width = 1; width <= 70; ++width) {
    for (const int32_t outline : {-1, 0, 1, 2, 3, 8}) {
      Waveform w{randomBytes(2 + static_cast<size_t>(below(6 * width)))};
      w.smooth = smooths[random() % std::size(smooths)];
      w.width = width;
      w.height = 1 + below(150);
      w.outline = outline;
      if (random() % 4 == 0) w.count = 1 + below(200);
      if (random() % 2 == 0) w.back = random(), w.fore = random(), w.line = random();
      expectRendered(w);
      w.smooth = 0;  // overshoots, far out of the picture
      w.height = 1 + below(60);
      w.count = 1 + below(40);
      expectRendered(w);
    }
  }
}

TEST_P(WaveformTest, RoundingOfAveragesIsTheDefinitions) {
  // Constant samples whose averages are a hair off, next to whole rows.
  for (int32_t smooth = 2; smooth <= 60; ++smooth) {
    for (const int32_t height : {100, 200, 400}) {
      const auto level = static_cast<uint8_t>(random());
      expectRendered({std::vector<uint8_t>(80, level), 0, smooth, 0, height});
    }
  }
}

TEST_P(WaveformTest, DefaultsAndTheEndOfTheBlock) {
  auto bytes = fourSamples;
  bytes.push_back(0x7F);
  Waveform w{bytes};
  for (const int32_t none : {0, -1, INT_MIN}) {
    w.count = w.width = w.height = none;
    const auto result = render(w);
    ASSERT_TRUE(result);
    EXPECT_EQ(result->width(), 4);
    EXPECT_EQ(result->height(), 500);
    expectRendered(w);
  }
  for (const int32_t tooMany : {5, 1000, INT_MAX}) {
    w = {bytes, tooMany, 1, 7, 50, 1};
    expectRendered(w);
    w.width = 0;
    expectRendered(w);
  }
  expectRendered({{1}, 0, 1, 5, 20, 1});
  expectRendered({{1}, 9, 1, 5, 20, 3});
  EXPECT_FALSE(render({{1}, 0, 1, 0, 20})) << "neither samples nor a width";
  EXPECT_FALSE(render({{}, 9, 1, 5, 20})) << "no bytes at all";
}

TEST_P(WaveformTest, VeryManySamplesAndSilenceAfterSound) {
  expectRendered({randomBytes(3000000), 0, 2, 3000, 20, 1});
  // The averages fade below all that a double can hold.
  std::vector<uint8_t> bytes(200000);
  bytes[0] = bytes[3] = 100;
  for (const int32_t smooth : {2, 100, 1000, -5}) {
    for (const int32_t height : {1, 2, 51}) expectRendered({bytes, 0, smooth, 300, height, 0});
  }
}

TEST_P(WaveformTest, HostPenIsAskedForWhenThePictureIsFinished) {
  const Waveform w{fourSamples, 0, 1, 0, 60, 3};
  render(w);  // settles the path
  const auto calls = callsDuring([&] { render(w); });
  const auto done = std::ranges::find(calls, "REALPictureClearCache");
  ASSERT_NE(done, calls.end());
  EXPECT_EQ(*(done + 1), "pluginPictureGraphicsGetter");
  EXPECT_EQ(std::count(done, calls.end(), "RuntimeGraphicsDrawLine"), 8);
  EXPECT_EQ(std::count(calls.begin(), done, "unlockPictureDescription"), 1);
}

TEST_P(WaveformTest, PositionsThatFitNoRow) {
  // Doubling or worse each time, to infinity; and no numbers at all.
  for (const int32_t smooth : {-2, -3, -4, -1}) {
    for (const size_t samples : {30U, 100U, 700U, 2000U}) {
      Waveform w{randomBytes(2 * samples), 0, smooth, 1 + below(30), 1 + below(100)};
      for (const int32_t outline : {0, 2, 3, INT_MAX}) {
        w.outline = outline;
        expectRendered(w);
      }
      w.outline = 1;  // whose fixed point is too narrow
      const auto result = render(w);
      ASSERT_TRUE(result);
      EXPECT_EQ(result->width(), w.width);
    }
  }
  EXPECT_TRUE(render({randomBytes(60), 0, 1, 3, 70000, 1})) << "rows beyond 16 bits";
  EXPECT_TRUE(render({randomBytes(60), 0, 1, 70000, 3, 1})) << "columns beyond 16 bits";
}

TEST_P(WaveformTest, SizesThatNobodyCanMake) {
  const int32_t sizes[][2] = {{INT_MAX, 10},    {0x20000000, 10}, {0x1FFFFFFF, 10},
                              {0x10000000, 10}, {10, INT_MAX},    {INT_MAX, INT_MAX}};
  for (const auto& [width, height] : sizes) {
    for (const int32_t outline : {0, 1, 2}) {
      EXPECT_FALSE(render({fourSamples, 0, 1, width, height, outline})) << width << ", " << height;
    }
  }
}

}  // namespace
}  // namespace host
