// What scripts can name: classes with their members, and global methods. The
// built-in classes and what the plug-in registers are the same kind of entry.
#pragma once

#include <deque>
#include <functional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/declaration.h"

namespace host {

/// A method or property. A property is a member without parameters whose
/// `isProperty` is set. Overloads are separate members of the same name.
struct Member {
  Declaration declaration;
  bool isProperty = false;
  bool isRegistered = false;       ///< by the plug-in, not built in
  uint32_t flags = 0;              ///< as the plug-in registered them
  const void* function = nullptr;  ///< the plug-in's code of a registered method

  /// Arguments are already converted to the declared types, one per declared
  /// parameter. ByRef arguments are written back into the span. `self` is null
  /// for global and shared members. Throws RaisedException. Empty: not readable.
  std::function<Value(Object* self, std::span<Value> arguments)> call;
  /// What runs for `member(arguments) = value`; empty: not assignable.
  std::function<void(Object* self, std::span<Value> arguments, const Value& value)> assign;
  /// Type of the assigned value; differs from the result type for some members.
  Type assignedType;
};

struct Class {
  std::string name;
  bool isRegistered = false;  ///< by the plug-in, not built in
  uint32_t flags = 0;
  int32_t dataSize = 0;               ///< bytes of instance data, as they were registered
  std::vector<Member> members;        ///< in the order of registration
  std::vector<Member> sharedMembers;  ///< called on the class: Picture.Open(path)
  std::vector<Member> constructors;   ///< `New Name(arguments)`; the call returns the object
};

class Registry {
 public:
  /// Null if there is none of that name.
  [[nodiscard]] Class* findClass(std::string_view name);
  Class& addClass(std::string name);
  [[nodiscard]] std::deque<Class>& classes() { return classes_; }
  [[nodiscard]] std::vector<Member>& globals() { return globals_; }

 private:
  std::deque<Class> classes_;
  std::vector<Member> globals_;
};

}  // namespace host
