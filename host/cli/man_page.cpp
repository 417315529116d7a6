#include "host/cli/man_page.h"

#include <algorithm>
#include <cctype>
#include <cstdio>
#include <sstream>

#include "host/cli/command_line.h"
#include "host/cli/commands.h"
#include "host/cli/definitions.h"

namespace host {
namespace {

/// The character where text shows as it stands, to be copied: roff prints other hyphens, quotes
/// and accents for those of the keyboard.
std::string literal(char c) {
  constexpr std::pair<char, const char*> kEscapes[] = {
      {'\\', "\\e"},  {'-', "\\-"},   {'\'', "\\(aq"}, {'`', "\\(ga"},
      {'"', "\\(dq"}, {'^', "\\(ha"}, {'~', "\\(ti"},
  };
  for (const auto& [plain, escape] : kEscapes) {
    if (c == plain) return escape;
  }
  return {c};
}

std::string literal(const std::string& text) {
  std::string result;
  for (const char c : text) result += literal(c);
  return result;
}

std::string bold(const std::string& text) { return "\\fB" + literal(text) + "\\fR"; }
std::string italic(const std::string& text) { return "\\fI" + literal(text) + "\\fR"; }

/// A word of a sentence; options are literal.
std::string wordOfProse(const std::string& word) {
  const size_t start = word.find_first_not_of("(\"'");
  const bool isOption = start != std::string::npos && word.compare(start, 1, "-") == 0;
  if (isOption) return literal(word);
  return CLI::detail::find_and_replace(word, "\\", "\\e");
}

/// The line, which must not be taken for a request.
std::string textLine(const std::string& line) {
  return (line.starts_with('.') || line.starts_with('\'') ? "\\&" : "") + line + "\n";
}

/// One line of running text; what is between ` and ` is literal.
std::string prose(const std::string& text) {
  std::string result;
  bool isLiteral = false;
  std::istringstream parts(text);
  for (std::string part; std::getline(parts, part, '`'); isLiteral = !isLiteral) {
    if (isLiteral) {
      result += bold(part);
      continue;
    }
    std::string word;
    for (const char c : part) {
      if (c == ' ' || c == '\n') {
        result += wordOfProse(word) + ' ';
        word.clear();
      } else {
        word += c;
      }
    }
    result += wordOfProse(word);
  }
  return textLine(result);
}

std::string withStop(std::string sentence) {
  if (!sentence.ends_with('.')) sentence += '.';
  return sentence;
}

std::string section(const std::string& title) { return ".SH " + title + "\n"; }

/// An entry of a list: the term is in roff already.
std::string listed(const std::string& term, const std::string& description) {
  return ".TP\n" + term + "\n" + prose(description);
}

/// What stands for a value: a name, or what it can be.
std::string valueOf(const CLI::Option& option) {
  const std::string name = option.get_type_name();
  const std::string many = takesMany(option) ? " ..." : "";
  return (choicesOf(name).empty() ? italic(name) : bold(name)) + many;
}

std::string optionEntry(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : namesOf(option)) names.push_back(bold(name));
  return listed(joined(names, ", ") + (takesValue(option) ? " " + valueOf(option) : ""),
                withStop(option.get_description()));
}

/// The argument as help names it, and as in a synopsis.
std::string argumentName(const CLI::Option& argument) {
  return italic(argument.get_name(true)) + (takesMany(argument) ? " ..." : "");
}

std::string argumentUsage(const CLI::Option& argument) {
  return argument.get_required() ? argumentName(argument) : "[" + argumentName(argument) + "]";
}

std::string argumentEntry(const CLI::Option& argument) {
  const bool isChoice = !choicesOf(argument.get_type_name()).empty();
  return listed(argumentName(argument) + (isChoice ? ": " + valueOf(argument) : ""),
                withStop(argument.get_description()));
}

/// The options of a command but --help, which every command has.
Options ownOptions(const CLI::App& command) {
  Options options = optionsOf(command);
  std::erase(options, command.get_help_ptr());
  return options;
}

/// One entry of the synopsis; its parts stay on one line each.
std::string usageOf(const CLI::App& command) {
  std::string text;
  for (const CLI::Option* option : ownOptions(command)) {
    text += "[" + bold(namesOf(*option).front());
    text += (takesValue(*option) ? " " + valueOf(*option) : "") + "]\n";
  }
  for (const CLI::Option* argument : argumentsOf(command)) text += argumentUsage(*argument) + "\n";
  const std::string name = command.get_parent()->get_name() + " " + command.get_name();
  return ".SY \"" + literal(name) + "\"\n" + CLI::detail::find_and_replace(text, " ", "\\ ") +
         ".YS\n";
}

/// Paragraphs of running text, without examples.
std::string proseParagraphs(const std::vector<std::string>& paragraphs) {
  std::string text;
  for (const std::string& paragraph : paragraphs) {
    if (!isExample(paragraph)) text += ".PP\n" + prose(paragraph);
  }
  return text;
}

std::string exampleOf(const std::string& paragraph) {
  std::string text;
  bool isCode = false;
  for (const std::string& line : linesOf(paragraph)) {
    const bool wasCode = isCode;
    isCode = line.starts_with(' ');
    if (isCode && !wasCode) text += ".RS 4\n.nf\n";
    text += isCode ? textLine(literal(line.substr(line.find_first_not_of(' ')))) : prose(line);
  }
  return text + ".fi\n.RE\n";
}

std::string examples(const CLI::App& app) {
  std::vector<const CLI::App*> all = commandsOf(app);
  all.insert(all.begin(), &app);
  std::vector<std::string> entries;
  for (const CLI::App* one : all) {
    for (const std::string& paragraph : paragraphsOf(ownFooter(*one))) {
      if (isExample(paragraph)) entries.push_back(exampleOf(paragraph));
    }
  }
  return entries.empty() ? "" : section("EXAMPLES") + joined(entries, ".PP\n");
}

std::string synopsis(const CLI::App& app) {
  std::string text = section("SYNOPSIS");
  for (const CLI::App* command : commandsOf(app)) text += usageOf(*command);
  return text;
}

std::string commandEntry(const CLI::App& command) {
  const std::vector<std::string> description = paragraphsOf(command.get_description());
  std::string text = ".SS " + command.get_name() + "\n";
  text += prose(withStop(description.front()));
  text += proseParagraphs({description.begin() + 1, description.end()});
  text += proseParagraphs(paragraphsOf(ownFooter(command)));
  for (const CLI::Option* argument : argumentsOf(command)) text += argumentEntry(*argument);
  for (const CLI::Option* option : ownOptions(command)) text += optionEntry(*option);
  return text;
}

void addEnvironment(std::string& text, const CLI::App& app) {
  for (const CLI::Option* option : optionsOf(app)) {
    const std::string name = option->get_envname();
    if (name.empty()) continue;
    text +=
        listed(bold(name), "The value of " + namesOf(*option).back() + " where it is not given.");
  }
}

std::string environment(const CLI::App& app) {
  std::string text;
  addEnvironment(text, app);
  for (const CLI::App* command : commandsOf(app)) addEnvironment(text, *command);
  return text.empty() ? "" : section("ENVIRONMENT") + text;
}

std::string exitStatus() {
  std::string text = section("EXIT STATUS");
  for (const ExitStatus& status : kExitStatuses) {
    text += listed(bold(status.value), status.meaning);
  }
  return text;
}

}  // namespace

std::string manPage(const CLI::App& app) {
  const std::string& name = app.get_name();
  std::string title = name;
  std::ranges::transform(title, title.begin(), [](unsigned char c) { return std::toupper(c); });
  const std::vector<std::string> description = paragraphsOf(app.get_description());
  std::string summary = description.front();
  summary.front() = static_cast<char>(std::tolower(static_cast<unsigned char>(summary.front())));
  if (summary.ends_with('.')) summary.pop_back();

  std::string text =
      ".TH " + title + " 1 " QRZ_RELEASE_DATE " \"" + literal(app.version()) + "\"\n";
  text += section("NAME") + literal(name) + " \\- " + prose(summary) + synopsis(app);
  text += section("DESCRIPTION") + prose(description.front());
  text += proseParagraphs({description.begin() + 1, description.end()});
  text += section("COMMANDS");
  for (const CLI::App* command : commandsOf(app)) text += commandEntry(*command);
  text += section("OPTIONS") + "Every command takes these, before or after its name.\n";
  for (const CLI::Option* option : optionsOf(app)) text += optionEntry(*option);
  return text + environment(app) + exitStatus() + examples(app);
}

int printManPage(const CLI::App& app) {
  fputs(manPage(app).c_str(), stdout);
  return kDone;
}

}  // namespace host
