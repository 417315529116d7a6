// Programs in the host's language: parsing and running them.
#pragma once

#include <csignal>
#include <memory>
#include <ostream>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/registry.h"
#include "host/core/value.h"

namespace host {

class Machine;
struct Program;

/// Any error that ends a script: syntax errors, unknown names, wrong argument
/// types, uncaught exceptions. what() is complete: "demo.rbs:3:14: message",
/// the source line, and a line with a caret below the place.
class ScriptError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// A parsed program. Copies share the program and are cheap.
class Script {
 public:
  /// `fileName` is only shown in messages. Throws ScriptError if the source is
  /// no program; names and types are looked up when the program runs.
  static Script parse(std::string source, std::string fileName);

  /// The same of an expression, which statements may precede on lines of their own.
  static Script parseExpression(std::string source, std::string fileName);

 private:
  friend class Interpreter;
  explicit Script(std::shared_ptr<const Program> program);

  std::shared_ptr<const Program> program_;
};

/// Runs scripts against the classes and global methods of a registry.
class Interpreter {
 public:
  /// `registry` and `output`, which Print writes to, must outlive the interpreter.
  Interpreter(Registry& registry, std::ostream& output);
  /// Releases every object that a variable still holds.
  ~Interpreter();
  Interpreter(const Interpreter&) = delete;
  Interpreter& operator=(const Interpreter&) = delete;

  /// Declares a variable that every script and function can use, for instance
  /// "self", or replaces its value. It keeps the type of `value`; Nil makes it
  /// a Variant. The interpreter keeps the object alive until it is destroyed.
  void setVariable(std::string_view name, Value value);

  /// What scripts read as Argument(0) to Argument(ArgumentCount - 1); any other
  /// index raises OutOfBoundsException. Without arguments the count is 0.
  void setArguments(std::vector<std::string> arguments);

  /// Runs the program to its end. Its variables are released before it returns.
  /// Throws ScriptError; any other standard exception of a member, such as lack
  /// of memory, becomes a ScriptError at the place of the call.
  void run(const Script& script);

  /// The value of an expression, as Script::parseExpression takes it; Nil if it
  /// calls a member without result. Throws like it and run.
  Value evaluate(const std::string& text, const std::string& fileName);

  /// Polled at every statement: once it is not 0, the script ends with a
  /// ScriptError "interrupted". Null, as at first, for never. The flag must
  /// outlive the interpreter.
  void setInterruptFlag(const volatile sig_atomic_t* flag);

 private:
  std::unique_ptr<Machine> machine_;
};

}  // namespace host
