#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>

#include "host/cli/commands.h"
#include "host/core/runtime.h"
#include "host/script/script.h"

namespace host {

int runScript(const std::string& path, const std::vector<std::string>& arguments) {
  std::error_code unknown;
  std::ifstream file(path, std::ios::binary);
  if (!file || std::filesystem::is_directory(path, unknown)) {
    complain(path + ": cannot read this script; name a text file in the host's language");
    return kFailed;
  }
  const std::string source{std::istreambuf_iterator<char>(file), std::istreambuf_iterator<char>()};
  try {
    Interpreter interpreter(runtime().registry, std::cout);
    interpreter.setInterruptFlag(interruptFlag());
    interpreter.setArguments(arguments);
    interpreter.run(Script::parse(source, path));
  } catch (const ScriptError& error) {
    std::cout.flush();
    complain(error.what());
    return kFailed;
  }
  return kDone;
}

}  // namespace host
