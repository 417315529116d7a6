// The functions that every script has.
#pragma once

#include <string>
#include <vector>

#include "host/core/registry.h"

namespace host {

/// New functions, declared like registered global methods. Rnd starts from the
/// same seed in each list. `scriptArguments`, which Argument and ArgumentCount
/// read, must outlive the list.
std::vector<Member> builtInFunctions(const std::vector<std::string>& scriptArguments);

}  // namespace host
