#include "host/core/declaration.h"

#include <algorithm>
#include <charconv>
#include <cmath>
#include <cstddef>

namespace host {
namespace {

char lowered(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

bool isDigit(char c) { return c >= '0' && c <= '9'; }

bool isNameCharacter(char c) {
  const char lower = lowered(c);
  return (lower >= 'a' && lower <= 'z') || isDigit(c) || c == '_';
}

/// Reads one declaration from left to right.
class DeclarationParser {
 public:
  explicit DeclarationParser(std::string_view text) : text_(text) {}

  Declaration parse();

 private:
  [[noreturn]] void failExpecting(const std::string& what) const;
  void skipBlanks();
  char peek();
  bool take(char symbol);
  bool takeWord(std::string_view word);
  void expect(char symbol);
  void expectAs();
  std::string name(const char* what);
  std::vector<Parameter> parameters();
  Parameter parameter();
  Value defaultValue(const Type& type);
  Value literal();
  Value word();
  Value hexadecimal();
  Value number();
  Value quotedText();

  std::string_view text_;
  size_t position_ = 0;
};

void DeclarationParser::failExpecting(const std::string& what) const {
  throw DeclarationError("expected " + what + " at column " + std::to_string(position_ + 1) +
                         " of \"" + std::string(text_) + "\"");
}

void DeclarationParser::skipBlanks() {
  while (position_ < text_.size() && (text_[position_] == ' ' || text_[position_] == '\t')) {
    ++position_;
  }
}

/// The next character that is no blank, or 0 at the end.
char DeclarationParser::peek() {
  skipBlanks();
  return position_ < text_.size() ? text_[position_] : '\0';
}

bool DeclarationParser::take(char symbol) {
  if (peek() != symbol) return false;
  ++position_;
  return true;
}

bool DeclarationParser::takeWord(std::string_view word) {
  skipBlanks();
  const size_t end = position_ + word.size();
  if (!sameName(text_.substr(position_, word.size()), word)) return false;
  if (end < text_.size() && isNameCharacter(text_[end])) return false;
  position_ = end;
  return true;
}

void DeclarationParser::expect(char symbol) {
  if (!take(symbol)) failExpecting(std::string{'\'', symbol, '\''});
}

void DeclarationParser::expectAs() {
  if (!takeWord("As")) failExpecting("'As'");
}

std::string DeclarationParser::name(const char* what) {
  if (!isNameCharacter(peek()) || isDigit(peek())) failExpecting(what);
  const size_t start = position_;
  while (position_ < text_.size() && isNameCharacter(text_[position_])) ++position_;
  return std::string(text_.substr(start, position_ - start));
}

Declaration DeclarationParser::parse() {
  Declaration declaration;
  declaration.text = text_;
  declaration.name = name("a name");
  if (take('(')) declaration.parameters = parameters();
  if (takeWord("As")) declaration.result = typeNamed(name("a type"));
  skipBlanks();
  if (position_ < text_.size()) failExpecting("the end");
  return declaration;
}

std::vector<Parameter> DeclarationParser::parameters() {
  std::vector<Parameter> list;
  if (take(')')) return list;
  do {
    list.push_back(parameter());
    const bool isTrailing = list.back().defaultValue.has_value();
    if (list.size() > 1 && list[list.size() - 2].defaultValue && !isTrailing) {
      failExpecting("a default value, because the parameter before has one,");
    }
  } while (take(','));
  expect(')');
  return list;
}

Parameter DeclarationParser::parameter() {
  Parameter result;
  result.byRef = takeWord("ByRef");
  if (!result.byRef) takeWord("ByVal");
  result.name = name("a parameter name");
  expectAs();
  result.type = typeNamed(name("a type"));
  if (take('=')) result.defaultValue = defaultValue(result.type);
  return result;
}

Value DeclarationParser::defaultValue(const Type& type) {
  skipBlanks();
  const size_t start = position_;
  Value value = literal();
  const auto* integer = std::get_if<int32_t>(&value);
  if (integer != nullptr && type.kind == Type::Kind::Double) {
    return Value{static_cast<double>(*integer)};
  }
  if (value.index() == type.initialValue().index()) return value;
  position_ = start;
  failExpecting("a default value of type " + type.name());
}

Value DeclarationParser::literal() {
  const char next = peek();
  if (next == '"') return quotedText();
  if (next == '&') return hexadecimal();
  if (isDigit(next) || next == '-' || next == '.') return number();
  return word();
}

Value DeclarationParser::word() {
  if (takeWord("True")) return Value{true};
  if (takeWord("False")) return Value{false};
  if (takeWord("Nil")) return Value{Nil{}};
  failExpecting("a default value");
}

/// "&cRRGGBB" for a colour, "&hFF" for an integer.
Value DeclarationParser::hexadecimal() {
  const bool isColor = sameName(text_.substr(position_, 2), "&c");
  const bool isInteger = sameName(text_.substr(position_, 2), "&h");
  if (!isColor && !isInteger) failExpecting("'&c' or '&h'");
  const char* const begin = text_.data() + position_ + 2;
  const char* const end = text_.data() + text_.size();
  uint32_t bits = 0;
  const auto [rest, error] = std::from_chars(begin, end, bits, 16);
  if (error != std::errc{} || (isColor && rest - begin != 6)) {
    failExpecting(isColor ? "six hexadecimal digits after '&c'" : "up to eight hexadecimal digits");
  }
  position_ = static_cast<size_t>(rest - text_.data());
  return isColor ? Value{Color{bits}} : Value{static_cast<int32_t>(bits)};
}

Value DeclarationParser::number() {
  const char* const begin = text_.data() + position_;
  const char* const end = text_.data() + text_.size();
  double real = 0.0;
  const auto [realEnd, realError] = std::from_chars(begin, end, real);
  // Infinity and what is no number have no digits behind the sign.
  if (realError != std::errc{} || !std::isfinite(real)) failExpecting("a number");
  int32_t integer = 0;
  const auto [integerEnd, integerError] = std::from_chars(begin, end, integer);
  position_ = static_cast<size_t>(realEnd - text_.data());
  const bool isInteger = integerEnd == realEnd && integerError == std::errc{};
  return isInteger ? Value{integer} : Value{real};
}

Value DeclarationParser::quotedText() {
  std::string result;
  do {
    ++position_;
    const size_t quote = text_.find('"', position_);
    if (quote == std::string_view::npos) failExpecting("a string that ends with '\"'");
    result += text_.substr(position_, quote - position_);
    position_ = quote + 1;
    // A doubled quote stands for a quote in the string, which then goes on.
    if (position_ < text_.size() && text_[position_] == '"') result += '"';
  } while (position_ < text_.size() && text_[position_] == '"');
  return Value{std::move(result)};
}

}  // namespace

std::string Type::name() const {
  switch (kind) {
    case Kind::Integer:
      return "Integer";
    case Kind::Double:
      return "Double";
    case Kind::Boolean:
      return "Boolean";
    case Kind::Color:
      return "Color";
    case Kind::String:
      return "String";
    case Kind::Object:
      break;
  }
  return className;
}

Value Type::initialValue() const {
  switch (kind) {
    case Kind::Integer:
      return Value{int32_t{0}};
    case Kind::Double:
      return Value{0.0};
    case Kind::Boolean:
      return Value{false};
    case Kind::Color:
      return Value{Color{}};
    case Kind::String:
      return Value{std::string{}};
    case Kind::Object:
      break;
  }
  return Value{Nil{}};
}

Type typeNamed(std::string_view name) {
  constexpr Type::Kind kinds[] = {Type::Kind::Integer, Type::Kind::Double, Type::Kind::Boolean,
                                  Type::Kind::Color, Type::Kind::String};
  for (const Type::Kind kind : kinds) {
    Type type{kind, {}};
    if (sameName(name, type.name())) return type;
  }
  return Type{Type::Kind::Object, std::string(name)};
}

Declaration parseDeclaration(std::string_view text) { return DeclarationParser(text).parse(); }

bool sameName(std::string_view left, std::string_view right) {
  return left.size() == right.size() &&
         std::equal(left.begin(), left.end(), right.begin(),
                    [](char a, char b) { return lowered(a) == lowered(b); });
}

}  // namespace host
