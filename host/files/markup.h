// Text inside HTML and SVG.
#pragma once

#include <string>
#include <string_view>

namespace host {

/// The text with its markup characters as entities, fit for contents and attributes.
std::string escaped(std::string_view text);

}  // namespace host
