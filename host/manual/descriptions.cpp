#include <algorithm>

#include "host/files/markup.h"
#include "host/manual/groups.h"

namespace host {
namespace {

bool describes(const Description& description, std::string_view className, const Member& member) {
  return sameName(description.className, className) &&
         description.declaration == member.declaration.text;
}

std::string fullName(std::string_view className, std::string_view declaration) {
  return std::string(className) + (className.empty() ? "" : ".") + std::string(declaration);
}

/// What a member takes, in the words of its declaration.
std::vector<std::string> declaredNames(const Member& member) {
  std::vector<std::string> names;
  for (const Parameter& parameter : member.declaration.parameters) names.push_back(parameter.name);
  if (member.assign) names.emplace_back("value");
  return names;
}

bool endsAsSentence(std::string_view text) { return text.ends_with('.'); }

void checkDescription(const Description& description, const Member& member,
                      std::vector<std::string>& faults) {
  const auto complain = [&](const std::string& what) {
    faults.push_back(fullName(description.className, description.declaration) + ": " + what);
  };
  std::vector<std::string> names;
  for (const Argument& argument : description.arguments) {
    names.emplace_back(argument.name);
    if (argument.meaning.empty() || argument.range.empty()) {
      complain("'" + names.back() + "' has no meaning or no range");
    }
  }
  if (names != declaredNames(member)) complain("the arguments are not those of the declaration");
  if (!endsAsSentence(description.summary)) complain("the summary is no sentence");
  if (!endsAsSentence(description.failure)) complain("the failure is no sentence");
  if (description.examples.empty()) complain("there is no example");
  for (const Example& example : description.examples) {
    if (!endsAsSentence(example.note)) complain("the note of an example is no sentence");
  }
}

void checkMembers(std::string_view className, const std::vector<Member>& members,
                  std::vector<std::string>& faults, size_t& found) {
  for (const Member& member : members) {
    if (!member.isRegistered) continue;
    const Description* description = findDescription(className, member);
    if (description == nullptr) {
      faults.push_back(fullName(className, member.declaration.text) + ": has no description");
      continue;
    }
    ++found;
    checkDescription(*description, member, faults);
  }
}

/// The program's lines without their indentation.
std::vector<std::string_view> linesOf(std::string_view program) {
  std::vector<std::string_view> lines;
  while (!program.empty()) {
    const size_t end = std::min(program.find('\n'), program.size());
    const std::string_view line = program.substr(0, end);
    lines.push_back(line.substr(std::min(line.find_first_not_of(' '), line.size())));
    program.remove_prefix(std::min(end + 1, program.size()));
  }
  return lines;
}

}  // namespace

std::span<const DescriptionGroup> descriptionGroups() {
  static const DescriptionGroup kGroups[] = {
      {"Tone", toneMembers()},
      {"Colour", colorMembers()},
      {"Channels", channelMembers()},
      {"Masks", maskMembers()},
      {"Search", searchMembers()},
      {"Scrolling", scrollingMembers()},
      {"Filters", filterMembers()},
      {"Waveform", waveformMembers()},
      {"Data exchange", dataExchangeMembers()},
  };
  return kGroups;
}

const Description* findDescription(std::string_view className, const Member& member) {
  for (const DescriptionGroup& group : descriptionGroups()) {
    for (const Description& description : group.members) {
      if (describes(description, className, member)) return &description;
    }
  }
  return nullptr;
}

std::vector<std::string> descriptionFaults(Registry& registry) {
  std::vector<std::string> faults;
  size_t found = 0;
  for (const Class& entry : registry.classes()) {
    checkMembers(entry.name, entry.members, faults, found);
  }
  checkMembers("", registry.globals(), faults, found);
  size_t described = 0;
  for (const DescriptionGroup& group : descriptionGroups()) described += group.members.size();
  if (described != found) {
    faults.push_back(std::to_string(described) + " descriptions are of " + std::to_string(found) +
                     " registered members");
  }
  return faults;
}

std::string shownName(const Description& description) {
  const std::string name = parseDeclaration(description.declaration).name;
  const bool isExtension = sameName(description.className, "Picture") ||
                           sameName(description.className, "Graphics") ||
                           description.className.empty();
  return isExtension ? name : fullName(description.className, name);
}

std::string lineOf(const Example& example) {
  std::string text;
  for (const std::string_view line : linesOf(example.program)) {
    text.append(text.empty() ? "" : "; ").append(line);
  }
  return text;
}

std::string commandOf(const Example& example) {
  std::string command = "./run apply " + shellQuoted(lineOf(example));
  if (!example.sample.empty()) command.append(" sample:").append(example.sample);
  return example.makesPicture ? command + " -o out.png" : command;
}

}  // namespace host
