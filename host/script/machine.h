// Runs syntax trees: what stands behind Interpreter.
#pragma once

#include <csignal>
#include <functional>
#include <ostream>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/registry.h"
#include "host/script/overload.h"
#include "host/script/syntax.h"
#include "host/script/variables.h"

namespace host {

/// Statements and expressions that are being run may nest this deep, user
/// functions included, so that endless recursion ends before the stack does, if
/// it is of the usual size.
inline constexpr int maximumDepth = 2000;

class Machine {
 public:
  Machine(Registry& registry, std::ostream& output);
  Machine(const Machine&) = delete;
  Machine& operator=(const Machine&) = delete;

  // These do what Interpreter's functions say.
  void setVariable(std::string_view name, Value value);
  void setArguments(std::vector<std::string> arguments) { arguments_ = std::move(arguments); }
  void setInterruptFlag(const volatile sig_atomic_t* flag) { interruptFlag_ = flag; }
  /// The value is Nil if the program has none, or ends before.
  Value run(const Program& program);

 private:
  using Expressions = std::vector<ExpressionPtr>;

  /// How a statement ended, and for jumps which loop they mean.
  struct Flow {
    enum class Kind { Next, Exit, Continue, Return };
    Kind kind = Kind::Next;
    LoopKind loop = LoopKind::For;
  };

  /// A user function that is running.
  struct ActiveCall {
    const Declaration& declaration;
    Value result;
  };

  /// Where a member access looks, and on what.
  struct Owner {
    const std::vector<Member>* members = nullptr;  ///< null if it has none
    Value object;                                  ///< Nil for shared members
    std::string name;                              ///< of the class, for messages
  };

  enum class Result { Needed, Ignored };

  /// Thrown by Quit, from however deep inside functions, to the end of the script.
  struct QuitRequest {};

  // Running as a whole (machine.cpp).
  void runGuarded(const SourceText& source, const std::function<void()>& work);
  [[noreturn]] void fail(size_t position, const std::string& message) const;
  [[noreturn]] void failUncaught(const Object* exception) const;
  [[noreturn]] void raiseAt(size_t position, const char* className, std::string message);
  void pollInterrupt(size_t position) const;
  void enterLevel(size_t position);
  [[noreturn]] void raiseOutOfMemory();

  // Statements (machine_statements.cpp).
  Flow executeBlock(const Block& block);
  Flow executeAll(const Block& block);
  Flow execute(const Statement& statement);
  Flow execute(const Dim& node);
  Flow execute(const Assignment& node);
  Flow execute(const CallStatement& node);
  Flow execute(const If& node);
  Flow execute(const ForLoop& node);
  Flow execute(const ConditionLoop& node);
  Flow execute(const LoopJump& node);
  Flow execute(const Return& node);
  Flow execute(const Quit& node);
  Flow execute(const Try& node);
  Flow execute(const Print& node);
  void declare(const DimensionGroup& group, const Dimension& name);
  void declare(size_t position, Variable variable);
  Variable arrayOf(const DimensionGroup& group, const Dimension& name);
  Type startCounting(const ForLoop& node);
  double stepOf(const ForLoop& node, const Type& type);
  double counterOf(const ForLoop& node);
  bool runBody(const Block& body, LoopKind kind, size_t position, Flow& flow);
  Flow executeCatching(const Try& node);
  const CatchClause* matchingClause(const Try& node, const Object* exception);
  bool isTrue(const Expression& condition);

  // Expressions (machine_expressions.cpp).
  Value evaluate(const Expression& expression, Result need = Result::Needed);
  Value evaluate(size_t position, const Unary& node);
  Value evaluate(size_t position, const Binary& node);
  Value evaluate(size_t position, const New& node);
  Value evaluateFree(size_t position, const Access& access, Result need);
  Value evaluateMember(size_t position, const Access& access, Result need);
  Value convertedTo(const Type& type, const Value& value, size_t position, const char* what) const;
  void store(Variable& variable, const Value& value, size_t position) const;
  Value& elementOf(std::string_view array, size_t position, const Expressions& arguments);

  // Assignments and calls (machine_calls.cpp).
  Overloads freeOverloads(std::string_view name);
  Owner ownerOf(size_t position, const Access& access);
  const Class* classNamedBy(const Expression& expression);
  std::vector<Value> evaluateAll(const Expressions& expressions);
  Value call(size_t position, const Overloads& overloads, Object* self,
             const Expressions& expressions, Result need);
  void writeBack(const Declaration& declaration, const Expressions& expressions,
                 std::span<const Value> values);
  Variable& referencedVariable(const Expression& expression);
  void assign(const Expression& target, const Value& value);
  void assignFree(size_t position, const Access& access, const Value& value);
  void assignMember(size_t position, const Access& access, const Value& value);
  Value callFunction(const Function& function, std::span<Value> arguments);
  void defineFunctions(const Program& program);

  // Names (machine.cpp).
  void requireType(const Type& type, size_t position);
  [[noreturn]] void failUnknownClass(const std::string& name, size_t position, bool isNew);
  [[noreturn]] void failUnknownName(const std::string& name, size_t position);
  [[noreturn]] void failUnknownMember(const Owner& owner, const std::string& name,
                                      size_t position) const;

  Registry& registry_;
  std::ostream& output_;
  std::vector<std::string> arguments_;
  std::vector<Member> builtIns_;
  std::vector<Member> functions_;  ///< of the program that is running
  Variables variables_;
  const volatile sig_atomic_t* interruptFlag_ = nullptr;
  const SourceText* source_ = nullptr;  ///< of what is running
  ActiveCall* activeCall_ = nullptr;    ///< the innermost one, or null outside functions
  size_t callSite_ = 0;                 ///< of the last call that could raise an exception
  int depth_ = 0;
};

}  // namespace host
