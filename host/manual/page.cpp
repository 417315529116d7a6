#include "host/manual/page.h"
namespace host {
std::string manualPage(const std::vector<ShownGroup>& groups) {
  return groups.empty() ? "" : "page";
}
}  // namespace host
