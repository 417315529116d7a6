// The machine's expressions.
#include <optional>
#include <utility>

#include "host/script/arithmetic.h"
#include "host/script/conversion.h"
#include "host/script/innate.h"
#include "host/script/machine.h"
#include "host/script/restorer.h"

namespace host {
namespace {

/// `true And …` and the like depend on the other side.
bool isDecided(BinaryOperator operation, const Value& left) {
  const bool* truth = std::get_if<bool>(&left);
  if (truth == nullptr) return false;
  return operation == (*truth ? BinaryOperator::Or : BinaryOperator::And);
}

std::string_view spelling(BinaryOperator operation) {
  for (const auto& entry : binaryOperators) {
    if (entry.operation == operation) return entry.text;
  }
  return "?";
}

}  // namespace

Value Machine::evaluate(const Expression& expression, Result need) {
  const Restorer depth(depth_);
  const size_t position = expression.position;
  enterLevel(position);
  if (const auto* literal = std::get_if<Literal>(&expression.node)) return literal->value;
  if (const auto* unary = std::get_if<Unary>(&expression.node)) return evaluate(position, *unary);
  if (const auto* binary = std::get_if<Binary>(&expression.node)) {
    return evaluate(position, *binary);
  }
  if (const auto* creation = std::get_if<New>(&expression.node)) {
    return evaluate(position, *creation);
  }
  const auto& access = std::get<Access>(expression.node);
  return access.object ? evaluateMember(position, access, need)
                       : evaluateFree(position, access, need);
}

Value Machine::evaluate(size_t position, const Unary& node) {
  const Value operand = evaluate(*node.operand);
  if (auto result = applyUnary(node.operation, operand)) return *std::move(result);
  const char* const name = node.operation == UnaryOperator::Not ? "Not" : "-";
  fail(position, "'" + std::string(name) + "' does not take " + typeNameOf(operand));
}

Value Machine::evaluate(size_t position, const Binary& node) {
  Value left = evaluate(*node.left);
  if (isDecided(node.operation, left)) return left;
  const Value right = evaluate(*node.right);
  callSite_ = position;
  if (auto result = applyBinary(node.operation, left, right)) return *std::move(result);
  fail(position, "'" + std::string(spelling(node.operation)) + "' does not take " +
                     typeNameOf(left) + " and " + typeNameOf(right));
}

Value Machine::evaluate(size_t position, const New& node) {
  const Class* type = registry_.findClass(node.className);
  if (type == nullptr) failUnknownClass(node.className, position, true);
  if (type->constructors.empty()) fail(position, "'New' can't create a " + type->name);
  Overloads constructors;
  for (const Member& member : type->constructors) constructors.push_back(&member);
  // A constructor's declaration need not name the class as its result.
  return call(position, constructors, nullptr, node.arguments, Result::Ignored);
}

/// A variable, an element of an array, or a function.
Value Machine::evaluateFree(size_t position, const Access& access, Result need) {
  const Variable* variable = variables_.find(access.name);
  if (variable != nullptr && variable->isArray) {
    return elementOf(access.name, position, access.arguments);
  }
  if (variable != nullptr && access.arguments.empty()) return variable->value;
  const Overloads overloads = freeOverloads(access.name);
  if (!overloads.empty()) return call(position, overloads, nullptr, access.arguments, need);
  if (variable != nullptr) fail(position, "'" + access.name + "' is no array and no function");
  if (registry_.findClass(access.name) != nullptr) {
    fail(position, "'" + access.name + "' is a class; expected '.' and a shared member after it");
  }
  failUnknownName(access.name, position);
}

Value Machine::evaluateMember(size_t position, const Access& access, Result need) {
  const Owner owner = ownerOf(position, access);
  const Overloads overloads =
      owner.members ? membersNamed(*owner.members, access.name) : Overloads{};
  if (!overloads.empty()) {
    return call(position, overloads, objectOf(owner.object), access.arguments, need);
  }
  const std::optional<Value> innate = innateMember(owner.object, access.name);
  if (!innate) failUnknownMember(owner, access.name, position);
  if (!access.arguments.empty()) fail(position, "'" + access.name + "' takes no arguments");
  return *innate;
}

Value Machine::convertedTo(const Type& type, const Value& value, size_t position,
                           const char* what) const {
  if (auto result = converted(value, type)) return *std::move(result);
  fail(position,
       std::string(what) + " must be " + type.name() + ", but this is " + typeNameOf(value));
}

void Machine::store(Variable& variable, const Value& value, size_t position) const {
  const std::string what = "'" + variable.name + "'";
  variable.value = convertedTo(variable.type, value, position, what.c_str());
}

/// Raises OutOfBoundsException.
Value& Machine::elementOf(std::string_view array, size_t position, const Expressions& arguments) {
  if (arguments.size() != 1) {
    fail(position, "the array '" + std::string(array) + "' needs one index in parentheses");
  }
  const Type integer{Type::Kind::Integer, {}};
  const Value value =
      convertedTo(integer, evaluate(*arguments.front()), arguments.front()->position, "an index");
  const int32_t index = std::get<int32_t>(value);
  Variable& variable = *variables_.find(array);
  if (index < 0 || static_cast<size_t>(index) >= variable.elements.size()) {
    raiseAt(position, "OutOfBoundsException",
            "index " + std::to_string(index) + " is outside " + variable.name);
  }
  return variable.elements[static_cast<size_t>(index)];
}

}  // namespace host
