// Text inside HTML, SVG, Markdown and commands of a shell.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The text with its markup characters as entities, fit for contents and attributes.
std::string escaped(std::string_view text);

/// The text with a backslash before each of the characters.
std::string backslashed(std::string_view text, std::string_view characters);

/// The text as one word of a shell.
std::string shellQuoted(std::string_view text);

}  // namespace host
