#include "host/cli/command_line.h"

#include <cmath>
#include <filesystem>
#include <map>

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
  app.add_option_function<std::string>("--pictures", setPictures, "What new pictures are")
      ->type_name("gworld|context|bitmap");
  app.add_option_function<double>(
         "--host-version", setVersion,
         "The host's version as the plug-in sees it, for instance 2010.029")
      ->type_name("NUMBER");
  app.add_flag("--check", line.check, "Fail if objects are still alive or locked at the end");
}

void addApply(CLI::App& app, CommandLine& line) {
  auto* apply = app.add_subcommand("apply", "Evaluate an expression on picture files");
  apply->add_option("expression", line.expression, "For instance \"self.InvertQRZ\"")
      ->required()
      ->type_name("EXPRESSION");
  apply->add_option("files", line.files, "Picture files, or built-in ones: sample:landscape")
      ->required()
      ->type_name("PICTURE");
  apply->add_option("-o,--output", line.output, "The file, or for several files the folder")
      ->type_name("FILE");
}

void addRun(CLI::App& app, CommandLine& line) {
  auto* run = app.add_subcommand("run", "Run a program in the host's language");
  run->add_option("script", line.script, "The program")->required()->type_name("FILE");
  run->add_option("arguments", line.arguments, "Argument(0), Argument(1), … of the program")
      ->type_name("PICTURE");
}

void addMembers(CLI::App& app, CommandLine& line) {
  auto* members = app.add_subcommand("members", "List what the plug-in registered, or explain it");
  members->add_option("name", line.member, "A member to explain, or a class")->type_name("MEMBER");
}

void addManual(CLI::App& app, CommandLine& line) {
  auto* gallery = app.add_subcommand("gallery", "Make a page with every member before and after");
  auto* manual = app.add_subcommand("manual", "Make the page, and members.md with the same");
  for (auto* command : {gallery, manual}) {
    command->add_option("folder", line.folder, "The folder for index.html and its pictures")
        ->required()
        ->type_name("FOLDER");
  }
}

void addBench(CLI::App& app, BenchOptions& options) {
  auto* bench = app.add_subcommand("bench", "Measure members against a plain copy");
  bench
      ->add_option("--members", options.members,
                   "Only members whose names match this regular expression")
      ->type_name("PATTERN");
  bench
      ->add_option("--size", options.sizes,
                   "Sizes of the pictures; 256x256 1024x1024 4096x4096 if none is given")
      ->type_name("SIZE");
  bench->add_option("--json", options.json, "A file for the results")->type_name("FILE");
  bench->add_option("--plot", options.plot, "A file for a plot, SVG")->type_name("FILE");
}

/// The names of all commands: "apply, run or members".
std::string commandNames(const CLI::App& app) {
  const auto commands = app.get_subcommands([](const CLI::App*) { return true; });
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
  app.footer(
      "Exit status: 0 done, 1 failed, 2 wrong usage, 128 + n ended by signal n (130 by Ctrl-C).");
  addGeneralOptions(app, line);
  addApply(app, line);
  addRun(app, line);
  addMembers(app, line);
  addManual(app, line);
  addBench(app, line.bench);
}

}  // namespace host
