#include "host/core/printable.h"

namespace host {

std::string printable(std::string text) {
  char before = 0;
  for (char& letter : text) {
    const auto code = static_cast<unsigned char>(letter);
    // In UTF-8 there are more of them, behind this byte.
    const bool isLong = before == '\xC2' && code >= 0x80 && code < 0xA0;
    before = letter;
    if (isLong || (code < ' ' && letter != '\t') || code == 0x7F) letter = '?';
  }
  return text;
}

}  // namespace host
