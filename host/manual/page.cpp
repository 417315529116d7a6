#include "host/manual/page.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <string_view>
#include <utility>

#include "host/core/interrupt.h"
#include "host/files/image_file.h"
#include "host/files/markup.h"
#include "host/manual/page_style.h"

namespace host {

namespace {

/// Base64 with padding.
std::string encoded(std::span<const uint8_t> bytes) {
  static constexpr std::string_view kDigits =
      "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
  std::string text;
  text.reserve((bytes.size() + 2) / 3 * 4);
  for (size_t i = 0; i < bytes.size(); i += 3) {
    const auto byteAt = [&](size_t at) -> uint32_t { return at < bytes.size() ? bytes[at] : 0; };
    const uint32_t three = byteAt(i) << 16 | byteAt(i + 1) << 8 | byteAt(i + 2);
    text += kDigits[three >> 18];
    text += kDigits[three >> 12 & 63];
    text += i + 1 < bytes.size() ? kDigits[three >> 6 & 63] : '=';
    text += i + 2 < bytes.size() ? kDigits[three & 63] : '=';
  }
  return text;
}

bool isEmpty(const Image& image) { return image.pixels.empty(); }

bool isSame(const Image& a, const Image& b) {
  return a.width == b.width && a.height == b.height && a.hasAlpha == b.hasAlpha &&
         a.pixels == b.pixels;
}

class Page {
 public:
  std::string write(const std::vector<GalleryGroup>& groups) {
    startDocument();
    writeHeader(groups);
    html_ += "<main>\n";
    for (size_t i = 0; i < groups.size(); ++i) writeGroup(groups[i], i);
    html_ +=
        "</main>\n<footer><p>Made without a screen, by the picture host itself.</p></footer>\n"
        "</body>\n</html>\n";
    return std::move(html_);
  }

 private:
  void startDocument() {
    html_ +=
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<title>Picture filter gallery</title>\n<style>";
    html_ += kPageStyle;
    html_ += "</style>\n</head>\n<body>\n";
  }

  /// One link for entries of the same name that follow each other.
  void writeHeader(const std::vector<GalleryGroup>& groups) {
    html_ +=
        "<header>\n<h1>Picture filter gallery</h1>\n"
        "<p class=\"lead\">Every filter with the line that ran it, the picture it was given "
        "and the picture it made.</p>\n<nav aria-label=\"Filters\">\n";
    for (size_t i = 0; i < groups.size(); ++i) {
      html_ += "<h2>" + escaped(groups[i].title) + "</h2>\n<ul>\n";
      for (size_t k = 0; k < groups[i].entries.size(); ++k) {
        if (k > 0 && groups[i].entries[k].member == groups[i].entries[k - 1].member) continue;
        html_ += "<li><a href=\"#" + anchor(i, k) + "\">" + escaped(groups[i].entries[k].member) +
                 "</a></li>\n";
      }
      html_ += "</ul>\n";
    }
    html_ += "</nav>\n</header>\n";
  }

  /// By number, because members may appear several times.
  static std::string anchor(size_t group, size_t entry) {
    return "filter-" + std::to_string(group + 1) + "-" + std::to_string(entry + 1);
  }

  void writeGroup(const GalleryGroup& group, size_t index) {
    html_ += "<section>\n<h2>" + escaped(group.title) + "</h2>\n";
    for (size_t i = 0; i < group.entries.size(); ++i) {
      checkInterrupt();
      writeEntry(group.entries[i], anchor(index, i));
    }
    html_ += "</section>\n";
  }

  void writeEntry(const GalleryEntry& entry, const std::string& id) {
    html_ += "<article id=\"" + id + "\">\n<h3>" + escaped(entry.member) + "</h3>\n";
    if (!entry.note.empty()) html_ += "<p class=\"note\">" + escaped(entry.note) + "</p>\n";
    html_ += "<p class=\"declaration\"><code>" + escaped(entry.declaration) + "</code></p>\n";
    html_ += "<p class=\"expression\"><code>" + escaped(entry.expression) + "</code></p>\n";
    html_ += "<div class=\"pictures\">\n";
    if (!isEmpty(entry.before)) {
      encodeBefore(entry.before);
      writePicture("Before", entry.member, entry.before, beforeCode_);
    }
    if (!isEmpty(entry.after)) {
      writePicture(isEmpty(entry.before) ? "Result" : "After", entry.member, entry.after,
                   encoded(encodePng(entry.after)));
    } else {
      writeValue(entry.value);
    }
    html_ += "</div>\n</article>\n";
  }

  void writePicture(std::string_view when, const std::string& member, const Image& image,
                    const std::string& code) {
    const std::string caption(when);
    const std::string width = std::to_string(image.width);
    const std::string height = std::to_string(image.height);
    html_ += "<figure><figcaption>" + caption + ", " + width + " × " + height + "</figcaption>";
    html_ += "<img alt=\"" + caption + " " + escaped(member) + "\" width=\"" + width +
             "\" height=\"" + height + "\" src=\"data:image/png;base64,";
    html_ += code;
    html_ += "\"></figure>\n";
  }

  void writeValue(const std::string& value) {
    html_ += "<figure><figcaption>Result</figcaption><div class=\"value\">" + escaped(value) +
             "</div></figure>\n";
  }

  /// Entries in a row mostly start from the same picture; it is encoded only once.
  void encodeBefore(const Image& image) {
    if (isSame(image, before_)) return;
    beforeCode_ = encoded(encodePng(image));
    before_ = image;
  }

  std::string html_;
  Image before_;
  std::string beforeCode_;
};

}  // namespace

std::string galleryPage(const std::vector<GalleryGroup>& groups) { return Page().write(groups); }

}  // namespace host
