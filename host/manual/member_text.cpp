#include "host/manual/member_text.h"

#include <algorithm>

namespace host {
namespace {

constexpr size_t kColumns = 80;
constexpr size_t kIndent = 10;

/// The columns that UTF-8 text takes; it holds no wide characters.
size_t widthOf(std::string_view text) {
  return static_cast<size_t>(
      std::ranges::count_if(text, [](char c) { return (static_cast<uint8_t>(c) & 0xC0) != 0x80; }));
}

/// Words in lines that start at a column; the first line goes on behind `start`.
std::string wrapped(std::string start, size_t column, std::string_view text) {
  start.resize(start.size() + column - std::min(column, widthOf(start)), ' ');
  size_t used = widthOf(start);
  std::string result = std::move(start);
  bool isFirst = true;
  while (!text.empty()) {
    const std::string_view word = text.substr(0, text.find(' '));
    text.remove_prefix(std::min(word.size() + 1, text.size()));
    const size_t width = widthOf(word);
    if (!isFirst && used + 1 + width > kColumns) {
      result += '\n' + std::string(column, ' ');
      used = column;
    } else if (!isFirst) {
      result += ' ';
      ++used;
    }
    result += word;
    used += width;
    isFirst = false;
  }
  return result + '\n';
}

std::string labelled(const std::string& label, size_t column, std::string_view text) {
  return wrapped(std::string(kIndent, ' ') + label, column, text);
}

}  // namespace

std::string summaryText(const Description& description) {
  return labelled("", kIndent, description.summary);
}

std::string memberText(const Description& description) {
  std::string text = summaryText(description);
  size_t longest = std::string_view("example").size();
  for (const Argument& argument : description.arguments) {
    longest = std::max(longest, argument.name.size());
  }
  const size_t column = kIndent + longest + 2;
  for (const Argument& argument : description.arguments) {
    text += labelled(std::string(argument.name), column,
                     std::string(argument.meaning) + ": " + std::string(argument.range));
  }
  text += labelled("failure", column, description.failure);
  const Example& example = description.examples.front();
  text += labelled("example", column, "");
  text.pop_back();
  for (const char c : example.program) {
    text += c;
    if (c == '\n') text += std::string(column, ' ');
  }
  return text + '\n' + std::string(kIndent, ' ') + "try it" +
         std::string(column - kIndent - std::string_view("try it").size(), ' ') +
         commandOf(example) + '\n';
}

}  // namespace host
