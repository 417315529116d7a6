#include "host/cli/batch.h"

#include <algorithm>
#include <iostream>
#include <streambuf>
#include <utility>

#include "host/cli/worker_pool.h"
#include "host/core/interrupt.h"
#include "host/core/printable.h"
#include "host/core/runtime.h"

namespace host {
namespace {

/// Wipes the progress before anything is printed.
class AboveProgress : public std::streambuf {
 public:
  AboveProgress(std::ostream& stream, Progress& progress) : stream_(stream), progress_(progress) {}

 protected:
  std::streamsize xsputn(const char* data, std::streamsize size) override {
    progress_.wipe();
    return stream_.write(data, size) ? size : 0;
  }
  int_type overflow(int_type character) override {
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
  }

 private:
  std::ostream& stream_;
  Progress& progress_;
};

std::string firstLine(const std::string& text) { return text.substr(0, text.find('\n')); }

std::string countOf(size_t pictures) {
  return std::to_string(pictures) + (pictures == 1 ? " picture" : " pictures");
}

}  // namespace

Batch::Batch(std::vector<PictureTask> tasks, PictureWork work, std::ostream& printed,
             std::string destination)
    : tasks_(std::move(tasks)),
      work_(std::move(work)),
      printed_(printed),
      destination_(std::move(destination)),
      progress_(tasks_.size()) {}

int Batch::run(size_t jobs) {
  const size_t processes = std::min(jobs, tasks_.size());
  std::string stop;
  try {
    if (processes > 1) {
      runInPool(processes);
    } else {
      runHere();
    }
  } catch (const Interrupted&) {
    if (tasks_.size() == 1) throw;
    stop = "qrz: interrupted";
    worst_ = kFailed;
  } catch (const NoProcess& lack) {
    stop = printable(std::string("qrz: ") + lack.what());
    worst_ = kFailed;
  }
  report(stop);
  return worst_;
}

void Batch::runHere() {
  AboveProgress buffer(printed_, progress_);
  std::ostream printed(&buffer);
  for (size_t task = 0; task < tasks_.size() && worst_ != kWrongUsage; ++task) {
    finish(task, work_.perform(tasks_[task], isTaken(task), printed));
    checkInterrupt();
  }
}

void Batch::runInPool(size_t jobs) {
  WorkerPool pool(jobs, work_, tasks_);
  size_t next = 0;
  while (settled_ < tasks_.size()) {
    while (next < tasks_.size() && mayStart(next) && pool.start(next, isTaken(next))) {
      underWay_.insert(tasks_[next++].output);
    }
    auto [task, result] = pool.wait();
    underWay_.erase(tasks_[task].output);
    finish(task, std::move(result));
    if (worst_ == kWrongUsage) return;
  }
  for (std::string& line : pool.finish()) runtime().reportMisuse(std::move(line));
}

bool Batch::mayStart(size_t task) const {
  constexpr size_t kMostWaiting = size_t{64} << 20;
  const std::string& output = tasks_[task].output;
  return waitingBytes_ < kMostWaiting && (output.empty() || !underWay_.contains(output));
}

void Batch::finish(size_t task, TaskResult result) {
  if (result.wrote) taken_.insert(tasks_[task].output);
  progress_.advance(result.status != kDone);
  waitingBytes_ += result.printed.size();
  waiting_.emplace(task, std::move(result));
  while (worst_ != kWrongUsage && waiting_.contains(settled_)) {
    settle(waiting_.extract(settled_).mapped());
  }
}

void Batch::settle(const TaskResult& result) {
  ++settled_;
  waitingBytes_ -= result.printed.size();
  if (!result.printed.empty()) {
    progress_.wipe();
    printed_ << result.printed;
  }
  if (result.status != kDone) problems_.push_back(result.problem);
  worst_ = std::max(worst_, result.status);
}

void Batch::report(const std::string& stop) {
  if (!stop.empty()) {
    for (const auto& [task, result] : waiting_) settle(result);
  }
  progress_.wipe();
  printed_.flush();
  if (tasks_.size() == 1 && stop.empty()) {
    for (const std::string& problem : problems_) std::cerr << problem << '\n';
    return;
  }
  const std::string done = std::to_string(settled_ - problems_.size()) + " of " +
                           std::to_string(tasks_.size()) + " done";
  if (stop.empty() && problems_.empty()) {
    if (taken_.empty()) return;
    std::cerr << countOf(taken_.size()) << " written to " << printable(destination_) << '\n';
    return;
  }
  std::cerr << stop << (stop.empty() ? "" : "; ") << done;
  if (!problems_.empty()) std::cerr << ", " << problems_.size() << " failed:";
  std::cerr << '\n';
  for (const std::string& problem : problems_) std::cerr << firstLine(problem) << '\n';
}

}  // namespace host
