// The machine's assignments, calls and user functions.
#include <utility>

#include "host/core/exception.h"
#include "host/script/conversion.h"
#include "host/script/innate.h"
#include "host/script/machine.h"
#include "host/script/restorer.h"

namespace host {
namespace {

Overloads assignable(const Overloads& overloads) {
  Overloads result;
  for (const Member* member : overloads) {
    if (member->assign) result.push_back(member);
  }
  return result;
}

Overloads callable(const Overloads& overloads) {
  Overloads result;
  for (const Member* member : overloads) {
    if (member->call) result.push_back(member);
  }
  return result;
}

}  // namespace

// ---- Assignment

void Machine::assign(const Expression& target, const Value& value) {
  const auto& access = std::get<Access>(target.node);
  if (access.object) return assignMember(target.position, access, value);
  assignFree(target.position, access, value);
}

void Machine::assignFree(size_t position, const Access& access, const Value& value) {
  Variable* variable = variables_.find(access.name);
  if (variable == nullptr) {
    if (freeOverloads(access.name).empty()) failUnknownName(access.name, position);
    fail(position, "'" + access.name + "' is a function and can't be assigned");
  }
  if (variable->isArray) {
    const Type type = variable->type;
    Value& element = elementOf(access.name, position, access.arguments);
    element = convertedTo(type, value, position, "an element");
    return;
  }
  if (!access.arguments.empty()) fail(position, "'" + access.name + "' is no array");
  store(*variable, value, position);
}

void Machine::assignMember(size_t position, const Access& access, const Value& value) {
  const Owner owner = ownerOf(position, access);
  const Overloads all = owner.members ? membersNamed(*owner.members, access.name) : Overloads{};
  const Overloads overloads = assignable(all);
  if (overloads.empty()) {
    const bool isKnown = !all.empty() || innateMember(owner.object, access.name);
    if (!isKnown) failUnknownMember(owner, access.name, position);
    fail(position, "'" + access.name + "' can't be assigned");
  }
  const std::vector<Value> given = evaluateAll(access.arguments);
  const Member* member = bestOverload(overloads, given);
  if (member == nullptr) fail(position, misfitMessage(overloads, given));
  std::vector<Value> arguments = fittedArguments(member->declaration, given);
  const std::string what = "'" + member->declaration.name + "'";
  const Value assigned = convertedTo(member->assignedType, value, position, what.c_str());
  callSite_ = position;
  member->assign(objectOf(owner.object), arguments, assigned);
}

// ---- Calls

Overloads Machine::freeOverloads(std::string_view name) {
  for (const auto* members : {&functions_, &registry_.globals(), &builtIns_}) {
    Overloads overloads = membersNamed(*members, name);
    if (!overloads.empty()) return overloads;
  }
  return {};
}

/// The class that the expression names, unless a variable or function hides it.
const Class* Machine::classNamedBy(const Expression& expression) {
  const auto* access = std::get_if<Access>(&expression.node);
  if (access == nullptr || access->object || !access->arguments.empty()) return nullptr;
  if (variables_.find(access->name) || !freeOverloads(access->name).empty()) return nullptr;
  return registry_.findClass(access->name);
}

Machine::Owner Machine::ownerOf(size_t position, const Access& access) {
  if (const Class* type = classNamedBy(*access.object)) {
    return Owner{&type->sharedMembers, Nil{}, type->name};
  }
  Owner owner{nullptr, evaluate(*access.object), {}};
  if (isNil(owner.object)) {
    raiseAt(position, "NilObjectException", "'." + access.name + "' was used on Nil");
  }
  owner.name = typeNameOf(owner.object);
  const Class* type = objectOf(owner.object) ? registry_.findClass(owner.name) : nullptr;
  if (type != nullptr) owner.members = &type->members;
  return owner;
}

std::vector<Value> Machine::evaluateAll(const Expressions& expressions) {
  std::vector<Value> values;
  for (const ExpressionPtr& expression : expressions) values.push_back(evaluate(*expression));
  return values;
}

Value Machine::call(size_t position, const Overloads& overloads, Object* self,
                    const Expressions& expressions, Result need) {
  const std::vector<Value> given = evaluateAll(expressions);
  const Overloads candidates = callable(overloads);
  if (candidates.empty()) {
    fail(position, "'" + overloads.front()->declaration.name + "' can't be read");
  }
  const Member* member = bestOverload(candidates, given);
  if (member == nullptr) fail(position, misfitMessage(candidates, given));
  const Declaration& declaration = member->declaration;
  if (need == Result::Needed && !declaration.result) {
    fail(position, "'" + declaration.name + "' has no result");
  }
  std::vector<Value> arguments = fittedArguments(declaration, given);
  for (size_t i = 0; i < expressions.size(); ++i) {
    if (declaration.parameters[i].byRef) referencedVariable(*expressions[i]);
  }
  callSite_ = position;
  Value result = member->call(self, arguments);
  writeBack(declaration, expressions, arguments);
  return result;
}

/// The variable that a ByRef argument names.
Variable& Machine::referencedVariable(const Expression& expression) {
  const auto* access = std::get_if<Access>(&expression.node);
  const bool isName = access != nullptr && !access->object && access->arguments.empty();
  Variable* variable = isName ? variables_.find(access->name) : nullptr;
  if (variable == nullptr || variable->isArray) {
    fail(expression.position, "a ByRef argument must be a variable");
  }
  return *variable;
}

void Machine::writeBack(const Declaration& declaration, const Expressions& expressions,
                        std::span<const Value> values) {
  for (size_t i = 0; i < expressions.size(); ++i) {
    if (!declaration.parameters[i].byRef) continue;
    store(referencedVariable(*expressions[i]), values[i], expressions[i]->position);
  }
}

// ---- User functions

/// User functions are called like any other member.
void Machine::defineFunctions(const Program& program) {
  for (const Function& function : program.functions) {
    Member member;
    member.declaration = function.declaration;
    member.call = [this, &function](Object*, std::span<Value> arguments) {
      return callFunction(function, arguments);
    };
    functions_.push_back(std::move(member));
  }
}

Value Machine::callFunction(const Function& function, std::span<Value> arguments) {
  const Declaration& declaration = function.declaration;
  const Variables::Scope scope(variables_, Variables::Scope::Kind::Call);
  ActiveCall active{declaration, declaration.result ? declaration.result->initialValue() : Nil{}};
  const Restorer outerCall(activeCall_);
  activeCall_ = &active;
  const size_t position = callSite_;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const Parameter& parameter = declaration.parameters[i];
    declare(position, Variable{parameter.name, parameter.type, arguments[i], {}, false});
  }
  executeBlock(function.body);
  for (size_t i = 0; i < arguments.size(); ++i) {
    if (declaration.parameters[i].byRef) {
      arguments[i] = variables_.find(declaration.parameters[i].name)->value;
    }
  }
  return std::move(active.result);
}

}  // namespace host
