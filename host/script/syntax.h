// The syntax tree that the parser builds and the machine runs.
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string>
#include <utility>
#include <variant>
#include <vector>

#include "host/core/declaration.h"
#include "host/core/value.h"
#include "host/script/operators.h"
#include "host/script/source.h"

namespace host {

struct Expression;
using ExpressionPtr = std::unique_ptr<Expression>;

struct Literal {
  Value value;
};

/// `name`, `name(arguments)`, `object.name` or `object.name(arguments)`: only
/// the running program knows whether that is a variable, an element or a call.
struct Access {
  ExpressionPtr object;  ///< null for a free name
  std::string name;
  std::vector<ExpressionPtr> arguments;
};

struct New {
  std::string className;
  std::vector<ExpressionPtr> arguments;
};

struct Unary {
  UnaryOperator operation;
  ExpressionPtr operand;
};

struct Binary {
  BinaryOperator operation;
  ExpressionPtr left;
  ExpressionPtr right;
};

struct Expression {
  size_t position;  ///< of the name or operator that messages point at
  std::variant<Literal, Access, New, Unary, Binary> node;
};

struct Statement;
using Block = std::vector<Statement>;

/// One name of a Dim; `Dim a, b As Integer` is two of them.
struct Dimension {
  size_t position;
  std::string name;
  ExpressionPtr lastIndex;  ///< of an array; null for a plain variable
};

/// Names that share a type and an initial value.
struct DimensionGroup {
  std::vector<Dimension> names;
  Type type;
  size_t typePosition;
  ExpressionPtr initial;  ///< null for the type's own
};

struct Dim {
  std::vector<DimensionGroup> groups;
};

struct Assignment {
  ExpressionPtr target;  ///< an Access
  ExpressionPtr value;
};

struct CallStatement {
  ExpressionPtr call;  ///< an Access
};

struct IfBranch {
  ExpressionPtr condition;
  Block body;
};

struct If {
  std::vector<IfBranch> branches;
  Block otherwise;
};

enum class LoopKind { For, While, Do };

struct ForLoop {
  size_t variablePosition;
  std::string variable;
  std::optional<Type> type;  ///< of a variable that the loop declares
  ExpressionPtr first;
  ExpressionPtr last;
  ExpressionPtr step;  ///< null for 1
  bool isDownwards;
  Block body;
};

/// While … Wend, or Do … Loop with a condition at either end or none.
struct ConditionLoop {
  LoopKind kind;
  ExpressionPtr whileTrue;
  ExpressionPtr untilBefore;
  ExpressionPtr untilAfter;
  Block body;
};

/// Exit or Continue of the innermost loop of that kind.
struct LoopJump {
  bool isExit;
  LoopKind loop;
};

struct Return {
  ExpressionPtr value;  ///< null without a result
};

struct Quit {};

struct CatchClause {
  std::string variable;  ///< empty if none
  Type type;
  size_t typePosition;
  Block body;
};

struct Try {
  Block body;
  std::vector<CatchClause> catches;
  Block finally;
};

struct Print {
  std::vector<ExpressionPtr> values;
};

struct Statement {
  size_t position;
  std::variant<Dim, Assignment, CallStatement, If, ForLoop, ConditionLoop, LoopJump, Return, Quit,
               Try, Print>
      node;
};

/// A Function or Sub of the program.
struct Function {
  Declaration declaration;
  Block body;
};

struct Program {
  SourceText source;
  std::vector<Function> functions;
  Block body;
  ExpressionPtr value;  ///< its last line, if the program has a value; else null
};

}  // namespace host
