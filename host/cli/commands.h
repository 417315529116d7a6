// The commands of qrz.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "host/script/script.h"

namespace CLI {
class App;
}

namespace host {

/// Exit statuses. A process that was interrupted ends by the signal, which shells show as 128
/// and the signal's number.
constexpr int kDone = 0;
constexpr int kFailed = 1;
constexpr int kWrongUsage = 2;

// Every command throws Interrupted where it stops early.

/// What `qrz apply` was asked for.
struct ApplyOptions {
  std::string expression;
  std::vector<std::string> files;  ///< "-" for standard input
  std::string output;              ///< "-" for standard output; empty for none
  size_t jobs = 1;
};

/// `qrz apply`: evaluates the expression with `self` as each picture file in turn; without files
/// once, without `self`. A picture is written to the output: a file, or a folder if it is one or if
/// there are several files. Any other value is printed. Goes on after a file that failed.
int applyExpression(const ApplyOptions& options);

/// What `qrz view` was asked for.
struct ViewOptions {
  std::vector<std::string> files;  ///< "-" for standard input
  int32_t width = 0;               ///< in characters; 0 for what fits
};

/// `qrz view`: shows pictures in the terminal, or as plain text. Goes on after a file that failed.
int viewPictures(const ViewOptions& options);

/// `qrz run`.
int runScript(const std::string& path, const std::vector<std::string>& arguments);

/// `qrz members`: what the plug-in registered; all of it, or the members and
/// classes of one name.
int listMembers(const std::string& name);

/// `qrz gallery`: writes the page index.html and its pictures into the folder, and makes the
/// folder.
int makeGallery(const std::string& folder);

/// `qrz manual`: the same, and members.md.
int makeManualFolder(const std::string& folder);

/// What `qrz bench` was asked for.
struct BenchOptions {
  std::string members;             ///< an extended regular expression; empty for all
  std::vector<std::string> sizes;  ///< "640x480"
  std::string json, plot;          ///< files to write; empty for none
};

/// `qrz bench`: measures members against a plain copy and prints a line for each.
int runBenchmark(const BenchOptions& options);

/// `qrz completion`: prints a script for "bash" or "zsh".
int printCompletion(const CLI::App& app, const std::string& shell);

/// `qrz man`: prints the manual page.
int printManPage(const CLI::App& app);

/// One line on standard error.
void complain(const std::string& line);

/// The line of a script's error, and the place.
void complain(const ScriptError& error);

}  // namespace host
