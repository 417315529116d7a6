#include "host/script/source.h"

#include <string_view>
#include <utility>

#include "host/core/printable.h"
#include "host/script/script.h"

namespace host {
namespace {

bool isLineEnd(char c) { return c == '\n' || c == '\r'; }

bool continuesCharacter(char c) { return (static_cast<unsigned char>(c) & 0xC0u) == 0x80u; }

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

/// One blank per character, so that the caret stands right below; tabs stay.
std::string indentation(std::string_view before) {
  std::string result;
  for (const char c : before) {
    if (!continuesCharacter(c)) result += c == '\t' ? '\t' : ' ';
  }
  return result;
}

/// More than this of a line, on either side of the place, hides rather than shows it.
constexpr size_t kShown = 100;
constexpr std::string_view kLeftOut = "...";

/// What messages show of a line.
struct Excerpt {
  std::string line;
  std::string before;  ///< as much of it as stands before the place
};

/// The line starts there, and the text ends with it.
Excerpt excerptAround(std::string_view text, size_t start, size_t position) {
  Excerpt excerpt;
  size_t first = start;
  if (position - start > kShown) {
    first = position - kShown;
    while (continuesCharacter(text[first])) ++first;
    excerpt.before = kLeftOut;
  }
  size_t last = text.size();
  if (last - position > kShown) {
    last = position + kShown;
    while (continuesCharacter(text[last])) --last;
  }
  excerpt.before += text.substr(first, position - first);
  excerpt.line = excerpt.before + std::string(text.substr(position, last - position));
  if (last < text.size()) excerpt.line += kLeftOut;
  return excerpt;
}

/// A message may quote a name of any length.
std::string shortened(const std::string& message) {
  constexpr size_t kLongest = 500;
  if (message.size() <= kLongest) return message;
  size_t end = kLongest;
  while (continuesCharacter(message[end])) --end;
  return message.substr(0, end) + std::string(kLeftOut);
}

}  // namespace

SourceText::SourceText(std::string text, std::string fileName)
    : text_(std::move(text)), fileName_(std::move(fileName)) {}

void SourceText::fail(size_t position, const std::string& message) const {
  const std::string_view text = text_;
  const size_t start = lineStart(text, position);
  const size_t column = indentation(text.substr(start, position - start)).size() + 1;
  const std::string place =
      fileName_ + ":" + std::to_string(lineNumber(text, start)) + ":" + std::to_string(column);
  const Excerpt excerpt = excerptAround(text.substr(0, lineEnd(text, start)), start, position);
  throw ScriptError(printable(place + ": " + shortened(message)) + "\n" + printable(excerpt.line) +
                    "\n" + indentation(excerpt.before) + "^");
}

}  // namespace host
