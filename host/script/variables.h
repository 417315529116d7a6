// The variables of a running script, in scopes.
#pragma once

#include <cstddef>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/declaration.h"
#include "host/core/value.h"

namespace host {

struct Variable {
  std::string name;
  Type type;
  Value value;
  std::vector<Value> elements;  ///< of an array, which has no value of its own
  bool isArray = false;
};

class Variables {
 public:
  /// Variables that are declared while it lives end with it. A function's scope
  /// also hides the variables of its caller.
  class Scope {
   public:
    enum class Kind { Nested, Call };
    explicit Scope(Variables& variables, Kind kind = Kind::Nested);
    ~Scope();
    Scope(const Scope&) = delete;
    Scope& operator=(const Scope&) = delete;

   private:
    Variables& variables_;
    size_t outerScopeStart_;
    size_t outerFunctionStart_;
  };

  /// The innermost visible one, or null. Valid until the next declaration or
  /// end of a scope.
  Variable* find(std::string_view name);

  /// False, and nothing is declared, if the current scope has one of that name.
  bool declare(Variable variable);

  /// Declares or replaces a variable that is visible everywhere.
  void setGlobal(std::string_view name, Value value);

  /// The names of all visible variables.
  [[nodiscard]] std::vector<std::string> names() const;

 private:
  std::vector<Variable> globals_;
  std::vector<Variable> locals_;  ///< innermost last
  size_t scopeStart_ = 0;
  size_t functionStart_ = 0;
};

}  // namespace host
