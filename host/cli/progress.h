// A progress bar for work that takes long.
#pragma once

#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdio>
#include <string>

#include "host/cli/terminal.h"

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
    fputs(("\r" + line(static_cast<size_t>(terminalSize(STDERR_FILENO).width))).c_str(), stderr);
    shown_ = true;
  }
  /// Makes room for another line.
  void wipe() {
    if (shown_) fputs("\r\033[K", stderr);
    shown_ = false;
  }

 private:
  /// What fits into so many columns: "[####....] 3 of 6, 1 failed". A longer line could not be
  /// wiped.
  [[nodiscard]] std::string line(size_t columns) const {
    constexpr size_t kWidest = 40;
    std::string counts = std::to_string(done_) + " of " + std::to_string(total_);
    if (failed_ > 0) counts += ", " + std::to_string(failed_) + " failed";
    const size_t taken = counts.size() + 4;  // brackets, a blank, and the cursor behind the line
    if (columns <= taken) return counts.substr(0, columns - 1);
    const size_t width = std::min(kWidest, columns - taken);
    const size_t filled = width * done_ / std::max<size_t>(total_, 1);
    return "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] " + counts;
  }

  using Clock = std::chrono::steady_clock;
  size_t total_;
  size_t done_ = 0;
  size_t failed_ = 0;
  bool shown_ = false;
  bool isTerminal_ = isatty(STDERR_FILENO) == 1;
  Clock::time_point start_ = Clock::now();
};

}  // namespace host
