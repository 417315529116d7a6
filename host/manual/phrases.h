// What many descriptions say alike.
#pragma once

#include "host/manual/description.h"

namespace host {

inline constexpr std::string_view kNoNewPicture =
    "Nil if the picture cannot be read or there is no memory for the new one.";
inline constexpr std::string_view kCannotFail = "Cannot fail.";
inline constexpr std::string_view kAnyNumber =
    "any number; results lose their fractions and stop at 0 and 255";
inline constexpr std::string_view kAnyColor = "any colour";
inline constexpr std::string_view kAnyPicture = "a picture";

/// Of the forms that work on a part of a picture.
inline std::vector<Argument> rectangleArguments() {
  return {
      {"left", "first column", "any; what lies beside the picture is ignored"},
      {"top", "first row", "any; what lies above or below the picture is ignored"},
      {"width", "columns, counted from left", "from 0 on; negative: as many as the picture has"},
      {"height", "rows, counted from top", "from 0 on; negative: as many as the picture has"},
  };
}

}  // namespace host
