// Sizes as people write them: "640x480".
#pragma once

#include <cstdint>
#include <optional>
#include <string>

namespace host {

struct PictureSize {
  int32_t width, height;  ///< pixels
  friend bool operator==(PictureSize, PictureSize) = default;
};

/// Nothing for other texts, sides of more than five digits, and sides below 1.
std::optional<PictureSize> parseSize(const std::string& text);

std::string textOf(PictureSize size);

}  // namespace host
