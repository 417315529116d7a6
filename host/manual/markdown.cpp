#include "host/manual/markdown.h"

#include "host/files/markup.h"

namespace host {
namespace {

/// Text between the bars of a table, or in a paragraph.
std::string plain(const std::string& text) { return backslashed(text, "|*_<>\\`"); }

std::string code(const std::string& text) { return "`" + text + "`"; }

std::string block(const std::string& language, const std::string& text) {
  return "```" + language + "\n" + text + "\n```\n\n";
}

/// The members of a group, one link for each name.
std::string contentsOf(const ShownGroup& group) {
  std::string line = "- **" + plain(group.title) + "**:";
  std::string last;
  for (const ShownMember& member : group.members) {
    if (member.name == last) continue;
    line += (last.empty() ? " [" : ", [") + code(member.name) + "](#" + member.anchor + ")";
    last = member.name;
  }
  return line + "\n";
}

std::string picturesOf(const ShownMember& member, const ShownExample& example) {
  const auto image = [&member](const char* when, const ShownPicture& picture) {
    return "![" + std::string(when) + " " + member.name + "](" + picture.file + ")";
  };
  const bool hasAfter = !example.after.file.empty();
  if (example.before.file.empty()) {
    return hasAfter ? image("Result of", example.after) + "\n\n" : "";
  }
  const std::string after = hasAfter ? image("After", example.after) : code(example.value);
  return "| before | " + std::string(hasAfter ? "after" : "result") + " |\n|---|---|\n| " +
         image("Before", example.before) + " | " + after + " |\n\n";
}

std::string argumentsOf(const ShownMember& member) {
  if (member.arguments.empty()) return "";
  std::string table = "| argument | meaning | range |\n|---|---|---|\n";
  for (const ShownArgument& argument : member.arguments) {
    table += "| " + code(argument.name) + " | " + plain(argument.meaning) + " | " +
             plain(argument.range) + " |\n";
  }
  return table + "\n";
}

std::string textOf(const ShownMember& member) {
  std::string text = "<a id=\"" + member.anchor + "\"></a>\n\n### " + plain(member.name) + "\n\n" +
                     plain(member.summary) + "\n\n" + block("", member.declaration) +
                     argumentsOf(member) + "Failure: " + plain(member.failure) + "\n\n";
  for (const ShownExample& example : member.examples) {
    text += plain(example.note) + "\n\n" + picturesOf(member, example) +
            block("", example.program) + block("sh", example.command);
  }
  return text;
}

}  // namespace

std::string manualMarkdown(const std::vector<ShownGroup>& groups) {
  std::string text =
      "# Members\n\n"
      "All that the plug-in registers, with a line to try for each. `self` is the picture; "
      "`./run members NAME` tells the same in a terminal, and `./run` makes a page of it with a "
      "search field. Made by `./run manual docs`.\n\n"
      "Unless it says otherwise, a picture that a member gives is new and has no mask, and those "
      "that it takes stay as they are. Called on a picture that is Nil, members give what "
      "they give for a failure, but programs in qrz get a NilObjectException before. A picture "
      "cannot be read if there is no memory for the copy that its kind takes, or if it is PICT "
      "data and the host does not make its pictures as GWorlds (`--pictures`).\n\n";
  for (const ShownGroup& group : groups) text += contentsOf(group);
  for (const ShownGroup& group : groups) {
    text += "\n## " + plain(group.title) + "\n\n";
    for (const ShownMember& member : group.members) text += textOf(member);
  }
  while (text.ends_with("\n\n")) text.pop_back();
  return text;
}

}  // namespace host
