// Entry points of the parser, and its dealings with tokens.
#include "host/script/parser.h"

#include <utility>

namespace host {
namespace {

/// Where the first token of the last line stands that has any.
size_t startOfLastLine(const SourceText& source) {
  Lexer lexer(source);
  size_t start = 0;
  bool isNewLine = true;
  for (Token token = lexer.next(); token.kind != Token::Kind::EndOfFile; token = lexer.next()) {
    const bool isLineEnd = token.kind == Token::Kind::EndOfLine;
    if (isNewLine && !isLineEnd) start = token.position;
    isNewLine = isLineEnd;
  }
  return start;
}

}  // namespace

std::shared_ptr<const Program> parseProgram(SourceText source) {
  auto program = std::make_shared<Program>(Program{std::move(source), {}, {}, nullptr});
  Parser(program->source).parseProgram(*program);
  return program;
}

std::shared_ptr<const Program> parseProgramWithValue(SourceText source) {
  auto program = std::make_shared<Program>(Program{std::move(source), {}, {}, nullptr});
  Parser(program->source).parseProgramWithValue(*program);
  return program;
}

void Parser::parseProgram(Program& program) {
  parseTopLevel(program, program.source.text().size());
}

void Parser::parseProgramWithValue(Program& program) {
  parseTopLevel(program, startOfLastLine(program.source));
  program.value = parseExpression();
  while (token_.kind == Token::Kind::EndOfLine) advance();
  if (token_.kind != Token::Kind::EndOfFile) failExpecting("the end of the expression");
}

/// Statements and functions that begin before `end`, a place in the source.
void Parser::parseTopLevel(Program& program, size_t end) {
  while (token_.kind != Token::Kind::EndOfFile) {
    if (token_.kind == Token::Kind::EndOfLine) {
      advance();
    } else if (token_.position >= end) {
      return;
    } else if (atKeyword("Function") || atKeyword("Sub")) {
      program.functions.push_back(parseFunction());
    } else if (atBlockEnd()) {
      source_.fail(token_.position, token_.describe() + " without a beginning");
    } else {
      program.body.push_back(parseStatement());
      expectLineEnd();
    }
  }
}

void Parser::Nesting::deepen() {
  ++levels_;
  if (++parser_.nesting_ <= maximumNesting) return;
  parser_.source_.fail(parser_.token_.position, "nested more than " +
                                                    std::to_string(maximumNesting) +
                                                    " levels deep; split it into simpler steps");
}

// ---- Tokens

void Parser::advance() {
  endOfLastToken_ = token_.position + token_.text.size();
  token_ = lexer_.next();
}

Token Parser::take() {
  Token token = token_;
  advance();
  return token;
}

bool Parser::takeKeyword(std::string_view word) {
  if (!atKeyword(word)) return false;
  advance();
  return true;
}

bool Parser::takeSymbol(std::string_view symbol) {
  if (!atSymbol(symbol)) return false;
  advance();
  return true;
}

bool Parser::atLineEnd() const {
  return token_.kind == Token::Kind::EndOfLine || token_.kind == Token::Kind::EndOfFile;
}

void Parser::failExpecting(const std::string& what) const {
  source_.fail(token_.position, "expected " + what + " but found " + token_.describe());
}

void Parser::expectKeyword(std::string_view word) {
  if (!takeKeyword(word)) failExpecting("'" + std::string(word) + "'");
}

void Parser::expectSymbol(std::string_view symbol) {
  if (!takeSymbol(symbol)) failExpecting("'" + std::string(symbol) + "'");
}

void Parser::expectLineEnd() {
  if (!atLineEnd()) failExpecting("end of line");
  advance();
}

void Parser::expectEnd(std::string_view word) {
  const std::string both = "'End " + std::string(word) + "'";
  if (!atKeyword("End")) failExpecting(both);
  advance();
  if (!takeKeyword(word)) failExpecting(both);
}

std::string Parser::expectName(const char* what) {
  if (token_.kind != Token::Kind::Name) failExpecting(what);
  return std::string(take().text);
}

}  // namespace host
