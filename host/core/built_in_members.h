// How the built-in classes spell their members.
#pragma once

#include <functional>
#include <span>
#include <utility>

#include "host/core/registry.h"

namespace host {

inline int32_t integer(const Value& value) { return std::get<int32_t>(value); }

template <typename T>
T& as(Object* self) {
  return static_cast<T&>(*self);
}

inline Member method(const char* declaration,
                     std::function<Value(Object*, std::span<Value>)> call) {
  Member member;
  member.declaration = parseDeclaration(declaration);
  if (member.declaration.result) member.assignedType = *member.declaration.result;
  member.call = std::move(call);
  return member;
}

inline Member property(const char* declaration, std::function<Value(Object*)> get,
                       std::function<void(Object*, const Value&)> set = nullptr) {
  Member member =
      method(declaration,
             [get = std::move(get)](Object* self, std::span<Value> /*none*/) { return get(self); });
  member.isProperty = true;
  if (set != nullptr) {
    member.assign = [set = std::move(set)](Object* self, std::span<Value> /*none*/,
                                           const Value& value) { set(self, value); };
  }
  return member;
}

inline Member assignable(const char* declaration,
                         std::function<Value(Object*, std::span<Value>)> get,
                         std::function<void(Object*, std::span<Value>, const Value&)> set) {
  Member member = method(declaration, std::move(get));
  member.assign = std::move(set);
  return member;
}

}  // namespace host
