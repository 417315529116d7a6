#include "tests/support/checks.h"

#include <algorithm>
#include <limits>

namespace host {

std::vector<uint32_t> mappedPixels(const Picture& source,
                                   const std::function<uint32_t(uint32_t)>& map) {
  return expectedPixels(
      source, [](int32_t, int32_t) { return true; }, map);
}

std::vector<uint32_t> colorsOf(const Picture& picture) {
  return mappedPixels(picture, [](uint32_t rgb) { return rgb; });
}

testing::AssertionResult isNewPicture(const Ref<Picture>& result, int32_t width,
                                      const std::vector<uint32_t>& expected) {
  if (!result) return testing::AssertionFailure() << "the result is nil";
  if (result->width() != width) return testing::AssertionFailure() << result->describe();
  if (result->references() != 1 || result->locks() != 0) {
    return testing::AssertionFailure() << result->describe() << " has " << result->references()
                                       << " references and " << result->locks() << " locks";
  }
  return samePixels(*result, expected);
}

Unchanged::Unchanged(const Ref<Picture>& picture)
    : picture_(*picture), pixels_(picture->pixels()), references_(picture->references()) {}

Unchanged::~Unchanged() {
  EXPECT_TRUE(samePixels(picture_, pixels_)) << "a source was changed";
  EXPECT_EQ(picture_.references(), references_) << picture_.describe();
  EXPECT_EQ(picture_.locks(), 0) << picture_.describe();
}

using Limits = std::numeric_limits<double>;
const std::vector<double> hostileNumbers = {
    // of doubles
    Limits::quiet_NaN(), Limits::infinity(), -Limits::infinity(), Limits::max(), Limits::lowest(),
    Limits::denorm_min(), -0.0,
    // of channels
    0, 1, -1, 32.0, -32.03125, 127.999, 254.99999999999997, 255, 255.00000000000003, -255,
    // of weights that fill 32 bits
    8224.125, -8224.125, 1e6, -1e6, 2097151.9990234375, 2097152, -2097152, -2097152.5,
    // of integers
    2147483647.5, -2147483649.0, 4294967301.5, -4294967301.5, 9007199254740993.0, -1e16, 1e18,
    -9223372036854775808., 1.8446744073709552e19, 1e25, -1e300};

Ref<MemoryBlock> memoryBlock(std::vector<uint8_t> bytes) {
  return makeObject<MemoryBlock>(std::move(bytes));
}

}  // namespace host
