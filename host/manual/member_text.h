// What a terminal shows of a described member.
#pragma once

#include <string>

#include "host/manual/description.h"

namespace host {

/// What it does, each argument, the failure results and an example: indented lines of at most 80
/// columns, but for those that are to be copied.
std::string memberText(const Description& description);

/// What it does, indented likewise.
std::string summaryText(const Description& description);

}  // namespace host
