#include <algorithm>
#include <cstdio>
#include <string>
#include <vector>

#include "host/cli/commands.h"
#include "host/core/runtime.h"
#include "host/manual/member_text.h"
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

/// How much is said of each member.
enum class Detail { Declaration, Summary, Everything };

std::string textOf(const Section& section, const Member& member, Detail detail) {
  const Description* description = findDescription(section.name, member);
  if (description == nullptr || detail == Detail::Declaration) return {};
  return detail == Detail::Summary ? summaryText(*description) : memberText(*description);
}

void print(const Section& section, Detail detail) {
  printf("%s\n", section.title.c_str());
  for (const Member* member : section.members) {
    const char* kind = member->isProperty ? "property  " : "method    ";
    const char* assignable = !member->isProperty && member->assign ? "  (assignable)" : "";
    printf("  %s %s%s%s\n", hex(member->flags).c_str(), kind, member->declaration.text.c_str(),
           assignable);
    fputs(textOf(section, *member, detail).c_str(), stdout);
  }
}

/// Keeps what has the name, which may be "Class.Member", or "self.Member" as in an expression.
std::vector<Section> named(std::vector<Section> sections, const std::string& name) {
  const size_t dot = name.find('.');
  std::string className = dot == std::string::npos ? "" : name.substr(0, dot);
  if (sameName(className, "self")) className = "Picture";
  const std::string memberName = dot == std::string::npos ? name : name.substr(dot + 1);
  for (Section& section : sections) {
    const bool isWanted = className.empty() || sameName(section.name, className);
    std::erase_if(section.members, [&](const Member* member) {
      return !isWanted || !sameName(member->declaration.name, memberName);
    });
  }
  std::erase_if(sections, [](const Section& section) { return section.members.empty(); });
  return sections;
}

/// The class of the name, if there is one.
std::vector<Section> classNamed(std::vector<Section> sections, const std::string& name) {
  std::erase_if(sections, [&name](const Section& section) {
    return section.name.empty() || !sameName(section.name, name);
  });
  return sections;
}

void printAll(const std::vector<Section>& sections, Detail detail) {
  for (const Section& section : sections) print(section, detail);
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
  const std::vector<Section> members = named(sections, name);
  const std::vector<Section> ofClass = classNamed(sections, name);
  if (name.empty()) {
    printAll(sections, Detail::Declaration);
  } else if (!ofClass.empty()) {
    printAll(ofClass, Detail::Summary);
  } else if (!members.empty()) {
    printAll(members, Detail::Everything);
  } else {
    return complainAboutUnknown(name, sections);
  }
  return kDone;
}

}  // namespace host
