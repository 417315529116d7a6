// The size of a terminal.
#pragma once

#include <sys/ioctl.h>

#include "host/files/picture_size.h"

namespace host {

/// In characters; 80 by 24 where it is not known.
inline PictureSize terminalSize(int descriptor) {
  winsize size{};
  const bool isKnown = ioctl(descriptor, TIOCGWINSZ, &size) == 0;
  return {isKnown && size.ws_col > 0 ? size.ws_col : 80,
          isKnown && size.ws_row > 0 ? size.ws_row : 24};
}

}  // namespace host
