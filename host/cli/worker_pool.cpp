#include "host/cli/worker_pool.h"

#include <poll.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <cerrno>
#include <csignal>
#include <cstdint>
#include <cstring>
#include <iostream>
#include <sstream>
#include <streambuf>

#include "host/core/interrupt.h"
#include "host/core/printable.h"
#include "host/core/runtime.h"

namespace host {
namespace {

/// What one task may print; it is kept until its turn comes.
constexpr size_t kMostPrinted = size_t{64} << 20;

// ---- Messages ------------------------------------------------------------------------------

struct Request {
  uint32_t task;
  uint32_t isTaken;
};

/// In front of a result's texts.
struct ReplyHeader {
  int32_t status;
  uint32_t wrote;
  uint32_t problemSize;
  uint32_t printedSize;
};

/// False if nobody is at the other end.
bool sendBytes(int socket, const void* data, size_t size) {
  const auto* bytes = static_cast<const char*>(data);
  while (size > 0) {
    const ssize_t count = send(socket, bytes, size, MSG_NOSIGNAL);
    if (count < 0 && errno != EINTR) return false;
    if (count > 0) {
      bytes += count;
      size -= static_cast<size_t>(count);
    }
  }
  return true;
}

/// False if the other end closes before all of it came.
bool receiveBytes(int socket, void* data, size_t size) {
  auto* bytes = static_cast<char*>(data);
  while (size > 0) {
    const ssize_t count = recv(socket, bytes, size, 0);
    if (count < 0 && errno == EINTR) {
      checkInterrupt();
      continue;
    }
    if (count <= 0) return false;
    bytes += count;
    size -= static_cast<size_t>(count);
  }
  return true;
}

bool sendResult(int socket, const TaskResult& result) {
  const ReplyHeader header{result.status, result.wrote ? 1U : 0U, result.problem.size(),
                           result.printed.size()};
  return sendBytes(socket, &header, sizeof header) &&
         sendBytes(socket, result.problem.data(), result.problem.size()) &&
         sendBytes(socket, result.printed.data(), result.printed.size());
}

std::optional<TaskResult> receiveResult(int socket) {
  ReplyHeader header{};
  if (!receiveBytes(socket, &header, sizeof header)) return std::nullopt;
  TaskResult result{header.status, header.wrote != 0, std::string(header.problemSize, '\0'),
                    std::string(header.printedSize, '\0')};
  if (!receiveBytes(socket, result.problem.data(), result.problem.size()) ||
      !receiveBytes(socket, result.printed.data(), result.printed.size())) {
    return std::nullopt;
  }
  return result;
}

// ---- In the other process ------------------------------------------------------------------

/// Keeps what is printed, up to a limit.
class PrintedText : public std::streambuf {
 public:
  std::string text;
  bool isFull = false;

 protected:
  std::streamsize xsputn(const char* data, std::streamsize size) override {
    isFull = isFull || static_cast<size_t>(size) > kMostPrinted - text.size();
    if (isFull) return 0;
    text.append(data, static_cast<size_t>(size));
    return size;
  }
  int_type overflow(int_type character) override {
    const char byte = traits_type::to_char_type(character);
    return xsputn(&byte, 1) == 1 ? character : traits_type::eof();
  }
};

/// Only the first process decides what an interrupt means, and ends this one by SIGTERM; so does
/// the system once the first process is no more.
void followParent(pid_t parent) {
  for (const int signal : {SIGINT, SIGHUP}) std::signal(signal, SIG_IGN);
  std::signal(SIGTERM, SIG_DFL);
  prctl(PR_SET_PDEATHSIG, SIGTERM);
  if (getppid() != parent) _exit(kFailed);
}

/// The child follows its parent before it hears of any signal.
pid_t forkFollower() {
  const pid_t parent = getpid();
  const InterruptsHeld held;
  checkInterrupt();
  const pid_t process = fork();
  if (process == 0) followParent(parent);
  return process;
}

/// What this process leaves alive; what was there before it is the first one's.
std::string newLeaks(const std::vector<std::string>& before) {
  std::string lines;
  for (const std::string& line : runtime().findLeaks()) {
    if (std::ranges::count(before, line) == 0) lines += line + "\n";
  }
  return lines;
}

// ---- In the first process ------------------------------------------------------------------

int waitFor(pid_t process) {
  int status = 0;
  while (waitpid(process, &status, 0) < 0 && errno == EINTR) {
  }
  return status;
}

std::string describeEnd(int status) {
  return WIFSIGNALED(status)
             ? "the host process ended by signal " + std::to_string(WTERMSIG(status))
             : "the host process ended with status " + std::to_string(WEXITSTATUS(status));
}

}  // namespace

Descriptor::~Descriptor() {
  if (number_ >= 0) close(number_);
}

WorkerPool::~WorkerPool() {
  for (const Worker& worker : workers_) {
    kill(worker.process, SIGTERM);
    kill(worker.process, SIGCONT);  // A stopped one would never notice.
  }
  for (const Worker& worker : workers_) waitFor(worker.process);
}

bool WorkerPool::start(size_t task, bool isTaken) {
  const Request request{task, isTaken ? 1U : 0U};
  while (true) {
    Worker* worker = idleWorker();
    if (worker == nullptr) {
      if (workers_.size() >= most_) return false;
      const int error = add();
      if (error != 0 && workers_.empty()) {
        throw NoProcess(std::string("no host process can be started: ") + std::strerror(error) +
                        "; leave out --jobs");
      }
      if (error != 0) {
        most_ = workers_.size();  // So many have to do.
        return false;
      }
      worker = &workers_.back();
    }
    if (sendBytes(worker->socket.number(), &request, sizeof request)) {
      worker->task = task;
      return true;
    }
    takeOut(*worker);
  }
}

std::pair<size_t, TaskResult> WorkerPool::wait() {
  std::vector<pollfd> sockets;
  for (const Worker& worker : workers_) {
    // Those without a task are passed over.
    sockets.push_back({worker.task ? worker.socket.number() : -1, POLLIN, 0});
  }
  do {
    checkInterrupt();
  } while (poll(sockets.data(), sockets.size(), -1) < 0 && errno == EINTR);
  const auto ready = std::ranges::find_if(sockets, [](const pollfd& each) { return each.revents; });
  Worker& worker = workers_.at(static_cast<size_t>(ready - sockets.begin()));
  const size_t task = worker.task.value();
  auto result = receiveResult(worker.socket.number());
  worker.task.reset();
  if (!result) {
    result = {kFailed, false, printable(prefixOf(tasks_[task])) + takeOut(worker), {}};
  }
  return {task, std::move(*result)};
}

std::vector<std::string> WorkerPool::finish() {
  std::vector<std::string> lines;
  while (!workers_.empty()) {
    Worker& worker = workers_.back();
    shutdown(worker.socket.number(), SHUT_WR);
    const auto leaks = receiveResult(worker.socket.number());
    const std::string end = takeOut(worker);
    std::istringstream text(leaks ? leaks->problem : end);
    for (std::string line; std::getline(text, line);) lines.push_back("in a host process: " + line);
  }
  return lines;
}

WorkerPool::Worker* WorkerPool::idleWorker() {
  const auto idle = std::ranges::find_if(workers_, [](const Worker& each) { return !each.task; });
  return idle == workers_.end() ? nullptr : &*idle;
}

int WorkerPool::add() {
  int sockets[2] = {};
  if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0) return errno;
  Descriptor ours(sockets[0]);
  const Descriptor theirs(sockets[1]);
  workers_.reserve(workers_.size() + 1);
  std::cout.flush();  // or both would write it
  const pid_t process = forkFollower();
  if (process < 0) return errno;
  if (process > 0) {
    workers_.push_back({process, std::move(ours), std::nullopt});
    return 0;
  }
  // The first process's ends, so that the others notice when it closes them.
  ours = Descriptor(-1);
  workers_.clear();
  serve(theirs.number());
}

void WorkerPool::serve(int socket) const {
  try {
    const auto before = runtime().findLeaks();
    Request request{};
    while (receiveBytes(socket, &request, sizeof request)) {
      if (!sendResult(socket, perform(request.task, request.isTaken != 0))) _exit(kFailed);
    }
    sendResult(socket, {kDone, false, newLeaks(before), {}});
    _exit(kDone);
  } catch (...) {
    _exit(kFailed);
  }
}

TaskResult WorkerPool::perform(size_t task, bool isTaken) const {
  PrintedText printed;
  std::ostream stream(&printed);
  TaskResult result = work_.perform(tasks_.at(task), isTaken, stream);
  result.printed = std::move(printed.text);
  if (printed.isFull) {
    result.status = kFailed;
    result.problem = printable(prefixOf(tasks_[task])) + "more than " +
                     std::to_string(kMostPrinted >> 20) + " MB are printed; leave out --jobs";
  }
  return result;
}

std::string WorkerPool::takeOut(Worker& worker) {
  const int status = waitFor(worker.process);
  workers_.erase(workers_.begin() + (&worker - workers_.data()));
  return describeEnd(status);
}

}  // namespace host
