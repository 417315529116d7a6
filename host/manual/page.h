// The manual as one page to open in a browser: every member at work.
#pragma once

#include <string>
#include <vector>

#include "host/manual/shown.h"

namespace host {

/// One HTML document in UTF-8, which shows the picture files beside it and fetches nothing else.
/// Readers search it, move a divider between before and after, copy the lines, and choose dark or
/// light; without scripts they still see everything. All texts, which are taken for UTF-8, are
/// escaped.
std::string manualPage(const std::vector<ShownGroup>& groups);

}  // namespace host
