// RenderSamplesQRZ: bars and outlines, in every representation of new pictures.

#include "tests/support/waveform.h"

#include <algorithm>
#include <climits>

#include "tests/support/checks.h"

namespace host {
namespace {

constexpr const char* kRender =
    "RenderSamplesQRZ(Samples as memoryblock, SampleCount as integer, Smooth as integer, "
    "Width as integer, Height as integer, outlinewidth as integer, BackColor as color=&c88B5C4, "
    "ForeColor as color=&c274C5A, OutLineColor as color=&c203F4E) as Picture";

/// What the plug-in asked of the host's graphics object, in order.
std::vector<std::string> drawing;

uint32_t recordProperty(void* /*graphics*/, const char* name, int32_t value) {
  drawing.push_back(name + ("=" + std::to_string(value)));
  return 1;
}

void recordLine(void* /*graphics*/, int32_t x1, int32_t y1, int32_t x2, int32_t y2) {
  drawing.push_back(testing::PrintToString(std::vector{x1, y1, x2, y2}));
}

class WaveformTest : public RepresentationTest {
 protected:
  void SetUp() override {
    guardMemoryBlocks();
    RepresentationTest::SetUp();
  }
  static Ref<Picture> render(const Waveform& w) {
    const auto block = memoryBlock(w.bytes);
    const Value made = call("", kRender, nullptr,
                            {objectValue(block), w.count, w.smooth, w.width, w.height, w.outline,
                             Color{w.back}, Color{w.fore}, Color{w.line}});
    EXPECT_EQ(block->references(), 1);
    EXPECT_EQ(block->bytes, w.bytes);
    return Ref<Picture>::share(objectAs<Picture>(made));
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
  const auto block = memoryBlock(fourSamples);
  std::vector<Value> arguments = {objectValue(block), 0, 1, 0, 50, 1};
  for (size_t i = 6; i < 9; ++i) {
    arguments.push_back(member("", kRender).declaration.parameters[i].defaultValue.value());
  }
  const auto withDefaults = call("", kRender, nullptr, arguments);
  const RenderedWaveform expected({fourSamples, 0, 1, 0, 50, 1});
  EXPECT_TRUE(samePixels(*objectAs<Picture>(withDefaults), expected.pixels()));
}

TEST_P(WaveformTest, ColumnsOfVeryManySamples) {
  expectRendered({randomBytes(3000000), 0, 2, 3000, 20, 1});
}

TEST_P(WaveformTest, SilenceAfterSound) {
  // The averages fade below all that a double can hold.
  std::vector<uint8_t> bytes(200000);
  bytes[0] = bytes[3] = 100;
  for (const int32_t smooth : {2, 100, 1000, -5}) {
    for (const int32_t height : {1, 2, 51}) expectRendered({bytes, 0, smooth, 300, height, 0});
  }
}

TEST_P(WaveformTest, HostPenDrawsBothPolylinesInTurn) {
  auto& services = runtime().replacedServices;
  services["REALSetPropValueInt"] = reinterpret_cast<void*>(recordProperty);
  services["RuntimeGraphicsDrawLine"] = reinterpret_cast<void*>(recordLine);
  for (const int32_t outline : {2, 3, 4, 5, INT_MAX}) {
    Waveform w{randomBytes(30), 0, 1, 0, 40, outline};
    const int32_t half = outline / 2;
    std::vector<std::string> expected = {"ForeColor=" + std::to_string(w.line),
                                         "PenHeight=" + std::to_string(outline),
                                         "PenWidth=" + std::to_string(outline)};
    for (const auto& s : RenderedWaveform(w).outline()) {
      expected.push_back(
          testing::PrintToString(std::vector{s.x0 - half, s.y0 - half, s.x1 - half, s.y1 - half}));
    }
    drawing.clear();
    const auto result = render(w);
    EXPECT_EQ(drawing, expected);
    w.outline = 0;
    EXPECT_TRUE(isNewPicture(result, 15, RenderedWaveform(w).pixels()));
  }
}

TEST_P(WaveformTest, HostPenIsAskedForWhenThePictureIsFinished) {
  const Waveform w{fourSamples, 0, 1, 0, 60, 3};
  render(w);  // settles the path
  const auto calls = callsDuring([&] { render(w); });
  std::vector<std::string> expected = {"pluginPictureGraphicsGetter", "REALSetPropValueInt",
                                       "REALSetPropValueInt", "REALSetPropValueInt"};
  expected.insert(expected.end(), 8, "RuntimeGraphicsDrawLine");
  expected.emplace_back("REALUnlockObject");
  const auto done = std::find(calls.begin(), calls.end(), "REALPictureClearCache");
  ASSERT_NE(done, calls.end());
  EXPECT_EQ(std::vector<std::string>(done + 1, calls.end()), expected);
  EXPECT_EQ(std::count(calls.begin(), calls.end(), "newPicture"), 1);
  EXPECT_EQ(std::count(calls.begin(), done, "unlockPictureDescription"), 1);
}

TEST_P(WaveformTest, WithoutGraphicsThereIsNoOutline) {
  runtime().replacedServices["pluginPictureGraphicsGetter"] = nullptr;
  Waveform w{randomBytes(60), 0, 1, 20, 40, 3};
  const auto result = render(w);
  w.outline = 0;
  EXPECT_TRUE(isNewPicture(result, 20, RenderedWaveform(w).pixels()));
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
  const int32_t hostile[] = {INT_MIN, -2, -1, 0, 1, 2, INT_MAX};
  for (int i = 0; i < 400; ++i) {
    const auto any = [&] { return hostile[random() % std::size(hostile)]; };
    const int32_t width = any() % 3;
    const int32_t height = any() % 3;
    EXPECT_TRUE(render({fourSamples, any(), any(), width, height, any()}));
  }
}

TEST_P(WaveformTest, NilAndFailingHosts) {
  const std::vector<Value> arguments = {Nil{}, 4, 1, 10, 10, 1, Color{}, Color{}, Color{}};
  EXPECT_TRUE(
      callsDuring([&] { EXPECT_EQ(call("", kRender, nullptr, arguments), Value{Nil{}}); }).empty());
  for (const int32_t outline : {0, 1, 2}) {
    expectNothingLeftByFailures([&] { render({fourSamples, 0, 1, 6, 30, outline}); });
  }
}

}  // namespace
}  // namespace host
