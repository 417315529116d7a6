#include "tests/support/checks.h"

#include <algorithm>
#include <deque>
#include <limits>
#include <map>

#include "tests/support/guarded_row.h"

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

namespace {

int callsUntilFailure = 0;
bool failsForGood = false;

/// A service that is there is found, or what was taken could not be given back.
bool failInTurn(const char* call) {
  if (std::string_view(call).starts_with("resolve ")) return true;
  --callsUntilFailure;
  return callsUntilFailure > 0 || (callsUntilFailure < 0 && !failsForGood);
}

}  // namespace

void expectNothingLeftByFailures(const std::function<void()>& work) {
  const auto before = runtime().findLeaks();
  for (const bool forGood : {true, false}) {
    failsForGood = forGood;
    bool failed = true;
    for (int call = 1; failed; ++call) {
      const testing::ScopedTrace trace(__FILE__, __LINE__, "call " + std::to_string(call));
      callsUntilFailure = call;
      runtime().setCallHook(failInTurn);
      work();
      runtime().setCallHook(nullptr);
      failed = callsUntilFailure <= 0;
      EXPECT_TRUE(failed || call > 1) << "the work makes no calls";
      EXPECT_EQ(runtime().findLeaks(), before);
    }
  }
}

namespace {

using LockService = uint32_t (*)(Picture*, qrz::PictureDescription*);
using UnlockService = void (*)(Picture*);

LockService hostLock = nullptr;
UnlockService hostUnlock = nullptr;
std::map<const void*, std::string> pictureNames;
std::string lockEvents;

void record(char event, const void* picture) {
  const auto found = pictureNames.find(picture);
  if (!lockEvents.empty()) lockEvents += ' ';
  lockEvents += event + (found != pictureNames.end() ? found->second : "new");
}

uint32_t recordLock(Picture* picture, qrz::PictureDescription* description) {
  record('+', picture);
  return hostLock(picture, description);
}

void recordUnlock(Picture* picture) {
  record('-', picture);
  hostUnlock(picture);
}

}  // namespace

LockLog::LockLog() {
  hostLock = reinterpret_cast<LockService>(resolveService("lockPictureDescription"));
  hostUnlock = reinterpret_cast<UnlockService>(resolveService("unlockPictureDescription"));
  auto& services = runtime().replacedServices;
  services["lockPictureDescription"] = reinterpret_cast<void*>(recordLock);
  services["unlockPictureDescription"] = reinterpret_cast<void*>(recordUnlock);
}

void LockLog::name(const Ref<Picture>& picture, std::string name) {
  pictureNames[picture.get()] = std::move(name);
}

std::string LockLog::take() { return std::exchange(lockEvents, {}); }

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

namespace {

/// A copy that ends where memory ends. It stays until the process ends.
void* guardedBytes(MemoryBlock* block) {
  if (!runtime().called("memoryBlockGetPtr") || block->bytes.empty()) return nullptr;
  static std::deque<GuardedRow> copies;
  GuardedRow& copy = copies.emplace_back(block->bytes.size());
  copy.place(block->bytes.size(), 0, 1, 0);
  uint8_t* bytes = copy;
  std::copy(block->bytes.begin(), block->bytes.end(), bytes);
  return bytes;
}

}  // namespace

void guardMemoryBlocks() {
  runtime().replacedServices["memoryBlockGetPtr"] = reinterpret_cast<void*>(guardedBytes);
}

}  // namespace host
