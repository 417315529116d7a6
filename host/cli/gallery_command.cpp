#include <filesystem>
#include <iostream>

#include "host/cli/commands.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/gallery/gallery.h"

namespace host {

namespace fs = std::filesystem;

int makeGallery(const std::string& folder) {
  std::error_code error;
  fs::create_directories(folder, error);
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
