// A progress bar for work that takes long.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

namespace host {

/// Shows a bar on standard error once the work has taken a second, if that is a
/// terminal, and wipes it at the end.
class Progress {
 public:
  explicit Progress(size_t total) : total_(total) {}
  Progress(const Progress&) = delete;
  Progress& operator=(const Progress&) = delete;
  ~Progress() { wipe(); }

  void advance(bool failed = false) {
    ++done_;
    if (failed) ++failed_;
    if (!isTerminal_ || Clock::now() - start_ < std::chrono::seconds(1)) return;
    constexpr size_t kWidth = 40;
    const size_t filled = kWidth * done_ / std::max<size_t>(total_, 1);
    const std::string bar = std::string(filled, '#') + std::string(kWidth - filled, '.');
    fprintf(stderr, "\r[%s] %zu of %zu", bar.c_str(), done_, total_);
    if (failed_ > 0) fprintf(stderr, ", %zu failed", failed_);
    shown_ = true;
  }
  /// Makes room for another line.
  void wipe() {
    if (shown_) fputs("\r\033[K", stderr);
    shown_ = false;
  }

 private:
  using Clock = std::chrono::steady_clock;
  size_t total_;
  size_t done_ = 0;
  size_t failed_ = 0;
  bool shown_ = false;
  bool isTerminal_ = isatty(STDERR_FILENO) == 1;
  Clock::time_point start_ = Clock::now();
};

}  // namespace host
