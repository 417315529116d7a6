// The machine's statements.
#include <cstdint>
#include <new>
#include <optional>
#include <stdexcept>
#include <utility>

#include "host/core/exception.h"
#include "host/script/conversion.h"
#include "host/script/machine.h"
#include "host/script/restorer.h"

namespace host {
namespace {

constexpr int32_t highestIndex = 9'999'999;

}  // namespace

Machine::Flow Machine::executeBlock(const Block& block) {
  const Variables::Scope scope(variables_);
  return executeAll(block);
}

/// In the scope that there is.
Machine::Flow Machine::executeAll(const Block& block) {
  for (const Statement& statement : block) {
    const Flow flow = execute(statement);
    if (flow.kind != Flow::Kind::Next) return flow;
  }
  return {};
}

Machine::Flow Machine::execute(const Statement& statement) {
  const Restorer depth(depth_);
  enterLevel(statement.position);
  pollInterrupt(statement.position);
  callSite_ = statement.position;
  try {
    return std::visit([this](const auto& node) { return execute(node); }, statement.node);
  } catch (const std::bad_alloc&) {
    raiseOutOfMemory();
  } catch (const std::length_error&) {  // more than the process has addresses for
    raiseOutOfMemory();
  }
}

Machine::Flow Machine::execute(const Dim& node) {
  for (const DimensionGroup& group : node.groups) {
    requireType(group.type, group.typePosition);
    for (const Dimension& name : group.names) declare(group, name);
  }
  return {};
}

void Machine::declare(const DimensionGroup& group, const Dimension& name) {
  if (name.lastIndex) return declare(name.position, arrayOf(group, name));
  Variable variable{name.name, group.type, group.type.initialValue(), {}, false};
  if (group.initial) store(variable, evaluate(*group.initial), group.initial->position);
  declare(name.position, std::move(variable));
}

void Machine::declare(size_t position, Variable variable) {
  const std::string name = variable.name;
  const bool isNew = variables_.declare(std::move(variable));
  if (!isNew) fail(position, "'" + name + "' is already declared");
}

Variable Machine::arrayOf(const DimensionGroup& group, const Dimension& name) {
  const size_t position = name.lastIndex->position;
  const Type integer{Type::Kind::Integer, {}};
  const Value last = convertedTo(integer, evaluate(*name.lastIndex), position, "the last index");
  const int32_t index = std::get<int32_t>(last);
  if (index < -1 || index > highestIndex) {
    raiseAt(position, "OutOfBoundsException",
            "the last index of an array is -1 to " + std::to_string(highestIndex));
  }
  Variable variable{name.name, group.type, {}, {}, true};
  variable.elements.resize(static_cast<size_t>(index + 1), group.type.initialValue());
  return variable;
}

Machine::Flow Machine::execute(const Assignment& node) {
  assign(*node.target, evaluate(*node.value));
  return {};
}

Machine::Flow Machine::execute(const CallStatement& node) {
  const auto& access = std::get<Access>(node.call->node);
  const bool isPlainName = !access.object && access.arguments.empty();
  if (isPlainName && variables_.find(access.name) != nullptr) {
    fail(node.call->position, "'" + access.name + "' is a variable; expected '=' and a value");
  }
  evaluate(*node.call, Result::Ignored);
  return {};
}

bool Machine::isTrue(const Expression& condition) {
  const Value value = evaluate(condition);
  if (const bool* truth = std::get_if<bool>(&value)) return *truth;
  fail(condition.position, "a condition must be Boolean, but this is " + typeNameOf(value));
}

Machine::Flow Machine::execute(const If& node) {
  for (const IfBranch& branch : node.branches) {
    if (isTrue(*branch.condition)) return executeBlock(branch.body);
  }
  return executeBlock(node.otherwise);
}

/// Runs the body once. False if the loop is over; `flow` is then how it ended.
bool Machine::runBody(const Block& body, LoopKind kind, size_t position, Flow& flow) {
  pollInterrupt(position);  // An empty body has no statement that would poll.
  flow = executeBlock(body);
  if (flow.kind == Flow::Kind::Next) return true;
  if (flow.kind == Flow::Kind::Return || flow.loop != kind) return false;
  const bool goesOn = flow.kind == Flow::Kind::Continue;
  flow = {};
  return goesOn;
}

Machine::Flow Machine::execute(const ForLoop& node) {
  const Variables::Scope scope(variables_);
  const Type type = startCounting(node);
  // Doubles hold every 32-bit integer exactly, and the sum past the last one.
  const double last =
      *numberOf(convertedTo(type, evaluate(*node.last), node.last->position, "the end value"));
  const double step = stepOf(node, type);
  Flow flow;
  for (;;) {
    const double counter = counterOf(node);
    const bool isInside = step > 0 ? counter <= last : counter >= last;
    if (!isInside || !runBody(node.body, LoopKind::For, node.variablePosition, flow)) return flow;
    const double next = counterOf(node) + step;
    const Value value = *converted(Value{next}, type);
    // An Integer can't count past its range: the loop ends there.
    if (type.kind == Type::Kind::Integer && *numberOf(value) != next) return flow;
    store(*variables_.find(node.variable), value, node.variablePosition);
  }
}

/// Sets the loop's variable to its first value; returns its type.
Type Machine::startCounting(const ForLoop& node) {
  const Value first = evaluate(*node.first);
  if (node.type) {
    requireType(*node.type, node.variablePosition);
    declare(node.variablePosition,
            Variable{node.variable, *node.type, node.type->initialValue(), {}, false});
  }
  Variable* variable = variables_.find(node.variable);
  if (variable == nullptr) failUnknownName(node.variable, node.variablePosition);
  const bool isNumber =
      variable->type.kind == Type::Kind::Integer || variable->type.kind == Type::Kind::Double;
  if (variable->isArray || !isNumber) {
    fail(node.variablePosition, "the variable of a For loop must be Integer or Double");
  }
  store(*variable, first, node.first->position);
  return variable->type;
}

double Machine::stepOf(const ForLoop& node, const Type& type) {
  double step = 1;
  if (node.step) {
    const Value value = convertedTo(type, evaluate(*node.step), node.step->position, "the step");
    step = *numberOf(value);
    if (step == 0) fail(node.step->position, "a step of 0 would never end");
  }
  return node.isDownwards ? -step : step;
}

double Machine::counterOf(const ForLoop& node) {
  return *numberOf(variables_.find(node.variable)->value);
}

Machine::Flow Machine::execute(const ConditionLoop& node) {
  Flow flow;
  const size_t position = callSite_;  // Still that of the statement.
  for (;;) {
    if (node.whileTrue && !isTrue(*node.whileTrue)) return flow;
    if (node.untilBefore && isTrue(*node.untilBefore)) return flow;
    if (!runBody(node.body, node.kind, position, flow)) return flow;
    if (node.untilAfter && isTrue(*node.untilAfter)) return flow;
  }
}

Machine::Flow Machine::execute(const LoopJump& node) {
  return Flow{node.isExit ? Flow::Kind::Exit : Flow::Kind::Continue, node.loop};
}

Machine::Flow Machine::execute(const Return& node) {
  if (node.value) {
    const Value value = evaluate(*node.value);
    activeCall_->result =
        convertedTo(*activeCall_->declaration.result, value, node.value->position, "the result");
  }
  return Flow{Flow::Kind::Return, {}};
}

Machine::Flow Machine::execute(const Quit&) { throw QuitRequest{}; }

Machine::Flow Machine::execute(const Try& node) {
  std::optional<RaisedException> pending;
  Flow flow;
  try {
    flow = executeCatching(node);
  } catch (const RaisedException& raised) {
    pending = raised;
  }
  const size_t callSite = callSite_;
  const Flow finally = executeBlock(node.finally);
  callSite_ = callSite;  // An uncaught exception names its own place.
  if (finally.kind != Flow::Kind::Next) return finally;
  if (pending) throw RaisedException(*pending);
  return flow;
}

Machine::Flow Machine::executeCatching(const Try& node) {
  try {
    return executeBlock(node.body);
  } catch (const RaisedException& raised) {
    const CatchClause* clause = matchingClause(node, raised.instance.get());
    if (clause == nullptr) throw;
    const Variables::Scope scope(variables_);
    if (!clause->variable.empty()) {
      variables_.declare(
          Variable{clause->variable, clause->type, objectValue(raised.instance), {}, false});
    }
    return executeBlock(clause->body);
  }
}

const CatchClause* Machine::matchingClause(const Try& node, const Object* exception) {
  for (const CatchClause& clause : node.catches) {
    requireType(clause.type, clause.typePosition);
    if (exception && isInstance(*exception, clause.type.className)) return &clause;
  }
  return nullptr;
}

Machine::Flow Machine::execute(const Print& node) {
  std::string line;
  for (const ExpressionPtr& value : node.values) {
    if (value != node.values.front()) line += ' ';
    line += textOf(evaluate(*value));
  }
  if (output_ << line << '\n') return {};
  pollInterrupt(callSite_);  // It may have been the reason.
  fail(callSite_, "what is printed cannot be written");
}

}  // namespace host
