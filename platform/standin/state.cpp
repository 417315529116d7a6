#include "platform/standin/state.h"

namespace standin {

Counts held{};

namespace {
CallHook callHook = nullptr;
}  // namespace

Counts counts() { return held; }

void setCallHook(CallHook hook) { callHook = hook; }

bool called(const char* call) { return callHook == nullptr || callHook(call); }

}  // namespace standin
