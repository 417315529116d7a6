// From source text to syntax tree.
#pragma once

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "host/script/lexer.h"
#include "host/script/source.h"
#include "host/script/syntax.h"

namespace host {

/// Expressions and blocks may nest this deep, so that no input can exhaust the stack.
inline constexpr int maximumNesting = 200;

/// A whole program. Throws ScriptError.
std::shared_ptr<const Program> parseProgram(SourceText source);

/// A program whose last line is an expression, its value. Throws ScriptError.
std::shared_ptr<const Program> parseProgramWithValue(SourceText source);

/// What stands behind these two. A parser that has thrown is of no more use.
class Parser {
 public:
  explicit Parser(const SourceText& source) : source_(source), lexer_(source) { advance(); }

  void parseProgram(Program& program);
  void parseProgramWithValue(Program& program);

 private:
  /// Counts levels of nesting for as long as it lives.
  class Nesting {
   public:
    explicit Nesting(Parser& parser) : parser_(parser) {}
    ~Nesting() { parser_.nesting_ -= levels_; }
    Nesting(const Nesting&) = delete;
    Nesting& operator=(const Nesting&) = delete;
    void deepen();

   private:
    Parser& parser_;
    int levels_ = 0;
  };

  void parseTopLevel(Program& program, size_t end);

  // Tokens (parser.cpp).
  void advance();
  Token take();
  bool takeKeyword(std::string_view word);
  bool takeSymbol(std::string_view symbol);
  [[nodiscard]] bool atKeyword(std::string_view word) const { return token_.isKeyword(word); }
  [[nodiscard]] bool atSymbol(std::string_view symbol) const { return token_.isSymbol(symbol); }
  [[nodiscard]] bool atLineEnd() const;
  [[noreturn]] void failExpecting(const std::string& what) const;
  void expectKeyword(std::string_view word);
  void expectSymbol(std::string_view symbol);
  void expectLineEnd();
  void expectEnd(std::string_view word);
  std::string expectName(const char* what);

  // Expressions (parser_expressions.cpp).
  ExpressionPtr parseExpression() { return parseBinary(0); }
  ExpressionPtr parseBinary(int minimumPrecedence);
  ExpressionPtr parseUnary();
  ExpressionPtr parsePrefix(UnaryOperator operation);
  ExpressionPtr parsePostfix();
  ExpressionPtr parsePrimary();
  ExpressionPtr parseLiteral();
  ExpressionPtr parseWordLiteral(Value value);
  ExpressionPtr parseNew();
  ExpressionPtr parseAccess(ExpressionPtr object);
  std::vector<ExpressionPtr> parseList();
  std::vector<ExpressionPtr> parseArguments();

  // Statements (parser_statements.cpp).
  Block parseBlock();
  [[nodiscard]] bool atBlockEnd() const;
  Statement parseStatement();
  Statement parseDim();
  DimensionGroup parseDimensionGroup();
  Dimension parseDimension();
  void parseInitial(DimensionGroup& group);
  Type parseType();
  Statement parseIf();
  void parseInlineIf(If& node);
  IfBranch parseBranch(ExpressionPtr condition);
  Statement parseFor();
  Statement parseWhile();
  Statement parseDo();
  Block parseLoopBody(LoopKind kind);
  Statement parseLoopJump();
  LoopKind parseJumpTarget(const Token& jump);
  Statement parseReturn();
  Statement parseTry();
  CatchClause parseCatch();
  Statement parsePrint();
  Statement parseCall();
  Statement parseAssignmentOrCall();
  ExpressionPtr parseCallTarget();
  Function parseFunction();
  Declaration parseHeading(bool isFunction);
  std::string takeRestOfLine();

  const SourceText& source_;
  Lexer lexer_;
  Token token_;  ///< the next one, not yet taken
  size_t endOfLastToken_ = 0;
  int nesting_ = 0;
  std::vector<LoopKind> loops_;
  const Declaration* function_ = nullptr;  ///< around the current statement
};

}  // namespace host
