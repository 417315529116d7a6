#include "host/cli/picture_task.h"

#include <new>
#include <stdexcept>

#include "host/core/exception.h"
#include "host/core/interrupt.h"
#include "host/core/printable.h"
#include "host/core/runtime.h"
#include "host/files/picture_io.h"
#include "host/script/conversion.h"
#include "host/script/script.h"

namespace host {
namespace {

/// Something went wrong with one file; what() is the line for the user.
class Failure : public std::runtime_error {
 public:
  Failure(int exitStatus, const std::string& line) : std::runtime_error(line), status(exitStatus) {}
  int status;
};

Ref<Picture> open(const std::string& input) {
  return input == kStandardStream ? openStandardInput() : openPicture(input);
}

void write(Picture& picture, const PictureTask& task, bool isTaken) {
  const std::string prefix = prefixOf(task);
  if (task.output.empty()) {
    throw Failure(kWrongUsage, prefix + "the result is a picture; name its file with -o");
  }
  if (task.output == kStandardStream) return writeToStandardOutput(picture);
  if (task.replacesAnother) {
    throw Failure(kFailed, prefix + "the result would replace " + task.output +
                               ", another of the pictures; choose another folder");
  }
  if (isTaken) {
    throw Failure(kFailed,
                  prefix + "another file of this name was written to " + task.output + " already");
  }
  savePicture(picture, task.output);
}

}  // namespace

std::string prefixOf(const PictureTask& task) {
  if (!task.input) return "";
  return (*task.input == kStandardStream ? kStandardInput : *task.input) + ": ";
}

bool PictureWork::evaluate(const PictureTask& task, bool isTaken, std::ostream& printed) const {
  const std::string prefix = prefixOf(task);
  Interpreter interpreter(runtime().registry, printed);
  interpreter.setInterruptFlag(interruptFlag());
  if (task.input) interpreter.setVariable("self", objectValue(open(*task.input)));
  checkInterrupt();
  const Value result = interpreter.evaluate(
      expression_, isOneOfMany_ ? prefix + "expression" : std::string("expression"));
  checkInterrupt();
  if (auto* picture = objectAs<Picture>(result)) {
    write(*picture, task, isTaken);
    return true;
  }
  if (std::holds_alternative<Nil>(result)) {
    throw Failure(kFailed, prefix + "the result is nil, so there is no picture to write");
  }
  if (task.output == kStandardStream) {
    throw Failure(kFailed, prefix + "the result is no picture; leave out `-o -` to print it");
  }
  printed << printable(prefix) << textOf(result) << '\n';
  return false;
}

TaskResult PictureWork::perform(const PictureTask& task, bool isTaken,
                                std::ostream& printed) const {
  TaskResult result;
  result.status = kFailed;
  try {
    result.wrote = evaluate(task, isTaken, printed);
    result.status = kDone;
  } catch (const RaisedException& raised) {
    result.problem = printable(messageOf(raised));
  } catch (const Failure& failure) {
    result.problem = printable(failure.what());
    result.status = failure.status;
  } catch (const ScriptError& error) {
    result.problem = error.what();
  } catch (const std::bad_alloc&) {
    result.problem = printable(prefixOf(task) + "not enough memory");
  } catch (const std::exception& error) {
    result.problem = printable(error.what());
  }
  if (result.status != kDone) checkInterrupt();  // That may be all that was the matter.
  return result;
}

}  // namespace host
