#include "host/files/file_fault.h"

#include "host/core/printable.h"

namespace host {

std::string fileMessage(std::string path, const std::string& text) {
  return printable(std::move(path)) + ": " + text;
}

}  // namespace host
