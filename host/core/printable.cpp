#include "host/core/printable.h"

namespace host {

std::string printable(std::string text) {
  for (size_t i = 0; i < text.size(); ++i) {
    const auto code = static_cast<unsigned char>(text[i]);
    // In UTF-8 there are more of them, of two bytes.
    if (code >= 0x80 && code < 0xA0 && i > 0 && text[i - 1] == '\xC2') {
      text[i - 1] = text[i] = '?';
    }
    if ((code < ' ' && code != '\t') || code == 0x7F) text[i] = '?';
  }
  return text;
}

}  // namespace host
