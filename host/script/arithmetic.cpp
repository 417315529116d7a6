#include "host/script/arithmetic.h"

#include <cmath>

#include "host/core/exception.h"
#include "host/script/conversion.h"

namespace host {
namespace {

using Result = std::optional<Value>;

// Unsigned arithmetic wraps around; signed overflow would be undefined.
int32_t wrapped(uint32_t bits) { return static_cast<int32_t>(bits); }
uint32_t bitsOf(int32_t number) { return static_cast<uint32_t>(number); }

bool canBeObject(const Value& value) { return isNil(value) || objectOf(value) != nullptr; }

template <typename T>
bool compare(BinaryOperator operation, const T& left, const T& right) {
  switch (operation) {
    case BinaryOperator::Less:
      return left < right;
    case BinaryOperator::LessOrEqual:
      return left <= right;
    case BinaryOperator::Greater:
      return left > right;
    case BinaryOperator::GreaterOrEqual:
      return left >= right;
    case BinaryOperator::Equal:
      return left == right;
    default:
      return left != right;
  }
}

bool isEquality(BinaryOperator operation) {
  return operation == BinaryOperator::Equal || operation == BinaryOperator::NotEqual;
}

Result compareValues(BinaryOperator operation, const Value& left, const Value& right) {
  const auto leftNumber = numberOf(left);
  const auto rightNumber = numberOf(right);
  if (leftNumber && rightNumber) return Value{compare(operation, *leftNumber, *rightNumber)};
  const auto* leftText = std::get_if<std::string>(&left);
  const auto* rightText = std::get_if<std::string>(&right);
  if (leftText && rightText) return Value{compare(operation, *leftText, *rightText)};
  if (!isEquality(operation)) return std::nullopt;
  const bool wantsEqual = operation == BinaryOperator::Equal;
  if (canBeObject(left) && canBeObject(right)) {
    return Value{(objectOf(left) == objectOf(right)) == wantsEqual};
  }
  if (left.index() != right.index()) return std::nullopt;
  const auto* leftColor = std::get_if<Color>(&left);
  const bool equal = leftColor ? *leftColor == std::get<Color>(right)
                               : std::get<bool>(left) == std::get<bool>(right);
  return Value{equal == wantsEqual};
}

Result integerArithmetic(BinaryOperator operation, int32_t left, int32_t right) {
  switch (operation) {
    case BinaryOperator::Add:
      return Value{wrapped(bitsOf(left) + bitsOf(right))};
    case BinaryOperator::Subtract:
      return Value{wrapped(bitsOf(left) - bitsOf(right))};
    default:
      return Value{wrapped(bitsOf(left) * bitsOf(right))};
  }
}

Result realArithmetic(BinaryOperator operation, double left, double right) {
  switch (operation) {
    case BinaryOperator::Add:
      return Value{left + right};
    case BinaryOperator::Subtract:
      return Value{left - right};
    case BinaryOperator::Multiply:
      return Value{left * right};
    default:
      return Value{std::pow(left, right)};
  }
}

Result integerDivision(BinaryOperator operation, int32_t left, int32_t right) {
  if (right == 0) raise("DivisionByZeroException", "division by zero");
  const bool isQuotient = operation == BinaryOperator::IntegerDivide;
  // Dividing the least integer by -1 overflows, which the processor traps.
  if (right == -1) return Value{isQuotient ? wrapped(0u - bitsOf(left)) : 0};
  return Value{isQuotient ? left / right : left % right};
}

Result arithmetic(BinaryOperator operation, const Value& left, const Value& right) {
  const auto* leftText = std::get_if<std::string>(&left);
  const auto* rightText = std::get_if<std::string>(&right);
  if (leftText && rightText && operation == BinaryOperator::Add) {
    return Value{*leftText + *rightText};
  }
  const auto leftNumber = numberOf(left);
  const auto rightNumber = numberOf(right);
  if (!leftNumber || !rightNumber) return std::nullopt;
  const auto* leftInteger = std::get_if<int32_t>(&left);
  const auto* rightInteger = std::get_if<int32_t>(&right);
  if (operation == BinaryOperator::Divide) return Value{*leftNumber / *rightNumber};
  if (leftInteger && rightInteger && operation != BinaryOperator::Power) {
    return integerArithmetic(operation, *leftInteger, *rightInteger);
  }
  return realArithmetic(operation, *leftNumber, *rightNumber);
}

template <typename T>
T combine(BinaryOperator operation, T left, T right) {
  switch (operation) {
    case BinaryOperator::And:
      return static_cast<T>(left & right);
    case BinaryOperator::Or:
      return static_cast<T>(left | right);
    default:
      return static_cast<T>(left ^ right);
  }
}

Result logic(BinaryOperator operation, const Value& left, const Value& right) {
  if (left.index() != right.index()) return std::nullopt;
  if (const auto* truth = std::get_if<bool>(&left)) {
    return Value{combine(operation, *truth, std::get<bool>(right))};
  }
  if (const auto* integer = std::get_if<int32_t>(&left)) {
    return Value{combine(operation, *integer, std::get<int32_t>(right))};
  }
  return std::nullopt;
}

Result sameObject(const Value& left, const Value& right) {
  if (!canBeObject(left) || !canBeObject(right)) return std::nullopt;
  return Value{objectOf(left) == objectOf(right)};
}

Result concatenation(const Value& left, const Value& right) {
  if (canBeObject(left) || canBeObject(right)) return std::nullopt;
  return Value{textOf(left) + textOf(right)};
}

Result negated(const Value& operand) {
  if (const auto* integer = std::get_if<int32_t>(&operand)) {
    return Value{wrapped(0u - bitsOf(*integer))};
  }
  if (const auto* real = std::get_if<double>(&operand)) return Value{-*real};
  return std::nullopt;
}

}  // namespace

std::optional<Value> applyUnary(UnaryOperator operation, const Value& operand) {
  if (operation == UnaryOperator::Negate) return negated(operand);
  if (const auto* truth = std::get_if<bool>(&operand)) return Value{!*truth};
  if (const auto* integer = std::get_if<int32_t>(&operand)) return Value{~*integer};
  return std::nullopt;
}

std::optional<Value> applyBinary(BinaryOperator operation, const Value& left, const Value& right) {
  switch (operation) {
    case BinaryOperator::Add:
    case BinaryOperator::Subtract:
    case BinaryOperator::Multiply:
    case BinaryOperator::Divide:
    case BinaryOperator::Power:
      return arithmetic(operation, left, right);
    case BinaryOperator::IntegerDivide:
    case BinaryOperator::Modulo: {
      const auto dividend = numberOf(left);
      const auto divisor = numberOf(right);
      if (!dividend || !divisor) return std::nullopt;
      return integerDivision(operation, truncated(*dividend), truncated(*divisor));
    }
    case BinaryOperator::Concatenate:
      return concatenation(left, right);
    case BinaryOperator::Is:
      return sameObject(left, right);
    case BinaryOperator::And:
    case BinaryOperator::Or:
    case BinaryOperator::Xor:
      return logic(operation, left, right);
    default:
      return compareValues(operation, left, right);
  }
}

}  // namespace host
