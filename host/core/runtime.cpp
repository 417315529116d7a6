#include "host/core/runtime.h"

#include <utility>

#include "host/core/picture.h"
#include "host/core/string_record.h"
#include "platform/standin/standin.h"

namespace host {

Runtime& runtime() {
  // Never destroyed: objects that die at exit still report to it.
  static auto* instance = new Runtime;
  return *instance;
}

void Runtime::deliverPendingException() {
  if (!pending_) return;
  throw RaisedException{std::exchange(pending_, nullptr)};
}

void Runtime::setCallHook(CallHook hook) {
  callHook_ = hook;
  standin::setCallHook(hook);
}

std::vector<std::string> Runtime::findLeaks() const {
  std::vector<std::string> lines = misuses_;
  const auto report = [&lines](int32_t count, const char* what) {
    if (count != 0) lines.push_back(std::to_string(count) + " " + what);
  };
  for (const Object* object : Object::living()) {
    lines.push_back("still alive: " + object->describe() + ", " +
                    std::to_string(object->references()) + " references");
    if (const auto* picture = dynamic_cast<const Picture*>(object)) {
      report(picture->locks(), "description locks still held on it");
    }
  }
  const standin::Counts counts = standin::counts();
  report(livingStrings(), "strings still alive");
  report(counts.pixelLocks, "pixel maps still locked");
  report(counts.handleLocks, "handles still locked");
  report(counts.handles, "handles still allocated");
  report(counts.regions, "regions still allocated");
  report(counts.worlds, "GWorlds still allocated");
  report(counts.contexts, "bitmap contexts still allocated");
  report(counts.recordings, "PICT recordings still open");
  return lines;
}

}  // namespace host
