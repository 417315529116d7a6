#include "fuzz/support/failing_host.h"

#include <cstdlib>
#include <string_view>
#include <tuple>

#include "fuzz/support/plugin.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "plugin/binding/services.h"
#include "plugin/pixels/streamed_rows.h"

namespace fuzz {
namespace {

/// Those that members use.
auto services() {
  using namespace qrz::service;  // NOLINT(google-build-using-namespace)
  return std::tie(REALBuildString, REALSetStringEncoding, REALConvertString, REALUnlockString,
                  REALLockObject, REALUnlockObject, PluginNewInstance, RuntimeRaiseException,
                  REALSetPropValueString, REALGetPropValueInt, REALSetPropValueInt,
                  REALLoadObjectMethod, RuntimeGraphicsDrawLine, drawPicturePrimitive, newPicture,
                  pluginPictureGraphicsGetter, lockPictureDescription, unlockPictureDescription,
                  REALLockPictureDescription, REALPictureClearCache, REALGetPictureMask,
                  REALBuildPictureFromPicHandle, REALBuildPictureFromGWorld, newMemoryBlock,
                  memoryBlockGetPtr, memoryBlockGetSize);
}

/// As they are before anything is bound.
auto unboundServices() {
  return std::apply([](const auto&... service) { return std::tuple(service...); }, services());
}
const auto unbound = unboundServices();

FaultPlan armed;
uint32_t made = 0;
uint32_t random = 0;
bool isCalling = false;
bool canAnyFail = false;
bool hasAnyFailed = false;

/// What was taken before could not be given back without them.
bool isIndispensable(std::string_view service) {
  return service == "REALUnlockObject" || service == "REALUnlockString" ||
         service == "unlockPictureDescription";
}

bool isLacking(std::string_view service) {
  constexpr uint32_t kGroups = 32;
  return std::hash<std::string_view>()(service) % kGroups + 1 == armed.lacking;
}

/// The runtime's hook: false if the call is to fail.
bool pass(const char* event) {
  if (!canAnyFail) return true;
  constexpr std::string_view kLookUp = "resolve ";
  const std::string_view call = event;
  const bool isLookUp = call.starts_with(kLookUp);
  if (isLookUp && isIndispensable(call.substr(kLookUp.size()))) return true;
  random = random * 1664525 + 1013904223;
  ++made;
  const bool fails = made == armed.first || (armed.forGood && made > armed.first) ||
                     random >> 24 < armed.rate ||
                     (isLookUp && isLacking(call.substr(kLookUp.size())));
  hasAnyFailed |= fails;
  return !fails;
}

host::Object* newPicture(int32_t width, int32_t height, int32_t depth) {
  if (!pass("newPicture") || int64_t{width} * height > kMostPixels) return nullptr;
  return host::Picture::create(host::runtime().settings.newPictures, width, height, depth).detach();
}

}  // namespace

void startFailingHost() {
  startPlugin();
  host::Runtime& runtime = host::runtime();
  runtime.replacedServices["newPicture"] = reinterpret_cast<void*>(newPicture);
  runtime.setCallHook(pass);
}

void resetPlugin() {
  services() = unbound;
  qrz::readerLatch = qrz::writerLatch = qrz::lockLatch = qrz::RepresentationLatch::Unknown;
  arm({});
  host::runtime().takeMisuses();
}

void Latches::restore() const {
  qrz::readerLatch = reader;
  qrz::writerLatch = writer;
  qrz::lockLatch = lock;
}

void Pace::set() const {
  qrz::cpuLevel = level;
  qrz::cacheBytes = isStreamed ? 0 : INT64_MAX;
}

void arm(const FaultPlan& plan) {
  armed = plan;
  made = 0;
  random = plan.seed;
}

PluginCall::PluginCall(bool canFail) {
  isCalling = true;
  canAnyFail = canFail && (armed.first != 0 || armed.rate != 0 || armed.lacking != 0);
  hasAnyFailed = false;
}

PluginCall::~PluginCall() { isCalling = canAnyFail = false; }

bool PluginCall::hasFailed() { return hasAnyFailed; }

}  // namespace fuzz

// The linker lets everything in the fuzzer call these instead (--wrap).
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C" void* __real_calloc(size_t count, size_t size);

extern "C" void* __wrap_calloc(size_t count, size_t size) {
  constexpr uint64_t kMostBytes = 1 << 20;
  if (fuzz::isCalling && uint64_t{count} * size > kMostBytes) return nullptr;
  return fuzz::pass("calloc") ? __real_calloc(count, size) : nullptr;
}
// NOLINTEND(bugprone-reserved-identifier)
