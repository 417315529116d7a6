#include <iostream>

#include "host/cli/commands.h"
#include "host/core/interrupt.h"
#include "host/core/runtime.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/script/script.h"

namespace host {
namespace {

constexpr size_t kLongestScript = size_t{16} << 20;

std::string readScript(const std::string& path) {
  const auto bytes = readFile(path, kLongestScript);
  return {bytes.begin(), bytes.end()};
}

}  // namespace

int runScript(const std::string& path, const std::vector<std::string>& arguments) {
  try {
    const Script script = Script::parse(readScript(path), path);
    Interpreter interpreter(runtime().registry, std::cout);
    interpreter.setInterruptFlag(interruptFlag());
    interpreter.setArguments(arguments);
    interpreter.run(script);
  } catch (const FileFault& fault) {
    checkInterrupt();  // A script that comes through a pipe may keep one waiting.
    complain(fileMessage(path, fault.what()));
    return kFailed;
  } catch (const ScriptError& error) {
    std::cout.flush();
    complain(error);
    return kFailed;
  }
  return kDone;
}

}  // namespace host
