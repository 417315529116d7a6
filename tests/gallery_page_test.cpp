#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "host/manual/page.h"
#include "host/samples/samples.h"

namespace host {
namespace {

size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

TEST(Samples, HaveEveryAskedSizeAndAlphaIfTheyAreNamedSo) {
  for (const Sample& sample : samples()) {
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 40}, {40, 1}, {96, 64}}) {
      const Image image = sample.draw(width, height);
      EXPECT_EQ(image.width, width);
      EXPECT_EQ(image.height, height);
      ASSERT_EQ(image.pixels.size(), static_cast<size_t>(width * height)) << sample.name;
      EXPECT_EQ(image.hasAlpha, sample.name == "alpha");
    }
    std::set<uint32_t> alphas;
    for (const uint32_t pixel : sample.draw(96, 64).pixels) alphas.insert(pixel >> 24);
    EXPECT_EQ(alphas.size() > 50, sample.name == "alpha") << sample.name;
    EXPECT_TRUE(alphas.contains(0)) << sample.name;
    EXPECT_THROW(sample.draw(0, 5), std::invalid_argument);
    EXPECT_THROW(sample.draw(5, -1), std::invalid_argument);
  }
}

TEST(GalleryPage, EscapesAllTexts) {
  const std::string evil = "<b a=\"1\" b='2'>&amp;";
  GalleryEntry entry{evil, evil, evil, evil, {1, 1, false, {0}}, {}, evil};
  const std::string page = galleryPage({{evil, {entry}}});
  const std::string safe = "&lt;b a=&quot;1&quot; b=&#39;2&#39;&gt;&amp;amp;";
  EXPECT_EQ(page.find(evil), std::string::npos);
  // Two titles, the link, the heading, three texts, the value and the description of a picture.
  EXPECT_EQ(countOf(page, safe), 9U);
}

TEST(GalleryPage, HoldsEverythingItShows) {
  GalleryEntry entry;
  entry.member = "InvertQRZ";
  entry.before = {1, 1, false, {0x000000}};
  entry.after = {1, 1, false, {0xFFFFFF}};
  GalleryEntry value;
  value.value = "42 colours";
  value.before = entry.after;
  const std::string page = galleryPage({{"Colour", {entry, entry}}, {"Again", {entry, value}}});
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n<html lang=\"en\">"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  EXPECT_EQ(countOf(page, "42 colours"), 1U);
  for (const char* outside : {"http", "url(", "@import", "<script"}) {
    EXPECT_EQ(countOf(page, outside), 0U) << outside;
  }
  EXPECT_EQ(countOf(page, "src="), 7U);
  EXPECT_EQ(countOf(page, " src=\"data:image/png;base64,iVBORw0KGgo"), 7U);
  const size_t code = page.find("src=", page.find("alt=\"After"));
  EXPECT_EQ(countOf(page, page.substr(code, page.find('"', code + 5) - code)), 4U) << "white";
  EXPECT_EQ(countOf(page, "alt=\"Before InvertQRZ\" width=\"1\" height=\"1\""), 3U);
  EXPECT_EQ(countOf(page, "alt=\"After InvertQRZ\""), 3U);
  EXPECT_EQ(countOf(page, "id=\"filter-1-2\""), 1U);
  // The second of two overloads needs no link of its own.
  EXPECT_EQ(countOf(page, "href=\"#filter-1-1\""), 1U);
  EXPECT_EQ(countOf(page, "href=\"#filter-1-2\""), 0U);
  EXPECT_EQ(countOf(page, "href=\"#filter-2-1\""), 1U);
}

}  // namespace
}  // namespace host
