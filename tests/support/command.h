// Runs qrz as its users do.
#pragma once

#include <gtest/gtest.h>

#include <string>

namespace host {

struct Outcome {
  int status;          ///< exit status, or -1 if it was killed
  std::string output;  ///< standard output and error
};

/// Runs a command of the shell.
Outcome runCommand(const std::string& command);

/// Runs the qrz of this build with arguments as a shell splits them.
Outcome qrz(const std::string& arguments);

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
