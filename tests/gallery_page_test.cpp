#include <gtest/gtest.h>

#include <set>
#include <stdexcept>
#include <string>
#include <utility>

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

ShownExample example(ShownPicture before, ShownPicture after, std::string value = {}) {
  return {"self.InvertQRZ",  "qrz apply",      "Note.",
          std::move(before), std::move(after), std::move(value)};
}

std::string pageOf(const ShownExample& example) {
  return manualPage({{"Tone", {{"a", "A", "A as picture", "Does.", {}, "", {example}}}}});
}

TEST(ManualPage, EscapesAllTexts) {
  const std::string evil = "<b a=\"1\" b='2'></script>&amp;";
  const ShownPicture picture{evil, 4, 3};
  const ShownMember member{
      evil,
      evil,
      evil,
      evil,
      {{evil, evil, evil}},
      evil,
      {{evil, evil, evil, picture, picture, ""}, {evil, evil, evil, picture, {}, evil}}};
  const std::string page = manualPage({{evil, {member}}});
  const std::string safe = "&lt;b a=&quot;1&quot; b=&#39;2&#39;&gt;&lt;/script&gt;&amp;amp;";
  EXPECT_EQ(countOf(page, evil), 0U);
  // Two titles, a tile of three, a heading of three, two texts, four of the arguments and failure,
  // twice three of the examples with two names to copy, three pictures' files and descriptions,
  // the divider's name, the value.
  EXPECT_EQ(countOf(page, safe), 2U + 3 + 3 + 2 + 4 + 2 * (3 + 2) + 3 * 2 + 1 + 1);
  // What does not come from the data is the same without it: no markup slipped in.
  const std::string plain = manualPage({});
  for (const char* markup : {"<script", "</script>", "<style", "</style>", "</html>"}) {
    EXPECT_EQ(countOf(page, markup), 1U) << markup;
    EXPECT_EQ(countOf(plain, markup), 1U) << markup;
  }
}

TEST(ManualPage, FetchesNothingButThePicturesBesideIt) {
  const std::string page =
      pageOf(example({"pictures/before.png", 4, 3}, {"pictures/after.png", 4, 3}));
  EXPECT_TRUE(page.starts_with("<!DOCTYPE html>\n<html lang=\"en\">"));
  EXPECT_TRUE(page.ends_with("</html>\n"));
  for (const char* outside : {"http:", "https:", "url(", "@import", "fetch(", "<script src"}) {
    EXPECT_EQ(countOf(page, outside), 0U) << outside;
  }
  EXPECT_EQ(countOf(page, "src=\"pictures/before.png\" width=\"4\" height=\"3\""), 1U);
  EXPECT_EQ(countOf(page, "src=\"pictures/after.png\" width=\"4\" height=\"3\""), 2U);
  EXPECT_EQ(countOf(page, "<img"), countOf(page, "src="));
  EXPECT_LT(page.size(), 40000U);
}

TEST(ManualPage, HasADividerOnlyBetweenPicturesOfTheSameSize) {
  const ShownPicture small{"small.png", 40, 30};
  const std::string divider = "<input type=\"range\"";
  const std::string before = "<figcaption>Before";
  const std::string after = "<figcaption>After";
  const std::string result = "<figcaption>Result";
  const std::string compared = pageOf(example(small, {"other.png", 40, 30}));
  EXPECT_EQ(countOf(compared, divider), 1U);
  EXPECT_EQ(countOf(compared, "<figcaption>"), 0U);
  for (const ShownPicture& other :
       {ShownPicture{"wide.png", 41, 30}, ShownPicture{"high.png", 40, 31}}) {
    const std::string page = pageOf(example(small, other));
    EXPECT_EQ(countOf(page, divider), 0U);
    EXPECT_EQ(countOf(page, before) + countOf(page, after), 2U);
  }
  const std::string alone = pageOf(example({}, small));
  EXPECT_EQ(countOf(alone, divider) + countOf(alone, before) + countOf(alone, after), 0U);
  EXPECT_EQ(countOf(alone, result), 1U);
  const std::string value = pageOf(example(small, {}, "42 colours"));
  EXPECT_EQ(countOf(value, divider), 0U);
  EXPECT_EQ(countOf(value, before), 1U);
  EXPECT_EQ(countOf(value, "<samp>42 colours</samp>"), 1U);
}

TEST(ManualPage, NamesEveryPlaceOnce) {
  const ShownMember member{"InvertQRZ", "InvertQRZ", "", "", {}, "", {}};
  ShownMember overload = member;
  overload.anchor = "InvertQRZ-2";
  overload.arguments = {{"left", "first column", "any"}, {"top", "first row", "any"}};
  const std::string page = manualPage({{"Tone", {member, overload}}, {"Tone", {}}});
  std::set<std::string> ids;
  for (size_t at = page.find(" id=\""); at != std::string::npos; at = page.find(" id=\"", at + 1)) {
    const size_t start = at + 5;
    const std::string id = page.substr(start, page.find('"', start) - start);
    EXPECT_TRUE(ids.insert(id).second) << id;
  }
  for (const char* id : {"InvertQRZ", "InvertQRZ-2", "group_1", "group_2"}) {
    EXPECT_TRUE(ids.contains(id)) << id;
    EXPECT_GE(countOf(page, "href=\"#" + std::string(id) + "\""), 1U) << id;
  }
  EXPECT_EQ(countOf(page, "(left, top)"), 1U) << "overloads are told apart";
}

}  // namespace
}  // namespace host
