#include <algorithm>
#include <filesystem>
#include <iostream>
#include <set>

#include "host/cli/commands.h"
#include "host/cli/progress.h"
#include "host/core/exception.h"
#include "host/core/interrupt.h"
#include "host/core/runtime.h"
#include "host/files/file_fault.h"
#include "host/files/image_file.h"
#include "host/files/picture_io.h"
#include "host/script/conversion.h"
#include "host/script/script.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// Something went wrong with one file; what() is the line for the user.
class Failure : public std::runtime_error {
 public:
  Failure(int exitStatus, const std::string& line) : std::runtime_error(line), status(exitStatus) {}
  int status;
};

/// Where the result for an input file goes.
std::string outputFor(const std::string& input, const std::string& output, bool intoFolder) {
  if (!intoFolder) return output;
  fs::path name = fs::path(input).filename();
  if (input.starts_with("sample:")) name = input.substr(input.find(':') + 1) + ".png";
  try {
    checkPictureName(name.string());
  } catch (const ImageError&) {
    name.replace_extension(".png");
  }
  return (fs::path(output) / name).string();
}

/// One run of `apply`.
struct Job {
  const std::string& expression;
  bool isOneOfMany;
  std::set<std::string> written;
};

void applyToFile(Job& job, const std::string& input, const std::string& output) {
  Interpreter interpreter(runtime().registry, std::cout);
  interpreter.setVariable("self", objectValue(openPicture(input)));
  checkInterrupt();
  const Value result =
      interpreter.evaluate(job.expression, job.isOneOfMany ? input + ": expression" : "expression");
  checkInterrupt();
  auto* picture = objectAs<Picture>(result);
  if (picture == nullptr && std::holds_alternative<Nil>(result)) {
    throw Failure(kFailed, input + ": the result is nil, so there is no picture to write");
  }
  if (picture == nullptr) {
    std::cout << fileMessage(input, textOf(result)) << '\n';
    return;
  }
  if (output.empty()) {
    throw Failure(kWrongUsage, input + ": the result is a picture; name its file with -o");
  }
  if (job.written.contains(output)) {
    throw Failure(kFailed,
                  input + ": another file of this name was written to " + output + " already");
  }
  savePicture(*picture, output);
  job.written.insert(output);
}

/// The exit status for one file; says what went wrong.
int tryFile(Job& job, const std::string& input, const std::string& output, Progress& progress) {
  std::string problem;
  int status = kFailed;
  try {
    applyToFile(job, input, output);
    return kDone;
  } catch (const RaisedException& raised) {
    problem = messageOf(raised);
  } catch (const Failure& failure) {
    problem = failure.what();
    status = failure.status;
  } catch (const ScriptError& error) {
    progress.wipe();
    complain(error);
    return kFailed;
  } catch (const std::bad_alloc&) {
    problem = input + ": not enough memory";
  } catch (const std::exception& error) {
    problem = error.what();
  }
  checkInterrupt();  // That may be all that was the matter.
  progress.wipe();
  complain(problem);
  return status;
}

}  // namespace

int applyExpression(const std::string& expression, const std::vector<std::string>& files,
                    const std::string& output) {
  if (expression.find_first_not_of(" \t\r\n") == std::string::npos) {
    complain("qrz: the expression is empty; `qrz --help` shows the usage");
    return kWrongUsage;
  }
  std::error_code error;
  const bool intoFolder =
      files.size() > 1 || output.ends_with('/') || fs::is_directory(output, error);
  error.clear();
  if (!output.empty()) {
    if (intoFolder) fs::create_directories(output, error);
    if (error) {
      complain(output + ": cannot make this folder: " + error.message());
      return kFailed;
    }
    try {
      if (!intoFolder) checkPictureName(output);
    } catch (const ImageError& problem) {
      complain(problem.what());
      return kWrongUsage;
    }
  }
  Progress progress(files.size());
  int worst = kDone;
  Job job{expression, files.size() > 1, {}};
  for (const std::string& file : files) {
    const std::string target = outputFor(file, output, intoFolder && !output.empty());
    worst = std::max(worst, tryFile(job, file, target, progress));
    progress.advance();
    checkInterrupt();
  }
  return worst;
}

}  // namespace host
