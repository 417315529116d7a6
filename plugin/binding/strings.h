// Host strings.
#pragma once

#include "plugin/binding/handles.h"

namespace qrz {

/// Text encodings, numbered as the platform's text services number them.
enum TextEncoding : int32_t {
  kUTF16 = 0x0100,  ///< native byte order
  kUTF32 = 0x0C000100,
  kUTF8 = 0x08000100,
  kASCII = 0x0600,
  kRawBytes = 0xFFFF,
};

/// The bytes of a host string, valid as long as the string.
struct HostText {
  const char* bytes;  ///< never null
  int32_t length;     ///< 0 or more
};

/// The text of a string, read where it lies; no bytes if the string is null.
HostText textOf(HostString string);

/// A new host string of `length` bytes in `encoding`, with one reference for
/// the caller. UTF-16 and UTF-32 text is converted to UTF-8; other bytes are
/// kept and tagged. Null for no bytes (there is no empty string from here), and
/// when the host refuses; a null that the host's conversion gives is passed on.
HostString MakeHostString(const char* bytes, int32_t length, int32_t encoding);

}  // namespace qrz
