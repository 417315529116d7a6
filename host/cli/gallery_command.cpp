#include <cerrno>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <iostream>

#include "host/cli/commands.h"
#include "host/gallery/gallery.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// Writes beside the file and renames, so that the page is whole or not there.
bool writeWhole(const fs::path& path, const std::string& text) {
  const fs::path beside = path.string() + ".part";
  std::ofstream file(beside, std::ios::binary);
  file << text;
  file.close();
  std::error_code error;
  if (file) fs::rename(beside, path, error);
  if (file && !error) return true;
  fs::remove(beside, error);
  return false;
}

}  // namespace

int makeGallery(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
  const fs::path page = fs::path(folder) / "index.html";
  if (error || !fs::is_directory(folder)) {
    complain(folder + ": cannot make this folder; name another one");
    return kFailed;
  }
  if (!writeWhole(page, makeGalleryPage())) {
    complain(page.string() + ": cannot be written; is there room, and may you write there?");
    return kFailed;
  }
  std::cout << "Every member before and after: " << fs::absolute(page).string() << '\n'
            << "Open it in a browser.\n";
  return kDone;
}

}  // namespace host
