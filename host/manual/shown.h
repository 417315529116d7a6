// The manual's contents as its pages show them: descriptions, with what their examples made.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace host {

/// A picture beside the pages.
struct ShownPicture {
  std::string file;  ///< relative to the pages, "pictures/InvertQRZ.png"; empty if there is none
  int32_t width = 0;
  int32_t height = 0;
};

struct ShownArgument {
  std::string name;     ///< as declared; "value" of a property
  std::string meaning;  ///< a phrase
  std::string range;    ///< a phrase
};

struct ShownExample {
  std::string program;  ///< one line or several
  std::string command;  ///< the line for a shell that runs it
  std::string note;     ///< one sentence
  ShownPicture before;  ///< none if the program needs no picture
  ShownPicture after;   ///< none if the result is a value
  std::string value;    ///< the result as text, if it is no picture
};

/// One registered member; overloads are members of the same name.
struct ShownMember {
  std::string anchor;       ///< unique, of letters, digits, dots and dashes: "InvertQRZ-2"
  std::string name;         ///< "InvertQRZ", "PictureSepiaQRZ.Run"
  std::string declaration;  ///< as registered
  std::string summary;      ///< one sentence
  std::vector<ShownArgument> arguments;
  std::string failure;  ///< one sentence
  std::vector<ShownExample> examples;
};

struct ShownGroup {
  std::string title;
  std::vector<ShownMember> members;
};

}  // namespace host
