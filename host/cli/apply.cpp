#include <unistd.h>

#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>
#include <stdexcept>

#include "host/cli/batch.h"
#include "host/cli/commands.h"
#include "host/files/image_file.h"
#include "host/files/picture_io.h"
#include "host/script/lexer.h"
#include "host/script/script.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// The command line asks for what makes no sense; what() is the line for the user.
class WrongUsage : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Whether the expression names the picture that it is for.
bool usesSelf(const std::string& expression) {
  const SourceText source(expression, "expression");
  Lexer lexer(source);
  bool isMember = false;
  for (Token token = lexer.next(); token.kind != Token::Kind::EndOfFile; token = lexer.next()) {
    if (token.kind == Token::Kind::Name && !isMember && sameName(token.text, "self")) return true;
    isMember = token.isSymbol(".");
  }
  return false;
}

void checkUsage(const ApplyOptions& options) {
  if (options.expression.find_first_not_of(" \t\r\n") == std::string::npos) {
    throw WrongUsage("qrz: the expression is empty; `qrz --help` shows the usage");
  }
  // A slip is said once, not for each file. Throws ScriptError.
  static_cast<void>(Script::parseExpression(options.expression, "expression"));
  if (options.files.empty() && usesSelf(options.expression)) {
    throw WrongUsage("qrz: the expression uses self; name a picture file behind it");
  }
  if (std::ranges::count(options.files, kStandardStream) > 1) {
    throw WrongUsage("qrz: standard input holds one picture; name - once");
  }
  if (options.output != kStandardStream) return;
  if (options.files.size() > 1) {
    throw WrongUsage("qrz: standard output takes one picture; name one file, or a folder with -o");
  }
  if (isatty(STDOUT_FILENO) == 1) {
    throw WrongUsage(
        "qrz: no picture file is written to a terminal; redirect it, or show the picture with "
        "`| qrz view -`");
  }
}

bool isFolder(const ApplyOptions& options) {
  if (options.output.empty() || options.output == kStandardStream) return false;
  std::error_code error;
  return options.files.size() > 1 || options.output.ends_with('/') ||
         fs::is_directory(options.output, error);
}

/// Makes the folder, or checks the name of the file. Throws ImageError, or a filesystem_error.
void prepareOutput(const ApplyOptions& options) {
  if (options.output.empty() || options.output == kStandardStream) return;
  if (!isFolder(options)) return checkPictureName(options.output);
  if (options.files.empty()) {
    throw WrongUsage(options.output + ": is a folder; name a file in it for the picture");
  }
  fs::create_directories(options.output);
}

/// Where in the folder the result for a file goes.
std::string outputFor(const std::string& input, const std::string& folder) {
  fs::path name = fs::path(input).filename();
  if (input.starts_with("sample:")) name = input.substr(input.find(':') + 1) + ".png";
  if (input == kStandardStream) name = "stdin.png";
  try {
    checkPictureName(name.string());
  } catch (const ImageError&) {
    name.replace_extension(".png");
  }
  return (fs::path(folder) / name).string();
}

/// The one path of a file, whichever way it is named.
fs::path realPath(const std::string& file) {
  std::error_code error;
  return fs::weakly_canonical(file, error);
}

std::vector<PictureTask> tasksIntoFolder(const std::vector<std::string>& files,
                                         const std::string& folder) {
  std::set<fs::path> inputs;
  for (const std::string& file : files) inputs.insert(realPath(file));
  std::vector<PictureTask> tasks;
  for (const std::string& file : files) {
    const std::string output = outputFor(file, folder);
    const fs::path replaced = realPath(output);
    tasks.push_back({file, output, inputs.contains(replaced) && replaced != realPath(file)});
  }
  return tasks;
}

std::vector<PictureTask> tasksOf(const ApplyOptions& options) {
  if (options.files.empty()) return {{std::nullopt, options.output}};
  if (!isFolder(options)) {
    std::vector<PictureTask> tasks;
    for (const std::string& file : options.files) tasks.push_back({file, options.output});
    return tasks;
  }
  return tasksIntoFolder(options.files, options.output);
}

}  // namespace

int applyExpression(const ApplyOptions& options) {
  try {
    checkUsage(options);
    prepareOutput(options);
  } catch (const WrongUsage& problem) {
    complain(problem.what());
    return kWrongUsage;
  } catch (const ImageError& problem) {
    complain(problem.what());
    return kWrongUsage;
  } catch (const fs::filesystem_error& problem) {
    complain(options.output + ": cannot make this folder: " + problem.code().message());
    return kFailed;
  }
  // Standard output is for the picture alone.
  std::ostream& printed = options.output == kStandardStream ? std::cerr : std::cout;
  Batch batch(tasksOf(options), PictureWork(options.expression, options.files.size() > 1), printed,
              options.output);
  return batch.run(options.jobs);
}

}  // namespace host
