// Declarations from anywhere: parsed, spelled out and parsed again; registered, and
// called with the values that their types start with.

#include <array>
#include <charconv>
#include <cmath>

#include "fuzz/support/checks.h"
#include "host/core/declaration.h"
#include "host/core/plugin_classes.h"
#include "host/core/runtime.h"
#include "host/script/conversion.h"

namespace {

using fuzz::expect;
using host::Declaration;
using host::Parameter;
using host::Type;
using host::Value;

std::string quoted(const std::string& text) {
  std::string result = "\"";
  for (const char c : text) result += c == '"' ? std::string("\"\"") : std::string(1, c);
  return result + '"';
}

/// The shortest number that is read as the same one, and as no integer.
std::string exact(double number) {
  expect(std::isfinite(number));
  std::array<char, 40> buffer;
  constexpr auto kFormat = std::chars_format::scientific;
  auto* const end =
      std::to_chars(buffer.data(), buffer.data() + buffer.size(), number, kFormat).ptr;
  return {buffer.data(), end};
}

std::string literalOf(const Value& value) {
  if (const auto* text = std::get_if<std::string>(&value)) return quoted(*text);
  if (const auto* number = std::get_if<double>(&value)) return exact(*number);
  return host::textOf(value);
}

std::string textOf(const Parameter& parameter) {
  return (parameter.byRef ? "ByRef " : "ByVal ") + parameter.name + " As " + parameter.type.name() +
         (parameter.defaultValue ? " = " + literalOf(*parameter.defaultValue) : "");
}

std::string textOf(const Declaration& declaration) {
  std::string text = declaration.name + "(";
  for (const Parameter& parameter : declaration.parameters) {
    text += (text.back() == '(' ? "" : ", ") + textOf(parameter);
  }
  return text + ")" + (declaration.result ? " As " + declaration.result->name() : "");
}

bool sameType(const Type& left, const Type& right) {
  return left.kind == right.kind && left.className == right.className;
}

void compare(const Declaration& left, const Declaration& right) {
  expect(left.name == right.name && left.parameters.size() == right.parameters.size());
  for (size_t i = 0; i < left.parameters.size(); ++i) {
    const Parameter& a = left.parameters[i];
    const Parameter& b = right.parameters[i];
    expect(a.name == b.name && a.byRef == b.byRef && sameType(a.type, b.type));
    expect(a.defaultValue == b.defaultValue);
  }
  expect(left.result.has_value() == right.result.has_value());
  expect(!left.result || sameType(*left.result, *right.result));
}

int32_t givesNothing() { return 0; }
double givesNumber() { return 0; }

qrz::HostFunction functionFor(const Declaration& declaration) {
  const bool isNumber = declaration.result && declaration.result->kind == Type::Kind::Double;
  return isNumber ? reinterpret_cast<qrz::HostFunction>(givesNumber)
                  : reinterpret_cast<qrz::HostFunction>(givesNothing);
}

/// Only a declaration with more parameters than a call has room for is left out.
void expectTooMany(const Declaration& declaration) {
  expect(declaration.parameters.size() > 6 && host::runtime().misuses().size() == 1);
  host::runtime().takeMisuses();
}

void registerAndCall(const Declaration& declaration) {
  // The plug-in's texts end at their first zero byte.
  if (declaration.text.find('\0') != std::string::npos) return;
  host::Registry registry;
  qrz::MethodRecord record{functionFor(declaration), functionFor(declaration),
                           declaration.text.c_str(), 0};
  host::registerGlobalMethod(registry, record);
  if (registry.globals().empty()) return expectTooMany(declaration);
  const host::Member& member = registry.globals().front();
  compare(declaration, member.declaration);
  std::vector<Value> arguments;
  for (const Parameter& parameter : declaration.parameters) {
    arguments.push_back(parameter.defaultValue.value_or(parameter.type.initialValue()));
  }
  member.call(nullptr, arguments);
  member.assign(nullptr, arguments, member.assignedType.initialValue());
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  try {
    const Declaration declaration =
        host::parseDeclaration({reinterpret_cast<const char*>(bytes), size});
    const std::string text = textOf(declaration);
    const Declaration again = host::parseDeclaration(text);
    compare(declaration, again);
    expect(textOf(again) == text);
    registerAndCall(declaration);
  } catch (const host::DeclarationError&) {
    // Refused.
  }
  expect(host::runtime().findLeaks().empty());
  return 0;
}
