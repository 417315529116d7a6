// Strings as the plug-in sees them. Scripts hold plain std::string values; a
// record exists only while a string crosses between the two.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <string_view>

namespace host {

/// The text begins one byte after the start of the buffer.
struct StringRecord {
  int32_t references;
  char* buffer;
  int32_t encoding;  ///< as the platform's text services number them
  int32_t length;    ///< bytes

  [[nodiscard]] std::string_view text() const { return {buffer + 1, static_cast<size_t>(length)}; }
};
static_assert(offsetof(StringRecord, buffer) == 4);
static_assert(offsetof(StringRecord, length) == 12);

/// A new record with one reference, holding a copy of the bytes.
StringRecord* newString(std::string_view bytes, int32_t encoding = 0xFFFF);
/// Drops one reference; null is fine.
void releaseString(StringRecord* string);
/// True if `string` is the address of a living record; any address is fine.
bool isString(const void* string);
/// Records alive at the moment.
int32_t livingStrings();

/// The text of a UTF-16 or UTF-32 string (native byte order) as UTF-8; other
/// text as it is. Units that are no character become U+FFFD.
std::string toUtf8(std::string_view bytes, int32_t encoding);

}  // namespace host
