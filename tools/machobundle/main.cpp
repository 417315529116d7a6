// machobundle IMAGE BUNDLE: translates the plug-in's ELF image into an i386
// Mach-O bundle. Nothing is compiled again; only headers, symbols and
// relocations are made anew. Exit status 0 done, 1 refused, 2 wrong usage.

#include <cstdio>
#include <exception>
#include <filesystem>
#include <functional>
#include <string>

#include "host/files/file_bytes.h"
#include "tools/machobundle/bundle.h"

namespace machobundle {
namespace {

void writeBundle(const std::string& path, const std::vector<uint8_t>& bytes) {
  using std::filesystem::perms;
  host::writeFile(path, bytes);
  std::filesystem::permissions(path, perms::owner_exec | perms::group_exec | perms::others_exec,
                               std::filesystem::perm_options::add);
}

/// Whether it could be done; if not, a line says what is wrong with the file.
bool isDone(const std::string& path, const std::function<void()>& work) {
  try {
    work();
    return true;
  } catch (const std::exception& error) {
    fprintf(stderr, "machobundle: %s: %s\n", path.c_str(), error.what());
    return false;
  }
}

}  // namespace
}  // namespace machobundle

int main(int argc, char** argv) {
  if (argc != 3) {
    fputs("usage: machobundle IMAGE BUNDLE\n", stderr);
    return 2;
  }
  const std::string image = argv[1];
  const std::string bundle = argv[2];
  std::vector<uint8_t> bytes;
  const auto translate = [&] {
    const auto file = host::readOrdinaryFile(image);
    bytes = machobundle::makeBundle(machobundle::readElfImage(file));
  };
  const auto write = [&] { machobundle::writeBundle(bundle, bytes); };
  return machobundle::isDone(image, translate) && machobundle::isDone(bundle, write) ? 0 : 1;
}
