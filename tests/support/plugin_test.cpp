#include "tests/support/plugin_test.h"

#include <cstdlib>

#include "host/loader/load_plugin.h"

namespace host {
namespace {

constexpr uint32_t kNewPixel = 0x00FFFFFF;

std::vector<std::string> recordedCalls;

bool recordCall(const char* call) {
  if (!std::string_view(call).starts_with("resolve ")) recordedCalls.emplace_back(call);
  return true;
}

uint32_t randomPixel(std::mt19937& random) {
  const uint32_t word = random();
  const uint32_t pad = word & 0xFF000000;
  switch (random() % 12) {
    case 0:
      return pad;
    case 1:
      return pad | 0x00FFFFFF;
    case 2:
      return pad | (word & 0xFF) * 0x010101;
    default:
      return word;
  }
}

}  // namespace

std::string pluginPath() {
  const char* chosen = getenv("QRZ_PLUGIN");
  return chosen != nullptr ? chosen : QRZ_BUILD_FOLDER "/PictureQRZ.so";
}

void PluginTest::SetUp() {
  static bool loaded = false;
  if (loaded) GTEST_SKIP() << "one process per test: run the tests through ctest";
  loaded = true;
  addBuiltInClasses(runtime().registry);
  loadPlugin(pluginPath());
}

void PluginTest::TearDown() {
  runtime().setCallHook(nullptr);
  for (const std::string& leak : runtime().findLeaks()) ADD_FAILURE() << leak;
}

const Member& PluginTest::member(std::string_view className, std::string_view declaration) {
  Registry& registry = runtime().registry;
  const auto& members =
      className.empty() ? registry.globals() : registry.findClass(className)->members;
  for (const Member& candidate : members) {
    if (candidate.isRegistered && candidate.declaration.text == declaration) return candidate;
  }
  throw std::logic_error("not registered: " + std::string(declaration));
}

Value PluginTest::call(std::string_view className, std::string_view declaration, Object* self,
                       std::vector<Value> arguments) {
  return member(className, declaration).call(self, arguments);
}

Value PluginTest::callByRef(std::string_view className, std::string_view declaration, Object* self,
                            std::vector<Value>& arguments) {
  return member(className, declaration).call(self, arguments);
}

Ref<Picture> PluginTest::filter(std::string_view declaration, const Ref<Picture>& self,
                                std::vector<Value> arguments) {
  const Value result = call("Picture", declaration, self.get(), std::move(arguments));
  return Ref<Picture>::share(objectAs<Picture>(result));
}

void PluginTest::assign(std::string_view className, std::string_view declaration, Object* self,
                        std::vector<Value> arguments, const Value& value) {
  member(className, declaration).assign(self, arguments, value);
}

void RepresentationTest::SetUp() {
  runtime().settings.newPictures = GetParam().newPictures;
  PluginTest::SetUp();
}

Ref<Picture> RepresentationTest::emptyPicture(int32_t width, int32_t height) {
  return Picture::create(GetParam().sources, width, height, GetParam().depth);
}

Ref<Picture> RepresentationTest::randomPicture(int32_t width, int32_t height) {
  auto picture = emptyPicture(width, height);
  std::vector<uint32_t> words(static_cast<size_t>(width) * static_cast<size_t>(height));
  for (uint32_t& word : words) word = randomPixel(random);
  picture->setPixels(words);
  return picture;
}

Ref<Picture> RepresentationTest::drawnPicture(
    int32_t width, int32_t height, const std::function<uint32_t(int32_t, int32_t)>& word) {
  auto picture = emptyPicture(width, height);
  std::vector<uint32_t> row(static_cast<size_t>(width));
  for (int32_t y = 0; y < height; ++y) {
    for (int32_t x = 0; x < width; ++x) row[static_cast<size_t>(x)] = word(x, y);
    picture->store().write({0, y, width}, row.data());
  }
  return picture;
}

std::vector<uint32_t> expectedPixels(const Picture& source,
                                     const std::function<bool(int32_t, int32_t)>& inside,
                                     const std::function<uint32_t(uint32_t)>& map) {
  std::vector<uint32_t> words = source.pixels();
  size_t i = 0;
  for (int32_t y = 0; y < source.height(); ++y) {
    for (int32_t x = 0; x < source.width(); ++x, ++i) {
      words[i] = inside(x, y) ? map(words[i] & 0x00FFFFFF) : kNewPixel;
    }
  }
  return words;
}

testing::AssertionResult samePixels(const Picture& picture, const std::vector<uint32_t>& expected) {
  const std::vector<uint32_t> actual = picture.pixels();
  if (actual.size() != expected.size()) {
    return testing::AssertionFailure() << actual.size() << " pixels instead of " << expected.size();
  }
  for (size_t i = 0; i < actual.size(); ++i) {
    if (actual[i] == expected[i]) continue;
    const auto width = static_cast<size_t>(picture.width());
    return testing::AssertionFailure()
           << picture.describe() << ": pixel (" << i % width << ", " << i / width << ") is "
           << std::hex << actual[i] << " instead of " << expected[i];
  }
  return testing::AssertionSuccess();
}

qrz::HostBitmap& bitmapOf(const Ref<Picture>& picture) {
  return *static_cast<qrz::HostBitmap*>(picture->store().data());
}

std::vector<std::string> callsDuring(const std::function<void()>& work) {
  recordedCalls.clear();
  runtime().setCallHook(recordCall);
  work();
  runtime().setCallHook(nullptr);
  return std::exchange(recordedCalls, {});
}

}  // namespace host
