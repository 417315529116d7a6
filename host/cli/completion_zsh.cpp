#include "host/cli/completion.h"
#include "host/cli/definitions.h"
#include "host/files/markup.h"

namespace host {
namespace {

constexpr const char* kValues = R"zsh(
_qrz_member() {
  local -aU names=(${(f)"$(_qrz_members)"})
  compadd "$@" -a names
}

_qrz_picture() {
  _alternative 'pictures:built-in picture:compadd -a _qrz_pictures' 'files:picture:_files'
}
)zsh";

constexpr const char* kEngine = R"zsh(
_qrz() {
  _qrz_is_meant "$words[1]" || return 1
  _compskip=all
  local curcontext=$curcontext context state state_desc line
  local -A opt_args
  _arguments -C -S $_qrz_options ':command:->command' '*::argument:->argument' && return
  case $state in
    command) _describe -t commands command _qrz_commands ;;
    argument) (( $+functions[_qrz-$words[1]] )) && _qrz-$words[1] ;;
  esac
}

(( $+functions[compdef] )) || { autoload -Uz compinit && compinit }
compdef _qrz qrz -p '*/run'
)zsh";

/// The text where characters that end a part of an entry must not.
std::string entryText(const std::string& text) { return backslashed(text, "[]:\\"); }

std::string actionFor(const std::string& typeName) {
  if (const auto choices = choicesOf(typeName); !choices.empty()) {
    return "(" + joined(choices, " ") + ")";
  }
  if (typeName == "FILE") return "_files";
  if (typeName == "FOLDER") return "_path_files -/";
  if (typeName == "PROGRAM") return "_files -g \"*.rbs\"";
  if (typeName == "PICTURE") return "_qrz_picture";
  if (typeName == "MEMBER") return "_qrz_member";
  return "()";  // nothing, but a message would leave out options
}

/// "-o+" and "--output=": the value may be in the same word.
std::string valuedName(const std::string& name) {
  return name + (name.starts_with("--") ? "=" : "+");
}

/// The entries of an option for _arguments, one for each of its names.
std::string optionEntries(const CLI::Option& option) {
  const std::vector<std::string> names = namesOf(option);
  std::string text;
  for (const std::string& name : names) {
    std::string entry = takesMany(option) ? "*" : "(" + joined(names, " ") + ")";
    entry += takesValue(option) ? valuedName(name) : name;
    entry += "[" + entryText(option.get_description()) + "]";
    if (takesValue(option)) {
      entry += ":" + entryText(option.get_type_name()) + ":";
      entry += actionFor(option.get_type_name());
    }
    text += "  " + shellQuoted(entry) + "\n";
  }
  return text;
}

std::string argumentEntry(const CLI::Option& argument, const std::string& name) {
  return "  " +
         shellQuoted((takesMany(argument) ? "*:" : ":") + entryText(name) + ":" +
                     actionFor(argument.get_type_name())) +
         "\n";
}

/// The arguments of a command. If these have an end, values of an option after its first count as
/// such; _arguments would complete no option after them otherwise.
std::string argumentLines(const CLI::App& command) {
  std::string text;
  const Options arguments = argumentsOf(command);
  for (const CLI::Option* argument : arguments) {
    text += argumentEntry(*argument, argument->get_name(true));
  }
  if (!arguments.empty() && takesMany(*arguments.back())) return text;
  for (const CLI::Option* option : optionsOf(command)) {
    if (!takesMany(*option)) continue;
    return text + argumentEntry(*option, option->get_type_name());
  }
  return text;
}

/// The lines of all options of a program or command.
std::string optionLines(const CLI::App& app) {
  std::string text;
  for (const CLI::Option* option : optionsOf(app)) text += optionEntries(*option);
  return text;
}

std::string commandFunction(const CLI::App& command) {
  std::string text = "\n_qrz-" + command.get_name() + "() {\n  local -a entries=(\n";
  text += optionLines(command);
  text += argumentLines(command);
  return text + "  )\n  _arguments -S $_qrz_options $entries\n}\n";
}

}  // namespace

std::string zshCompletion(const CLI::App& app, const std::string& program) {
  std::string commands;
  std::string functions;
  for (const CLI::App* command : commandsOf(app)) {
    commands += "  " +
                shellQuoted(entryText(command->get_name()) + ":" +
                            paragraphsOf(command->get_description()).front()) +
                "\n";
    functions += commandFunction(*command);
  }
  std::string pictures;
  for (const std::string& name : builtInPictures()) pictures += " " + shellQuoted(name);
  return "# Completion of qrz for zsh: source <(qrz completion zsh)\n\n" +
         completionFunctions(program) + "\ntypeset -ga _qrz_pictures=(" + pictures + " )\n" +
         "\n# What every command takes.\ntypeset -ga _qrz_options=(\n" + optionLines(app) +
         ")\n\ntypeset -ga _qrz_commands=(\n" + commands + ")\n" + kValues + functions + kEngine;
}

}  // namespace host
