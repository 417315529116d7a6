// Host pictures from and to picture files.
#pragma once

#include <string>

#include "host/core/picture.h"
#include "host/files/image.h"

namespace host {

/// The pixels and, where there is one, the mask as alpha.
Image imageOf(const Picture& picture);

/// A picture in the representation of opened files. Alpha goes to the pad bytes
/// and, as grey levels, to the mask. Null without memory.
Ref<Picture> pictureOf(const Image& image);

/// Opens a picture file, or draws the built-in sample picture of a name such as
/// "sample:landscape" or, in another size, "sample:landscape@4000x3000". A PICT file
/// becomes a picture that holds its data. Raises an IOException with one clear line.
Ref<Picture> openPicture(const std::string& path);

/// What messages call the picture that comes through standard input.
inline constexpr const char* kStandardInput = "standard input";

/// The same from standard input, once.
Ref<Picture> openStandardInput();

/// Throws an ImageError unless savePicture knows the extension.
void checkPictureName(const std::string& path);

/// Writes a picture file of the kind that the extension names; to .pict and .pct, the
/// data of a picture that holds some, or what is recorded of it on white. Raises an
/// IOException with one clear line, and leaves no half-written file.
void savePicture(Picture& picture, const std::string& path);

/// Writes a PNG file to standard output. Throws Interrupted, or raises an IOException with one
/// clear line.
void writeToStandardOutput(const Picture& picture);

}  // namespace host
