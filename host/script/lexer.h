// Splits source text into words, literals and symbols.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

#include "host/core/value.h"
#include "host/script/source.h"

namespace host {

struct Token {
  enum class Kind { EndOfFile, EndOfLine, Name, Keyword, Literal, Symbol };
  Kind kind = Kind::EndOfFile;
  std::string_view text;  ///< points into the source text
  size_t position = 0;    ///< of its first byte in the source text
  Value value;            ///< of a literal

  [[nodiscard]] bool isKeyword(std::string_view word) const;
  [[nodiscard]] bool isSymbol(std::string_view symbol) const;
  /// For messages: "end of line", "'Then'".
  [[nodiscard]] std::string describe() const;
};

/// Comments and continued line ends are skipped. A line ends with LF, CR or
/// CR LF, and so do statements with ';', so that a program fits into one line of a shell. The
/// source must outlive the lexer and its tokens.
class Lexer {
 public:
  explicit Lexer(const SourceText& source);

  /// The next token; at the end of the text EndOfFile, again and again. Throws
  /// ScriptError for text that is no token.
  Token next();

 private:
  [[nodiscard]] char at(size_t offset) const;
  [[nodiscard]] bool isLineEnd(size_t offset) const;
  [[nodiscard]] bool startsComment() const;
  void skipBlanks();
  void skipComment();
  void skipLineEnd();
  bool skipContinuation();
  Token scan();
  Token finish(Token::Kind kind, size_t end, Value value = {});
  Token scanLineEnd();
  Token scanWord();
  Token scanString();
  Token scanNumber();
  [[nodiscard]] bool mayStartPrefixedLiteral() const;
  Token scanPrefixedLiteral(int base, const char* what);
  Token scanSymbol();

  const SourceText& source_;
  std::string_view text_;
  size_t position_ = 0;
  bool isAfterOperand_ = false;
  bool isAfterBlank_ = false;
  bool isAfterDot_ = false;
};

}  // namespace host
