// Pictures as characters of a terminal.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "host/files/image.h"
#include "host/files/picture_size.h"

namespace host {

/// The largest size of the same shape within the limits, but not larger than it is.
PictureSize fittingSize(PictureSize size, PictureSize most);

/// The picture as it is shown: opaque pixels 0x00RRGGBB.
struct TerminalPicture {
  PictureSize size;
  std::vector<uint32_t> pixels;
};

/// Every pixel is the average of the part of the picture that it stands for, in front of a
/// chequered ground. The size is at most the picture's own. Throws Interrupted.
TerminalPicture scaledDown(const Image& image, PictureSize size);

/// Two rows of pixels, from an even one on, as a line of half blocks in 24-bit colours. Colours are
/// reset before its end.
std::string coloredLine(const TerminalPicture& picture, int32_t row);

/// The same by luminance, from a blank for black on; pixels below each other are averaged.
std::string plainLine(const TerminalPicture& picture, int32_t row);

}  // namespace host
