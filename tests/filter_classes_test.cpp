// The classes PictureLut3DQRZ and PictureSepiaQRZ on every representation: their
// pictures and regions, the table and the weights.

#include <algorithm>
#include <array>
#include <climits>
#include <cmath>
#include <limits>

#include "tests/support/calls.h"
#include "tests/support/checks.h"
#include "tests/support/lut3d_reference.h"
#include "tests/support/sweep.h"

namespace host {
namespace {

/// From column minX to before maxX, from row minY to before maxY; all 0 is the
/// whole picture.
struct Region {
  int32_t minX = 0, minY = 0, maxX = 0, maxY = 0;
};

/// RepresentationTest with an instance, once `create` was called, of a class that filters
/// SourcePicture into DestinationPicture.
class FilterClassTest : public RepresentationTest {
 protected:
  static constexpr const char* kSource = "SourcePicture as Picture";
  static constexpr const char* kDestination = "DestinationPicture as Picture";

  void create(const char* className) {
    className_ = className;
    instance = newInstance(className);
  }
  void TearDown() override {
    instance = nullptr;
    RepresentationTest::TearDown();
  }

  Value get(const char* property) { return call(className_, property, instance.get()); }
  void set(const char* property, const Value& value) {
    assign(className_, property, instance.get(), {}, value);
  }
  bool run() { return std::get<bool>(call(className_, "Run as boolean", instance.get())); }
  void close() { call(className_, "Close", instance.get()); }
  Ref<Picture> destination() { return pictureOf(get(kDestination)); }
  /// Runs on a region of the picture and compares everything: inside the region
  /// the source's colours are mapped.
  void expectRun(const Ref<Picture>& source, const Region& region,
                 const std::function<uint32_t(uint32_t)>& map) {
    set(kSource, objectValue(source));
    set("MinX as Integer", region.minX);
    set("MinY as Integer", region.minY);
    set("MaxX as Integer", region.maxX);
    set("MaxY as Integer", region.maxY);
    {
      const Unchanged unchanged(source);
      ASSERT_TRUE(run());
    }
    const auto end = [](int32_t min, int32_t max, int32_t size) {
      return max > min && max < size ? max : size;
    };
    const auto inside = [&](int32_t x, int32_t y) {
      return x >= region.minX && x < end(region.minX, region.maxX, source->width()) &&
             y >= region.minY && y < end(region.minY, region.maxY, source->height());
    };
    EXPECT_TRUE(samePixels(*destination(), expectedPixels(*source, inside, map)))
        << region.minX << ", " << region.minY << " to " << region.maxX << ", " << region.maxY;
  }

  Ref<Object> instance;

 private:
  const char* className_ = nullptr;
};

// --- What both have in common --------------------------------------------------

class FilterClassesTest : public FilterClassTest {
 protected:
  /// Works with an instance of each class; its table or its offsets are still 0.
  void forEachClass(const std::function<void(bool isSepia)>& work) {
    for (const bool isSepia : {false, true}) {
      SCOPED_TRACE(isSepia ? "PictureSepiaQRZ" : "PictureLut3DQRZ");
      create(isSepia ? "PictureSepiaQRZ" : "PictureLut3DQRZ");
      work(isSepia);
    }
  }
};
QRZ_ALL_REPRESENTATIONS(FilterClassesTest);

TEST_P(FilterClassesTest, RegionsInsideAcrossAndOutside) {
  const auto source = randomPicture(41, 13);
  const int32_t edges[] = {INT_MIN, -50, -3, -1, 0, 1, 5, 12, 13, 40, 41, 42, INT_MAX};
  const auto edge = [&] { return edges[random() % std::size(edges)]; };
  forEachClass([&](bool isSepia) {
    if (isSepia) {
      set("FactorRed as Double", 1.0);
      set("FactorGreen as Double", 0.0);
      set("FactorBlue as Double", 0.0);
    }
    const auto map = [&](uint32_t rgb) { return isSepia ? (rgb >> 16) * 0x010101 : 0; };
    for (int i = 0; i < 300; ++i) expectRun(source, {edge(), edge(), edge(), edge()}, map);
    expectRun(source, {-3, -3, -1, -1}, map);
    expectRun(source, {10, 0, 20, 0}, map);
    expectRun(randomPicture(2077, 3), {7, 1, 0, 0}, map);
  });
}

TEST_P(FilterClassesTest, PicturesChangeHandsWithTheirReferences) {
  forEachClass([&](bool isSepia) {
    EXPECT_FALSE(run()) << "without a source";
    const auto source = randomPicture(8, 8);
    set(kSource, objectValue(source));
    EXPECT_EQ(source->references(), 2);
    EXPECT_TRUE(run());
    const auto first = destination();
    EXPECT_EQ(first->references(), 2);
    EXPECT_TRUE(run());
    EXPECT_EQ(first->references(), 1) << "the instance still holds the first result";
    const auto second = destination();
    EXPECT_NE(second.get(), first.get());
    EXPECT_EQ(second->references(), 2);

    set(kSource, Nil{});
    EXPECT_EQ(source->references(), 1);
    const auto calls = callsDuring([&] { EXPECT_FALSE(run()); });
    EXPECT_EQ(calls, isSepia ? Calls{} : Calls{"REALUnlockObject"});
    EXPECT_EQ(destination(), isSepia ? second : nullptr) << "a failed Run";

    set(kSource, objectValue(source));
    EXPECT_TRUE(run());
    set("MaxX as Integer", 5);
    close();
    close();
    EXPECT_EQ(source->references() + second->references(), 2);
    EXPECT_EQ(get(kSource), Value{Nil{}});
    EXPECT_FALSE(destination());
    EXPECT_EQ(get("MaxX as Integer"), Value{5});
    set(kSource, objectValue(source));
    EXPECT_TRUE(run()) << "the instance works after Close";
    set(kSource, get(kDestination));
    EXPECT_TRUE(run()) << "a result is a source, too";
  });
}

TEST_P(FilterClassesTest, FieldsAreThoseOfTheirNames) {
  forEachClass([&](bool isSepia) {
    std::vector<const char*> names = {"MaxX as Integer", "MinX as Integer", "MaxY as Integer",
                                      "MinY as Integer"};
    if (isSepia) {
      names.insert(names.end(),
                   {"SepiaRed as Integer", "SepiaGreen as Integer", "SepiaBlue as Integer"});
    }
    int32_t value = INT_MIN;
    for (const char* name : names) {
      EXPECT_EQ(get(name), Value{0}) << name;
      set(name, value++);
    }
    value = INT_MIN;
    for (const char* name : names) EXPECT_EQ(get(name), Value{value++}) << name;
    EXPECT_EQ(get(kSource), Value{Nil{}});
    EXPECT_EQ(get(kDestination), Value{Nil{}});
  });
}

// --- PictureLut3DQRZ -----------------------------------------------------------

constexpr const char* kClass = "PictureLut3DQRZ";
constexpr const char* kTable =
    "Table(r as integer, g as integer, b as integer, x as integer) as double";

class Lut3DTest : public FilterClassTest {
 protected:
  void SetUp() override {
    FilterClassTest::SetUp();
    create(kClass);
  }
  double table(int32_t r, int32_t g, int32_t b, int32_t x) {
    return std::get<double>(call(kClass, kTable, instance.get(), {r, g, b, x}));
  }
  void setTable(int32_t r, int32_t g, int32_t b, int32_t x, double value) {
    assign(kClass, kTable, instance.get(), {r, g, b, x}, value);
  }
  template <typename Formula>
  void fill(const Formula& formula) {
    double* elements = values[0][0][0].data();
    for (int32_t i = 0; i < 18 * 18 * 18 * 3; ++i) {
      const int32_t r = i / 972;
      const int32_t g = i / 54 % 18;
      const int32_t b = i / 3 % 18;
      setTable(r, g, b, i % 3, elements[i] = formula(r, g, b, i % 3));
    }
  }
  void expectRun(const Ref<Picture>& source) {
    FilterClassTest::expectRun(source, {}, Lut3DReference(values));
  }

  Lut3DTable values{};  ///< as the test filled it
};
QRZ_ALL_REPRESENTATIONS(Lut3DTest);

TEST_P(Lut3DTest, TableKeepsWhatIsInRangeAndNothingElse) {
  setTable(17, 17, 17, 2, 0.25);
  setTable(1, 2, 3, 0, -1e300);
  setTable(1, 2, 3, 1, 7);
  setTable(1, 3, 2, 0, 8);
  for (size_t axis = 0; axis < 4; ++axis) {
    for (const int32_t outside : {axis < 3 ? 18 : 3, -1, INT_MIN, INT_MAX}) {
      std::array<int32_t, 4> index = {1, 1, 1, 1};
      index.at(axis) = outside;
      setTable(index[0], index[1], index[2], index[3], 99);
      EXPECT_EQ(table(index[0], index[1], index[2], index[3]), 0.0);
    }
  }
  int filled = 0;
  for (int32_t i = 0; i < 18 * 18 * 18 * 3; ++i) {
    filled += table(i / 972, i / 54 % 18, i / 3 % 18, i % 3) != 0.0 ? 1 : 0;
  }
  EXPECT_EQ(filled, 4);
  EXPECT_EQ(table(17, 17, 17, 2), 0.25);
  EXPECT_EQ(table(1, 2, 3, 0), -1e300);
  EXPECT_EQ(table(1, 2, 3, 1), 7);
  EXPECT_EQ(table(1, 3, 2, 0), 8);
}

TEST_P(Lut3DTest, TablesOfAnyElements) {
  std::uniform_real_distribution<double> level(-60, 320);
  fill([&](int32_t, int32_t, int32_t, int32_t) { return level(random); });
  expectRun(randomPicture(1031, 23));
  fill([&](int32_t r, int32_t g, int32_t b, int32_t x) {
    const double identity = 17 * (x == 0 ? r : x == 1 ? g : b);
    return random() % 20 == 0 ? hostileNumbers[random() % hostileNumbers.size()] : identity;
  });
  expectRun(randomPicture(211, 60));
  for (const double everywhere : {0.0, 300.0, -5.0, static_cast<double>(NAN)}) {
    fill([&](int32_t, int32_t, int32_t, int32_t) { return everywhere; });
    expectRun(randomPicture(19, 5));
  }
}

TEST_P(Lut3DTest, PropertiesAndCloseLeaveTheTable) {
  for (const char* name :
       {"MaxX as Integer", "MinX as Integer", "MaxY as Integer", "MinY as Integer"}) {
    set(name, -1);
  }
  EXPECT_EQ(table(0, 0, 0, 0), 0.0) << "a property reached into the table";
  setTable(3, 3, 3, 0, 1.5);
  close();
  EXPECT_EQ(table(3, 3, 3, 0), 1.5);
}

// --- PictureSepiaQRZ -----------------------------------------------------------

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
  void SetUp() override {
    FilterClassTest::SetUp();
    create("PictureSepiaQRZ");
  }
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
  void expectRun(const Ref<Picture>& source) {
    SCOPED_TRACE(testing::PrintToString(weights) + testing::PrintToString(offsets));
    const auto map = [&](uint32_t rgb) { return toned(rgb, weights, offsets); };
    FilterClassTest::expectRun(source, {}, map);
  }
  Weights weights = {0.299, 0.587, 0.114};
  Offsets offsets = {};
};
QRZ_ALL_REPRESENTATIONS(SepiaTest);

TEST_P(SepiaTest, AnyWeightsAndOffsets) {
  std::uniform_real_distribution<double> usualWeight(-1.5, 1.5);
  std::uniform_int_distribution<int32_t> usualOffset(-300, 300);
  const int32_t far[] = {INT_MIN, INT_MIN + 255, -70000,        -1,     0, 1,
                         32767,   70000,         INT_MAX - 255, INT_MAX};
  const auto source = randomPicture(67, 5);
  int i = 0;
  const auto weight = [&] {
    return i % 3 == 0 ? usualWeight(random) : hostileNumbers[random() % hostileNumbers.size()];
  };
  const auto offset = [&] {
    return i % 2 == 0 ? usualOffset(random) : far[random() % std::size(far)];
  };
  expectRun(randomPicture(1031, 3));
  for (; i < 500; ++i) {
    setWeights({weight(), weight(), weight()});
    setOffsets({offset(), offset(), offset()});
    expectRun(source);
  }
}

TEST_P(SepiaTest, WeightsAreThoseOfTheirNames) {
  const std::pair<const char*, double> expected[] = {{"FactorRed as Double", 0.299},
                                                     {"FactorGreen as Double", 0.587},
                                                     {"FactorBlue as Double", 0.114}};
  for (const auto& [name, initial] : expected) EXPECT_EQ(get(name), Value{initial}) << name;
  for (const auto& [name, initial] : expected) set(name, 1e300 * initial);
  close();
  for (const auto& [name, initial] : expected) EXPECT_EQ(get(name), Value{1e300 * initial}) << name;
  EXPECT_EQ(get("SepiaBlue as Integer"), Value{0}) << "a weight reached into an offset";
  set("FactorBlue as Double", std::numeric_limits<double>::quiet_NaN());
  EXPECT_TRUE(std::isnan(std::get<double>(get("FactorBlue as Double"))));
}

TEST_P(SepiaTest, TheLastResultStaysWhenRunFails) {
  const auto source = randomPicture(5, 4);
  set(kSource, objectValue(source));
  ASSERT_TRUE(run());
  const auto last = destination();
  runtime().setCallHook([](const char* call) { return std::string_view(call) != "newPicture"; });
  EXPECT_FALSE(run());
  runtime().setCallHook(nullptr);
  const bool isBitmap = GetParam().newPictures == Storage::Bitmap;
  const auto foreign = Picture::create(isBitmap ? Storage::GWorld : Storage::Bitmap, 5, 4);
  set(kSource, objectValue(foreign));
  EXPECT_FALSE(run()) << "the paths are settled";
  EXPECT_EQ(destination().get(), last.get());
}

TEST_P(SepiaTest, TheOldResultIsReleasedBeforeTheSourceCloses) {
  if (std::string_view(GetParam().name) != "GWorld") return;
  const auto source = randomPicture(5, 4);
  set(kSource, objectValue(source));
  for (const Calls& release : {Calls{}, Calls{"REALUnlockObject"}}) {
    EXPECT_EQ(callsDuring([&] { EXPECT_TRUE(run()); }),
              joined({openGWorld, createGWorld, finishGWorld, release, closeGWorld}));
  }
}

}  // namespace
}  // namespace host
