// What values are called, how they print, and which type converts to which.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

#include "host/core/declaration.h"
#include "host/core/value.h"

namespace host {

/// True for Nil and for a reference to nothing.
bool isNil(const Value& value);

/// "Integer", "String", "Nil", or the class of an object.
std::string typeNameOf(const Value& value);

/// The type of a variable that starts with the value: Variant for Nil.
Type typeOf(const Value& value);

/// As Print and Str show it: 42, 0.5, True, &cFF8000, the bytes of a string,
/// Nil, or the object's description. Doubles have up to 15 significant digits.
std::string textOf(const Value& value);

/// Towards zero; beyond the range the nearest end of it; 0 for NaN.
int32_t truncated(double number);

/// The number that an Integer or Double stands for; nothing for other values.
std::optional<double> numberOf(const Value& value);

/// "OutOfBoundsException" and the like need not be registered to be named.
bool isExceptionName(std::string_view className);

/// True if a variable of the class can hold the object: the same name, "Object"
/// or "Variant", or "RuntimeException" for every exception.
bool isInstance(const Object& object, const std::string& className);

/// How far a value is from a type: 0 for its own, more for less fitting ones;
/// nothing if it does not convert.
std::optional<int> conversionCost(const Value& value, const Type& type);

/// The value as that type; nothing if it does not convert.
std::optional<Value> converted(const Value& value, const Type& type);

}  // namespace host
