#include "host/core/interrupt.h"

#include <unistd.h>

#include <cstdlib>

namespace host {
namespace {

constexpr int kSignals[] = {SIGTERM, SIGHUP, SIGINT};

sigset_t allSignals() {
  sigset_t signals;
  sigemptyset(&signals);
  for (const int each : kSignals) sigaddset(&signals, each);
  return signals;
}

volatile sig_atomic_t noted = 0;

void onSignal(int signal) {
  noted = signal;
  for (const int each : kSignals) std::signal(each, SIG_DFL);
  alarm(1);
}

/// Ends what began to wait only after the interrupt was noted.
void onAlarm(int /*signal*/) { alarm(1); }

}  // namespace

void noteInterrupts() {
  struct sigaction action {};
  // No restart: what waits, for instance for a pipe's other end, is to give up.
  action.sa_handler = onAlarm;
  sigaction(SIGALRM, &action, nullptr);
  action.sa_handler = onSignal;
  action.sa_mask = allSignals();  // one after the other, even if they come together
  for (const int each : kSignals) {
    struct sigaction before {};
    sigaction(each, nullptr, &before);
    if (before.sa_handler != SIG_IGN) sigaction(each, &action, nullptr);
  }
}

const volatile sig_atomic_t* interruptFlag() { return &noted; }

void checkInterrupt() {
  if (isInterrupted()) throw Interrupted();
}

void endByInterrupt() {
  std::signal(noted, SIG_DFL);
  raise(noted);
  std::abort();
}

InterruptsHeld::InterruptsHeld() {
  const sigset_t signals = allSignals();
  pthread_sigmask(SIG_BLOCK, &signals, &before_);
}

InterruptsHeld::~InterruptsHeld() { pthread_sigmask(SIG_SETMASK, &before_, nullptr); }

}  // namespace host
