// qrz: uses the plug-in from a terminal.

#include <fcntl.h>
#include <unistd.h>

#include <CLI/CLI.hpp>
#include <cmath>
#include <csignal>
#include <cstdio>
#include <exception>
#include <filesystem>
#include <iostream>
#include <map>

#include "host/cli/commands.h"
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
  std::signal(SIGXFSZ, SIG_IGN);  // too large a file is like a full disk
  noteInterrupts();
}

/// The build of the plug-in beside this program.
std::string defaultPlugin() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  return (self.parent_path() / "PictureQRZ.so").string();
}

struct CommandLine {
  std::string plugin = defaultPlugin();
  bool check = false;
  std::string expression, output, script, member, folder;
  std::vector<std::string> files, arguments;
  BenchOptions bench;
};

void setPictures(const std::string& mode) {
  static const std::map<std::string, Storage> modes{
      {"gworld", Storage::GWorld}, {"context", Storage::Context}, {"bitmap", Storage::Bitmap}};
  const auto found = modes.find(mode);
  if (found == modes.end()) {
    throw CLI::ValidationError("--pictures is gworld, context or bitmap, not '" + mode + "'");
  }
  runtime().settings.newPictures = found->second;
}

void setVersion(double version) {
  if (!std::isfinite(version) || version < 0) {
    throw CLI::ValidationError("--host-version is a number such as 2010.029");
  }
  runtime().settings.version = version;
}

/// Adds the options that every command takes.
void addGeneralOptions(CLI::App& app, CommandLine& line) {
  app.add_option("--plugin", line.plugin, "Another build of the plug-in, or its bundle")
      ->envname("QRZ_PLUGIN");
  app.add_option_function<std::string>("--pictures", setPictures,
                                       "What new pictures are: gworld, context or bitmap");
  app.add_option_function<double>(
      "--host-version", setVersion,
      "The host's version as the plug-in sees it, for instance 2010.029");
  app.add_flag("--check", line.check, "Fail if objects are still alive or locked at the end");
}

/// One line for a command line that cannot be understood.
std::string usageMessage(const CLI::App* app, const CLI::Error& error) {
  std::string problem = error.what();
  if (app->get_subcommands().empty() && problem.find("subcommand") != std::string::npos) {
    problem = "name a command: apply, run, members, gallery or bench";
  }
  return printable("qrz: " + problem + "; `qrz --help` shows the usage") + "\n";
}

int runCommand(const CLI::App& app, const CommandLine& line) {
  loadPlugin(line.plugin);
  if (app.got_subcommand("apply")) return applyExpression(line.expression, line.files, line.output);
  if (app.got_subcommand("run")) return runScript(line.script, line.arguments);
  if (app.got_subcommand("members")) return listMembers(line.member);
  if (app.got_subcommand("bench")) return runBenchmark(line.bench);
  return makeGallery(line.folder);
}

void addBench(CLI::App& app, BenchOptions& options) {
  auto* bench = app.add_subcommand("bench", "Measure members against a plain copy");
  bench->add_option("--members", options.members,
                    "Only members whose names match this regular expression");
  bench->add_option("--size", options.sizes,
                    "Sizes of the pictures; 256x256 1024x1024 4096x4096 if none is given");
  bench->add_option("--json", options.json, "A file for the results");
  bench->add_option("--plot", options.plot, "A file for a plot, SVG");
}

void addCommands(CLI::App& app, CommandLine& line) {
  auto* apply = app.add_subcommand("apply", "Evaluate an expression on picture files");
  apply->add_option("expression", line.expression, "For instance \"self.InvertQRZ\"")->required();
  apply->add_option("files", line.files, "Picture files, or built-in ones: sample:landscape")
      ->required();
  apply->add_option("-o,--output", line.output, "The file, or for several files the folder");
  auto* run = app.add_subcommand("run", "Run a program in the host's language");
  run->add_option("script", line.script, "The program")->required();
  run->add_option("arguments", line.arguments, "Argument(0), Argument(1), … of the program");
  auto* members = app.add_subcommand("members", "List what the plug-in registered");
  members->add_option("name", line.member, "Only members or classes of this name");
  auto* gallery = app.add_subcommand("gallery", "Make a page with every member before and after");
  gallery->add_option("folder", line.folder, "The folder for index.html")->required();
  addBench(app, line.bench);
}

/// Reports what is still alive or locked; true if something is.
bool reportLeaks(bool check) {
  const std::vector<std::string> lines = runtime().findLeaks();
  for (const std::string& line : lines) complain((check ? "error: " : "warning: ") + line);
  return !lines.empty();
}

int run(int argc, char** argv) {
  CommandLine line;
  CLI::App app("Uses the picture plug-in from a terminal.", "qrz");
  app.require_subcommand(1);
  app.fallthrough();
  app.failure_message(usageMessage);
  app.footer(
      "Exit status: 0 done, 1 failed, 2 wrong usage, 128 + n ended by signal n (130 by Ctrl-C).");
  addGeneralOptions(app, line);
  addCommands(app, line);
  try {
    app.parse(argc, argv);
  } catch (const CLI::ParseError& error) {
    return app.exit(error) == 0 ? kDone : kWrongUsage;
  }
  addBuiltInClasses(runtime().registry);
  int status = runCommand(app, line);
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
