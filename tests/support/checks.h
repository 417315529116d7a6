// Checks that the tests of the members share: new pictures, unchanged sources.
#pragma once

#include <functional>
#include <string>
#include <vector>

#include "host/core/memory_block.h"
#include "tests/support/plugin_test.h"

namespace host {

/// Instantiates a test suite for GWorlds and bitmaps, which are read in place.
#define QRZ_NATIVE_REPRESENTATIONS(SUITE)                                                    \
  INSTANTIATE_TEST_SUITE_P(                                                                  \
      All, SUITE, testing::Values(host::allRepresentations[0], host::allRepresentations[2]), \
      [](const auto& test) { return std::string(test.param.name); })

/// Null for nil.
inline Ref<Picture> pictureOf(const Value& value) {
  return Ref<Picture>::share(objectAs<Picture>(value));
}

/// The source's pixels, each mapped.
std::vector<uint32_t> mappedPixels(const Picture& source,
                                   const std::function<uint32_t(uint32_t)>& map);

/// The picture's pixels without pads.
std::vector<uint32_t> colorsOf(const Picture& picture);

/// A picture of that width and those pixels, nobody else's and not locked.
testing::AssertionResult isNewPicture(const Ref<Picture>& result, int32_t width,
                                      const std::vector<uint32_t>& expected);

/// Checks at its end that a picture is as it was: pixels, references and locks.
class Unchanged {
 public:
  explicit Unchanged(const Ref<Picture>& picture);
  Unchanged(const Unchanged&) = delete;
  Unchanged& operator=(const Unchanged&) = delete;
  ~Unchanged();

 private:
  const Picture& picture_;
  std::vector<uint32_t> pixels_;
  int32_t references_;
};

/// Numbers at the edges of what doubles, integers, channels and weights can be.
extern const std::vector<double> hostileNumbers;

/// A block of the host's with these bytes.
Ref<MemoryBlock> memoryBlock(std::vector<uint8_t> bytes);

}  // namespace host
