#include "host/script/source.h"

#include <algorithm>
#include <string_view>
#include <utility>

#include "host/script/script.h"

namespace host {
namespace {

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0u) == 0x80u; }

bool isControl(char c) { return static_cast<unsigned char>(c) < 0x20 && c != '\t'; }

size_t lineStart(std::string_view text, size_t position) {
  while (position > 0 && !isLineEnd(text[position - 1])) --position;
  return position;
}

size_t lineEnd(std::string_view text, size_t position) {
  while (position < text.size() && !isLineEnd(text[position])) ++position;
  return position;
}

/// 1 for the first line. CR LF is one line end.
size_t lineNumber(std::string_view text, size_t position) {
  size_t number = 1;
  for (size_t i = 0; i < position; ++i) {
    const bool isHalfOfPair = text[i] == '\r' && i + 1 < text.size() && text[i + 1] == '\n';
    if (isLineEnd(text[i]) && !isHalfOfPair) ++number;
  }
  return number;
}

/// Terminals must not act on what a broken file contains, and a message is one line.
std::string printable(std::string_view text) {
  std::string result(text);
  std::replace_if(result.begin(), result.end(), isControl, '?');
  return result;
}

/// One blank per character, so that the caret stands right below; tabs stay.
std::string indentation(std::string_view before) {
  std::string result;
  for (const char c : before) {
    if (!continuesCharacter(c)) result += c == '\t' ? '\t' : ' ';
  }
  return result;
}

}  // namespace

SourceText::SourceText(std::string text, std::string fileName)
    : text_(std::move(text)), fileName_(std::move(fileName)) {}

void SourceText::fail(size_t position, const std::string& message) const {
  const std::string_view text = text_;
  const size_t start = lineStart(text, position);
  const std::string blanks = indentation(text.substr(start, position - start));
  const std::string place = fileName_ + ":" + std::to_string(lineNumber(text, start)) + ":" +
                            std::to_string(blanks.size() + 1);
  const std::string line = printable(text.substr(start, lineEnd(text, start) - start));
  throw ScriptError(place + ": " + printable(message) + "\n" + line + "\n" + blanks + "^");
}

}  // namespace host
