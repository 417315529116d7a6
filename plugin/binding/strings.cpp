#include "plugin/binding/strings.h"

#include <cstddef>

#include "plugin/binding/services.h"

namespace qrz {
namespace {

/// The host's record of a string, as far as the plug-in relies on it.
struct StringRecord {
  uint32_t opaque1;
  const char* buffer;  ///< the text begins one byte after the start
  uint32_t opaque2;
  int32_t length;  ///< bytes of text
};
static_assert(offsetof(StringRecord, buffer) == 4);
static_assert(offsetof(StringRecord, length) == 12);

}  // namespace

HostText textOf(HostString string) {
  const auto* record = reinterpret_cast<const StringRecord*>(string);
  if (record == nullptr || record->buffer == nullptr || record->length < 1) return {"", 0};
  return {record->buffer + 1, record->length};
}

HostString MakeHostString(const char* bytes, int32_t length, int32_t encoding) {
  if (bytes == nullptr || length < 1) return nullptr;
  HostString string = service::REALBuildString(bytes, length);
  if (string == nullptr) return nullptr;
  service::REALSetStringEncoding(string, encoding);
  if (encoding != kUTF16 && encoding != kUTF32) return string;
  HostString converted = service::REALConvertString(string, kUTF8);
  service::REALUnlockString(string);
  return converted;
}

}  // namespace qrz
