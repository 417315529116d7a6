#include "host/files/file_bytes.h"

#include <fcntl.h>
#include <limits.h>
#include <sys/stat.h>
#include <unistd.h>

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <memory>
#include <optional>
#include <utility>

#include "host/core/interrupt.h"
#include "host/files/file_fault.h"

namespace host {

namespace {

using FileHandle = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

// ---- Reading -------------------------------------------------------------------------------

[[noreturn]] void failToOpen(int error) {
  throw FileFault(std::string("cannot be read: ") + std::strerror(error) +
                  "; check the name and the permissions");
}

/// The kind of file, as stat has it; there are only files that can be read.
mode_t checkedMode(const std::string& path) {
  if (path.find('\0') != std::string::npos) {
    throw FileFault("the name contains a zero byte; choose another one");
  }
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) failToOpen(errno);
  if (S_ISDIR(status.st_mode)) throw FileFault("is a folder; give the name of a file");
  return status.st_mode;
}

FileHandle openFile(const std::string& path) {
  checkedMode(path);
  FileHandle file(std::fopen(path.c_str(), "rb"), &std::fclose);
  if (file == nullptr) failToOpen(errno);
  return file;
}

// ---- Writing -------------------------------------------------------------------------------

[[noreturn]] void failToStore(int error) {
  throw FileFault(std::string("cannot be written: ") + std::strerror(error) +
                  "; choose another folder or make room");
}

std::string folderOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  return slash == std::string::npos ? "" : path.substr(0, slash + 1);
}

/// The file a symbolic link stands for, be it there or not, or the path itself.
std::string resolveLink(std::string path) {
  constexpr int kMostLinks = 40;
  for (int i = 0; i < kMostLinks; ++i) {
    std::array<char, PATH_MAX> target{};
    const ssize_t size = readlink(path.c_str(), target.data(), target.size());
    if (size <= 0) return path;
    const std::string text(target.data(), static_cast<size_t>(size));
    path = text.front() == '/' ? text : folderOf(path) + text;
  }
  failToStore(ELOOP);
}

/// The permissions for the new file: those of the file it replaces, if there is one.
std::optional<mode_t> replacedMode(const std::string& path) {
  struct stat status {};
  if (stat(path.c_str(), &status) != 0) return std::nullopt;
  if (!S_ISREG(status.st_mode)) {
    throw FileFault("is a folder or device, no ordinary file; choose another name");
  }
  if (access(path.c_str(), W_OK) != 0) failToStore(errno);
  return status.st_mode & 07777;
}

/// 0, or what went wrong; EINTR only for an interrupt.
int writeAll(int descriptor, std::span<const uint8_t> bytes) {
  while (!bytes.empty()) {
    const ssize_t count = write(descriptor, bytes.data(), bytes.size());
    if (count == 0) return ENOSPC;
    if (count < 0 && (errno != EINTR || isInterrupted())) return errno;
    if (count > 0) bytes = bytes.subspan(static_cast<size_t>(count));
  }
  return 0;
}

/// A file beside the target which vanishes again unless it is moved onto the target. Interrupts
/// wait until then.
class TemporaryFile {
 public:
  explicit TemporaryFile(const std::string& folder) {
    constexpr int kTries = 1000;
    for (int i = 0; i < kTries && descriptor_ < 0; ++i) {
      name_ = folder + ".picture-" + std::to_string(getpid()) + "-" + std::to_string(i) + ".tmp";
      descriptor_ = open(name_.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_CLOEXEC, 0666);
      if (descriptor_ < 0 && errno != EEXIST) failToStore(errno);
    }
    if (descriptor_ < 0) failToStore(EEXIST);
  }
  TemporaryFile(const TemporaryFile&) = delete;
  TemporaryFile& operator=(const TemporaryFile&) = delete;
  ~TemporaryFile() {
    if (descriptor_ >= 0) close(descriptor_);
    if (!moved_) unlink(name_.c_str());
  }

  void write(std::span<const uint8_t> bytes) const {
    if (const int error = writeAll(descriptor_, bytes); error != 0) failToStore(error);
  }
  void setMode(mode_t mode) const {
    if (fchmod(descriptor_, mode) != 0) failToStore(errno);
  }
  void moveTo(const std::string& target) {
    // Some file systems tell of a full disk only here.
    if (close(std::exchange(descriptor_, -1)) != 0) failToStore(errno);
    if (rename(name_.c_str(), target.c_str()) != 0) failToStore(errno);
    moved_ = true;
  }

 private:
  InterruptsHeld held_;
  std::string name_;
  int descriptor_ = -1;
  bool moved_ = false;
};

/// A file to come; nothing of it is there before it is written.
class NewFile {
 public:
  explicit NewFile(const std::string& path)
      : target_(resolveLink(checkedName(path))),
        mode_(replacedMode(target_)),
        file_(folderOf(target_)) {}

  void write(std::span<const uint8_t> bytes) {
    file_.write(bytes);
    if (mode_) file_.setMode(*mode_);
    file_.moveTo(target_);
  }

 private:
  static const std::string& checkedName(const std::string& path) {
    if (path.find('\0') == std::string::npos) return path;
    throw FileFault("the name contains a zero byte; choose another one");
  }

  std::string target_;
  std::optional<mode_t> mode_;
  TemporaryFile file_;
};

/// What is left of the file.
std::vector<uint8_t> readRest(std::FILE* file, size_t most) {
  std::vector<uint8_t> bytes;
  size_t used = 0;
  while (std::feof(file) == 0) {
    if (used == most) {
      throw FileFault("the file is too large; at most " + std::to_string(most >> 20) +
                      " MB are read");
    }
    bytes.resize(std::min(most, std::max<size_t>(65536, 2 * used)));
    used += std::fread(bytes.data() + used, 1, bytes.size() - used, file);
    if (std::ferror(file) != 0) failToOpen(errno);
  }
  bytes.resize(used);
  return bytes;
}

}  // namespace

std::vector<uint8_t> readFile(const std::string& path, size_t most) {
  return readRest(openFile(path).get(), most);
}

std::vector<uint8_t> readStandardInput() { return readRest(stdin, kMaxFileBytes); }

std::vector<uint8_t> readOrdinaryFile(const std::string& path) {
  if (!S_ISREG(checkedMode(path))) throw FileFault("is no ordinary file; name another one");
  return readFile(path);
}

void writeFile(const std::string& path, std::span<const uint8_t> bytes) {
  NewFile(path).write(bytes);
}

void writeStandardOutput(std::span<const uint8_t> bytes) {
  if (writeAll(STDOUT_FILENO, bytes) == 0) return;
  checkInterrupt();
  throw FileFault("standard output cannot be written");
}

void checkWritable(const std::string& path) { static_cast<void>(NewFile(path)); }

std::string extensionOf(const std::string& path) {
  const size_t slash = path.rfind('/');
  const size_t dot = path.rfind('.');
  if (dot == std::string::npos || (slash != std::string::npos && dot < slash)) return "";
  std::string extension = path.substr(dot);
  for (char& c : extension) c = c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  return extension;
}

}  // namespace host
