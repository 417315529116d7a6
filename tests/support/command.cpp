#include "tests/support/command.h"

#include <poll.h>
#include <pty.h>
#include <stdlib.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdio>
#include <filesystem>
#include <fstream>
#include <stdexcept>

namespace host {
namespace {

int statusOf(int waited) {
  return WIFSIGNALED(waited) ? 128 + WTERMSIG(waited) : WEXITSTATUS(waited);
}

/// Whether the process is qrz, no more the shell, and has a handler for interrupts.
bool notesInterrupts(int process) {
  std::ifstream file("/proc/" + std::to_string(process) + "/status");
  std::string line;
  if (!std::getline(file, line) || line != "Name:\tqrz") return false;
  while (std::getline(file, line)) {
    if (!line.starts_with("SigCgt:")) continue;
    return (std::stoull(line.substr(7), nullptr, 16) >> (SIGINT - 1) & 1) != 0;
  }
  return false;
}

}  // namespace

Outcome runCommand(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1 </dev/null").c_str(), "r");
  Outcome outcome{-1, {}};
  std::array<char, 4096> buffer{};
  while (const size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    outcome.output.append(buffer.data(), count);
  }
  const int status = pclose(pipe);
  outcome.status = statusOf(status);
  return outcome;
}

Outcome qrz(const std::string& arguments) {
  return runCommand(QRZ_BUILD_FOLDER "/qrz " + arguments);
}

Session::Session(const std::string& folder, const std::string& arguments) {
  const std::string command = "cd " + folder + " && exec " QRZ_BUILD_FOLDER "/qrz " + arguments;
  process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
  if (process_ < 0) throw std::runtime_error("there is no terminal; is /dev/pts mounted?");
  if (process_ == 0) {
    execl("/bin/sh", "sh", "-c", command.c_str(), nullptr);
    _exit(127);
  }
  tcgetattr(terminal_, &before_);
}

Session::~Session() {
  if (process_ > 0) {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
  }
  close(terminal_);
}

bool Session::read() {
  pollfd ready{terminal_, POLLIN, 0};
  if (poll(&ready, 1, 1) == 0) return true;
  std::array<char, 4096> buffer{};
  const ssize_t count = ::read(terminal_, buffer.data(), buffer.size());
  if (count <= 0) return false;
  output_.append(buffer.data(), static_cast<size_t>(count));
  return true;
}

void Session::waitFor(const std::string& text, int moments) {
  while (output_.find(text) == std::string::npos || !notesInterrupts(process_)) {
    if (!read()) return;
  }
  for (int i = 0; i < moments; ++i) read();
}

void Session::send(int signal) const { kill(process_, signal); }

Outcome Session::end() {
  while (read()) {
  }
  int status = 0;
  waitpid(process_, &status, 0);
  process_ = -1;
  for (size_t at = output_.find("\r\n"); at != std::string::npos; at = output_.find("\r\n")) {
    output_.erase(at, 1);
  }
  return {statusOf(status), output_};
}

bool Session::isTerminalAsBefore() const {
  termios now{};
  tcgetattr(terminal_, &now);
  return now.c_lflag == before_.c_lflag && now.c_iflag == before_.c_iflag &&
         now.c_oflag == before_.c_oflag;
}

void FolderTest::SetUp() {
  std::string name = (std::filesystem::temp_directory_path() / "qrz-XXXXXX").string();
  ASSERT_NE(mkdtemp(name.data()), nullptr);
  folder = name;
}

void FolderTest::TearDown() { std::filesystem::remove_all(folder); }

void FolderTest::write(const std::string& name, const std::string& text) const {
  std::ofstream(path(name), std::ios::binary) << text;
}

}  // namespace host
