#include "host/script/variables.h"

#include <utility>

#include "host/script/conversion.h"

namespace host {
namespace {

Variable* findBetween(std::vector<Variable>& list, size_t start, std::string_view name) {
  for (size_t i = list.size(); i > start; --i) {
    if (sameName(list[i - 1].name, name)) return &list[i - 1];
  }
  return nullptr;
}

}  // namespace

Variables::Scope::Scope(Variables& variables, Kind kind)
    : variables_(variables),
      outerScopeStart_(variables.scopeStart_),
      outerFunctionStart_(variables.functionStart_) {
  variables_.scopeStart_ = variables_.locals_.size();
  if (kind == Kind::Call) variables_.functionStart_ = variables_.scopeStart_;
}

Variables::Scope::~Scope() {
  while (variables_.locals_.size() > variables_.scopeStart_) variables_.locals_.pop_back();
  variables_.scopeStart_ = outerScopeStart_;
  variables_.functionStart_ = outerFunctionStart_;
}

Variable* Variables::find(std::string_view name) {
  Variable* local = findBetween(locals_, functionStart_, name);
  return local != nullptr ? local : findBetween(globals_, 0, name);
}

bool Variables::declare(Variable variable) {
  if (findBetween(locals_, scopeStart_, variable.name) != nullptr) return false;
  locals_.push_back(std::move(variable));
  return true;
}

void Variables::setGlobal(std::string_view name, Value value) {
  Variable variable{std::string(name), typeOf(value), std::move(value), {}, false};
  if (Variable* existing = findBetween(globals_, 0, name)) {
    *existing = std::move(variable);
  } else {
    globals_.push_back(std::move(variable));
  }
}

std::vector<std::string> Variables::names() const {
  std::vector<std::string> result;
  for (const Variable& variable : globals_) result.push_back(variable.name);
  for (size_t i = functionStart_; i < locals_.size(); ++i) result.push_back(locals_[i].name);
  return result;
}

}  // namespace host
