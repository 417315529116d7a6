// What the tests of the filter classes share: one instance, its pictures and
// its region.
#pragma once

#include <functional>

#include "tests/support/plugin_test.h"

namespace host {

/// From column minX to before maxX, from row minY to before maxY; all 0 is the
/// whole picture.
struct Region {
  int32_t minX = 0, minY = 0, maxX = 0, maxY = 0;
};

/// RepresentationTest with an instance of a class that filters SourcePicture
/// into DestinationPicture.
class FilterClassTest : public RepresentationTest {
 protected:
  static constexpr const char* kSource = "SourcePicture as Picture";
  static constexpr const char* kDestination = "DestinationPicture as Picture";

  explicit FilterClassTest(const char* className) : className_(className) {}
  void SetUp() override;
  void TearDown() override;

  Value get(const char* property) { return call(className_, property, instance.get()); }
  void set(const char* property, const Value& value) {
    assign(className_, property, instance.get(), {}, value);
  }
  bool run() { return std::get<bool>(call(className_, "Run as boolean", instance.get())); }
  void close() { call(className_, "Close", instance.get()); }
  Ref<Picture> destination() { return Ref<Picture>::share(objectAs<Picture>(get(kDestination))); }
  /// Runs on a region of the picture and compares everything: inside the region
  /// the source's colours are mapped.
  void expectRun(const Ref<Picture>& source, const Region& region,
                 const std::function<uint32_t(uint32_t)>& map);

  /// Runs twice on a source that only the caller holds: the instance then has a
  /// reference to it and to the second result, which is returned.
  Ref<Picture> expectTwoRuns(const Ref<Picture>& source);
  /// Closes twice: no picture is left, and only the caller holds the source.
  void expectClosed(const Ref<Picture>& source);

  Ref<Object> instance;

 private:
  const char* className_;
};

}  // namespace host
