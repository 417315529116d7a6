// Foreign text inside messages.
#pragma once

#include <string>

namespace host {

/// The text with a question mark for each control character but tabs, so that a message stays
/// one line and no terminal acts on it.
std::string printable(std::string text);

}  // namespace host
