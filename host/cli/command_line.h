// What can be said on the command line of qrz. Parsing, help, completion and the manual page all
// come from the definitions here.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <vector>

#include "host/cli/commands.h"

namespace host {

/// What the exit status says.
struct ExitStatus {
  const char* value;
  const char* meaning;
};

constexpr ExitStatus kExitStatuses[] = {
    {"0", "done"},
    {"1", "failed"},
    {"2", "wrong usage"},
    {"128 + n", "ended by signal n (130 by Ctrl-C)"},
};

struct CommandLine {
  std::string plugin;  ///< at first the build of the plug-in beside this program
  bool check = false;
  std::string script, member, folder;
  std::string shell;  ///< for completion: bash or zsh
  std::vector<std::string> arguments;
  ApplyOptions apply;
  ViewOptions view;
  BenchOptions bench;

  CommandLine();
};

/// Makes `app` parse into `line`, which it refers to from now on. The type name of an option says
/// what may follow it: FILE, FOLDER, PROGRAM (a file, usually *.rbs), PICTURE (a file or a
/// built-in picture), MEMBER, anything else in capitals, or all that is possible, such as
/// gworld|context|bitmap. In footers, indented lines are examples.
void defineCommandLine(CLI::App& app, CommandLine& line);

}  // namespace host
