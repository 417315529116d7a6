// Telling picture formats apart, and refusing damaged files before the picture library sees them.
#pragma once

#include <cstdint>
#include <span>
#include <string_view>

namespace host {

enum class PictureFormat { kUnknown, kPng, kJpeg, kBmp, kGif, kTga, kPnm, kPict };

/// The format's usual name, as in "PNG"; never of kUnknown.
std::string_view formatName(PictureFormat format);

/// Judges by the first bytes, whatever the file is called. TGA has no signature: it is what has a
/// plausible TGA header and is nothing else.
PictureFormat detectFormat(std::span<const uint8_t> bytes);

/// Walks the structure of a PNG, JPEG, BMP, GIF or TGA file without decoding a pixel: everything
/// the decoder will read has to be there and to be sane. Throws DamagedFile if not, or
/// FileFault for what the decoder does not support.
/// The decoder takes missing bytes for zeros and trusts some counts that it should not, so this
/// is what makes it safe and exact.
void checkStructure(PictureFormat format, std::span<const uint8_t> bytes);

/// True for what declares an alpha channel which may be mere padding: GIF, and BMP with 32 bits
/// and no channel masks. Such a picture has alpha only if a pixel is not opaque.
/// bytes have passed checkStructure.
bool alphaMayBePadding(PictureFormat format, std::span<const uint8_t> bytes);

}  // namespace host
