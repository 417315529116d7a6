#include "plugin/binding/strings.h"

#include "plugin/binding/services.h"

namespace qrz {

HostString MakeHostString(const char* bytes, int32_t length, int32_t encoding) {
  if (bytes == nullptr || length == 0) return nullptr;
  HostString string = service::REALBuildString(bytes, length);
  if (string == nullptr) return nullptr;
  service::REALSetStringEncoding(string, encoding);
  if (encoding != kUTF16 && encoding != kUTF32) return string;
  HostString converted = service::REALConvertString(string, kUTF8);
  service::REALUnlockString(string);
  return converted;
}

}  // namespace qrz
