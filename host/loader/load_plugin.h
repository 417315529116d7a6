// Loads the plug-in.
#pragma once

#include <string>

namespace host {

/// Loads a build of the plug-in, an ELF image or a Mach-O bundle (its folder or
/// the file in it), and runs its entry point. Throws std::runtime_error with one
/// line that says what is wrong. The plug-in stays loaded for the life of the
/// process.
void loadPlugin(const std::string& path);

}  // namespace host
