#include "host/core/string_record.h"

#include <algorithm>
#include <cstring>
#include <memory>
#include <unordered_set>

namespace host {
namespace {

constexpr int32_t kUTF16 = 0x0100;
constexpr int32_t kUTF32 = 0x0C000100;
constexpr uint32_t kReplacement = 0xFFFD;

std::unordered_set<const void*>& strings() {
  static std::unordered_set<const void*> records;
  return records;
}

void appendUtf8(std::string& text, uint32_t code) {
  const auto put = [&text](uint32_t byte) { text.push_back(static_cast<char>(byte)); };
  const auto tail = [&](int32_t shift) { put(0x80 | (code >> shift & 0x3F)); };
  if (code < 0x80) {
    put(code);
  } else if (code < 0x800) {
    put(0xC0 | code >> 6);
    tail(0);
  } else if (code < 0x10000) {
    put(0xE0 | code >> 12);
    tail(6);
    tail(0);
  } else {
    put(0xF0 | code >> 18);
    tail(12);
    tail(6);
    tail(0);
  }
}

bool isHighSurrogate(uint32_t unit) { return unit >= 0xD800 && unit < 0xDC00; }
bool isSurrogate(uint32_t unit) { return unit >= 0xD800 && unit < 0xE000; }

template <typename Unit>
Unit unitAt(std::string_view bytes, size_t index) {
  Unit unit = 0;
  memcpy(&unit, bytes.data() + index * sizeof(Unit), sizeof(Unit));
  return unit;
}

std::string utf16ToUtf8(std::string_view bytes) {
  std::string text;
  const size_t count = bytes.size() / 2;
  for (size_t i = 0; i < count; ++i) {
    uint32_t code = unitAt<uint16_t>(bytes, i);
    const uint32_t next = i + 1 < count ? unitAt<uint16_t>(bytes, i + 1) : 0;
    if (isHighSurrogate(code) && isSurrogate(next) && !isHighSurrogate(next)) {
      code = 0x10000 + ((code & 0x3FF) << 10 | (next & 0x3FF));
      ++i;
    }
    appendUtf8(text, isSurrogate(code) ? kReplacement : code);
  }
  return text;
}

std::string utf32ToUtf8(std::string_view bytes) {
  std::string text;
  for (size_t i = 0; i < bytes.size() / 4; ++i) {
    const auto code = unitAt<uint32_t>(bytes, i);
    appendUtf8(text, code > 0x10FFFF || isSurrogate(code) ? kReplacement : code);
  }
  return text;
}

}  // namespace

StringRecord* newString(std::string_view bytes, int32_t encoding) {
  auto buffer = std::make_unique<char[]>(bytes.size() + 2);
  // The first byte holds a short length, as old hosts want it.
  buffer[0] = static_cast<char>(std::min<size_t>(bytes.size(), 255));
  std::ranges::copy(bytes, buffer.get() + 1);
  auto record = std::make_unique<StringRecord>(
      StringRecord{1, buffer.get(), encoding, static_cast<int32_t>(bytes.size())});
  strings().insert(record.get());
  static_cast<void>(buffer.release());
  return record.release();
}

void releaseString(StringRecord* string) {
  if (string == nullptr || --string->references > 0) return;
  strings().erase(string);
  delete[] string->buffer;
  delete string;
}

bool isString(const void* string) { return strings().contains(string); }

int32_t livingStrings() { return static_cast<int32_t>(strings().size()); }

std::string toUtf8(std::string_view bytes, int32_t encoding) {
  if (encoding == kUTF16) return utf16ToUtf8(bytes);
  if (encoding == kUTF32) return utf32ToUtf8(bytes);
  return std::string(bytes);
}

}  // namespace host
