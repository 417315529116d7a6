// The definitions of a command line, read by those who describe it: completion and manual page.
#pragma once

#include <CLI/CLI.hpp>
#include <string>
#include <string_view>
#include <vector>

namespace host {

using Options = std::vector<const CLI::Option*>;

std::vector<const CLI::App*> commandsOf(const CLI::App& app);
Options optionsOf(const CLI::App& app);
Options argumentsOf(const CLI::App& app);

/// "-o" and "--output".
std::vector<std::string> namesOf(const CLI::Option& option);

/// Whether a value follows its name, and whether more may.
bool takesValue(const CLI::Option& option);
bool takesMany(const CLI::Option& option);

/// What a type name such as "gworld|context|bitmap" lists; empty for a name such as "FILE".
std::vector<std::string> choicesOf(const std::string& typeName);

/// The footer of a command itself, not that of the program, which it has when it has none.
std::string ownFooter(const CLI::App& command);

/// What blank lines separate.
std::vector<std::string> paragraphsOf(const std::string& text);
/// Paragraphs whose lines are indented hold an example; a first line that is not says what it does.
bool isExample(const std::string& paragraph);

std::vector<std::string> linesOf(const std::string& text);
std::string joined(const std::vector<std::string>& parts, std::string_view separator);

}  // namespace host
