// The operators of the host's language.
#pragma once

#include <array>
#include <string_view>

namespace host {

enum class UnaryOperator { Negate, Not };

enum class BinaryOperator {
  Add,
  Subtract,
  Multiply,
  Divide,
  IntegerDivide,
  Modulo,
  Power,
  Concatenate,
  Less,
  LessOrEqual,
  Greater,
  GreaterOrEqual,
  Equal,
  NotEqual,
  Is,
  And,
  Or,
  Xor,
};

struct BinaryOperatorEntry {
  std::string_view text;
  BinaryOperator operation;
  int precedence;  ///< higher binds tighter; equal ones group from the left
};

/// Negation and Not bind less tightly than '^' and more than '*'.
inline constexpr int prefixPrecedence = 7;

inline constexpr std::array binaryOperators = {
    BinaryOperatorEntry{"Or", BinaryOperator::Or, 1},
    BinaryOperatorEntry{"Xor", BinaryOperator::Xor, 1},
    BinaryOperatorEntry{"And", BinaryOperator::And, 2},
    BinaryOperatorEntry{"=", BinaryOperator::Equal, 3},
    BinaryOperatorEntry{"<>", BinaryOperator::NotEqual, 3},
    BinaryOperatorEntry{"<", BinaryOperator::Less, 3},
    BinaryOperatorEntry{"<=", BinaryOperator::LessOrEqual, 3},
    BinaryOperatorEntry{">", BinaryOperator::Greater, 3},
    BinaryOperatorEntry{">=", BinaryOperator::GreaterOrEqual, 3},
    BinaryOperatorEntry{"&", BinaryOperator::Concatenate, 4},
    BinaryOperatorEntry{"+", BinaryOperator::Add, 5},
    BinaryOperatorEntry{"-", BinaryOperator::Subtract, 5},
    BinaryOperatorEntry{"*", BinaryOperator::Multiply, 6},
    BinaryOperatorEntry{"/", BinaryOperator::Divide, 6},
    BinaryOperatorEntry{"\\", BinaryOperator::IntegerDivide, 6},
    BinaryOperatorEntry{"Mod", BinaryOperator::Modulo, 6},
    BinaryOperatorEntry{"^", BinaryOperator::Power, 8},
    BinaryOperatorEntry{"Is", BinaryOperator::Is, 9},
};

}  // namespace host
