#include "host/bench/members.h"

#include <algorithm>
#include <stdexcept>

#include "host/core/runtime.h"

namespace host {
namespace {

bool hasOverloads(const std::vector<Member>& members, const Member& member) {
  return std::ranges::count_if(members, [&member](const Member& other) {
           return other.isRegistered && sameName(other.declaration.name, member.declaration.name);
         }) > 1;
}

std::string parameterNames(const Declaration& declaration) {
  std::string names;
  for (const Parameter& parameter : declaration.parameters) {
    names += (names.empty() ? "" : ", ") + parameter.name;
  }
  return names.empty() ? names : "(" + names + ")";
}

void addNamed(std::vector<NamedMember>& named, const std::string& prefix,
              const std::vector<Member>& members) {
  for (const Member& member : members) {
    if (!member.isRegistered) continue;
    const std::string parameters =
        hasOverloads(members, member) ? parameterNames(member.declaration) : "";
    named.push_back({prefix + member.declaration.name + parameters, &member});
  }
}

}  // namespace

std::vector<NamedMember> registeredMembers() {
  std::vector<NamedMember> named;
  for (const Class& entry : runtime().registry.classes()) {
    addNamed(named, entry.isRegistered ? entry.name + "." : "", entry.members);
  }
  addNamed(named, "", runtime().registry.globals());
  return named;
}

const Member& memberOf(std::string_view className, std::string_view name) {
  if (const Class* found = runtime().registry.findClass(className)) {
    for (const Member& member : found->members) {
      if (sameName(member.declaration.name, name)) return member;
    }
  }
  throw std::runtime_error(std::string(className) + "." + std::string(name) + " is not registered");
}

}  // namespace host
