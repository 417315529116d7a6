#include <filesystem>
#include <iostream>

#include "host/cli/commands.h"
#include "host/cli/progress.h"
#include "host/core/exception.h"
#include "host/core/runtime.h"
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
  using std::runtime_error::runtime_error;
};

/// Where the result for an input file goes.
std::string outputFor(const std::string& input, const std::string& output, bool intoFolder) {
  if (!intoFolder) return output;
  fs::path name = fs::path(input).filename();
  if (input.starts_with("sample:")) name = input.substr(input.find(':') + 1) + ".png";
  try {
    checkWritableFormat(name.string());
  } catch (const ImageError&) {
    name.replace_extension(".png");
  }
  return (fs::path(output) / name).string();
}

void applyToFile(const std::string& expression, const std::string& input,
                 const std::string& output) {
  Interpreter interpreter(runtime().registry, std::cout);
  interpreter.setInterruptFlag(interruptFlag());
  interpreter.setVariable("self", objectValue(openPicture(input)));
  const Value result = interpreter.evaluate(expression, "expression");
  const auto* picture = objectAs<Picture>(result);
  if (picture == nullptr && std::holds_alternative<Nil>(result)) {
    throw Failure(input + ": the result is nil, so there is no picture to write");
  }
  if (picture == nullptr) {
    std::cout << input << ": " << textOf(result) << '\n';
    return;
  }
  if (output.empty()) throw Failure(input + ": the result is a picture; name its file with -o");
  savePicture(*picture, output);
}

/// The message of an exception that no script caught.
std::string messageOf(const RaisedException& raised) {
  const auto* exception = dynamic_cast<const ExceptionObject*>(raised.instance.get());
  return exception != nullptr && !exception->message.empty() ? exception->message
                                                             : raised.instance->className();
}

bool reportsFailure(const std::string& expression, const std::string& input,
                    const std::string& output, Progress& progress) {
  std::string problem;
  try {
    applyToFile(expression, input, output);
    return false;
  } catch (const RaisedException& raised) {
    problem = messageOf(raised);
  } catch (const std::bad_alloc&) {
    problem = input + ": not enough memory";
  } catch (const std::exception& error) {
    problem = error.what();
  }
  progress.wipe();
  complain(problem);
  return true;
}

}  // namespace

int applyExpression(const std::string& expression, const std::vector<std::string>& files,
                    const std::string& output) {
  const bool intoFolder = files.size() > 1 || output.ends_with('/') || fs::is_directory(output);
  if (!output.empty()) {
    std::error_code error;
    if (intoFolder) fs::create_directories(output, error);
    if (error) {
      complain(output + ": cannot make this folder: " + error.message());
      return kFailed;
    }
    try {
      if (!intoFolder) checkWritableFormat(output);
    } catch (const ImageError& problem) {
      complain(problem.what());
      return kWrongUsage;
    }
  }
  Progress progress(files.size());
  bool failed = false;
  for (const std::string& file : files) {
    if (reportsFailure(expression, file, outputFor(file, output, intoFolder && !output.empty()),
                       progress)) {
      failed = true;
    }
    progress.advance();
    if (*interruptFlag() != 0) break;
  }
  return failed ? kFailed : kDone;
}

}  // namespace host
