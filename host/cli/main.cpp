// qrz: uses the plug-in from a terminal.

#include <fcntl.h>
#include <unistd.h>

#include <csignal>
#include <cstdio>
#include <exception>
#include <iostream>

#include "host/cli/command_line.h"
#include "host/core/exception.h"
#include "host/core/interrupt.h"
#include "host/core/printable.h"
#include "host/core/runtime.h"
#include "host/loader/load_plugin.h"

namespace host {
namespace {

/// Files that are opened must not take the places of the standard streams. What is read there is
/// empty, and writing fails.
void occupyStandardStreams() {
  for (int stream = STDIN_FILENO; stream <= STDERR_FILENO; ++stream) {
    if (fcntl(stream, F_GETFD) == -1) static_cast<void>(open("/dev/null", O_RDONLY));
  }
}

void prepareProcess() {
  occupyStandardStreams();
  std::signal(SIGPIPE, SIG_DFL);  // quietly, whatever the parent process does about it
  std::signal(SIGCHLD, SIG_DFL);  // so that child processes can be waited for
  std::signal(SIGXFSZ, SIG_IGN);  // too large a file is like a full disk
  noteInterrupts();
}

int runCommand(const CLI::App& app, const CommandLine& line) {
  if (app.got_subcommand("completion")) return printCompletion(app, line.shell);
  if (app.got_subcommand("man")) return printManPage(app);
  if (app.got_subcommand("view")) return viewPictures(line.view);
  loadPlugin(line.plugin);
  if (app.got_subcommand("apply")) return applyExpression(line.apply);
  if (app.got_subcommand("run")) return runScript(line.script, line.arguments);
  if (app.got_subcommand("members")) return listMembers(line.member);
  if (app.got_subcommand("bench")) return runBenchmark(line.bench);
  if (app.got_subcommand("manual")) return makeManualFolder(line.folder);
  return makeGallery(line.folder);
}

/// Reports what is still alive or locked; true if something is.
bool reportLeaks(bool check) {
  const std::vector<std::string> lines = runtime().findLeaks();
  for (const std::string& line : lines) complain((check ? "error: " : "warning: ") + line);
  return !lines.empty();
}

/// What parsing ends with, a command or a text such as the help.
int parseAndRun(CLI::App& app, const CommandLine& line, int argc, char** argv) {
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  }
  addBuiltInClasses(runtime().registry);
  return runCommand(app, line);
}

int run(int argc, char** argv) {
  CommandLine line;
  CLI::App app;
  defineCommandLine(app, line);
  int status = parseAndRun(app, line, argc, argv);
  const bool printed = std::cout.flush() && fflush(stdout) == 0 && ferror(stdout) == 0;
  if (!printed && status == kDone && !isInterrupted()) {
    complain("standard output cannot be written");
    status = kFailed;
  }
  const bool leaks = reportLeaks(line.check);
  return leaks && line.check && status == kDone ? kFailed : status;
}

/// The same, whatever is thrown.
int runGuarded(int argc, char** argv) {
  try {
    return run(argc, argv);
  } catch (const Interrupted&) {
    complain("qrz: interrupted");
  } catch (const RaisedException& raised) {
    complain("qrz: " + messageOf(raised));
  } catch (const std::bad_alloc&) {
    complain("qrz: not enough memory");
  } catch (const ScriptError& error) {
    complain(error);
  } catch (const std::exception& error) {
    complain(std::string("qrz: ") + error.what());
  }
  return kFailed;
}

}  // namespace

void complain(const std::string& line) { std::cerr << printable(line) << '\n'; }

void complain(const ScriptError& error) { std::cerr << error.what() << '\n'; }

}  // namespace host

int main(int argc, char** argv) {
  host::prepareProcess();
  const int status = host::runGuarded(argc, argv);
  if (host::isInterrupted()) {
    std::cout.flush();
    host::endByInterrupt();
  }
  return status;
}
