// Host processes that share the work: the plug-in takes one call at a time.
#pragma once

#include <sys/types.h>

#include <optional>
#include <stdexcept>
#include <string>
#include <utility>
#include <vector>

#include "host/cli/picture_task.h"

namespace host {

/// No process could be started; what() is the line for the user.
class NoProcess : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A file descriptor of its own.
class Descriptor {
 public:
  explicit Descriptor(int number) : number_(number) {}
  Descriptor(Descriptor&& other) noexcept : number_(std::exchange(other.number_, -1)) {}
  Descriptor& operator=(Descriptor&& other) noexcept {
    std::swap(number_, other.number_);
    return *this;
  }
  ~Descriptor();
  [[nodiscard]] int number() const { return number_; }

 private:
  int number_;
};

/// Copies of this process, made when there is work for them. Each takes one task at a time; one
/// that dies fails its task alone, and another takes its place.
class WorkerPool {
 public:
  /// At most so many processes. The work and the tasks, which are called by their place in the
  /// list, must outlive the pool.
  WorkerPool(size_t most, const PictureWork& work, const std::vector<PictureTask>& tasks)
      : most_(most), work_(work), tasks_(tasks) {}
  WorkerPool(const WorkerPool&) = delete;
  WorkerPool& operator=(const WorkerPool&) = delete;
  /// Ends the processes at once, but for one that is writing a file: it completes the file.
  ~WorkerPool();

  /// Hands out a task; false if that has to wait for another one to be finished. Throws NoProcess
  /// if there is none and none can be started.
  bool start(size_t task, bool isTaken);

  /// Waits for a task to be finished. Throws Interrupted.
  std::pair<size_t, TaskResult> wait();

  /// Lets the processes, none of which has a task, end by themselves; what they leave alive.
  std::vector<std::string> finish();

 private:
  struct Worker {
    pid_t process;
    Descriptor socket;
    std::optional<size_t> task;
  };

  /// Null if all have a task.
  Worker* idleWorker();
  /// Starts another process; 0, or the error.
  int add();
  [[noreturn]] void serve(int socket) const;
  [[nodiscard]] TaskResult perform(size_t task, bool isTaken) const;
  /// Removes a process that has ended; how it did.
  std::string takeOut(Worker& worker);

  size_t most_;
  const PictureWork& work_;
  const std::vector<PictureTask>& tasks_;
  std::vector<Worker> workers_;
};

}  // namespace host
