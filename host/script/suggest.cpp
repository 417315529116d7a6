#include "host/script/suggest.h"

#include <algorithm>

#include "host/core/declaration.h"

namespace host {
namespace {

bool sameCharacter(std::string_view left, size_t i, std::string_view right, size_t j) {
  return sameName(left.substr(i, 1), right.substr(j, 1));
}

/// About one slip in three characters is still the same name.
size_t tolerance(std::string_view name) { return std::max<size_t>(1, name.size() / 3); }

bool lengthsAreNear(std::string_view left, std::string_view right, size_t limit) {
  return std::max(left.size(), right.size()) - std::min(left.size(), right.size()) <= limit;
}

}  // namespace

size_t editDistance(std::string_view left, std::string_view right) {
  using Row = std::vector<size_t>;
  Row beforePrevious;
  Row previous(right.size() + 1);
  for (size_t j = 0; j < previous.size(); ++j) previous[j] = j;
  for (size_t i = 1; i <= left.size(); ++i) {
    Row row(right.size() + 1, i);
    for (size_t j = 1; j <= right.size(); ++j) {
      const bool same = sameCharacter(left, i - 1, right, j - 1);
      row[j] = std::min({row[j - 1] + 1, previous[j] + 1, previous[j - 1] + (same ? 0u : 1u)});
      const bool swapped = i > 1 && j > 1 && sameCharacter(left, i - 1, right, j - 2) &&
                           sameCharacter(left, i - 2, right, j - 1);
      if (swapped) row[j] = std::min(row[j], beforePrevious[j - 2] + 1);
    }
    beforePrevious = std::move(previous);
    previous = std::move(row);
  }
  return previous.back();
}

std::string suggestion(std::string_view name, const std::vector<std::string>& candidates) {
  const std::string* nearest = nullptr;
  size_t best = tolerance(name) + 1;
  for (const std::string& candidate : candidates) {
    // Comparing only names of like length keeps absurdly long names cheap.
    if (!lengthsAreNear(name, candidate, best)) continue;
    const size_t distance = editDistance(name, candidate);
    if (distance >= best) continue;
    best = distance;
    nearest = &candidate;
  }
  return nearest == nullptr ? "" : "; did you mean '" + *nearest + "'?";
}

}  // namespace host
