#include "tests/support/command.h"

#include <stdlib.h>
#include <sys/wait.h>

#include <array>
#include <cstdio>
#include <filesystem>
#include <fstream>

namespace host {

Outcome runCommand(const std::string& command) {
  FILE* pipe = popen((command + " 2>&1 </dev/null").c_str(), "r");
  Outcome outcome{-1, {}};
  std::array<char, 4096> buffer{};
  while (const size_t count = fread(buffer.data(), 1, buffer.size(), pipe)) {
    outcome.output.append(buffer.data(), count);
  }
  const int status = pclose(pipe);
  if (WIFEXITED(status)) outcome.status = WEXITSTATUS(status);
  return outcome;
}

Outcome qrz(const std::string& arguments) {
  return runCommand(QRZ_BUILD_FOLDER "/qrz " + arguments);
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
