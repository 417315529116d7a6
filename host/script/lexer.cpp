#include "host/script/lexer.h"

#include <algorithm>
#include <array>
#include <charconv>

#include "host/core/declaration.h"

namespace host {
namespace {

using namespace std::string_view_literals;

constexpr std::array keywords = {
    "And"sv,  "As"sv,       "ByRef"sv, "ByVal"sv,  "Call"sv,  "Catch"sv,  "Continue"sv, "Dim"sv,
    "Do"sv,   "DownTo"sv,   "Else"sv,  "ElseIf"sv, "End"sv,   "Exit"sv,   "False"sv,    "Finally"sv,
    "For"sv,  "Function"sv, "If"sv,    "Is"sv,     "Loop"sv,  "Mod"sv,    "New"sv,      "Next"sv,
    "Nil"sv,  "Not"sv,      "Or"sv,    "Print"sv,  "Quit"sv,  "Return"sv, "Step"sv,     "Sub"sv,
    "Then"sv, "To"sv,       "True"sv,  "Try"sv,    "Until"sv, "Wend"sv,   "While"sv,    "Xor"sv};

bool isKeywordText(std::string_view word) {
  return std::any_of(keywords.begin(), keywords.end(),
                     [word](std::string_view keyword) { return sameName(word, keyword); });
}

bool isDigit(char c) { return c >= '0' && c <= '9'; }
bool isLetter(char c) { return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || c == '_'; }
bool isNameCharacter(char c) { return isLetter(c) || isDigit(c); }

}  // namespace

bool Token::isKeyword(std::string_view word) const {
  return kind == Kind::Keyword && sameName(text, word);
}

bool Token::isSymbol(std::string_view symbol) const {
  return kind == Kind::Symbol && text == symbol;
}

std::string Token::describe() const {
  if (kind == Kind::EndOfFile) return "end of file";
  if (kind == Kind::EndOfLine) return "end of line";
  return std::string("'").append(text).append("'");
}

Lexer::Lexer(const SourceText& source) : source_(source), text_(source.text()) {}

/// The character that many bytes ahead, or 0 past the end.
char Lexer::at(size_t offset) const {
  return position_ + offset < text_.size() ? text_[position_ + offset] : '\0';
}

bool Lexer::isLineEnd(size_t offset) const {
  return position_ + offset >= text_.size() || at(offset) == '\n' || at(offset) == '\r';
}

Token Lexer::next() {
  const size_t start = position_;
  skipBlanks();
  isAfterBlank_ = position_ > start || position_ == 0;
  Token token = scan();
  isAfterDot_ = token.isSymbol(".");
  isAfterOperand_ =
      token.kind == Token::Kind::Name || token.kind == Token::Kind::Literal || token.isSymbol(")");
  return token;
}

void Lexer::skipBlanks() {
  do {
    while (at(0) == ' ' || at(0) == '\t') ++position_;
    if (startsComment()) skipComment();
  } while (skipContinuation());
}

bool Lexer::startsComment() const {
  if (at(0) == '\'' || (at(0) == '/' && at(1) == '/')) return true;
  return sameName(text_.substr(position_, 3), "Rem") && !isNameCharacter(at(3)) && !isAfterDot_;
}

void Lexer::skipComment() {
  while (!isLineEnd(0)) ++position_;
}

void Lexer::skipLineEnd() {
  if (position_ < text_.size()) position_ += at(0) == '\r' && at(1) == '\n' ? 2 : 1;
}

/// False if no '_' continues the line here.
bool Lexer::skipContinuation() {
  if (at(0) != '_' || isNameCharacter(at(1))) return false;
  ++position_;
  while (at(0) == ' ' || at(0) == '\t') ++position_;
  if (startsComment()) skipComment();
  if (!isLineEnd(0)) source_.fail(position_, "expected end of line after '_'");
  skipLineEnd();
  return true;
}

Token Lexer::scan() {
  if (position_ == text_.size()) return finish(Token::Kind::EndOfFile, position_);
  if (isLineEnd(0)) return scanLineEnd();
  if (at(0) == ';') return finish(Token::Kind::EndOfLine, position_ + 1);
  if (isLetter(at(0))) return scanWord();
  if (at(0) == '"') return scanString();
  if (isDigit(at(0)) || (at(0) == '.' && isDigit(at(1)) && !isAfterOperand_)) return scanNumber();
  if (at(0) == '&' && mayStartPrefixedLiteral()) {
    switch (at(1)) {
      case 'h':
      case 'H':
        return scanPrefixedLiteral(16, "a 32-bit hexadecimal number");
      case 'b':
      case 'B':
        return scanPrefixedLiteral(2, "a 32-bit binary number");
      case 'o':
      case 'O':
        return scanPrefixedLiteral(8, "a 32-bit octal number");
      case 'c':
      case 'C':
        return scanPrefixedLiteral(16, "six hexadecimal digits");
      default:
        break;
    }
  }
  return scanSymbol();
}

Token Lexer::finish(Token::Kind kind, size_t end, Value value) {
  Token token{kind, text_.substr(position_, end - position_), position_, std::move(value)};
  position_ = end;
  return token;
}

Token Lexer::scanLineEnd() {
  Token token = finish(Token::Kind::EndOfLine, position_);
  skipLineEnd();
  return token;
}

Token Lexer::scanWord() {
  size_t end = position_;
  while (end < text_.size() && isNameCharacter(text_[end])) ++end;
  const bool isKeyword = !isAfterDot_ && isKeywordText(text_.substr(position_, end - position_));
  return finish(isKeyword ? Token::Kind::Keyword : Token::Kind::Name, end);
}

Token Lexer::scanString() {
  std::string value;
  size_t end = position_ + 1;
  for (;; ++end) {
    if (end >= text_.size() || text_[end] == '\n' || text_[end] == '\r') {
      source_.fail(position_, "expected '\"' at the end of the string");
    }
    const bool isDoubled = text_.substr(end, 2) == "\"\"";
    if (text_[end] == '"' && !isDoubled) break;
    if (isDoubled) ++end;
    value += text_[end];
  }
  return finish(Token::Kind::Literal, end + 1, Value{std::move(value)});
}

Token Lexer::scanNumber() {
  const char* const begin = text_.data() + position_;
  const char* const limit = text_.data() + text_.size();
  int32_t integer = 0;
  double real = 0.0;
  const auto [integerEnd, integerError] = std::from_chars(begin, limit, integer);
  const auto [realEnd, realError] = std::from_chars(begin, limit, real);
  if (realError != std::errc{}) source_.fail(position_, "the number does not fit a Double");
  const auto end = static_cast<size_t>(realEnd - text_.data());
  // The real number also takes the dot of "5." and then is no plain integer. A
  // number beyond 32 bits is a Double, so that -2147483648 can be written.
  const bool isInteger = integerEnd == realEnd && integerError == std::errc{};
  return finish(Token::Kind::Literal, end, isInteger ? Value{integer} : Value{real});
}

/// Directly behind an operand '&' joins strings, even in a&b1.
bool Lexer::mayStartPrefixedLiteral() const { return !isAfterOperand_ || isAfterBlank_; }

Token Lexer::scanPrefixedLiteral(int base, const char* what) {
  const bool isColor = at(1) == 'c' || at(1) == 'C';
  const char* const begin = text_.data() + position_ + 2;
  const char* const limit = text_.data() + text_.size();
  uint32_t bits = 0;
  const auto [rest, error] = std::from_chars(begin, limit, bits, base);
  const auto end = static_cast<size_t>(rest - text_.data());
  const bool isWhole = end >= text_.size() || !isNameCharacter(text_[end]);
  if (error != std::errc{} || !isWhole || (isColor && rest - begin != 6)) {
    // Behind an operand this is no broken literal but '&' and a name.
    if (isAfterOperand_) return scanSymbol();
    source_.fail(position_, "expected " + std::string(what) + " after '" +
                                std::string(text_.substr(position_, 2)) + "'");
  }
  const Value value = isColor ? Value{Color{bits}} : Value{static_cast<int32_t>(bits)};
  return finish(Token::Kind::Literal, end, value);
}

Token Lexer::scanSymbol() {
  for (const std::string_view pair : {"<="sv, ">="sv, "<>"sv}) {
    if (text_.substr(position_, 2) == pair) return finish(Token::Kind::Symbol, position_ + 2);
  }
  constexpr std::string_view singles = "+-*/\\^&<>=().,";
  if (singles.find(at(0)) == std::string_view::npos)
    source_.fail(position_, "unexpected character");
  return finish(Token::Kind::Symbol, position_ + 1);
}

}  // namespace host
