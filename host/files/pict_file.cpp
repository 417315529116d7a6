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

/// Two bytes alone say little, so there has to be a frame as well.
bool startsWithVersion1(Bytes data) {
  if (!hasVersion(data, kVersion1)) return false;
  const Rect frame = standin::pictFrame(data);
  return frame.left < frame.right && frame.top < frame.bottom;
}

}  // namespace

bool startsWithPict(Bytes bytes) { return hasVersion(bytes, kVersion2); }

std::optional<Bytes> pictDataIn(Bytes bytes) {
  if (startsWithPict(bytes)) return bytes;
  const Bytes behind = bytes.subspan(std::min(bytes.size(), kHeaderSize));
  if (startsWithPict(behind)) return behind;
  if (startsWithVersion1(bytes)) return bytes;
  if (startsWithVersion1(behind)) return behind;
  return std::nullopt;
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
