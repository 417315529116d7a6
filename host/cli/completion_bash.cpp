#include "host/cli/completion.h"
#include "host/cli/definitions.h"
#include "host/files/markup.h"

namespace host {
namespace {

// For bash 4.4 and later, without the package of completions.
constexpr const char* kEngine = R"bash(
# The words up to the cursor as the user sees them: bash splits them at : and =, too.
_qrz_split() {  # sets words
  local breaks=${COMP_WORDBREAKS//[^:=]/} glue='' i next
  words=()
  for (( i = 1; i <= COMP_CWORD; ++i )); do
    next=${COMP_WORDS[i]}
    if [[ -n $breaks && $next == +([:=]) && i -gt 1 ]]; then
      words[-1]+=$next glue=1
    elif [[ -n $glue && ( -n $next || ${COMP_LINE:0:COMP_POINT} != *[[:blank:]] ) ]]; then
      words[-1]+=$next glue=
    else
      words+=("$next") glue=
    fi
  done
}

# What the words before the last one leave to be said. The command is - before there is one.
_qrz_parse() {  # sets command, only_arguments, kind
  local word position=1
  command=- only_arguments= kind=
  for word in "${words[@]:0:${#words[@]}-1}"; do
    if [[ -z $only_arguments && $word == -- ]]; then
      only_arguments=1 kind=
    elif [[ -z $only_arguments && $word == -?* ]]; then
      kind=${_qrz_takes["$command $word"]-${_qrz_takes["- $word"]-}}
    elif [[ -n $kind ]]; then
      [[ $kind == *... ]] || kind=
    elif [[ $command == - ]]; then
      command=$word
    else
      (( ++position ))
    fi
  done
  [[ -n $kind ]] || kind=${_qrz_takes["$command $position"]-${_qrz_takes["$command *"]-}}
}

# Folders, and the files that match the pattern $1. Bash sees to quotes.
_qrz_files() {
  mapfile -t COMPREPLY < <(compgen -f -X "!$1" -- "$2" && compgen -d -- "$2")
  (( ${#COMPREPLY[@]} == 0 )) || compopt -o filenames
}

# Completes the value $2 of the kind $1.
_qrz_value() {
  case ${1%...} in
    *'|'*) mapfile -t COMPREPLY < <(compgen -W "${1//|/ }" -- "$2") ;;
    FILE) compopt -o default ;;  # bash itself completes files if there is no reply
    FOLDER) compopt -o dirnames ;;
    PROGRAM)
      compopt -o default
      _qrz_files '*.rbs' "$2"
      ;;
    PICTURE)
      local names
      compopt -o default
      mapfile -t names < <(compgen -W "$_qrz_pictures" -- "$2")
      if [[ ${#names[@]} -gt 0 && sample: == "$2"* ]]; then  # so may the names of files begin
        _qrz_files '*' "$2"
      fi
      COMPREPLY+=("${names[@]}")
      ;;
    MEMBER) mapfile -t COMPREPLY < <(compgen -W "$(_qrz_members)" -- "$2") ;;
  esac
}

_qrz() {
  COMPREPLY=()
  if ! _qrz_is_meant "$1"; then
    compopt -o bashdefault -o default
    return
  fi
  local IFS=$' \t\n' words command only_arguments kind
  _qrz_split
  _qrz_parse
  local word=${words[-1]} breaks=${COMP_WORDBREAKS//[^:=]/}
  if [[ -z $only_arguments && $word == --*=* ]]; then
    local name=${word%%=*}
    _qrz_value "${_qrz_takes["$command $name"]-${_qrz_takes["- $name"]-}}" "${word#*=}"
    COMPREPLY=("${COMPREPLY[@]/#/$name=}")
  elif [[ -z $only_arguments && ( $word == -* || -z $kind ) ]]; then
    mapfile -t COMPREPLY < <(compgen -W "${_qrz_options[-]} ${_qrz_options[$command]-}" -- "$word")
  else
    _qrz_value "$kind" "$word"
  fi
  # What stands before a : or = stays, where bash takes them for the ends of words.
  [[ -z $breaks ]] || COMPREPLY=("${COMPREPLY[@]#"${word%"${word##*[$breaks]}"}"}")
}

complete -F _qrz qrz ./run
)bash";

/// One entry of a table.
std::string entry(const std::string& key, const std::string& value) {
  return "  [" + shellQuoted(key) + "]=" + shellQuoted(value) + "\n";
}

std::string kindOf(const CLI::Option& option) {
  return option.get_type_name() + (takesMany(option) ? "..." : "");
}

std::string takesOf(const CLI::App& app, const std::string& command) {
  std::string text;
  for (const CLI::Option* option : optionsOf(app)) {
    if (!takesValue(*option)) continue;
    for (const auto& name : namesOf(*option)) text += entry(command + " " + name, kindOf(*option));
  }
  int position = 0;
  for (const CLI::Option* argument : argumentsOf(app)) {
    const std::string place = takesMany(*argument) ? "*" : std::to_string(++position);
    text += entry(command + " " + place, argument->get_type_name());
  }
  return text;
}

std::string optionsEntry(const CLI::App& app, const std::string& command) {
  std::vector<std::string> names;
  for (const CLI::Option* option : optionsOf(app)) {
    for (const std::string& name : namesOf(*option)) names.push_back(name);
  }
  return entry(command, joined(names, " "));
}

}  // namespace

std::string bashCompletion(const CLI::App& app, const std::string& program) {
  std::string options = optionsEntry(app, "-");
  std::string takes = takesOf(app, "-");
  std::vector<std::string> commands;
  for (const CLI::App* command : commandsOf(app)) {
    commands.push_back(command->get_name());
    options += optionsEntry(*command, command->get_name());
    takes += takesOf(*command, command->get_name());
  }
  takes += entry("- 1", joined(commands, "|"));
  return "# Completion of qrz for bash: source <(qrz completion bash)\n\n" +
         completionFunctions(program) +
         "\n_qrz_pictures=" + shellQuoted(joined(builtInPictures(), " ")) +
         "\n\n# The options of every command; those that all take are under -.\n" +
         "declare -gA _qrz_options=(\n" + options +
         ")\n\n# What follows an option, and what the arguments are; those after the others "
         "under *.\ndeclare -gA _qrz_takes=(\n" +
         takes + ")\n" + kEngine;
}

}  // namespace host
