// Programs from anywhere, and expressions, which are texts of one line: run with the
// built-in classes and the plug-in's members, in little memory, for a moment, and
// without files. QRZ_FUZZ_PICTURES=bitmap makes new pictures bitmaps.

#include <sys/time.h>

#include <algorithm>
#include <csignal>
#include <ostream>
#include <string>

#include "fuzz/support/checks.h"
#include "fuzz/support/memory_limit.h"
#include "fuzz/support/plugin.h"
#include "fuzz/support/text_mutator.h"
#include "host/core/exception.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/script/script.h"

namespace {

using fuzz::expect;
using Arguments = std::span<host::Value>;

constexpr size_t kMemory = size_t{8} << 20;
constexpr suseconds_t kMicroseconds = 10'000;

volatile sig_atomic_t isLate = 0;

/// While it lives, the flag is set as soon as the time is up. The fuzzer itself
/// uses the clock on the wall, this one is the process's own.
class TimeLimit {
 public:
  TimeLimit() {
    isLate = 0;
    start(kMicroseconds);
  }
  TimeLimit(const TimeLimit&) = delete;
  TimeLimit& operator=(const TimeLimit&) = delete;
  ~TimeLimit() { start(0); }

 private:
  static void start(suseconds_t microseconds) {
    const itimerval once{{0, 0}, {0, microseconds}};
    setitimer(ITIMER_VIRTUAL, &once, nullptr);
  }
};

// ---- What a script must not do here

using Call = std::function<host::Value(host::Object*, Arguments)>;

/// Only the built-in pictures are opened; one without a size is small.
Call openingSamples(const Call& open) {
  return [open](host::Object* self, Arguments arguments) {
    auto& path = std::get<std::string>(arguments[0]);
    if (!path.starts_with("sample:")) host::raise("IOException", "There are no files.");
    if (path.find('@') == std::string::npos) path += "@9x5";
    return open(self, arguments);
  };
}

host::Value refuse(host::Object* /*self*/, Arguments /*arguments*/) {
  host::raise("IOException", "There are no files.");
}

void refuseFiles() {
  int32_t refused = 0;
  for (host::Class& type : host::runtime().registry.classes()) {
    for (auto* members : {&type.members, &type.sharedMembers}) {
      for (host::Member& member : *members) {
        const auto& parameters = member.declaration.parameters;
        if (parameters.empty() || parameters[0].name != "path") continue;
        const bool opensPicture = type.name == "Picture" && members == &type.sharedMembers;
        member.call = opensPicture ? openingSamples(member.call) : refuse;
        ++refused;
      }
    }
  }
  expect(refused == 6);
}

bool isWorld(int32_t handle) {
  return std::ranges::any_of(host::Object::living(), [handle](const host::Object* object) {
    const auto* picture = dynamic_cast<const host::Picture*>(object);
    if (picture == nullptr || picture->store().type() != qrz::kGWorld) return false;
    // The address of the store's data is all that is asked for.
    auto& store = const_cast<host::PixelStore&>(picture->store());
    return reinterpret_cast<int32_t>(store.data()) == handle;
  });
}

/// An address that is none is the program's own fault.
void refuseWildAddresses() {
  auto& globals = host::runtime().registry.globals();
  const auto member = std::ranges::find_if(globals, [](const host::Member& global) {
    return global.declaration.name == "BuildPictureWithGWorldHandleQRZ";
  });
  expect(member != globals.end());
  member->call = [build = member->call](host::Object* self, Arguments arguments) {
    auto& handle = std::get<int32_t>(arguments[0]);
    if (!isWorld(handle)) handle = 0;
    return build(self, arguments);
  };
}

// ---- Running

void runScript(const std::string& text) {
  std::ostream nowhere(nullptr);
  host::Interpreter interpreter(host::runtime().registry, nowhere);
  interpreter.setInterruptFlag(&isLate);
  interpreter.setArguments({"sample:edges", "out.png"});
  auto self = host::Picture::create(host::runtime().storageOfOpenedPictures(), 9, 5);
  interpreter.setVariable("self", host::objectValue(self));
  const bool isExpression = text.find_first_of("\r\n") == std::string::npos;
  if (isExpression) {
    interpreter.evaluate(text, "fuzz");
  } else {
    interpreter.run(host::Script::parse(text, "fuzz"));
  }
}

void runWithinLimits(const std::string& text) {
  const fuzz::MemoryLimit memory(kMemory);
  const TimeLimit time;
  try {
    runScript(text);
  } catch (const host::ScriptError& error) {
    expect(std::string_view(error.what()).starts_with("fuzz:"));
  }
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  static_cast<void>(std::signal(SIGVTALRM, [](int) { isLate = 1; }));
  fuzz::startPlugin();
  refuseFiles();
  refuseWildAddresses();
  return 0;
}

extern "C" size_t LLVMFuzzerCustomMutator(uint8_t* bytes, size_t size, size_t most, unsigned seed) {
  return fuzz::mutateText(bytes, size, most, seed);
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  runWithinLimits({reinterpret_cast<const char*>(bytes), size});
  expect(host::runtime().findLeaks().empty());
  return 0;
}
