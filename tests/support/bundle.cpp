#include "tests/support/bundle.h"

#include <algorithm>
#include <stdexcept>

#include "host/files/file_bytes.h"
#include "tools/machobundle/bundle.h"

namespace host {

Bytes smallImage(const std::string& name) {
  return readFile(QRZ_BUILD_FOLDER "/small_plugins/" + name + ".so");
}

Bytes bundleOf(const Bytes& image) {
  return machobundle::makeBundle(machobundle::readElfImage(image));
}

std::string faultOf(const std::function<void()>& work) {
  try {
    work();
    return {};
  } catch (const std::runtime_error& error) {
    return error.what();
  }
}

size_t offsetOf(const Bytes& bytes, const std::string& text) {
  const auto* zeroEnded = reinterpret_cast<const uint8_t*>(text.c_str());
  const auto found =
      std::search(bytes.begin(), bytes.end(), zeroEnded, zeroEnded + text.size() + 1);
  if (found == bytes.end()) throw std::logic_error("not found: " + text);
  return static_cast<size_t>(found - bytes.begin());
}

}  // namespace host
