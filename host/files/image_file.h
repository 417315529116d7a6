// Picture files: reading, writing, and PNG in memory.
#pragma once

#include <cstdint>
#include <stdexcept>
#include <string>
#include <vector>

#include "host/files/image.h"

namespace host {

/// A picture that cannot be read or written. what() is one line which starts with the path (any
/// control characters in it shown as '?'), and says what is wrong and what to do.
class ImageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

/// Reads a PNG, JPEG, BMP, GIF (its first frame), TGA or PNM (P1 to P6) file, told apart by what
/// is in it, not by its name. hasAlpha is true if the file has an alpha channel or transparent
/// colours; in GIF, and in BMP with 32 bits and no channel masks, only if some pixel is not
/// opaque. Samples of 16 bits are reduced to 8.
/// Throws ImageError if the file cannot be opened, is no picture, is damaged or incomplete, or is
/// larger than 128 megapixels, 1000000 pixels a side, or the memory at hand.
Image readImage(const std::string& path);

/// The two halves of readImage, for files that may hold something else.
std::vector<uint8_t> readPictureFile(const std::string& path);
Image decodeImage(const std::string& path, const std::vector<uint8_t>& bytes);

/// Writes a PNG, JPEG (quality 95), BMP or TGA file, by the extension .png, .jpg, .jpeg, .bmp or
/// .tga in upper or lower case. Alpha is written if hasAlpha, but never to JPEG.
/// The file appears under its name only when it is complete; an existing file keeps its
/// permissions, and a symbolic link goes on pointing to its file.
/// Throws ImageError if the extension is unknown, the picture is empty, has not
/// width * height pixels or is too large for the format, or the file cannot be written. Nothing
/// is left behind then, and an existing file stays as it was.
void writeImage(const std::string& path, const Image& image);

/// Throws the ImageError that writeImage would throw for the extension, without any other work.
void checkWritableFormat(const std::string& path);

/// The bytes of a PNG file, with alpha if hasAlpha, or of a JPEG file. Both throw ImageError, whose
/// line starts with "picture", for what writeImage throws about the picture itself.
std::vector<uint8_t> encodePng(const Image& image);
std::vector<uint8_t> encodeJpeg(const Image& image);

}  // namespace host
