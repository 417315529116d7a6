// What the parts of reading and writing throw, before it is joined with the file's name.
#pragma once

#include <stdexcept>
#include <string>

#include "host/files/image_file.h"

namespace host {

/// What is wrong with a picture, and what to do about it, without the file's name.
class PictureFault : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The bytes are no sound picture of their format; what() is the detail alone.
class DamagedPicture : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// The error for a file: its path, with a question mark for each control character so that it
/// stays one line, and the text.
ImageError imageError(std::string path, const std::string& text);

}  // namespace host
