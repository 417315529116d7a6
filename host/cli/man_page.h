// The manual page of qrz.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace host {

/// For man(1), of everything that `app` defines.
std::string manPage(const CLI::App& app);

}  // namespace host
