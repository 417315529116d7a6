// What the tests of the loaded plug-in share.
//
// The plug-in remembers for the life of its process which representation the
// host uses, so every test runs in a process of its own: ctest runs each test
// of these executables by itself. Run one by name with
//   build/release/plugin_tests --gtest_filter='NAME'
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <functional>
#include <ostream>
#include <random>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/picture.h"
#include "host/core/registry.h"
#include "host/core/runtime.h"

namespace host {

/// Pictures in one representation, in a host whose new pictures are in one.
struct Representation {
  const char* name;
  Storage newPictures;
  Storage sources;
  int32_t depth;
};

inline void PrintTo(const Representation& representation, std::ostream* stream) {
  *stream << representation.name;
}

/// Every representation that the plug-in can read. Sources that are neither a
/// 32-bit GWorld nor a bitmap record are read through a copy that the host draws.
inline const Representation allRepresentations[] = {
    {"GWorld", Storage::GWorld, Storage::GWorld, 32},
    {"Context", Storage::Context, Storage::GWorld, 32},
    {"Bitmap", Storage::Bitmap, Storage::Bitmap, 32},
    {"CopyOfGWorld24", Storage::GWorld, Storage::GWorld, 24},
    {"CopyOfGWorld16", Storage::GWorld, Storage::GWorld, 16},
    {"CopyOfContext", Storage::GWorld, Storage::Context, 32},
};

/// The build of the plug-in under test: QRZ_PLUGIN, or the one of this build.
std::string pluginPath();

/// Loads the plug-in in SetUp and checks in TearDown that nothing is left: no
/// object, no reference, no lock, no misuse of a handle.
class PluginTest : public testing::Test {
 public:
  /// Calls a registered member by its exact declaration, on an object of the
  /// class (which may be nil); an empty class name means a global method.
  static Value call(std::string_view className, std::string_view declaration, Object* self,
                    std::vector<Value> arguments = {});
  /// The same for members of Picture whose result is a picture or nil.
  static Ref<Picture> filter(std::string_view declaration, const Ref<Picture>& self,
                             std::vector<Value> arguments = {});
  static void assign(std::string_view className, std::string_view declaration, Object* self,
                     std::vector<Value> arguments, const Value& value);
  /// The same, with the ByRef arguments written back.
  static Value callByRef(std::string_view className, std::string_view declaration, Object* self,
                         std::vector<Value>& arguments);
  static const Member& member(std::string_view className, std::string_view declaration);

 protected:
  void SetUp() override;
  void TearDown() override;
};

/// PluginTest for every representation.
class RepresentationTest : public PluginTest, public testing::WithParamInterface<Representation> {
 protected:
  void SetUp() override;
  /// A source with random pixels, pads included where there are any. About a
  /// quarter of the pixels are grey, black or white.
  Ref<Picture> randomPicture(int32_t width, int32_t height);
  Ref<Picture> emptyPicture(int32_t width, int32_t height);
  /// A source whose words 0xPPRRGGBB are drawn pixel by pixel.
  Ref<Picture> drawnPicture(int32_t width, int32_t height,
                            const std::function<uint32_t(int32_t x, int32_t y)>& word);

  std::mt19937 random{20101};
};

/// Instantiates a test suite of Representations for all representations.
#define QRZ_ALL_REPRESENTATIONS(SUITE)                                              \
  INSTANTIATE_TEST_SUITE_P(All, SUITE, testing::ValuesIn(host::allRepresentations), \
                           [](const auto& test) { return std::string(test.param.name); })

/// What a picture should hold: `inside(x, y)` decides whether `map` was applied
/// to the source's 0x00RRGGBB, or the pixel is still as the host made it.
std::vector<uint32_t> expectedPixels(const Picture& source,
                                     const std::function<bool(int32_t, int32_t)>& inside,
                                     const std::function<uint32_t(uint32_t)>& map);

/// Compares whole pictures, pads included, and names the first difference.
testing::AssertionResult samePixels(const Picture& picture, const std::vector<uint32_t>& expected);

/// The bitmap record of a picture that is kept in one.
qrz::HostBitmap& bitmapOf(const Ref<Picture>& picture);

/// The names of all host services and platform calls that `work` makes, each
/// once per call, look-ups by name left out.
std::vector<std::string> callsDuring(const std::function<void()>& work);

}  // namespace host
