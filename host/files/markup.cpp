#include "host/files/markup.h"

namespace host {

std::string escaped(std::string_view text) {
  std::string html;
  for (const char c : text) {
    switch (c) {
      case '&':
        html += "&amp;";
        break;
      case '<':
        html += "&lt;";
        break;
      case '>':
        html += "&gt;";
        break;
      case '"':
        html += "&quot;";
        break;
      case '\'':
        html += "&#39;";
        break;
      default:
        html += c;
    }
  }
  return html;
}

std::string backslashed(std::string_view text, std::string_view characters) {
  std::string result;
  for (const char c : text) {
    if (characters.find(c) != std::string_view::npos) result += '\\';
    result += c;
  }
  return result;
}

std::string shellQuoted(std::string_view text) {
  std::string word = "'";
  for (const char c : text) {
    if (c == '\'') {
      word += "'\\''";
    } else {
      word += c;
    }
  }
  return word + "'";
}

}  // namespace host
