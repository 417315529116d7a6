#include "fuzz/support/text_mutator.h"

#include <algorithm>
#include <array>
#include <cctype>
#include <random>
#include <string>
#include <string_view>
#include <vector>

extern "C" size_t LLVMFuzzerMutate(uint8_t* bytes, size_t size, size_t most);

namespace {

using Random = std::minstd_rand;
using Pieces = std::vector<std::string_view>;

bool isInWord(char c) { return std::isalnum(static_cast<unsigned char>(c)) != 0 || c == '_'; }

/// Words, and all other bytes but blanks one by one.
Pieces wordsOf(std::string_view text) {
  Pieces words;
  for (size_t start = 0, end = 0; start < text.size(); start = end) {
    while (end < text.size() && isInWord(text[end])) ++end;
    end = std::max(end, start + 1);
    if (text[start] != ' ') words.push_back(text.substr(start, end - start));
  }
  return words;
}

/// Each with its end.
Pieces linesOf(std::string_view text) {
  Pieces lines;
  for (size_t start = 0, end = 0; start < text.size(); start = end) {
    end = std::min(text.find('\n', start), text.size() - 1) + 1;
    lines.push_back(text.substr(start, end - start));
  }
  return lines;
}

template <typename List>
const auto& pick(const List& list, Random& random) {
  return list[random() % list.size()];
}

std::string replaced(std::string_view text, std::string_view part, std::string_view with) {
  const auto start = static_cast<size_t>(part.data() - text.data());
  std::string result(text.substr(0, start));
  return result.append(with).append(text.substr(start + part.size()));
}

std::string withOtherWord(std::string_view text, Random& random) {
  constexpr std::array<std::string_view, 10> kValues = {
      "0",    "-1",   "2147483647", "1e9",      "Nil",
      "True", "self", "\"\"",       "&cFF8000", "New Picture(3, 2)"};
  const Pieces words = wordsOf(text);
  const bool isValue = random() % 3 == 0;
  return replaced(text, pick(words, random), isValue ? pick(kValues, random) : pick(words, random));
}

std::string withLineAgain(std::string_view text, Random& random) {
  const Pieces lines = linesOf(text);
  return replaced(text, pick(lines, random).substr(0, 0), pick(lines, random));
}

}  // namespace

size_t fuzz::mutateText(uint8_t* bytes, size_t size, size_t most, unsigned seed) {
  Random random(seed);
  const std::string_view text(reinterpret_cast<const char*>(bytes), size);
  const auto kind = random() % 8;
  if (kind < 2 || wordsOf(text).empty()) return LLVMFuzzerMutate(bytes, size, most);
  const std::string result = kind < 6 ? withOtherWord(text, random) : withLineAgain(text, random);
  if (result.size() > most) return LLVMFuzzerMutate(bytes, size, most);
  std::ranges::copy(result, bytes);
  return result.size();
}
