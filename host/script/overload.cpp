#include "host/script/overload.h"

#include <optional>
#include <utility>

#include "host/script/conversion.h"

namespace host {
namespace {

/// Sum of the conversions' costs, and the number of defaults; nothing if the
/// arguments do not fit.
using Cost = std::optional<std::pair<int, size_t>>;

Cost callCost(const Declaration& declaration, std::span<const Value> arguments) {
  const auto& parameters = declaration.parameters;
  if (arguments.size() > parameters.size()) return std::nullopt;
  int sum = 0;
  for (size_t i = 0; i < arguments.size(); ++i) {
    const std::optional<int> cost = conversionCost(arguments[i], parameters[i].type);
    if (!cost) return std::nullopt;
    sum += *cost;
  }
  for (size_t i = arguments.size(); i < parameters.size(); ++i) {
    if (!parameters[i].defaultValue) return std::nullopt;
  }
  return std::pair{sum, parameters.size() - arguments.size()};
}

std::string typeList(std::span<const Value> arguments) {
  std::string list;
  for (const Value& argument : arguments) {
    if (!list.empty()) list += ", ";
    list += typeNameOf(argument);
  }
  return "(" + list + ")";
}

}  // namespace

Overloads membersNamed(const std::vector<Member>& members, std::string_view name) {
  Overloads overloads;
  for (const Member& member : members) {
    if (sameName(member.declaration.name, name)) overloads.push_back(&member);
  }
  return overloads;
}

const Member* bestOverload(const Overloads& overloads, std::span<const Value> arguments) {
  const Member* best = nullptr;
  Cost lowest;
  for (const Member* member : overloads) {
    const Cost cost = callCost(member->declaration, arguments);
    if (!cost || (lowest && *lowest <= *cost)) continue;
    lowest = cost;
    best = member;
  }
  return best;
}

std::vector<Value> fittedArguments(const Declaration& declaration,
                                   std::span<const Value> arguments) {
  std::vector<Value> fitted;
  for (size_t i = 0; i < declaration.parameters.size(); ++i) {
    const Parameter& parameter = declaration.parameters[i];
    fitted.push_back(i < arguments.size() ? converted(arguments[i], parameter.type).value()
                                          : parameter.defaultValue.value());
  }
  return fitted;
}

std::string misfitMessage(const Overloads& overloads, std::span<const Value> arguments) {
  std::string choices;
  for (const Member* member : overloads) {
    if (!choices.empty()) choices += " or ";
    choices += member->declaration.text;
  }
  return overloads.front()->declaration.name + " does not take " + typeList(arguments) + "; use " +
         choices;
}

}  // namespace host
