// What the benchmark's members work on.
#pragma once

#include <cstdint>
#include <string_view>

#include "host/core/picture.h"
#include "host/files/picture_size.h"

namespace host {

enum class Content {
  Photo,     ///< a landscape with grain, like a photograph
  Noise,     ///< random colours
  White,     ///< for members that stop at the first pixel of another colour, and
             ///< for searches that do not until the end
  Black,     ///< for the former
  Waveform,  ///< no picture: the sound of a chord
};

/// One word for it: "photo", "noise", …
std::string_view nameOf(Content content);

/// Pictures of one size and content, kept as the host keeps opened files.
struct Subject {
  Content content;
  PictureSize size;
  Ref<Picture> picture;  ///< null for a waveform
  Ref<Picture> other;    ///< a second one, for photo and noise; else null
};

/// Throws std::bad_alloc without memory.
Subject makeSubject(Content content, PictureSize size);

/// The part of a picture from its left and upper corner on, as a picture of its own.
/// Throws std::bad_alloc without memory.
Ref<Picture> partOf(const Picture& picture, int32_t left, int32_t top, PictureSize size);

}  // namespace host
