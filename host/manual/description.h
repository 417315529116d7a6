// How the gallery shows each registered member.
#pragma once

#include <span>
#include <string_view>

namespace host {

/// One entry of the gallery.
struct Recipe {
  std::string_view className;    ///< of the member; empty for global methods
  std::string_view declaration;  ///< of the member that is shown, as registered
  std::string_view sample;       ///< the built-in picture that `self` is, perhaps in a size of its
                                 ///< own ("greys@240x160"); empty for none
  /// A program that leaves what is shown in `result`: a picture or any value.
  std::string_view program;
  std::string_view note;  ///< one sentence
};

struct RecipeGroup {
  std::string_view title;  ///< as users think of them
  std::span<const Recipe> recipes;
};

/// In the order in which they are shown.
std::span<const RecipeGroup> recipeGroups();

}  // namespace host
