// What `qrz apply` does with one picture file.
#pragma once

#include <optional>
#include <ostream>
#include <string>
#include <utility>

#include "host/cli/commands.h"

namespace host {

/// The file name that stands for standard input or output.
inline constexpr const char* kStandardStream = "-";

struct PictureTask {
  std::optional<std::string> input;  ///< without it there is no `self`
  std::string output;                ///< where a picture goes; may be empty
  /// The output is the input of another task, which it would lose.
  bool replacesAnother = false;
};

/// What came of a task.
struct TaskResult {
  int status = kDone;
  bool wrote = false;  ///< a picture, to the task's output
  std::string
      problem;  ///< fit for a terminal: a line; a script's error has two more, for the place
  std::string printed;  ///< in another process
};

/// The name of the task's file and ": ", for the start of a message; nothing without a file.
std::string prefixOf(const PictureTask& task);

/// Evaluates one expression for every task.
class PictureWork {
 public:
  PictureWork(std::string expression, bool isOneOfMany)
      : expression_(std::move(expression)), isOneOfMany_(isOneOfMany) {}

  /// A picture is written, any other value printed. `isTaken` says that another picture was written
  /// to the task's output already. Throws Interrupted.
  [[nodiscard]] TaskResult perform(const PictureTask& task, bool isTaken,
                                   std::ostream& printed) const;

 private:
  /// Whether it wrote a picture.
  bool evaluate(const PictureTask& task, bool isTaken, std::ostream& printed) const;

  std::string expression_;
  bool isOneOfMany_;
};

}  // namespace host
