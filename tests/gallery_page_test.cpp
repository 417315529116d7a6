#include <gtest/gtest.h>

#include <set>
#include <stdexcept>

#include "host/gallery/page.h"
#include "host/gallery/samples.h"

namespace host {
namespace {

size_t countOf(const std::string& text, const std::string& part) {
  size_t count = 0;
  for (size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) ++count;
  return count;
}

GalleryEntry entryNamed(const std::string& member) {
  GalleryEntry entry;
  entry.member = member;
  return entry;
}

TEST(Samples, HaveUniqueNamesAndEveryAskedSize) {
  std::set<std::string_view> names;
  for (const Sample& sample : samples()) {
    EXPECT_TRUE(names.insert(sample.name).second);
    for (const auto& [width, height] : {std::pair{1, 1}, {1, 40}, {40, 1}, {30, 20}, {21, 33}}) {
      const Image image = sample.draw(width, height);
      EXPECT_EQ(image.width, width);
      EXPECT_EQ(image.height, height);
      ASSERT_EQ(image.pixels.size(), static_cast<size_t>(width * height)) << sample.name;
      EXPECT_EQ(image.hasAlpha, sample.name == "alpha");
      EXPECT_EQ(image.pixels, sample.draw(width, height).pixels) << sample.name;
    }
    EXPECT_THROW(sample.draw(0, 5), std::invalid_argument);
    EXPECT_THROW(sample.draw(5, -1), std::invalid_argument);
  }
  for (const std::string_view name :
       {"landscape", "gradients", "colors", "greys", "edges", "alpha"}) {
    EXPECT_EQ(names.count(name), 1U) << name;
  }
}

TEST(Samples, UseTheTopByteForAlphaOnly) {
  for (const Sample& sample : samples()) {
    std::set<uint32_t> alphas;
    for (const uint32_t pixel : sample.draw(96, 64).pixels) alphas.insert(pixel >> 24);
    if (sample.name == "alpha") {
      EXPECT_EQ(alphas.count(0), 1U);
      EXPECT_EQ(alphas.count(255), 1U);
      EXPECT_GT(alphas.size(), 50U);
    } else {
      EXPECT_EQ(alphas, std::set<uint32_t>{0}) << sample.name;
    }
  }
}

TEST(Samples, MixExactGreysWithColours) {
  size_t greys = 0;
  const Image image = samples()[3].draw(150, 100);
  for (const uint32_t pixel : image.pixels) greys += pixel % 0x10101 == 0 ? 1 : 0;
  EXPECT_GT(greys, image.pixels.size() / 2);
  EXPECT_LT(greys, image.pixels.size() * 95 / 100);
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
  GalleryEntry entry = entryNamed("InvertQRZ");
  entry.before = {1, 1, false, {0x000000}};
  entry.after = {1, 1, false, {0xFFFFFF}};
  const std::string page = galleryPage({{"Colour", {entry, entry}}, {"Again", {entry}}});
  for (const char* outside : {"http", "url(", "@import", "<script"}) {
    EXPECT_EQ(countOf(page, outside), 0U) << outside;
  }
  EXPECT_EQ(countOf(page, "src="), 6U);
  EXPECT_EQ(countOf(page, " src=\"data:image/png;base64,iVBORw0KGgo"), 6U);
  EXPECT_EQ(countOf(page, "alt=\"Before InvertQRZ\" width=\"1\" height=\"1\""), 3U);
  EXPECT_EQ(countOf(page, "alt=\"After InvertQRZ\""), 3U);
  EXPECT_EQ(countOf(page, "id=\"filter-1-2\""), 1U);
  // The second of two overloads needs no link of its own.
  EXPECT_EQ(countOf(page, "href=\"#filter-1-1\""), 1U);
  EXPECT_EQ(countOf(page, "href=\"#filter-1-2\""), 0U);
  EXPECT_EQ(countOf(page, "href=\"#filter-2-1\""), 1U);
}

TEST(GalleryPage, EmbedsEachPictureAsItIs) {
  GalleryEntry first = entryNamed("A");
  first.before = {1, 1, false, {0x000000}};
  GalleryEntry second = entryNamed("B");
  second.before = {1, 1, true, {0x000000}};
  const std::string page = galleryPage({{"", {first, second, first}}});
  const auto codeAt = [&](const std::string& mark, size_t from) {
    const size_t start = page.find("base64,", page.find(mark, from));
    return page.substr(start, page.find('"', start) - start);
  };
  const std::string codeOfFirst = codeAt("alt=\"Before A\"", 0);
  EXPECT_NE(codeAt("alt=\"Before B\"", 0), codeOfFirst);
  EXPECT_EQ(codeAt("alt=\"Before A\"", page.find("alt=\"Before B\"")), codeOfFirst);
  EXPECT_EQ((codeOfFirst.size() - std::string("base64,").size()) % 4, 0U);
}

TEST(GalleryPage, IsAWholeDocumentThatShowsValuesInsteadOfMissingPictures) {
  GalleryEntry entry = entryNamed("CountQRZ");
  entry.value = "42 colours";
  const std::string page = galleryPage({{"Facts", {entry}}});
  EXPECT_EQ(countOf(page, "42 colours"), 1U);
  EXPECT_EQ(countOf(page, "<img"), 0U);
  EXPECT_EQ(countOf(page, "class=\"note\""), 0U);
  for (const std::string& whole : {page, galleryPage({})}) {
    EXPECT_EQ(whole.rfind("<!DOCTYPE html>\n<html lang=\"en\">", 0), 0U);
    for (const char* part : {"<meta charset=\"utf-8\">", "name=\"viewport\"",
                             "prefers-color-scheme: dark", "</html>\n"}) {
      EXPECT_EQ(countOf(whole, part), 1U) << part;
    }
  }
}

}  // namespace
}  // namespace host
