// The manual as one page to open in a browser: every member at work.
#pragma once

#include <string>
#include <vector>

#include "host/files/image.h"
#include "host/manual/shown.h"

namespace host {

/// One HTML document in UTF-8, which shows the picture files beside it and fetches nothing else.
/// Readers search it, move a divider between before and after, copy the lines, and choose dark or
/// light; without scripts they still see everything. All texts, which are taken for UTF-8, are
/// escaped.
std::string manualPage(const std::vector<ShownGroup>& groups);

// The page before this one, with its pictures inside, until nothing asks for it any more.

/// One filter at work. An image without pixels is left out; without an after image the value is
/// shown instead.
struct GalleryEntry {
  std::string member;       // "InvertQRZ"
  std::string declaration;  // as registered
  std::string expression;   // the line that made it
  std::string note;         // one sentence, may be empty
  Image before;
  Image after;
  std::string value;  // text result when there is no picture
};

struct GalleryGroup {
  std::string title;
  std::vector<GalleryEntry> entries;
};

/// One self-contained HTML document in UTF-8: pictures are embedded as PNG, nothing is fetched
/// from elsewhere and no script is run. It fits narrow and wide windows, and follows the reader's
/// choice of dark or light. All texts, which are taken for UTF-8, are escaped.
/// Throws ImageError for an image whose pixels do not fit its size, or that is too large.
std::string galleryPage(const std::vector<GalleryGroup>& groups);

}  // namespace host
