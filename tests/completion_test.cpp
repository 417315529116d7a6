// What completes qrz's command lines in real shells, and the manual page.

#include <poll.h>
#include <pty.h>
#include <sys/wait.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <filesystem>
#include <regex>

#include "host/cli/command_line.h"
#include "host/cli/definitions.h"
#include "tests/support/command.h"

namespace host {
namespace {

/// An interactive shell, with the completion of this build and the examples' folder beside it.
class Shell {
 public:
  Shell(const std::string& name, const std::string& home, const std::string& folder) {
    process_ = forkpty(&terminal_, nullptr, nullptr, nullptr);
    if (process_ == 0) {
      setenv("TERM", "dumb", 1);
      setenv("ZDOTDIR", home.c_str(), 1);
      setenv("HOME", home.c_str(), 1);
      if (chdir(folder.c_str()) != 0) _exit(127);
      if (name == "zsh") execlp("zsh", "zsh", "-f", "-i", nullptr);
      execlp("bash", "bash", "--noprofile", "--norc", "-i", nullptr);
      _exit(127);
    }
    const std::string folders = "PATH=" QRZ_BUILD_FOLDER ":$PATH; ";
    const std::string say = R"(say() { printf '<%s>' "$@"; echo '{end''}'; }; )";
    static_cast<void>(answer(folders + say + "bindkey -e 2>/dev/null; source <(qrz completion " +
                             name + "); say"));
  }
  Shell(const Shell&) = delete;
  Shell& operator=(const Shell&) = delete;
  ~Shell() {
    kill(process_, SIGKILL);
    waitpid(process_, nullptr, 0);
    close(terminal_);
  }

  /// What becomes of the text with a tab typed after it: "<each><word>". A folder's name may end
  /// with a slash, or not.
  std::string complete(const std::string& text) {
    // To the line's beginning, so that the shell says the words instead of running them.
    const std::string shown = answer(text + "\t\001say ");
    return std::regex_replace(shown.substr(shown.rfind('\n') + 1), std::regex("/>"), ">");
  }

 private:
  std::string answer(const std::string& line) {
    const std::string typed = line + "\r";
    EXPECT_EQ(write(terminal_, typed.data(), typed.size()), static_cast<ssize_t>(typed.size()));
    std::string output;
    pollfd ready{terminal_, POLLIN, 0};
    while (output.find("{end}") == std::string::npos && poll(&ready, 1, 20'000) > 0) {
      std::array<char, 4096> buffer{};
      const ssize_t count = read(terminal_, buffer.data(), buffer.size());
      if (count <= 0) break;
      output.append(buffer.data(), static_cast<size_t>(count));
    }
    const size_t end = output.find("{end}");
    EXPECT_NE(end, std::string::npos) << line << "\n" << output;
    return output.substr(0, end);
  }

  int process_ = -1;
  int terminal_ = -1;
};

/// What stands after `start`, up to what matches `end`.
std::string textBetween(const std::string& text, const std::string& start, const std::string& end) {
  const size_t at = text.find(start);
  EXPECT_NE(at, std::string::npos) << start;
  if (at == std::string::npos) return "";
  const std::string rest = text.substr(at + start.size());
  std::smatch match;
  return std::regex_search(rest, match, std::regex(end)) ? match.prefix().str() : rest;
}

/// The manual page as a program shows it.
Outcome manThrough(const std::string& program) {
  return runCommand("(" QRZ_BUILD_FOLDER "/qrz man | LC_ALL=C.UTF-8 MANWIDTH=80 " + program + ")");
}

class CompletionTest : public FolderTest, public testing::WithParamInterface<std::string> {
 protected:
  void SetUp() override {
    FolderTest::SetUp();
    for (const char* name :
         {"my photo.png", "swap.rbs", "swapped.png", "salt.png", "other.so", "it's.rbs"}) {
      write(name, "");
    }
    for (const char* name : {"pages", "a b"}) std::filesystem::create_directory(path(name));
    write("pages/sub.txt", "");
    write("a b/x y.rbs", "");
    write("a b/x z.png", "");
  }
};

TEST_P(CompletionTest, CompletesWhatMayStandThere) {
  const std::string build = QRZ_BUILD_FOLDER "/";
  const std::pair<std::string, std::string> lines[] = {
      {"qrz memb", "<qrz><members>"},
      {build + "qrz --check gal", "<" + build + "qrz><--check><gallery>"},
      {"./run oth", "<./run><other.so>"},  // another program of that name
      {"qrz --pict", "<qrz><--pictures>"},
      {"qrz --pictures bit", "<qrz><--pictures><bitmap>"},
      {"qrz members --pictures=bit", "<qrz><members><--pictures=bitmap>"},
      {"qrz apply --out", "<qrz><apply><--output>"},
      {"qrz bench --plu", "<qrz><bench><--plugin>"},
      {"qrz bench --size 1x1 2x2 --js", "<qrz><bench><--size><1x1><2x2><--json>"},
      {"qrz completion z", "<qrz><completion><zsh>"},
      {"qrz --plugin oth", "<qrz><--plugin><other.so>"},
      {"qrz --plugin=oth", "<qrz><--plugin=other.so>"},
      {"qrz members InvertG", "<qrz><members><InvertGrayQRZ>"},
      {"qrz members PictureL", "<qrz><members><PictureLut3DQRZ>"},
      {"qrz members PictureSepiaQRZ.R", "<qrz><members><PictureSepiaQRZ.Run>"},
      {"qrz apply self my", "<qrz><apply><self><my photo.png>"},
      {"qrz apply self 'my", "<qrz><apply><self><my photo.png>"},
      {"qrz apply self my\\ ph", "<qrz><apply><self><my photo.png>"},
      {"qrz apply self -o out.png sample:land",
       "<qrz><apply><self><-o><out.png><sample:landscape>"},
      {"qrz apply self one sample:a", "<qrz><apply><self><one><sample:alpha>"},
      {"qrz apply self sam", "<qrz><apply><self><sample:>"},
      {"qrz apply self s", "<qrz><apply><self><s>"},  // or salt.png
      {"qrz apply self sal", "<qrz><apply><self><salt.png>"},
      {"qrz gallery p", "<qrz><gallery><pages>"},
      {"qrz gallery a", "<qrz><gallery><a b>"},
      {"qrz gallery o", "<qrz><gallery><o>"},
      {"qrz gallery pages/", "<qrz><gallery><pages>"},
      {"qrz run sw", "<qrz><run><swap.rbs>"},
      {"qrz run 'sw", "<qrz><run><swap.rbs>"},
      {"qrz run it\\'", "<qrz><run><it's.rbs>"},
      {"qrz run a\\ b/", "<qrz><run><a b/x y.rbs>"},
      {"qrz run \"a b/x ", "<qrz><run><a b/x y.rbs>"},
      {"qrz run swap.rbs swapp", "<qrz><run><swap.rbs><swapped.png>"},
      {"qrz run pages/s", "<qrz><run><pages/sub.txt>"},
      {"qrz bench --size oth", "<qrz><bench><--size><oth>"},  // nothing: no file
      {"qrz nonsense oth", "<qrz><nonsense><oth>"},
  };
  Shell shell(GetParam(), folder, folder);
  for (const auto& [line, expected] : lines) EXPECT_EQ(shell.complete(line), expected) << line;
  Shell starter(GetParam(), folder, QRZ_SOURCE_FOLDER);
  EXPECT_EQ(starter.complete("./run memb"), "<./run><members>");
  EXPECT_EQ(starter.complete("./run READ"), "<./run><READ>");  // no command, though a file
}

/// The parser knows what every command takes, and so must whatever describes it.
TEST(DefinitionsTest, ScriptsAndManualPageNameEveryCommandAndOption) {
  CommandLine line;
  CLI::App app;
  defineCommandLine(app, line);
  std::vector<const CLI::App*> all = commandsOf(app);
  all.push_back(&app);
  const std::string bash = qrz("completion bash").output;
  const std::string zsh = qrz("completion zsh").output;
  const std::string man = manThrough("man -l -").output;
  for (const CLI::App* command : all) {
    const std::string name = command == &app ? "-" : command->get_name();
    const std::string row = textBetween(bash, "['" + name + "']='", "'\n") + " ";
    const std::string function =
        command == &app ? zsh : textBetween(zsh, "_qrz-" + name + "() {\n", "\n}\n");
    // The options of a command stand under its name, all others under OPTIONS.
    const std::string entry = textBetween(
        man, command == &app ? "\nOPTIONS\n" : "\n   " + name + "\n", "\n(   )?[A-Za-z]");
    for (const CLI::Option* option : optionsOf(*command)) {
      for (const std::string& spelling : namesOf(*option)) {
        EXPECT_NE(row.find(spelling + " "), std::string::npos) << name << " " << spelling;
        EXPECT_TRUE(std::regex_search(function, std::regex("[)*]" + spelling + "[=+]?\\[")))
            << name << " " << spelling;
        if (option == command->get_help_ptr() && command != &app) continue;
        EXPECT_TRUE(std::regex_search(entry, std::regex("\n       (-., )?" + spelling + "\\b")))
            << name << " " << spelling << entry;
      }
    }
  }
}

TEST(DefinitionsTest, ManualPageIsSoundRoff) {
  const Outcome lint = manThrough("mandoc -T lint -W warning");
  EXPECT_EQ(lint.output, "");
  EXPECT_EQ(lint.status, 0);
  // Every hyphen of an option is one to be copied.
  EXPECT_EQ(manThrough("cat").output.find("--"), std::string::npos);
  // What is to be copied comes out as it is typed: no typographic hyphens or quotes.
  const std::string page = manThrough("man -l -").output;
  EXPECT_NE(page.find("qrz bench --members '^Invert|Run$' --size 640x480"), std::string::npos);
  EXPECT_NE(page.find("The value of --plugin"), std::string::npos);
}

TEST(DefinitionsTest, HelpFitsTheTerminal) {
  CommandLine line;
  CLI::App app;
  defineCommandLine(app, line);
  for (const CLI::App* command : commandsOf(app)) {
    for (const std::string& shown : linesOf(app.help() + command->help())) {
      EXPECT_LE(shown.size(), 80U) << shown;
    }
  }
}

TEST(DefinitionsTest, NothingOfItNeedsThePlugin) {
  const std::string none = "--plugin /nowhere ";
  EXPECT_EQ(qrz(none + "--version").output, "qrz 1.0.0\n");
  for (const char* command : {"completion bash", "completion zsh", "man", "--version", "--help"}) {
    EXPECT_EQ(qrz(none + command).status, 0) << command;
    const Outcome full =
        runCommand("(" QRZ_BUILD_FOLDER "/qrz " + std::string(command) + " 2>&1 >/dev/full)");
    EXPECT_EQ(full.status, 1) << command;
    EXPECT_EQ(full.output, "standard output cannot be written\n") << command;
  }
  const Outcome other = qrz("completion fish");
  EXPECT_EQ(other.status, 2);
  EXPECT_EQ(other.output,
            "qrz: completion is for bash or zsh, not 'fish'; "
            "`qrz --help` shows the usage\n");
}

INSTANTIATE_TEST_SUITE_P(All, CompletionTest, testing::Values("bash", "zsh"),
                         [](const auto& shell) { return shell.param; });

}  // namespace
}  // namespace host
