#include "host/script/builtins.h"

#include <algorithm>
#include <charconv>
#include <chrono>
#include <cmath>
#include <random>
#include <utility>

#include "host/core/exception.h"
#include "host/script/conversion.h"

namespace host {
namespace {

using Arguments = std::span<Value>;

int32_t integerAt(Arguments arguments, size_t index) { return std::get<int32_t>(arguments[index]); }
double realAt(Arguments arguments, size_t index) { return std::get<double>(arguments[index]); }
const std::string& textAt(Arguments arguments, size_t index) {
  return std::get<std::string>(arguments[index]);
}

class Builder {
 public:
  template <typename Body>
  void add(const char* declaration, Body body) {
    Member member;
    member.declaration = parseDeclaration(declaration);
    member.call = [body](Object*, Arguments arguments) mutable { return Value{body(arguments)}; };
    members_.push_back(std::move(member));
  }

  /// A function of one number: `name` alone is enough.
  void addReal(const std::string& name, double (*function)(double)) {
    add((name + "(x As Double) As Double").c_str(),
        [function](Arguments a) { return function(realAt(a, 0)); });
  }

  std::vector<Member> take() { return std::move(members_); }

 private:
  std::vector<Member> members_;
};

// ---- Numbers

int32_t absolute(int32_t number) {
  // The least integer has no counterpart and stays as it is.
  return number < 0 ? static_cast<int32_t>(0u - static_cast<uint32_t>(number)) : number;
}

uint32_t channel(int32_t level) { return static_cast<uint32_t>(std::clamp(level, 0, 255)); }

void addNumbers(Builder& list) {
  list.addReal("Sqrt", [](double x) { return std::sqrt(x); });
  list.addReal("Sin", [](double x) { return std::sin(x); });
  list.addReal("Cos", [](double x) { return std::cos(x); });
  list.addReal("Exp", [](double x) { return std::exp(x); });
  list.addReal("Log", [](double x) { return std::log(x); });
  list.addReal("Floor", [](double x) { return std::floor(x); });
  list.addReal("Ceil", [](double x) { return std::ceil(x); });
  list.addReal("Round", [](double x) { return std::round(x); });
  list.addReal("Abs", [](double x) { return std::abs(x); });
  list.add("Abs(x As Integer) As Integer", [](Arguments a) { return absolute(integerAt(a, 0)); });
  list.add("Atan2(y As Double, x As Double) As Double",
           [](Arguments a) { return std::atan2(realAt(a, 0), realAt(a, 1)); });
  list.add("Pow(x As Double, y As Double) As Double",
           [](Arguments a) { return std::pow(realAt(a, 0), realAt(a, 1)); });
  list.add("Min(a As Integer, b As Integer) As Integer",
           [](Arguments a) { return std::min(integerAt(a, 0), integerAt(a, 1)); });
  list.add("Min(a As Double, b As Double) As Double",
           [](Arguments a) { return std::min(realAt(a, 0), realAt(a, 1)); });
  list.add("Max(a As Integer, b As Integer) As Integer",
           [](Arguments a) { return std::max(integerAt(a, 0), integerAt(a, 1)); });
  list.add("Max(a As Double, b As Double) As Double",
           [](Arguments a) { return std::max(realAt(a, 0), realAt(a, 1)); });
  list.add("RGB(red As Integer, green As Integer, blue As Integer) As Color", [](Arguments a) {
    return Color{channel(integerAt(a, 0)) << 16 | channel(integerAt(a, 1)) << 8 |
                 channel(integerAt(a, 2))};
  });
}

// ---- Text

/// Bytes counted from 1; what lies outside the text is left out.
std::string part(const std::string& text, int32_t start, int32_t length) {
  const size_t first = start > 1 ? static_cast<size_t>(start) - 1 : 0;
  if (first >= text.size() || length <= 0) return {};
  return text.substr(first, static_cast<size_t>(length));
}

std::string lastPart(const std::string& text, int32_t length) {
  const size_t count = std::min(text.size(), static_cast<size_t>(std::max(length, 0)));
  return text.substr(text.size() - count);
}

/// Counted from 1; 0 if it is not there.
int32_t indexOf(const std::string& text, const std::string& wanted, int32_t start) {
  const size_t found = text.find(wanted, start > 1 ? static_cast<size_t>(start) - 1 : 0);
  return found == std::string::npos ? 0 : static_cast<int32_t>(found) + 1;
}

std::string mapped(std::string text, char from, char to) {
  for (char& c : text) {
    if (c >= from && c < from + 26) c = static_cast<char>(c - from + to);
  }
  return text;
}

std::string character(int32_t code) {
  if (code < 0 || code > 255) raise("OutOfBoundsException", "Chr takes 0 to 255");
  return std::string(1, static_cast<char>(code));
}

int32_t codeOf(const std::string& text) {
  return text.empty() ? 0 : static_cast<unsigned char>(text.front());
}

/// The number that the text begins with, or 0.
double numberIn(const std::string& text) {
  const size_t start = text.find_first_not_of(" \t");
  // from_chars alone would also take names of infinity and not-a-number.
  if (start == std::string::npos || text.find_first_of("0123456789.", start) > start + 1) return 0;
  double number = 0;
  const size_t sign = text[start] == '+' ? 1 : 0;
  std::from_chars(text.data() + start + sign, text.data() + text.size(), number);
  return number;
}

void addText(Builder& list) {
  list.add("Str(value As Variant) As String", [](Arguments a) { return textOf(a[0]); });
  list.add("CStr(value As Variant) As String", [](Arguments a) { return textOf(a[0]); });
  list.add("Val(text As String) As Double", [](Arguments a) { return numberIn(textAt(a, 0)); });
  list.add("CDbl(text As String) As Double", [](Arguments a) { return numberIn(textAt(a, 0)); });
  list.add("CDbl(number As Double) As Double", [](Arguments a) { return realAt(a, 0); });
  list.add("Len(text As String) As Integer",
           [](Arguments a) { return static_cast<int32_t>(textAt(a, 0).size()); });
  list.add("Mid(text As String, start As Integer, length As Integer = 2147483647) As String",
           [](Arguments a) { return part(textAt(a, 0), integerAt(a, 1), integerAt(a, 2)); });
  list.add("Left(text As String, length As Integer) As String",
           [](Arguments a) { return part(textAt(a, 0), 1, integerAt(a, 1)); });
  list.add("Right(text As String, length As Integer) As String",
           [](Arguments a) { return lastPart(textAt(a, 0), integerAt(a, 1)); });
  list.add("InStr(text As String, wanted As String) As Integer",
           [](Arguments a) { return indexOf(textAt(a, 0), textAt(a, 1), 1); });
  list.add("InStr(start As Integer, text As String, wanted As String) As Integer",
           [](Arguments a) { return indexOf(textAt(a, 1), textAt(a, 2), integerAt(a, 0)); });
  list.add("Uppercase(text As String) As String",
           [](Arguments a) { return mapped(textAt(a, 0), 'a', 'A'); });
  list.add("Lowercase(text As String) As String",
           [](Arguments a) { return mapped(textAt(a, 0), 'A', 'a'); });
  list.add("Chr(code As Integer) As String",
           [](Arguments a) { return character(integerAt(a, 0)); });
  list.add("Asc(text As String) As Integer", [](Arguments a) { return codeOf(textAt(a, 0)); });
}

// ---- Surroundings

double microseconds() {
  const auto now = std::chrono::steady_clock::now().time_since_epoch();
  return std::chrono::duration<double, std::micro>(now).count();
}

std::string argumentAt(const std::vector<std::string>& arguments, int32_t index) {
  if (index < 0 || static_cast<size_t>(index) >= arguments.size()) {
    raise("OutOfBoundsException", "there is no argument " + std::to_string(index) + " among " +
                                      std::to_string(arguments.size()));
  }
  return arguments[static_cast<size_t>(index)];
}

void addSurroundings(Builder& list, const std::vector<std::string>& scriptArguments) {
  list.add("Microseconds As Double", [](Arguments) { return microseconds(); });
  list.add("Rnd As Double",
           [generator = std::mt19937{}](Arguments) mutable { return generator() / 4294967296.0; });
  list.add("ArgumentCount As Integer",
           [&scriptArguments](Arguments) { return static_cast<int32_t>(scriptArguments.size()); });
  list.add("Argument(index As Integer) As String", [&scriptArguments](Arguments a) {
    return argumentAt(scriptArguments, integerAt(a, 0));
  });
}

}  // namespace

std::vector<Member> builtInFunctions(const std::vector<std::string>& scriptArguments) {
  Builder list;
  addNumbers(list);
  addText(list);
  addSurroundings(list, scriptArguments);
  return list.take();
}

}  // namespace host
