// BinaryStringtoPictureQRZ with bytes from anywhere: nil, or a picture of the very
// pixels that the string holds. QRZ_FUZZ_PICTURES=bitmap makes new pictures bitmaps.

#include <string_view>

#include "fuzz/support/checks.h"
#include "fuzz/support/plugin.h"
#include "host/core/picture.h"
#include "host/core/runtime.h"
#include "host/core/string_record.h"
#include "plugin/binding/handles.h"

namespace qrz {
HostPicture BinaryStringtoPictureQRZ(HostString data);
HostString PicturetoBinaryStringQRZ(HostPicture p);
}  // namespace qrz

namespace {

using fuzz::expect;

constexpr size_t kHeaderSize = 40;

uint32_t wordAt(std::string_view text, size_t offset) {
  uint32_t word = 0;
  for (size_t i = 0; i < 4; ++i) word = word << 8 | static_cast<uint8_t>(text[offset + i]);
  return word;
}

/// The pixels of the string are those of the picture's own string.
void compare(std::string_view given, std::string_view made) {
  expect(made.size() >= kHeaderSize && given.size() >= 24);
  expect(given.substr(0, 4) == "PPIC" && wordAt(given, 4) == given.size());
  expect(given.substr(8, 8) == made.substr(8, 8));  // width and height
  const std::string_view pixels = made.substr(kHeaderSize);
  expect(given.substr(wordAt(given, 20), pixels.size()) == pixels);
}

void convert(std::string_view text) {
  host::StringRecord* given = host::newString(text);
  auto* picture = qrz::BinaryStringtoPictureQRZ(reinterpret_cast<qrz::HostString>(given));
  if (picture != nullptr) {
    const auto owned = host::Ref<host::Picture>::adopt(reinterpret_cast<host::Picture*>(picture));
    auto* made = reinterpret_cast<host::StringRecord*>(qrz::PicturetoBinaryStringQRZ(picture));
    expect(made != nullptr);
    compare(text, made->text());
    host::releaseString(made);
  }
  host::releaseString(given);
}

}  // namespace

extern "C" int LLVMFuzzerInitialize(int* /*count*/, char*** /*arguments*/) {
  fuzz::startPlugin();
  return 0;
}

extern "C" int LLVMFuzzerTestOneInput(const uint8_t* bytes, size_t size) {
  convert({reinterpret_cast<const char*>(bytes), size});
  expect(host::runtime().findLeaks().empty());
  return 0;
}
