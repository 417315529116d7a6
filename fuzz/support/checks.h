// What every fuzz target says when something is wrong.
#pragma once

#include <cstdlib>

namespace fuzz {

/// Ends the process, which the fuzzer takes for a finding.
inline void expect(bool isTrue) {
  if (!isTrue) abort();
}

}  // namespace fuzz
