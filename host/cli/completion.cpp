#include "host/cli/completion.h"

#include <cstdio>
#include <filesystem>

#include "host/cli/commands.h"
#include "host/files/markup.h"
#include "host/samples/samples.h"

namespace host {
namespace {

constexpr const char* kFunctions = R"shell(
# The names of all members and classes, a line each; members of a class also with its name.
_qrz_members() {
  local first second third rest owner=
  "$_qrz_program" members 2>/dev/null </dev/null | while read -r first second third rest; do
    third=${third%%\(*}
    case $first in
      class)
        owner=$second
        printf '%s\n' "$owner"
        ;;
      extension)
        owner=
        printf '%s\n' "$third"
        ;;
      global) owner= ;;
      0x*) printf '%s\n' "$third" ${owner:+"$owner.$third"} ;;
    esac
  done
}

# Whether the command is qrz: by that name, or the ./run that starts this very one.
_qrz_is_meant() {
  [[ ${1##*/} == qrz || $1 -ef ${_qrz_program%/*/*/*}/run ]]
}
)shell";

}  // namespace

std::string completionFunctions(const std::string& program) {
  return "_qrz_program=" + shellQuoted(program) + "\n" + kFunctions;
}

std::vector<std::string> builtInPictures() {
  std::vector<std::string> names;
  for (const Sample& sample : samples()) names.push_back("sample:" + std::string(sample.name));
  return names;
}

int printCompletion(const CLI::App& app, const std::string& shell) {
  const std::string program = std::filesystem::read_symlink("/proc/self/exe").string();
  const auto script = shell == "zsh" ? &zshCompletion : &bashCompletion;
  fputs(script(app, program).c_str(), stdout);
  return kDone;
}

}  // namespace host
