#include "host/core/printable.h"

#include <cstddef>
#include <string_view>

namespace host {
namespace {

bool isBetween(unsigned char byte, int least, int most) { return byte >= least && byte <= most; }

/// Whether UTF-8 allows the byte after the first one of a character; those of controls, in their
/// short form or a longer one, are not wanted.
bool isSecond(unsigned char first, unsigned char byte) {
  const int least = first == 0xC2 || first == 0xE0 ? 0xA0 : first == 0xF0 ? 0x90 : 0x80;
  const int most = first == 0xED ? 0x9F : first == 0xF4 ? 0x8F : 0xBF;
  return isBetween(byte, least, most);
}

/// How many bytes the character takes that the text starts with; 0 if it is not to be shown.
size_t shownSize(std::string_view text) {
  const auto byte = [&text](size_t i) { return static_cast<unsigned char>(text[i]); };
  const unsigned char first = byte(0);
  if (first < 0x80) return (first >= ' ' && first != 0x7F) || first == '\t' ? 1 : 0;
  if (!isBetween(first, 0xC2, 0xF4)) return 0;
  const size_t size = first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
  if (text.size() < size || !isSecond(first, byte(1))) return 0;
  for (size_t i = 2; i < size; ++i) {
    if (!isBetween(byte(i), 0x80, 0xBF)) return 0;
  }
  return size;
}

}  // namespace

std::string printable(std::string text) {
  for (size_t i = 0; i < text.size();) {
    const size_t size = shownSize(std::string_view(text).substr(i));
    if (size == 0) text[i] = '?';
    i += size == 0 ? 1 : size;
  }
  return text;
}

}  // namespace host
