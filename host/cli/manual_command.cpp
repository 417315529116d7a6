#include <algorithm>
#include <filesystem>
#include <functional>
#include <iostream>
#include <span>
#include <stdexcept>

#include "host/cli/commands.h"
#include "host/core/interrupt.h"
#include "host/files/file_bytes.h"
#include "host/files/file_fault.h"
#include "host/manual/manual.h"
#include "host/manual/markdown.h"
#include "host/manual/page.h"

namespace host {
namespace {

namespace fs = std::filesystem;

/// A file or folder cannot be made; what() is the line for the user.
class Unwritable : public std::runtime_error {
 public:
  Unwritable(const fs::path& path, const std::string& why)
      : std::runtime_error(fileMessage(path.string(), why)) {}
};

/// Adds files to a folder, which it makes. Unless they are kept, what was not there before is gone
/// again at its end.
class FolderWriter {
 public:
  /// Throws Unwritable if there is no such folder and none can be made.
  explicit FolderWriter(const std::string& folder) : folder_(folder) { makeFolder(folder_); }
  FolderWriter(const FolderWriter&) = delete;
  FolderWriter& operator=(const FolderWriter&) = delete;
  ~FolderWriter() {
    std::error_code ignored;
    while (!made_.empty()) {
      fs::remove(made_.back(), ignored);
      made_.pop_back();
    }
  }

  /// The file's name may begin with a folder. Throws Unwritable.
  void write(const std::string& name, std::span<const uint8_t> bytes) {
    const fs::path path = folder_ / name;
    makeFolder(path.parent_path());
    const bool isNew = !fs::exists(fs::symlink_status(path));
    try {
      writeFile(path.string(), bytes);
    } catch (const FileFault& fault) {
      throw Unwritable(path, fault.what());
    }
    if (isNew) made_.push_back(path);
  }

  void keep() { made_.clear(); }

 private:
  void makeFolder(const fs::path& folder) {
    std::error_code error;
    if (fs::create_directories(folder, error)) made_.push_back(folder);
    if (error || !fs::is_directory(folder, error)) {
      throw Unwritable(folder, "cannot make this folder; name another one");
    }
  }

  fs::path folder_;
  std::vector<fs::path> made_;  ///< files and folders, in this order
};

std::span<const uint8_t> bytesOf(const std::string& text) {
  return {reinterpret_cast<const uint8_t*>(text.data()), text.size()};
}

size_t countOf(const std::vector<ShownGroup>& groups,
               const std::function<size_t(const ShownMember&)>& count) {
  size_t sum = 0;
  for (const ShownGroup& group : groups) {
    for (const ShownMember& member : group.members) sum += count(member);
  }
  return sum;
}

void report(const Manual& manual, const std::string& page) {
  const size_t members = countOf(manual.groups, [](const ShownMember&) -> size_t { return 1; });
  const size_t examples =
      countOf(manual.groups, [](const ShownMember& member) { return member.examples.size(); });
  std::cout << "Ran " << examples << " examples of " << members
            << " members on built-in pictures. The page with all of them, to open in a browser:\n  "
            << fs::absolute(page).lexically_normal().string() << "\nTry next:\n"
            << "  ./run apply self.InvertQRZ sample:landscape -o inverted.png\n"
            << "  ./run view inverted.png\n"
            << "  ./run members FindPicture\n";
}

int writeManual(const std::string& folder, bool withMarkdown) {
  const std::string page = (fs::path(folder) / "index.html").string();
  try {
    FolderWriter writer(folder);
    const Manual manual = makeManual();
    checkInterrupt();
    for (const ManualPicture& picture : manual.pictures) writer.write(picture.file, picture.bytes);
    if (withMarkdown) writer.write("members.md", bytesOf(manualMarkdown(manual.groups)));
    writer.write("index.html", bytesOf(manualPage(manual.groups)));
    writer.keep();
    report(manual, page);
  } catch (const Unwritable& problem) {
    complain(problem.what());
    return kFailed;
  }
  return kDone;
}

}  // namespace

int makeGallery(const std::string& folder) { return writeManual(folder, false); }

int makeManualFolder(const std::string& folder) { return writeManual(folder, true); }

}  // namespace host
