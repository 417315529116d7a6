#include "host/cli/command_line.h"

#include <charconv>
#include <cmath>
#include <filesystem>
#include <map>

#include "host/cli/definitions.h"
#include "host/cli/help.h"
#include "host/core/printable.h"
#include "host/core/runtime.h"

namespace host {
namespace {

std::string defaultPlugin() {
  std::error_code error;
  const auto self = std::filesystem::read_symlink("/proc/self/exe", error);
  return (self.parent_path() / "PictureQRZ.so").string();
}

void setPictures(const std::string& mode) {
  static const std::map<std::string, Storage> modes{
      {"gworld", Storage::GWorld}, {"context", Storage::Context}, {"bitmap", Storage::Bitmap}};
  const auto found = modes.find(mode);
  if (found == modes.end()) {
    throw CLI::ValidationError("--pictures is gworld, context or bitmap, not '" + mode + "'");
  }
  runtime().settings.newPictures = found->second;
}

std::string exitStatusLine() {
  std::string line = "Exit status:";
  const char* separator = " ";
  for (const ExitStatus& status : kExitStatuses) {
    line += std::string(separator) + status.value + " " + status.meaning;
    separator = ", ";
  }
  return line + ".";
}

void setVersion(double version) {
  if (!std::isfinite(version) || version < 0) {
    throw CLI::ValidationError("--host-version is a number such as 2010.029");
  }
  runtime().settings.version = version;
}

/// Adds the options that every command takes.
void addGeneralOptions(CLI::App& app, CommandLine& line) {
  app.add_option("--plugin", line.plugin, "Another build of the plug-in, or its bundle")
      ->envname("QRZ_PLUGIN")
      ->type_name("FILE");
  app.add_option_function<std::string>("--pictures", setPictures,
                                       "What the host keeps new pictures in; gworld by default")
      ->type_name("gworld|context|bitmap");
  app.add_option_function<double>(
         "--host-version", setVersion,
         "The host's version as the plug-in sees it, for instance 2010.029")
      ->type_name("NUMBER");
  app.add_flag("--check", line.check, "Fail if objects are still alive or locked at the end");
}

/// The whole number that the text is; `option` is what a line about anything else starts with.
int32_t parseNumber(const std::string& option, const std::string& text, int32_t most) {
  int32_t number = 0;
  const auto [end, error] = std::from_chars(text.data(), text.data() + text.size(), number);
  if (error != std::errc() || end != text.data() + text.size() || number < 1 || number > most) {
    throw CLI::ValidationError(option + " is a number from 1 to " + std::to_string(most) +
                               ", not '" + text + "'");
  }
  return number;
}

void addApply(CLI::App& app, ApplyOptions& options) {
  constexpr int32_t kMostJobs = 64;
  auto* apply = app.add_subcommand("apply", "Evaluate an expression on picture files");
  apply->footer(
      "A result that is a picture is written, in the format that the name says; any other value is "
      "printed. PNG, JPEG, BMP, GIF, TGA, PNM and PICT files are read, PNG, JPEG, BMP, TGA and "
      "PICT written. Statements may come before the expression, each ended by ';' or a line end. "
      "Without a file the expression is evaluated once, without self. After a file that fails come "
      "the others; the last lines on standard error say what failed and why, and the status is 1. "
      "A "
      "result never replaces another file of the command line.\n\n"
      "One picture, many, the value of a property, and a picture from another program:\n"
      "  qrz apply \"self.InvertQRZ\" photo.jpg -o out.png\n"
      "  qrz apply \"self.InvertGrayQRZ(0, 0, 200, -1)\" *.png -o inverted/ --jobs 2\n"
      "  qrz apply \"self.Width\" sample:landscape@4000x3000\n"
      "  qrz apply \"self.InvertQRZ\" - -o - <in.png | qrz view -");
  apply
      ->add_option("expression", options.expression,
                   "For instance `self.InvertQRZ`; self is the picture")
      ->required()
      ->type_name("EXPRESSION");
  apply
      ->add_option("files", options.files,
                   "Picture files, built-in ones (sample:landscape), or - for standard input")
      ->type_name("PICTURE");
  apply
      ->add_option("-o,--output", options.output,
                   "The file, for several files the folder, or - for standard output")
      ->type_name("FILE");
  apply
      ->add_option_function<std::string>(
          "--jobs",
          [&options](const std::string& text) {
            options.jobs = static_cast<size_t>(parseNumber("--jobs", text, kMostJobs));
          },
          "How many host processes share the files, 1 to 64")
      ->type_name("NUMBER");
}

void addView(CLI::App& app, ViewOptions& options) {
  constexpr int32_t kMostColumns = 1000;
  auto* view = app.add_subcommand("view", "Show pictures in the terminal");
  view->footer(
      "In colours on a terminal of 24-bit colours; as plain text elsewhere, and where the "
      "environment sets NO_COLOR or a TERM of dumb.\n\n"
      "A picture and a built-in one, and text for a file:\n"
      "  qrz view photo.jpg sample:alpha\n"
      "  qrz view photo.jpg --width 60 >photo.txt");
  view->add_option("files", options.files,
                   "Picture files, built-in ones (sample:landscape), or - for standard input")
      ->required()
      ->type_name("PICTURE");
  view->add_option_function<std::string>(
          "--width",
          [&options](const std::string& text) {
            options.width = parseNumber("--width", text, kMostColumns);
          },
          "How many columns to use, 1 to 1000, instead of what fits")
      ->type_name("COLUMNS");
}

void addRun(CLI::App& app, CommandLine& line) {
  auto* run = app.add_subcommand("run", "Run a program in the host's language");
  run->footer(
      "What `Print` prints goes to standard output.\n\n"
      "A program of the sources' examples, on a built-in picture:\n"
      "  qrz run examples/sepia.rbs sample:landscape old.png");
  run->add_option("script", line.script, "The program")->required()->type_name("PROGRAM");
  run->add_option("arguments", line.arguments, "What `Argument(0)`, `Argument(1)`, … give it")
      ->type_name("PICTURE");
}

void addMembers(CLI::App& app, CommandLine& line) {
  auto* members = app.add_subcommand("members", "List what the plug-in registered, or explain it");
  members->footer(
      "Without a name, every line has the flags of a member, its kind and its declaration. The "
      "case "
      "of a name does not matter.\n\n"
      "A member explained, with an example to try, and a class:\n"
      "  qrz members InvertGrayQRZ\n"
      "  qrz members PictureLut3DQRZ");
  members->add_option("name", line.member, "A member to explain, or a class")->type_name("MEMBER");
}

void addManual(CLI::App& app, CommandLine& line) {
  auto* gallery = app.add_subcommand("gallery", "Make a page with every member before and after");
  auto* manual = app.add_subcommand("manual", "Make the page, and members.md with the same");
  for (auto* command : {gallery, manual}) {
    command
        ->add_option("folder", line.folder,
                     "The folder for index.html and its pictures; is made if need be")
        ->required()
        ->type_name("FOLDER");
  }
}

void addBench(CLI::App& app, BenchOptions& options) {
  auto* bench = app.add_subcommand("bench", "Measure members against a plain copy");
  bench->footer(
      "Prints the nanoseconds per pixel that every member takes, the fastest and the median run, "
      "beside those of a plain copy of what it writes.\n\n"
      "Some members on two sizes:\n"
      "  qrz bench --members '^Invert|Run$' --size 640x480 1024x1024");
  bench
      ->add_option("--members", options.members,
                   "Only members whose names match this regular expression")
      ->type_name("PATTERN");
  bench
      ->add_option("--size", options.sizes,
                   "Sizes of the pictures; by default 256x256, 1024x1024 and 4096x4096")
      ->type_name("SIZE");
  bench->add_option("--json", options.json, "A file for the results")->type_name("FILE");
  bench->add_option("--plot", options.plot, "A file for a plot, SVG")->type_name("FILE");
}

void addCompletion(CLI::App& app, CommandLine& line) {
  auto* completion =
      app.add_subcommand("completion", "Print a script that completes command lines");
  completion->footer(
      "The script completes commands, options and what follows them, for qrz under any path and "
      "for the ./run of its sources. Of the members it completes those that the plug-in registers "
      "at that time.\n\n"
      "Completion in this shell, and for good:\n"
      "  source <(qrz completion bash)\n"
      "  echo 'source <(qrz completion bash)' >>~/.bashrc");
  completion
      ->add_option_function<std::string>(
          "shell",
          [&line](const std::string& shell) {
            if (shell != "bash" && shell != "zsh") {
              throw CLI::ValidationError("completion is for bash or zsh, not '" + shell + "'");
            }
            line.shell = shell;
          },
          "The shell it is for")
      ->required()
      ->type_name("bash|zsh");
}

void addMan(CLI::App& app) {
  auto* man = app.add_subcommand("man", "Print the manual page");
  man->footer("The manual page as man shows it:\n  qrz man | man -l -");
}

/// The names of all commands: "apply, run or members".
std::string commandNames(const CLI::App& app) {
  const auto commands = commandsOf(app);
  std::string names;
  for (size_t i = 0; i < commands.size(); ++i) {
    if (i > 0) names += i + 1 < commands.size() ? ", " : " or ";
    names += commands[i]->get_name();
  }
  return names;
}

/// One line for a command line that cannot be understood.
std::string usageMessage(const CLI::App* app, const CLI::Error& error) {
  std::string problem = error.what();
  if (app->get_subcommands().empty() && problem.find("subcommand") != std::string::npos) {
    problem = "name a command: " + commandNames(*app);
  }
  return printable("qrz: " + problem + "; `qrz --help` shows the usage") + "\n";
}

}  // namespace

CommandLine::CommandLine() : plugin(defaultPlugin()) {}

void defineCommandLine(CLI::App& app, CommandLine& line) {
  app.require_subcommand(1);
  app.fallthrough();
  app.failure_message(usageMessage);
  app.formatter(std::make_shared<HelpFormatter>());
  app.name("qrz");
  app.group("Commands");
  app.description(
      "Uses the picture plug-in from a terminal.\n\n"
      "Loads the plug-in as its host would, and calls its members on pictures. Instead of a "
      "picture file, a built-in picture can be named, in any size: sample:landscape, "
      "sample:landscape@4000x3000. One line on standard error says what is wrong, and what to do.");
  app.footer(exitStatusLine());
  app.set_version_flag("--version", "qrz " QRZ_VERSION, "Print the version and exit");
  addGeneralOptions(app, line);
  addApply(app, line.apply);
  addView(app, line.view);
  addRun(app, line);
  addMembers(app, line);
  addManual(app, line);
  addBench(app, line.bench);
  addCompletion(app, line);
  addMan(app);
}

}  // namespace host
