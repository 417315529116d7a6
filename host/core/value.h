// The values of the host's language.
#pragma once

#include <cstdint>
#include <string>
#include <variant>

#include "host/core/object.h"

namespace host {

struct Nil {
  friend bool operator==(Nil, Nil) = default;
};

/// A colour, 0x00RRGGBB.
struct Color {
  uint32_t rgb = 0;
  friend bool operator==(Color, Color) = default;
};

/// Integers are 32-bit and signed; strings are bytes. An object alternative is
/// never null: no object is Nil.
using Value = std::variant<Nil, int32_t, double, bool, Color, std::string, Ref<Object>>;

/// The value for a reference that may be null.
template <typename T>
Value objectValue(const Ref<T>& object) {
  if (!object) return Nil{};
  return Value{Ref<Object>(object)};
}

/// The object of a value, or null for Nil and every other value.
inline Object* objectOf(const Value& value) {
  const auto* reference = std::get_if<Ref<Object>>(&value);
  return reference != nullptr ? reference->get() : nullptr;
}

/// The object of a value as a T, or null if it is no T.
template <typename T>
T* objectAs(const Value& value) {
  return dynamic_cast<T*>(objectOf(value));
}

}  // namespace host
