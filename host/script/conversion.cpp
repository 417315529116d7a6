#include "host/script/conversion.h"

#include <array>
#include <charconv>
#include <cmath>
#include <limits>

namespace host {
namespace {

bool isVariant(const Type& type) {
  return type.kind == Type::Kind::Object && sameName(type.className, "Variant");
}

std::string doubleText(double number) {
  // NaN prints without the sign that depends on how it came about.
  if (std::isnan(number)) return "nan";
  std::array<char, 32> buffer;
  char* const end = buffer.data() + buffer.size();
  const auto result = std::to_chars(buffer.data(), end, number, std::chars_format::general, 15);
  return std::string(buffer.data(), result.ptr);
}

std::string colorText(Color color) {
  constexpr std::string_view digits = "0123456789ABCDEF";
  std::string text = "&c";
  for (int shift = 20; shift >= 0; shift -= 4) text += digits[(color.rgb >> shift) & 0xF];
  return text;
}

struct TextOf {
  std::string operator()(Nil) const { return "Nil"; }
  std::string operator()(int32_t number) const { return std::to_string(number); }
  std::string operator()(double number) const { return doubleText(number); }
  std::string operator()(bool truth) const { return truth ? "True" : "False"; }
  std::string operator()(Color color) const { return colorText(color); }
  std::string operator()(const std::string& text) const { return text; }
  std::string operator()(const Ref<Object>& object) const {
    return object ? object->describe() : "Nil";
  }
};

constexpr int sameType = 0;
constexpr int nearType = 1;
constexpr int farType = 2;

std::optional<int> objectCost(const Value& value, const Type& type) {
  const Object* object = objectOf(value);
  if (object == nullptr) return isNil(value) ? std::optional(nearType) : std::nullopt;
  if (!isInstance(*object, type.className)) return std::nullopt;
  return sameName(object->className(), type.className) ? sameType : nearType;
}

}  // namespace

bool isNil(const Value& value) {
  return std::holds_alternative<Nil>(value) ||
         (std::holds_alternative<Ref<Object>>(value) && objectOf(value) == nullptr);
}

std::string typeNameOf(const Value& value) { return isNil(value) ? "Nil" : typeOf(value).name(); }

Type typeOf(const Value& value) {
  if (std::holds_alternative<int32_t>(value)) return Type{Type::Kind::Integer, {}};
  if (std::holds_alternative<double>(value)) return Type{Type::Kind::Double, {}};
  if (std::holds_alternative<bool>(value)) return Type{Type::Kind::Boolean, {}};
  if (std::holds_alternative<Color>(value)) return Type{Type::Kind::Color, {}};
  if (std::holds_alternative<std::string>(value)) return Type{Type::Kind::String, {}};
  const Object* object = objectOf(value);
  return Type{Type::Kind::Object, object == nullptr ? "Variant" : object->className()};
}

std::string textOf(const Value& value) { return std::visit(TextOf{}, value); }

int32_t truncated(double number) {
  using Limits = std::numeric_limits<int32_t>;
  if (std::isnan(number)) return 0;
  if (number <= Limits::min()) return Limits::min();
  if (number >= Limits::max()) return Limits::max();
  return static_cast<int32_t>(number);
}

std::optional<double> numberOf(const Value& value) {
  if (const auto* integer = std::get_if<int32_t>(&value)) return *integer;
  if (const auto* real = std::get_if<double>(&value)) return *real;
  return std::nullopt;
}

bool isExceptionName(std::string_view className) {
  constexpr std::string_view ending = "Exception";
  return className.size() >= ending.size() &&
         sameName(className.substr(className.size() - ending.size()), ending);
}

bool isInstance(const Object& object, const std::string& className) {
  return sameName(object.className(), className) || sameName(className, "Object") ||
         sameName(className, "Variant") ||
         (sameName(className, "RuntimeException") && isExceptionName(object.className()));
}

std::optional<int> conversionCost(const Value& value, const Type& type) {
  if (isVariant(type)) return farType;
  if (type.kind == Type::Kind::Object) return objectCost(value, type);
  const Type::Kind kind = typeOf(value).kind;
  if (kind == type.kind) return sameType;
  if (isNil(value) && type.kind == Type::Kind::String) return nearType;
  if (kind == Type::Kind::Integer && type.kind == Type::Kind::Double) return nearType;
  if (kind == Type::Kind::Integer && type.kind == Type::Kind::Color) return farType;
  if (kind == Type::Kind::Double && type.kind == Type::Kind::Integer) return farType;
  return std::nullopt;
}

std::optional<Value> converted(const Value& value, const Type& type) {
  const std::optional<int> cost = conversionCost(value, type);
  if (!cost) return std::nullopt;
  if (*cost == sameType || type.kind == Type::Kind::Object) return value;
  switch (type.kind) {
    case Type::Kind::Double:
      return Value{static_cast<double>(std::get<int32_t>(value))};
    case Type::Kind::Integer:
      return Value{truncated(std::get<double>(value))};
    case Type::Kind::Color:
      return Value{Color{static_cast<uint32_t>(std::get<int32_t>(value)) & 0xFFFFFFu}};
    default:
      return Value{std::string{}};
  }
}

}  // namespace host
