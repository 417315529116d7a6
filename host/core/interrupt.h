// Signals that ask the process to end: Ctrl-C, `kill`, a terminal that closes.
#pragma once

#include <csignal>

namespace host {

/// Thrown where work stops since the process was asked to end.
struct Interrupted {};

/// From now on the first such signal is only noted; a second one ends the process at once.
/// Signals that are ignored, as of a background job, stay so.
void noteInterrupts();

/// The signal that was noted, or 0.
const volatile sig_atomic_t* interruptFlag();

inline bool isInterrupted() { return *interruptFlag() != 0; }

/// Throws Interrupted if such a signal was noted.
void checkInterrupt();

/// Ends the process by the signal that was noted, so that a shell that runs it stops, too.
[[noreturn]] void endByInterrupt();

/// While it lives such signals wait.
class InterruptsHeld {
 public:
  InterruptsHeld();
  InterruptsHeld(const InterruptsHeld&) = delete;
  InterruptsHeld& operator=(const InterruptsHeld&) = delete;
  ~InterruptsHeld();

 private:
  sigset_t before_{};
};

}  // namespace host
