// The text of a script, and error messages that show the place they are about.
#pragma once

#include <cstddef>
#include <string>

namespace host {

class SourceText {
 public:
  /// `fileName` is only shown in messages.
  SourceText(std::string text, std::string fileName);

  [[nodiscard]] const std::string& text() const { return text_; }

  /// Throws ScriptError: "file:line:column: message", the line, and a caret
  /// under the byte at `position` (0 to the size of the text).
  [[noreturn]] void fail(size_t position, const std::string& message) const;

 private:
  std::string text_;
  std::string fileName_;
};

}  // namespace host
