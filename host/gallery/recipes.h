// How the gallery shows each registered member.
#pragma once

#include <span>
#include <string_view>

namespace host {

/// One picture of the gallery. Recipes stand in the order in which they are
/// shown; those of one group follow each other.
struct Recipe {
  std::string_view group;        ///< as users think of it
  std::string_view className;    ///< of the member; empty for global methods
  std::string_view declaration;  ///< of the member that is shown, as registered
  std::string_view sample;       ///< the built-in picture that `self` is
  /// A program that leaves what is shown in `result`: a picture or any value.
  std::string_view program;
  std::string_view note;  ///< one sentence
};

std::span<const Recipe> recipes();

}  // namespace host
