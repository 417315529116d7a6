// The bytes of a file that may be damaged, and what is said about it.
#pragma once

#include <array>
#include <cstdint>
#include <cstdio>
#include <cstring>
#include <span>
#include <stdexcept>
#include <string>
#include <string_view>
#include <vector>

namespace mach_o {

/// More than any plug-in takes up.
inline constexpr uint32_t kLargestImage = 256U << 20;

/// Says what is wrong with the file: the end of a line that starts with its name.
[[noreturn]] inline void refuse(const std::string& reason) { throw std::runtime_error(reason); }

inline std::string hex(uint32_t value) {
  std::array<char, 16> text{};
  snprintf(text.data(), text.size(), "0x%X", value);
  return text.data();
}

/// A name from the file, so that a line stays one line.
inline std::string printable(std::string_view name) {
  std::string text(name);
  for (char& letter : text) {
    if (letter < ' ' || letter > '~') letter = '?';
  }
  return text;
}

/// Reads no byte outside the file: refuses it instead, naming `what` it ends before.
class CheckedFile {
 public:
  explicit CheckedFile(std::span<const uint8_t> file) : file_(file) {}

  [[nodiscard]] std::span<const uint8_t> bytes(uint32_t offset, uint64_t size,
                                               const char* what) const {
    if (offset > file_.size() || size > file_.size() - offset) {
      refuse(std::string("is truncated: the file ends before its ") + what);
    }
    return file_.subspan(offset, static_cast<size_t>(size));
  }

  template <typename Record>
  [[nodiscard]] Record record(uint32_t offset, const char* what) const {
    return table<Record>(offset, 1, what).front();
  }

  template <typename Record>
  [[nodiscard]] std::vector<Record> table(uint32_t offset, uint32_t count, const char* what) const {
    const auto from = bytes(offset, uint64_t{count} * sizeof(Record), what);
    std::vector<Record> records(count);
    if (count > 0) memcpy(records.data(), from.data(), from.size());
    return records;
  }

 private:
  std::span<const uint8_t> file_;
};

}  // namespace mach_o
