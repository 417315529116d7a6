// What the parts of reading and writing throw, before it is joined with the file's name.
#pragma once

#include <stdexcept>
#include <string>
#include <utility>

#include "host/files/image_file.h"

namespace host {

/// What is wrong with a file, and what to do about it, without the file's name.
class FileFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The bytes are no sound file of their format; what() is the detail alone.
class DamagedFile : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The line for a file: its path, with a question mark for each control character so that it
/// stays one line, and the text.
std::string fileMessage(std::string path, const std::string& text);

inline ImageError imageError(std::string path, const std::string& text) {
  return ImageError(fileMessage(std::move(path), text));
}

}  // namespace host
