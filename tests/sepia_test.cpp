// The class PictureSepiaQRZ: its weights, its pictures and Run, on every
// representation.

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>

#include "tests/support/checks.h"
#include "tests/support/filter_class_test.h"

namespace host {
namespace {

/// Red, green, blue.
using Weights = std::array<double, 3>;
using Offsets = std::array<int32_t, 3>;

int64_t scaledWeight(double weight) {
  if (std::isnan(weight)) return 0;
  return static_cast<int64_t>(std::clamp(std::trunc(weight * 1024.0), -2147483648.0, 2147483647.0));
}

uint32_t toned(uint32_t rgb, const Weights& weights, const Offsets& offsets) {
  const int64_t sum = static_cast<int64_t>(rgb >> 16) * scaledWeight(weights[0]) +
                      static_cast<int64_t>(rgb >> 8 & 0xFF) * scaledWeight(weights[1]) +
                      static_cast<int64_t>(rgb & 0xFF) * scaledWeight(weights[2]);
  uint32_t result = 0;
  for (const int64_t offset : offsets) {
    result = result << 8 | static_cast<uint32_t>(std::clamp<int64_t>(sum / 1024 + offset, 0, 255));
  }
  return result;
}

class SepiaTest : public FilterClassTest {
 protected:
  SepiaTest() : FilterClassTest("PictureSepiaQRZ") {}

  void setWeights(const Weights& values) {
    weights = values;
    set("FactorRed as Double", values[0]);
    set("FactorGreen as Double", values[1]);
    set("FactorBlue as Double", values[2]);
  }
  void setOffsets(const Offsets& values) {
    offsets = values;
    set("SepiaRed as Integer", values[0]);
    set("SepiaGreen as Integer", values[1]);
    set("SepiaBlue as Integer", values[2]);
  }
  void expectRun(const Ref<Picture>& source, const Region& region = {}) {
    SCOPED_TRACE(testing::PrintToString(weights) + testing::PrintToString(offsets));
    const auto map = [&](uint32_t rgb) { return toned(rgb, weights, offsets); };
    FilterClassTest::expectRun(source, region, map);
    set(kSource, Nil{});
  }
  Weights weights = {0.299, 0.587, 0.114};
  Offsets offsets = {};
};
QRZ_ALL_REPRESENTATIONS(SepiaTest);

TEST_P(SepiaTest, RandomWeightsAndOffsetsOnAllWidths) {
  std::uniform_real_distribution<double> weight(-1.5, 1.5);
  std::uniform_int_distribution<int32_t> offset(-300, 300);
  for (int32_t width = 1; width <= 70; ++width) {
    expectRun(randomPicture(width, 1 + width % 5));
    setWeights({weight(random), weight(random), weight(random)});
    setOffsets({offset(random), offset(random), offset(random)});
  }
  expectRun(randomPicture(300, 200));
}

TEST_P(SepiaTest, HostileWeightsAndOffsets) {
  const int32_t far[] = {INT_MIN, INT_MIN + 255, -70000,        -1,     0, 1,
                         32767,   70000,         INT_MAX - 255, INT_MAX};
  const auto source = randomPicture(67, 5);
  const auto weight = [&] { return hostileNumbers[random() % hostileNumbers.size()]; };
  const auto offset = [&] { return far[random() % std::size(far)]; };
  for (int i = 0; i < 500; ++i) {
    setWeights({weight(), weight(), weight()});
    setOffsets({offset(), offset(), offset()});
    expectRun(source);
  }
  // Sums that all but cancel out for greys, and sums at the edges of single
  // precision and of 32 bits.
  const Weights edges[] = {{1e6, -1e6, 0.25},
                           {2097151.5, -2097151.5, 0.5},
                           {3e6, -2097151.9990234375, 0.25},
                           {-3e6, 2097152, 0.75},
                           {64.2509765625, 0, 0},
                           {-64.251953125, 0, 0},
                           {4026.8134765625, -4026.1298828125, 0.0751953125},
                           {8224.125, 0, 0},
                           {0, -8224.125, 0},
                           {8224.126953125, 0, 0},
                           {-4112, -4112.25, 0},
                           {2741.375, 2741.375, 2741.5}};
  const auto greys = drawnPicture(256, 8, [](int32_t x, int32_t y) {
    return static_cast<uint32_t>(x) * 0x010101 ^ static_cast<uint32_t>(y);
  });
  for (const Weights& values : edges) {
    setWeights(values);
    for (const Offsets& ends :
         {Offsets{-60, 5, 1}, {-16200, 16300, -16384}, {INT_MIN, INT_MAX, -2097153}}) {
      setOffsets(ends);
      expectRun(source);
      expectRun(greys);
    }
  }
}

TEST_P(SepiaTest, RegionsInsideAcrossAndOutside) {
  setOffsets({40, 20, -20});
  const auto source = randomPicture(41, 13);
  const int32_t edges[] = {INT_MIN, -50, -3, -1, 0, 1, 5, 12, 13, 40, 41, 42, INT_MAX};
  const auto edge = [&] { return edges[random() % std::size(edges)]; };
  for (int i = 0; i < 300; ++i) expectRun(source, {edge(), edge(), edge(), edge()});
  expectRun(source, {-3, -3, -1, -1});
  expectRun(source, {10, 0, 20, 0});
  EXPECT_EQ(destination()->pixel(9, 3), 0xFFFFFF);
  EXPECT_EQ(destination()->pixel(20, 3), 0xFFFFFF);
}

TEST_P(SepiaTest, PropertiesAreTheFieldsOfTheirNames) {
  EXPECT_EQ(get("FactorRed as Double"), Value{0.299});
  EXPECT_EQ(get("FactorGreen as Double"), Value{0.587});
  EXPECT_EQ(get("FactorBlue as Double"), Value{0.114});
  const char* const integers[] = {
      "MaxX as Integer",     "MinX as Integer",       "MaxY as Integer",     "MinY as Integer",
      "SepiaRed as Integer", "SepiaGreen as Integer", "SepiaBlue as Integer"};
  const char* const doubles[] = {"FactorRed as Double", "FactorBlue as Double",
                                 "FactorGreen as Double"};
  int32_t value = INT_MIN;
  for (const char* name : integers) {
    EXPECT_EQ(get(name), Value{0}) << name;
    set(name, value++);
  }
  for (const char* name : doubles) set(name, 1e300 + 1e285 * (value++ - INT_MIN));
  value = INT_MIN;
  for (const char* name : integers) EXPECT_EQ(get(name), Value{value++}) << name;
  for (const char* name : doubles) {
    EXPECT_EQ(get(name), Value{1e300 + 1e285 * (value++ - INT_MIN)}) << name;
  }
  EXPECT_EQ(get(kSource), Value{Nil{}});
  EXPECT_EQ(get(kDestination), Value{Nil{}});
  set("FactorBlue as Double", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(std::get<double>(get("FactorBlue as Double"))));
}

TEST_P(SepiaTest, PicturesChangeHandsWithTheirReferences) {
  EXPECT_FALSE(run()) << "without a source";
  const auto source = randomPicture(8, 8);
  const auto second = expectTwoRuns(source);

  set(kSource, Nil{});
  EXPECT_TRUE(callsDuring([&] { EXPECT_FALSE(run()); }).empty());
  EXPECT_EQ(destination().get(), second.get()) << "a failed Run keeps the last result";

  set(kSource, objectValue(source));
  set("MaxX as Integer", 5);
  setWeights({0.5, 0.25, 0.125});
  expectClosed(source);
  EXPECT_EQ(second->references(), 1);
  EXPECT_EQ(get("MaxX as Integer"), Value{5});
  EXPECT_EQ(get("FactorGreen as Double"), Value{0.25});
  expectRun(source);
  set(kSource, get(kDestination));
  EXPECT_TRUE(run()) << "a result is a source, too";
}

TEST_P(SepiaTest, FailingHostsKeepTheLastResult) {
  const auto source = randomPicture(5, 4);
  set(kSource, objectValue(source));
  ASSERT_TRUE(run());
  auto last = destination();
  expectNothingLeftByFailures([&] {
    EXPECT_TRUE(run() || destination() == last);
    last = destination();
    EXPECT_EQ(last->references(), 2);
  });
  const auto foreign = Picture::create(
      GetParam().newPictures == Storage::Bitmap ? Storage::GWorld : Storage::Bitmap, 5, 4);
  set(kSource, objectValue(foreign));
  EXPECT_FALSE(run()) << "the paths are settled";
  EXPECT_EQ(destination().get(), last.get());
}

TEST_P(SepiaTest, TheOldResultIsReleasedBeforeTheSourceCloses) {
  LockLog log;
  const auto source = randomPicture(5, 4);
  set(kSource, objectValue(source));
  ASSERT_TRUE(run());
  log.name(source, "source");
  log.take();
  const auto calls = callsDuring([&] { ASSERT_TRUE(run()); });
  const bool isCopied = std::string_view(GetParam().name).starts_with("Copy");
  EXPECT_EQ(log.take(),
            isCopied ? "+source -source +new +new -new -new" : "+source +new -new -source");
  const auto done = std::find(calls.begin(), calls.end(), "REALPictureClearCache");
  ASSERT_LT(done, calls.end() - 1);
  EXPECT_EQ(*(done + 1), "REALUnlockObject");
  EXPECT_EQ(std::count(done, calls.end(), "REALUnlockObject"), 2);
}

}  // namespace
}  // namespace host
