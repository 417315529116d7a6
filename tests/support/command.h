// Runs qrz as its users do.
#pragma once

#include <gtest/gtest.h>
#include <termios.h>

#include <string>

namespace host {

struct Outcome {
  int status;          ///< exit status; 128 and its number if a signal ended it
  std::string output;  ///< standard output and error
};

/// Runs a command of the shell.
Outcome runCommand(const std::string& command);

/// Runs the qrz of this build with arguments as a shell splits them.
Outcome qrz(const std::string& arguments);

/// qrz on a terminal of its own.
class Session {
 public:
  /// The arguments are as a shell splits them, in the folder.
  Session(const std::string& folder, const std::string& arguments);
  Session(const Session&) = delete;
  Session& operator=(const Session&) = delete;
  ~Session();

  /// Waits until it notes interrupts, and has shown the text; then for some more moments.
  void waitFor(const std::string& text, int moments = 50);
  void send(int signal) const;
  /// Waits for its end; the output is what the terminal got, without its carriage returns before
  /// line ends.
  Outcome end();
  /// Whether the terminal is set as it was at first.
  [[nodiscard]] bool isTerminalAsBefore() const;

 private:
  /// Adds to the output what there is within a moment; false at its end.
  bool read();

  int process_ = -1;
  int terminal_ = -1;
  termios before_{};
  std::string output_;
};

/// A test with a folder of its own, which is gone afterwards.
class FolderTest : public testing::Test {
 protected:
  void SetUp() override;
  void TearDown() override;
  /// A file in the folder.
  [[nodiscard]] std::string path(const std::string& name) const { return folder + "/" + name; }
  void write(const std::string& name, const std::string& text) const;

  std::string folder;
};

}  // namespace host
