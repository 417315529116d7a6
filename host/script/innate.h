// Members of values that no class declares: a colour's Red, Green and Blue, and
// the Message of exceptions.
#pragma once

#include <optional>
#include <string>
#include <vector>

#include "host/core/value.h"

namespace host {

/// Nothing if the value has no such member of its own.
std::optional<Value> innateMember(const Value& owner, const std::string& name);

/// What innateMember knows for the value.
std::vector<std::string> innateNames(const Value& owner);

}  // namespace host
