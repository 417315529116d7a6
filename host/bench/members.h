// The registered members by the names that the benchmark shows.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/core/registry.h"

namespace host {

/// A registered member. Members of the plug-in's own classes are named with their
/// class, overloads with the names of their parameters:
/// "isWhiteQRZ(left, top, width, height)", "PictureSepiaQRZ.Run".
struct NamedMember {
  std::string name;
  const Member* member;
};

/// In the order of registration; valid as long as nothing more is registered.
std::vector<NamedMember> registeredMembers();

/// A member of a registered class. Throws std::runtime_error if there is none.
const Member& memberOf(std::string_view className, std::string_view name);

}  // namespace host
