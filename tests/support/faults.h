// Calls of the plug-in's that fail: services of the host, calls of the platform
// and its own allocations.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

namespace host {

/// A call that the plug-in can make.
struct FallibleCall {
  std::string name;
  bool canFail;
  bool isService;  ///< which a host may lack
};

/// All of them; at most 64.
const std::vector<FallibleCall>& fallibleCalls();

/// After this the plug-in's allocations count as calls ("calloc"). Once, for an ELF
/// image of the plug-in that has been loaded.
void watchAllocations();

struct Faults {
  int32_t first = 0;          ///< the first call that fails, of those that can; 0: none
  bool forGood = false;       ///< all later ones fail, too
  std::string_view lacking;   ///< a service that is not found
  bool knowsNothing = false;  ///< no service is found
};

/// While one lives, calls fail as asked for. At most one at a time.
class FailingCalls {
 public:
  explicit FailingCalls(const Faults& faults);
  FailingCalls(const FailingCalls&) = delete;
  FailingCalls& operator=(const FailingCalls&) = delete;
  ~FailingCalls();
};

/// Of the last FailingCalls: the name of the first call that failed, or empty.
std::string_view firstFailed();
/// Bit i is set: entry i of the table was looked up, and call i did fail.
uint64_t lookedUp();
uint64_t failed();

}  // namespace host
