#include "tests/support/filter_class_test.h"

#include "tests/support/checks.h"

namespace host {

void FilterClassTest::SetUp() {
  RepresentationTest::SetUp();
  if (IsSkipped()) return;
  const Class* found = runtime().registry.findClass(className_);
  instance = Ref<Object>::share(objectOf(found->constructors.front().call(nullptr, {})));
}

void FilterClassTest::TearDown() {
  instance = nullptr;
  RepresentationTest::TearDown();
}

void FilterClassTest::expectRun(const Ref<Picture>& source, const Region& region,
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

Ref<Picture> FilterClassTest::expectTwoRuns(const Ref<Picture>& source) {
  set(kSource, objectValue(source));
  EXPECT_EQ(source->references(), 2);
  EXPECT_TRUE(run());
  const auto first = destination();
  EXPECT_EQ(first->references(), 2);
  EXPECT_TRUE(run());
  EXPECT_EQ(first->references(), 1) << "the instance still holds the first result";
  auto second = destination();
  EXPECT_NE(second.get(), first.get());
  EXPECT_EQ(second->references(), 2);
  return second;
}

void FilterClassTest::expectClosed(const Ref<Picture>& source) {
  close();
  close();
  EXPECT_EQ(source->references(), 1);
  EXPECT_EQ(get(kSource), Value{Nil{}});
  EXPECT_FALSE(destination());
}

}  // namespace host
