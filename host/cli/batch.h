// Many pictures, one after the other or several at once.
#pragma once

#include <map>
#include <ostream>
#include <set>
#include <string>
#include <vector>

#include "host/cli/picture_task.h"
#include "host/cli/progress.h"

namespace host {

/// Performs tasks and goes on after one that failed, but not after wrong usage. What is printed and
/// said is in the order of the tasks, whichever is finished first.
class Batch {
 public:
  /// `printed` gets what the expression prints; `destination` is what messages say of the outputs.
  Batch(std::vector<PictureTask> tasks, PictureWork work, std::ostream& printed,
        std::string destination);

  /// In so many host processes; one is this process. Says what failed and, of several tasks, how
  /// many were done, even when interrupted; a single task throws Interrupted. The exit status.
  int run(size_t jobs);

 private:
  void runHere();
  void runInPool(size_t jobs);
  /// False while another task may write the same output, or too much waits to be printed.
  [[nodiscard]] bool mayStart(size_t task) const;
  [[nodiscard]] bool isTaken(size_t task) const { return taken_.contains(tasks_[task].output); }
  /// What has to happen at once; the rest happens when it is the task's turn.
  void finish(size_t task, TaskResult result);
  void settle(const TaskResult& result);
  void report(const std::string& stop);

  std::vector<PictureTask> tasks_;
  PictureWork work_;
  std::ostream& printed_;
  std::string destination_;
  Progress progress_;
  std::set<std::string> taken_;           ///< outputs that were written
  std::set<std::string> underWay_;        ///< outputs that may be about to be
  std::map<size_t, TaskResult> waiting_;  ///< finished before an earlier task
  size_t waitingBytes_ = 0;               ///< of what these printed
  size_t settled_ = 0;
  std::vector<std::string> problems_;
  int worst_ = kDone;
};

}  // namespace host
