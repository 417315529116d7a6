#include "host/files/picture_size.h"

#include <cstdio>

namespace host {

std::optional<PictureSize> parseSize(const std::string& text) {
  PictureSize size{};
  int end = 0;
  const int read = sscanf(text.c_str(), "%5dx%5d%n", &size.width, &size.height, &end);
  if (read != 2 || static_cast<size_t>(end) != text.size()) return std::nullopt;
  if (size.width < 1 || size.height < 1) return std::nullopt;
  return size;
}

std::string textOf(PictureSize size) {
  return std::to_string(size.width) + "x" + std::to_string(size.height);
}

}  // namespace host
