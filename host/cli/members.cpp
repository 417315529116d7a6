#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "host/cli/commands.h"
#include "host/core/runtime.h"
#include "host/script/suggest.h"

namespace host {
namespace {

/// Members of one class, or the global methods.
struct Section {
  std::string title;
  std::string name;
  std::vector<const Member*> members;
};

std::string hex(uint32_t flags) {
  char text[16];
  snprintf(text, sizeof text, "0x%05X", flags);
  return text;
}

std::vector<const Member*> registered(const std::vector<Member>& members) {
  std::vector<const Member*> result;
  for (const Member& member : members) {
    if (member.isRegistered) result.push_back(&member);
  }
  return result;
}

std::vector<Section> allSections() {
  std::vector<Section> classes;
  std::vector<Section> extensions;
  for (const Class& entry : runtime().registry.classes()) {
    auto members = registered(entry.members);
    if (entry.isRegistered) {
      classes.push_back({"class " + entry.name + "  flags " + hex(entry.flags) +
                             ", instance data " + std::to_string(entry.dataSize) + " bytes",
                         entry.name, std::move(members)});
    } else if (!members.empty()) {
      extensions.push_back({"extension of " + entry.name, entry.name, std::move(members)});
    }
  }
  std::ranges::move(extensions, std::back_inserter(classes));
  auto globals = registered(runtime().registry.globals());
  if (!globals.empty()) classes.push_back({"global methods", "", std::move(globals)});
  return classes;
}

void print(const Section& section) {
  printf("%s\n", section.title.c_str());
  for (const Member* member : section.members) {
    const char* kind = member->isProperty ? "property  " : "method    ";
    const char* assignable = !member->isProperty && member->assign ? "  (assignable)" : "";
    printf("  %s %s%s%s\n", hex(member->flags).c_str(), kind, member->declaration.text.c_str(),
           assignable);
  }
}

/// Keeps what has the name; a class of the name keeps all its members.
std::vector<Section> named(std::vector<Section> sections, const std::string& name) {
  for (Section& section : sections) {
    if (sameName(section.name, name)) continue;
    std::erase_if(section.members, [&name](const Member* member) {
      return !sameName(member->declaration.name, name);
    });
  }
  std::erase_if(sections, [](const Section& section) { return section.members.empty(); });
  return sections;
}

int complainAboutUnknown(const std::string& name, const std::vector<Section>& sections) {
  std::vector<std::string> names;
  for (const Section& section : sections) {
    if (!section.name.empty()) names.push_back(section.name);
    for (const Member* member : section.members) names.push_back(member->declaration.name);
  }
  const std::string nearest = suggestion(name, names);
  complain("no member or class is named '" + name + "'" +
           (nearest.empty() ? "; `qrz members` lists all" : nearest));
  return kFailed;
}

}  // namespace

int listMembers(const std::string& name) {
  const std::vector<Section> sections = allSections();
  const std::vector<Section> wanted = name.empty() ? sections : named(sections, name);
  if (wanted.empty()) return complainAboutUnknown(name, sections);
  for (const Section& section : wanted) print(section);
  return kDone;
}

}  // namespace host
