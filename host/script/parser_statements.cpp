// The parser's statements and functions.
#include <algorithm>
#include <array>
#include <utility>

#include "host/script/parser.h"

namespace host {
namespace {

const char* keywordOf(LoopKind kind) {
  switch (kind) {
    case LoopKind::For:
      return "For";
    case LoopKind::While:
      return "While";
    case LoopKind::Do:
      break;
  }
  return "Do";
}

}  // namespace

bool Parser::atBlockEnd() const {
  constexpr std::array words = {"End",  "Else",  "ElseIf",  "Next",     "Wend",
                                "Loop", "Catch", "Finally", "Function", "Sub"};
  return token_.kind == Token::Kind::EndOfFile ||
         std::any_of(words.begin(), words.end(),
                     [this](const char* word) { return atKeyword(word); });
}

/// Statements up to a word that ends a block; whoever began it expects that word.
Block Parser::parseBlock() {
  Block block;
  expectLineEnd();
  for (;;) {
    while (token_.kind == Token::Kind::EndOfLine) advance();
    if (atBlockEnd()) return block;
    block.push_back(parseStatement());
    expectLineEnd();
  }
}

Statement Parser::parseStatement() {
  Nesting nesting(*this);
  nesting.deepen();
  if (token_.kind == Token::Kind::Name) return parseAssignmentOrCall();
  if (atKeyword("Dim")) return parseDim();
  if (atKeyword("If")) return parseIf();
  if (atKeyword("For")) return parseFor();
  if (atKeyword("While")) return parseWhile();
  if (atKeyword("Do")) return parseDo();
  if (atKeyword("Exit") || atKeyword("Continue")) return parseLoopJump();
  if (atKeyword("Return")) return parseReturn();
  if (atKeyword("Quit")) return Statement{take().position, Quit{}};
  if (atKeyword("Try")) return parseTry();
  if (atKeyword("Print")) return parsePrint();
  if (atKeyword("Call")) return parseCall();
  failExpecting("a statement");
}

Statement Parser::parseDim() {
  Statement statement{take().position, Dim{}};
  auto& node = std::get<Dim>(statement.node);
  do {
    node.groups.push_back(parseDimensionGroup());
  } while (takeSymbol(","));
  return statement;
}

DimensionGroup Parser::parseDimensionGroup() {
  DimensionGroup group{};
  do {
    group.names.push_back(parseDimension());
  } while (takeSymbol(","));
  expectKeyword("As");
  parseInitial(group);
  const bool hasArray =
      std::any_of(group.names.begin(), group.names.end(),
                  [](const Dimension& name) { return name.lastIndex != nullptr; });
  if (hasArray && group.initial) {
    source_.fail(group.typePosition, "an array can't have an initial value");
  }
  return group;
}

Dimension Parser::parseDimension() {
  const size_t position = token_.position;
  Dimension dimension{position, expectName("a variable name"), nullptr};
  if (!takeSymbol("(")) return dimension;
  dimension.lastIndex = parseExpression();
  expectSymbol(")");
  return dimension;
}

void Parser::parseInitial(DimensionGroup& group) {
  if (!atKeyword("New")) {
    group.typePosition = token_.position;
    group.type = parseType();
    if (takeSymbol("=")) group.initial = parseExpression();
    return;
  }
  group.initial = parseNew();
  group.typePosition = group.initial->position;
  group.type = typeNamed(std::get<New>(group.initial->node).className);
}

Type Parser::parseType() { return typeNamed(expectName("a type")); }

Statement Parser::parseIf() {
  Statement statement{take().position, If{}};
  auto& node = std::get<If>(statement.node);
  ExpressionPtr condition = parseExpression();
  expectKeyword("Then");
  if (!atLineEnd()) {
    node.branches.push_back(IfBranch{std::move(condition), {}});
    parseInlineIf(node);
    return statement;
  }
  node.branches.push_back(parseBranch(std::move(condition)));
  while (takeKeyword("ElseIf")) {
    condition = parseExpression();
    expectKeyword("Then");
    node.branches.push_back(parseBranch(std::move(condition)));
  }
  if (takeKeyword("Else")) node.otherwise = parseBlock();
  expectEnd("If");
  return statement;
}

void Parser::parseInlineIf(If& node) {
  node.branches.back().body.push_back(parseStatement());
  if (takeKeyword("Else")) node.otherwise.push_back(parseStatement());
}

IfBranch Parser::parseBranch(ExpressionPtr condition) {
  return IfBranch{std::move(condition), parseBlock()};
}

Statement Parser::parseFor() {
  Statement statement{take().position, ForLoop{}};
  auto& node = std::get<ForLoop>(statement.node);
  node.variablePosition = token_.position;
  node.variable = expectName("a variable name");
  if (takeKeyword("As")) node.type = parseType();
  expectSymbol("=");
  node.first = parseExpression();
  node.isDownwards = takeKeyword("DownTo");
  if (!node.isDownwards && !takeKeyword("To")) failExpecting("'To' or 'DownTo'");
  node.last = parseExpression();
  if (takeKeyword("Step")) node.step = parseExpression();
  node.body = parseLoopBody(LoopKind::For);
  expectKeyword("Next");
  if (atLineEnd()) return statement;
  if (!sameName(token_.text, node.variable)) failExpecting("'" + node.variable + "'");
  advance();
  return statement;
}

Statement Parser::parseWhile() {
  Statement statement{take().position, ConditionLoop{}};
  auto& node = std::get<ConditionLoop>(statement.node);
  node.kind = LoopKind::While;
  node.whileTrue = parseExpression();
  node.body = parseLoopBody(LoopKind::While);
  expectKeyword("Wend");
  return statement;
}

Statement Parser::parseDo() {
  Statement statement{take().position, ConditionLoop{}};
  auto& node = std::get<ConditionLoop>(statement.node);
  node.kind = LoopKind::Do;
  if (takeKeyword("Until")) node.untilBefore = parseExpression();
  node.body = parseLoopBody(LoopKind::Do);
  expectKeyword("Loop");
  if (takeKeyword("Until")) node.untilAfter = parseExpression();
  return statement;
}

Block Parser::parseLoopBody(LoopKind kind) {
  loops_.push_back(kind);
  Block body = parseBlock();
  loops_.pop_back();
  return body;
}

Statement Parser::parseLoopJump() {
  const Token jump = take();
  return Statement{jump.position, LoopJump{jump.isKeyword("Exit"), parseJumpTarget(jump)}};
}

/// The loop kind that is named, or else that of the innermost loop.
LoopKind Parser::parseJumpTarget(const Token& jump) {
  for (const LoopKind kind : {LoopKind::For, LoopKind::While, LoopKind::Do}) {
    if (!atKeyword(keywordOf(kind))) continue;
    if (std::find(loops_.begin(), loops_.end(), kind) == loops_.end()) {
      source_.fail(token_.position, "no " + std::string(keywordOf(kind)) + " loop is around this");
    }
    advance();
    return kind;
  }
  if (loops_.empty()) source_.fail(jump.position, jump.describe() + " outside a loop");
  return loops_.back();
}

Statement Parser::parseReturn() {
  Statement statement{take().position, Return{}};
  const bool hasResult = function_ != nullptr && function_->result.has_value();
  if (hasResult && !atLineEnd() && !atKeyword("Else")) {
    std::get<Return>(statement.node).value = parseExpression();
  }
  return statement;
}

Statement Parser::parseTry() {
  Statement statement{take().position, Try{}};
  auto& node = std::get<Try>(statement.node);
  node.body = parseBlock();
  if (!atKeyword("Catch") && !atKeyword("Finally")) failExpecting("'Catch' or 'Finally'");
  while (takeKeyword("Catch")) node.catches.push_back(parseCatch());
  if (takeKeyword("Finally")) node.finally = parseBlock();
  expectEnd("Try");
  return statement;
}

CatchClause Parser::parseCatch() {
  CatchClause clause{{}, typeNamed("RuntimeException"), token_.position, {}};
  if (!atLineEnd()) {
    clause.variable = expectName("a variable name");
    if (takeKeyword("As")) {
      clause.typePosition = token_.position;
      clause.type = parseType();
      if (clause.type.kind != Type::Kind::Object) {
        source_.fail(clause.typePosition, "expected an exception class");
      }
    }
  }
  clause.body = parseBlock();
  return clause;
}

Statement Parser::parsePrint() {
  Statement statement{take().position, Print{}};
  if (!atLineEnd() && !atKeyword("Else")) std::get<Print>(statement.node).values = parseList();
  return statement;
}

Statement Parser::parseCall() {
  advance();
  const size_t position = token_.position;
  if (token_.kind != Token::Kind::Name) failExpecting("a name");
  return Statement{position, CallStatement{parseCallTarget()}};
}

Statement Parser::parseAssignmentOrCall() {
  const size_t position = token_.position;
  ExpressionPtr target = parseCallTarget();
  if (!takeSymbol("=")) return Statement{position, CallStatement{std::move(target)}};
  return Statement{position, Assignment{std::move(target), parseExpression()}};
}

/// What a statement begins with; its arguments may lack the parentheses.
ExpressionPtr Parser::parseCallTarget() {
  ExpressionPtr target = parsePostfix();
  const bool isOver = atLineEnd() || atSymbol("=") || atKeyword("Else");
  const bool hasParentheses = source_.text()[endOfLastToken_ - 1] == ')';
  if (!isOver && !hasParentheses) std::get<Access>(target->node).arguments = parseList();
  return target;
}

// ---- Functions

Function Parser::parseFunction() {
  const Token keyword = take();
  const bool isFunction = keyword.isKeyword("Function");
  Function function{parseHeading(isFunction), {}};
  function_ = &function.declaration;
  function.body = parseBlock();
  function_ = nullptr;
  expectEnd(isFunction ? "Function" : "Sub");
  expectLineEnd();
  return function;
}

/// The rest of the line is a declaration like those of registered members.
Declaration Parser::parseHeading(bool isFunction) {
  const size_t start = token_.position;
  if (token_.kind != Token::Kind::Name) failExpecting("a name");
  try {
    Declaration declaration = parseDeclaration(takeRestOfLine());
    if (declaration.result.has_value() == isFunction) return declaration;
  } catch (const DeclarationError& error) {
    source_.fail(start, error.what());
  }
  source_.fail(start, isFunction ? "a Function needs 'As' and the type of its result"
                                 : "a Sub has no result; expected 'Function'");
}

/// As it was written, but for comments and line continuations.
std::string Parser::takeRestOfLine() {
  std::string text;
  while (!atLineEnd()) {
    const bool isApart = !text.empty() && token_.position > endOfLastToken_;
    if (isApart) text += ' ';
    text += take().text;
  }
  return text;
}

}  // namespace host
