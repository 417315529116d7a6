// Which of several members of a name a call means.
#pragma once

#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/registry.h"

namespace host {

/// Members of one name, in the order of their registration. They belong to
/// whoever registered them.
using Overloads = std::vector<const Member*>;

Overloads membersNamed(const std::vector<Member>& members, std::string_view name);

/// The member whose declaration fits the arguments best: exact types before
/// converted ones, then fewer default values, then the first. Null if none fits.
const Member* bestOverload(const Overloads& overloads, std::span<const Value> arguments);

/// One value per parameter, converted, with default values filled in. The
/// arguments must fit the declaration.
std::vector<Value> fittedArguments(const Declaration& declaration,
                                   std::span<const Value> arguments);

/// "InvertQRZ does not take (String); use InvertQRZ as picture or …".
std::string misfitMessage(const Overloads& overloads, std::span<const Value> arguments);

}  // namespace host
