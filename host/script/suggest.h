// "Did you mean": the nearest known name to a misspelt one.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// The number of single-character insertions, deletions, replacements and
/// swaps of neighbours between two names; case does not count.
size_t editDistance(std::string_view left, std::string_view right);

/// "; did you mean 'InvertQRZ'?", or "" if no candidate is near.
std::string suggestion(std::string_view name, const std::vector<std::string>& candidates);

}  // namespace host
