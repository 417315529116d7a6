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

/// Runs all examples of the members that are registered. An example that fails throws ScriptError;
/// a member without a description throws std::logic_error, which names it.
Manual makeManual();

}  // namespace host
