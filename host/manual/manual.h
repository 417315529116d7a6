// The gallery: every registered member before and after.
#pragma once

#include <string>

namespace host {

/// Runs the recipe of every registered member and returns the page. A recipe
/// whose program fails throws ScriptError; members without a recipe throw
/// std::logic_error, which names them.
std::string makeGalleryPage();

}  // namespace host
