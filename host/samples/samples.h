// Sample pictures drawn by our own code, so that every filter can be shown without any file.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

#include "host/files/image.h"

namespace host {

struct Sample {
  std::string_view name;   // one lower-case word, for command lines and scripts
  std::string_view title;  // a few words, for people
  /// Draws the sample at any size from 1 x 1; the same size always gives the same picture. Throws
  /// std::invalid_argument if a side is below 1, std::bad_alloc if memory runs out.
  Image (*draw)(int32_t width, int32_t height);
};

/// "landscape", "gradients", "colors", "greys", "edges" and "alpha", in this order. Only "alpha"
/// has an alpha channel.
std::span<const Sample> samples();

}  // namespace host
