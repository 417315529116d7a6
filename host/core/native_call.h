// Calls of the plug-in's functions.
#pragma once

#include <chrono>
#include <cstdint>
#include <optional>
#include <span>

#include "host/core/declaration.h"
#include "plugin/binding/handles.h"

namespace host {

/// The object that comes before the arguments, which may be nil; nothing for
/// global methods.
using Self = std::optional<Object*>;

/// False for more parameters than a call has room for.
bool fitsIntoCall(const Declaration& declaration);

/// Calls a member's function with the object and the arguments, which fit the
/// declaration. ByRef arguments are written back. Throws RaisedException if the
/// plug-in raised an exception.
Value callFunction(qrz::HostFunction function, const Declaration& declaration, Self self,
                   std::span<Value> arguments);

/// The same for a setter, which gets the assigned value last.
void callSetter(qrz::HostFunction setter, const Declaration& declaration, Self self,
                std::span<Value> arguments, const Value& assigned, const Type& assignedType);

/// Property accessors: getter(object, param) and setter(object, param, value).
Value callGetter(qrz::HostFunction getter, Object* self, int32_t param, const Type& type);
void callPropertySetter(qrz::HostFunction setter, Object* self, int32_t param, const Type& type,
                        const Value& value);

/// While one lives, adds up the time that the plug-in's functions take, the host's
/// services that they call included. What the host does before and after, such as
/// copying strings into records, does not count. At most one at a time.
class CallStopwatch {
 public:
  CallStopwatch();
  CallStopwatch(const CallStopwatch&) = delete;
  CallStopwatch& operator=(const CallStopwatch&) = delete;
  ~CallStopwatch();

  /// Since the beginning.
  [[nodiscard]] std::chrono::nanoseconds elapsed() const;
};

}  // namespace host
