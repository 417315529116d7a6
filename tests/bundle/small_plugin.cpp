// A small plug-in with one of everything that a bundle has: code, constants, a
// table of addresses, zeros, an import of the platform and one of the C library.
// The macros give it what a bundle must not have.

#include <cstdlib>

#include "platform/platform.h"

// A pointer into an import, which no expression of the language gives.
asm(".data\n.balign 4\n.hidden intoImport\nintoImport: .long free + 4\n.text");
extern "C" __attribute__((visibility("hidden"))) char* intoImport;

namespace {

const char* const names[] = {"first", "second", "third"};
const char* const* cursor = names;
int counter;

#ifdef HIDDEN_CONSTRUCTOR
struct Counted {
  Counted() { cursor = counter == 0 ? names : nullptr; }
};
Counted counted;
#endif

#ifdef THREAD_LOCAL
thread_local int counterOfThread;
#endif

}  // namespace

extern "C" __attribute__((visibility("default"))) void REALPluginMain(
    void* (*resolver)(const char* name)) {
  for (cursor = names; counter < 3; ++counter, ++cursor) resolver(*cursor);
  if (intoImport == nullptr) return;
  Handle handle = nullptr;
  PtrToHand(names, &handle, sizeof names);
  free(malloc(static_cast<size_t>(GetHandleSize(handle))));
#ifdef THREAD_LOCAL
  ++counterOfThread;
#endif
#ifdef STRANGE_IMPORT
  exit(0);
#endif
}
