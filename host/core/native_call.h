// Calls of the plug-in's functions.
#pragma once

#include <cstdint>
#include <optional>
#include <span>

#include "host/core/declaration.h"
#include "plugin/binding/handles.h"

namespace host {

/// The object that comes before the arguments, which may be nil; nothing for
/// global methods.
using Self = std::optional<Object*>;

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

}  // namespace host
