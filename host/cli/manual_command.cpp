#include <unistd.h>

#include <filesystem>
#include <iostream>

#include "host/cli/commands.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/manual/manual.h"

namespace host {

namespace fs = std::filesystem;

namespace {

/// A folder for a page; if this made it, it is gone again unless the page got there.
class PageFolder {
 public:
  PageFolder(const std::string& path, std::error_code& error)
      : path_(path), made_(fs::create_directories(path, error)) {}
  PageFolder(const PageFolder&) = delete;
  PageFolder& operator=(const PageFolder&) = delete;
  ~PageFolder() {
    if (made_) rmdir(path_.c_str());  // no folder with anything in it
  }

 private:
  std::string path_;
  bool made_;
};

}  // namespace

int makeGallery(const std::string& folder) {
  std::error_code error;
  const PageFolder pageFolder(folder, error);
  const std::string page = (fs::path(folder) / "index.html").string();
  if (error || !fs::is_directory(folder, error)) {
    complain(folder + ": cannot make this folder; name another one");
    return kFailed;
  }
  try {
    checkWritable(page);
    const std::string text = makeGalleryPage();
    writeFile(page, {reinterpret_cast<const uint8_t*>(text.data()), text.size()});
  } catch (const FileFault& fault) {
    complain(fileMessage(page, fault.what()));
    return kFailed;
  }
  std::cout << "Every member before and after: " << fs::absolute(page).string() << '\n'
            << "Open it in a browser.\n";
  return kDone;
}

}  // namespace host
