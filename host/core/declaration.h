// Declarations of members in the host's language, as the plug-in registers
// them: "CountColorQRZ(col as color) as integer".
#pragma once

#include <optional>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

#include "host/core/value.h"

namespace host {

/// A declared type. Objects keep the class name as it was written.
struct Type {
  enum class Kind { Integer, Double, Boolean, Color, String, Object };
  Kind kind = Kind::Integer;
  std::string className;

  /// The type as the language spells it: "Integer", "Double", "Picture", …
  [[nodiscard]] std::string name() const;
  /// The value that a variable of the type starts with: 0, 0.0, false, &c000000, "" or Nil.
  [[nodiscard]] Value initialValue() const;
};

/// "integer" → Integer, "color" → Color, anything else an object class. Case does not matter.
Type typeNamed(std::string_view name);

struct Parameter {
  std::string name;
  Type type;
  bool byRef = false;
  std::optional<Value> defaultValue;
};

struct Declaration {
  std::string text;  ///< exactly as it was given
  std::string name;
  std::vector<Parameter> parameters;
  std::optional<Type> result;
};

class DeclarationError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Parses `Name[(parameters)] [As Type]`; throws DeclarationError, which says
/// what was expected and where.
Declaration parseDeclaration(std::string_view text);

/// ASCII case-insensitive comparison, as all names of the language compare.
bool sameName(std::string_view left, std::string_view right);

}  // namespace host
