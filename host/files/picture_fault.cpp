#include "host/files/picture_fault.h"

#include <algorithm>

namespace host {

ImageError imageError(std::string path, const std::string& text) {
  const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; };
  std::ranges::replace_if(path, isControl, '?');
  return ImageError(path + ": " + text);
}

}  // namespace host
