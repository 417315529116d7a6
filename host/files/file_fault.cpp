#include "host/files/file_fault.h"

#include <algorithm>

namespace host {

std::string fileMessage(std::string path, const std::string& text) {
  const auto isControl = [](char c) { return (c >= 0 && c < ' ') || c == 0x7F; };
  std::ranges::replace_if(path, isControl, '?');
  return path + ": " + text;
}

}  // namespace host
