// The manual: every registered member explained, with pictures of what it does.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/manual/shown.h"

namespace host {

struct ManualPicture {
  std::string file;  ///< as in ShownPicture
  std::vector<uint8_t> bytes;
};

struct Manual {
  std::vector<ShownGroup> groups;
  std::vector<ManualPicture> pictures;
};

/// Runs all examples of the described members that are registered. One that fails throws
/// ScriptError.
Manual makeManual();

}  // namespace host
