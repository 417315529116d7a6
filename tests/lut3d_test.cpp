// The class PictureLut3DQRZ: its table, its pictures and Run, on every
// representation.

#include <array>
#include <climits>
#include <cmath>

#include "tests/support/checks.h"
#include "tests/support/filter_class_test.h"
#include "tests/support/lut3d_reference.h"

namespace host {
namespace {

constexpr const char* kClass = "PictureLut3DQRZ";
constexpr const char* kTable =
    "Table(r as integer, g as integer, b as integer, x as integer) as double";

double identity(int32_t r, int32_t g, int32_t b, int32_t x) {
  return 17.0 * (x == 0 ? r : x == 1 ? g : b);
}

class Lut3DTest : public FilterClassTest {
 protected:
  Lut3DTest() : FilterClassTest(kClass) {}

  double table(int32_t r, int32_t g, int32_t b, int32_t x) {
    return std::get<double>(call(kClass, kTable, instance.get(), {r, g, b, x}));
  }
  void setTable(int32_t r, int32_t g, int32_t b, int32_t x, double value) {
    assign(kClass, kTable, instance.get(), {r, g, b, x}, value);
  }
  template <typename Formula>
  void fill(const Formula& formula) {
    for (int32_t r = 0; r < 18; ++r) {
      for (int32_t g = 0; g < 18; ++g) {
        for (int32_t b = 0; b < 18; ++b) {
          for (int32_t x = 0; x < 3; ++x) {
            const double value = formula(r, g, b, x);
            values[static_cast<size_t>(r)][static_cast<size_t>(g)][static_cast<size_t>(b)]
                  [static_cast<size_t>(x)] = value;
            setTable(r, g, b, x, value);
          }
        }
      }
    }
  }
  void expectRun(const Ref<Picture>& source, const Region& region = {}) {
    FilterClassTest::expectRun(source, region, Lut3DReference(values));
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

TEST_P(Lut3DTest, IdentityTableOnWorkedColours) {
  fill(identity);
  const auto source = emptyPicture(3, 2);
  source->setPixels({0x12000039, 0x00646464, 0x00FFFFFF, 0, 0x00646464, 0xFF000039});
  expectRun(source);
  if (GetParam().depth == 16) return;  // which cannot hold these colours
  EXPECT_TRUE(samePixels(*destination(), {56, 0x646464, 0xFFFFFF, 0, 0x646464, 56}));
}

TEST_P(Lut3DTest, RandomTablesOnAllWidths) {
  std::uniform_real_distribution<double> level(-60, 320);
  fill([&](int32_t, int32_t, int32_t, int32_t) { return level(random); });
  for (int32_t width = 1; width <= 70; ++width) expectRun(randomPicture(width, 3));
  expectRun(randomPicture(300, 200));
}

TEST_P(Lut3DTest, TablesWithExtremeElements) {
  fill([&](int32_t r, int32_t g, int32_t b, int32_t x) {
    return random() % 20 == 0 ? hostileNumbers[random() % hostileNumbers.size()]
                              : identity(r, g, b, x);
  });
  expectRun(randomPicture(211, 60));
  for (const double everywhere : {0.0, 300.0, -5.0, static_cast<double>(NAN)}) {
    fill([&](int32_t, int32_t, int32_t, int32_t) { return everywhere; });
    expectRun(randomPicture(19, 5));
  }
}

TEST_P(Lut3DTest, RegionsInsideAcrossAndOutside) {
  fill([](int32_t r, int32_t g, int32_t b, int32_t x) { return 255 - identity(r, g, b, x); });
  const auto source = randomPicture(41, 13);
  const std::vector<int32_t> edges = {INT_MIN, -50, -3, 0, 1, 5, 12, 13, 40, 41, 42, INT_MAX};
  std::uniform_int_distribution<size_t> pick(0, edges.size() - 1);
  for (int i = 0; i < 300; ++i) {
    expectRun(source,
              {edges[pick(random)], edges[pick(random)], edges[pick(random)], edges[pick(random)]});
  }
  expectRun(source, {10, 5, 20, 8});
  expectRun(source, {0, 0, 500, 500});
}

TEST_P(Lut3DTest, PicturesChangeHandsWithTheirReferences) {
  EXPECT_FALSE(run()) << "without a source";
  const auto source = randomPicture(8, 8);
  expectTwoRuns(source);

  set(kSource, Nil{});
  EXPECT_EQ(source->references(), 1);
  EXPECT_FALSE(run());
  EXPECT_FALSE(destination()) << "a failed Run leaves no result";

  set(kSource, objectValue(source));
  ASSERT_TRUE(run());
  set("MaxX as Integer", 5);
  setTable(3, 3, 3, 0, 1.5);
  expectClosed(source);
  EXPECT_EQ(std::get<int32_t>(get("MaxX as Integer")), 5);
  EXPECT_EQ(table(3, 3, 3, 0), 1.5);
  set(kSource, objectValue(source));
  EXPECT_TRUE(run()) << "the instance works after Close";
}

TEST_P(Lut3DTest, FailingHostsLeaveNothing) {
  const auto source = randomPicture(7, 5);
  set(kSource, objectValue(source));
  expectNothingLeftByFailures([&] {
    run();
    set(kDestination, Nil{});
  });
  EXPECT_TRUE(run()) << "it works the next time";
}

TEST_P(Lut3DTest, PropertiesAreTheFieldsOfTheirNames) {
  const char* const names[] = {"MaxX as Integer", "MinX as Integer", "MaxY as Integer",
                               "MinY as Integer"};
  int32_t value = INT_MIN;
  for (const char* name : names) set(name, value++);
  value = INT_MIN;
  for (const char* name : names) EXPECT_EQ(std::get<int32_t>(get(name)), value++) << name;
  EXPECT_EQ(table(0, 0, 0, 0), 0.0) << "a property reached into the table";
}

}  // namespace
}  // namespace host
