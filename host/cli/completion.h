// Scripts that complete command lines of qrz in a shell.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace host {

// Both complete everything that `app` defines, and ask `program`, the path of a qrz, for the names
// of the members at the time of completion. That takes some ten milliseconds; names written into
// the script would be out of date with the next build of the plug-in, and would need a plug-in to
// be there when a shell starts.

std::string bashCompletion(const CLI::App& app, const std::string& program);
std::string zshCompletion(const CLI::App& app, const std::string& program);

/// What both scripts begin with: the path of the program in `_qrz_program`, and functions.
std::string completionFunctions(const std::string& program);

/// The names of the built-in pictures: "sample:landscape" and so on.
std::vector<std::string> builtInPictures();

}  // namespace host
