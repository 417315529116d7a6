// The parser's expressions.
#include <algorithm>
#include <utility>

#include "host/script/operators.h"
#include "host/script/parser.h"

namespace host {
namespace {

const BinaryOperatorEntry* operatorOf(const Token& token) {
  const auto* const found = std::find_if(
      binaryOperators.begin(), binaryOperators.end(),
      [&](const auto& entry) { return token.isSymbol(entry.text) || token.isKeyword(entry.text); });
  return found == binaryOperators.end() ? nullptr : found;
}

template <typename Node>
ExpressionPtr makeExpression(size_t position, Node node) {
  return std::make_unique<Expression>(Expression{position, std::move(node)});
}

}  // namespace

/// Operators of at least that precedence; equal ones group from the left.
ExpressionPtr Parser::parseBinary(int minimumPrecedence) {
  Nesting nesting(*this);
  nesting.deepen();
  ExpressionPtr left = parseUnary();
  for (;;) {
    const BinaryOperatorEntry* entry = operatorOf(token_);
    if (entry == nullptr || entry->precedence < minimumPrecedence) return left;
    // Every further operand puts the tree before it one level down.
    nesting.deepen();
    const size_t position = take().position;
    ExpressionPtr right = parseBinary(entry->precedence + 1);
    left = makeExpression(position, Binary{entry->operation, std::move(left), std::move(right)});
  }
}

ExpressionPtr Parser::parseUnary() {
  if (atSymbol("-")) return parsePrefix(UnaryOperator::Negate);
  if (atKeyword("Not")) return parsePrefix(UnaryOperator::Not);
  return parsePostfix();
}

ExpressionPtr Parser::parsePrefix(UnaryOperator operation) {
  const size_t position = take().position;
  return makeExpression(position, Unary{operation, parseBinary(prefixPrecedence)});
}

ExpressionPtr Parser::parsePostfix() {
  Nesting nesting(*this);
  ExpressionPtr object = parsePrimary();
  while (takeSymbol(".")) {
    nesting.deepen();
    object = parseAccess(std::move(object));
  }
  return object;
}

ExpressionPtr Parser::parsePrimary() {
  if (token_.kind == Token::Kind::Name) return parseAccess(nullptr);
  if (token_.kind == Token::Kind::Literal) return parseLiteral();
  if (atKeyword("New")) return parseNew();
  if (atKeyword("True")) return parseWordLiteral(Value{true});
  if (atKeyword("False")) return parseWordLiteral(Value{false});
  if (atKeyword("Nil")) return parseWordLiteral(Value{Nil{}});
  if (!takeSymbol("(")) failExpecting("an expression");
  ExpressionPtr inner = parseExpression();
  expectSymbol(")");
  return inner;
}

ExpressionPtr Parser::parseLiteral() {
  Token token = take();
  return makeExpression(token.position, Literal{std::move(token.value)});
}

ExpressionPtr Parser::parseWordLiteral(Value value) {
  return makeExpression(take().position, Literal{std::move(value)});
}

ExpressionPtr Parser::parseNew() {
  advance();
  const size_t position = token_.position;
  New node{expectName("a class name"), {}};
  node.arguments = parseArguments();
  return makeExpression(position, std::move(node));
}

ExpressionPtr Parser::parseAccess(ExpressionPtr object) {
  const size_t position = token_.position;
  Access node{std::move(object), expectName("a name"), {}};
  node.arguments = parseArguments();
  return makeExpression(position, std::move(node));
}

/// One or more expressions with commas between them.
std::vector<ExpressionPtr> Parser::parseList() {
  std::vector<ExpressionPtr> list;
  do {
    list.push_back(parseExpression());
  } while (takeSymbol(","));
  return list;
}

/// The arguments in parentheses; none if there are no parentheses.
std::vector<ExpressionPtr> Parser::parseArguments() {
  if (!takeSymbol("(") || takeSymbol(")")) return {};
  std::vector<ExpressionPtr> arguments = parseList();
  if (!takeSymbol(")")) failExpecting("',' or ')'");
  return arguments;
}

}  // namespace host
