#include "host/script/innate.h"

#include "host/core/declaration.h"
#include "host/core/exception.h"

namespace host {

std::optional<Value> innateMember(const Value& owner, const std::string& name) {
  if (const auto* color = std::get_if<Color>(&owner)) {
    if (sameName(name, "Red")) return Value{static_cast<int32_t>(color->rgb >> 16 & 0xFF)};
    if (sameName(name, "Green")) return Value{static_cast<int32_t>(color->rgb >> 8 & 0xFF)};
    if (sameName(name, "Blue")) return Value{static_cast<int32_t>(color->rgb & 0xFF)};
  }
  const auto* exception = objectAs<ExceptionObject>(owner);
  if (exception != nullptr && sameName(name, "Message")) return Value{exception->message};
  return std::nullopt;
}

std::vector<std::string> innateNames(const Value& owner) {
  if (std::holds_alternative<Color>(owner)) return {"Red", "Green", "Blue"};
  if (objectAs<ExceptionObject>(owner) != nullptr) return {"Message"};
  return {};
}

}  // namespace host
