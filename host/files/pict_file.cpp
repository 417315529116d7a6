#include "host/files/pict_file.h"

#include <algorithm>
#include <array>
#include <vector>

#include "host/files/file_bytes.h"
#include "platform/standin/standin.h"

namespace host {
namespace {

using Bytes = std::span<const uint8_t>;

constexpr size_t kHeaderSize = 512;
/// After the size and the frame.
constexpr size_t kVersionOffset = 10;
constexpr std::array<uint8_t, 2> kVersion1 = {0x11, 0x01};
constexpr std::array<uint8_t, 4> kVersion2 = {0x00, 0x11, 0x02, 0xFF};

bool hasVersion(Bytes data, Bytes version) {
  return data.size() >= kVersionOffset + version.size() &&
         std::ranges::equal(data.subspan(kVersionOffset, version.size()), version);
}

bool hasFrame(Bytes data) {
  const Rect frame = standin::pictFrame(data);
  return frame.left < frame.right && frame.top < frame.bottom;
}

/// The data at the start of a file or behind its header.
std::optional<Bytes> dataOf(Bytes bytes, Bytes version) {
  for (const Bytes data : {bytes, bytes.subspan(std::min(bytes.size(), kHeaderSize))}) {
    if (hasVersion(data, version) && hasFrame(data)) return data;
  }
  return std::nullopt;
}

}  // namespace

bool holdsPictVersion2(Bytes bytes) {
  return hasVersion(bytes, kVersion2) || dataOf(bytes, kVersion2);
}

std::optional<Bytes> pictDataIn(Bytes bytes) {
  if (const auto data = dataOf(bytes, kVersion2)) return data;
  if (hasVersion(bytes, kVersion2)) return bytes;  // without pixels
  return dataOf(bytes, kVersion1);
}

bool isPictName(const std::string& path) {
  const std::string extension = extensionOf(path);
  return extension == ".pict" || extension == ".pct";
}

void writePict(const std::string& path, Bytes data) {
  std::vector<uint8_t> bytes(kHeaderSize);
  bytes.insert(bytes.end(), data.begin(), data.end());
  writeFile(path, bytes);
}

}  // namespace host
