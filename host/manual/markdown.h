// The manual as a Markdown document.
#pragma once

#include <string>
#include <vector>

#include "host/manual/shown.h"

namespace host {

/// The document, whose pictures are beside it.
std::string manualMarkdown(const std::vector<ShownGroup>& groups);

}  // namespace host
