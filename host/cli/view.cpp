#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <new>
#include <string_view>

#include "host/cli/commands.h"
#include "host/cli/picture_task.h"
#include "host/cli/terminal.h"
#include "host/cli/terminal_picture.h"
#include "host/core/exception.h"
#include "host/core/interrupt.h"
#include "host/core/printable.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/files/picture_io.h"

namespace host {
namespace {

std::string_view environment(const char* name) {
  const char* value = std::getenv(name);
  return value != nullptr ? value : "";
}

bool showsColors() {
  return isatty(STDOUT_FILENO) == 1 && environment("TERM") != "dumb" &&
         environment("NO_COLOR").empty();
}

void print(std::string_view text) {
  writeStandardOutput({reinterpret_cast<const uint8_t*>(text.data()), text.size()});
}

/// Leaves the terminal without colours, even in the middle of a line.
class ColorReset {
 public:
  ColorReset() = default;
  ColorReset(const ColorReset&) = delete;
  ColorReset& operator=(const ColorReset&) = delete;
  ~ColorReset() {
    constexpr std::string_view kReset = "\033[0m\n";
    if (isInterrupted()) static_cast<void>(!write(STDOUT_FILENO, kReset.data(), kReset.size()));
  }
};

class Viewer {
 public:
  explicit Viewer(const ViewOptions& options)
      : inColors_(showsColors()), namesAll_(options.files.size() > 1) {
    constexpr int32_t kMost = 1000;
    if (inColors_) {
      const PictureSize terminal = terminalSize(STDOUT_FILENO);
      // There is a line for the prompt, and one for a name.
      most_ = {std::min(terminal.width, kMost),
               std::clamp(terminal.height - (namesAll_ ? 2 : 1), 1, kMost)};
    }
    if (options.width > 0) most_ = {options.width, kMost};
    most_.height *= 2;  // pixels
  }

  void show(const std::string& file) const {
    const bool isStream = file == kStandardStream;
    const Image image = imageOf(*(isStream ? openStandardInput() : openPicture(file)));
    checkInterrupt();
    const PictureSize size{image.width, image.height};
    const TerminalPicture shown = scaledDown(image, fittingSize(size, most_));
    const std::string name = printable(isStream ? kStandardInput : file);
    if (!inColors_) {
      print(name + ": " + std::to_string(size.width) + " x " + std::to_string(size.height) + "\n");
    } else if (namesAll_) {
      print(name + "\n");
    }
    const ColorReset reset;
    for (int32_t row = 0; row < shown.size.height; row += 2) {
      print(inColors_ ? coloredLine(shown, row) : plainLine(shown, row));
    }
  }

 private:
  bool inColors_;
  bool namesAll_;
  PictureSize most_{80, 1000};
};

}  // namespace

int viewPictures(const ViewOptions& options) {
  if (std::ranges::count(options.files, kStandardStream) > 1) {
    complain("qrz: standard input holds one picture; name - once");
    return kWrongUsage;
  }
  const Viewer viewer(options);
  int status = kDone;
  for (const std::string& file : options.files) {
    std::string problem;
    try {
      viewer.show(file);
      continue;
    } catch (const RaisedException& raised) {
      problem = messageOf(raised);
    } catch (const FileFault& fault) {
      complain(fault.what());  // Nothing more can be shown.
      return kFailed;
    } catch (const std::bad_alloc&) {
      problem = file + ": not enough memory";
    }
    checkInterrupt();
    complain(problem);
    status = kFailed;
  }
  return status;
}

}  // namespace host
