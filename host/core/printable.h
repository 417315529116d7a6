// Foreign text inside messages.
#pragma once

#include <string>

namespace host {

/// The text with a question mark for each byte of control characters but tabs and of what is no
/// UTF-8, so that a message stays one line and no terminal acts on it.
std::string printable(std::string text);

}  // namespace host
