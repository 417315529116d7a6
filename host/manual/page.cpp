#include "host/manual/page.h"

#include <algorithm>
#include <cstddef>
#include <string_view>
#include <utility>

#include "host/core/interrupt.h"
#include "host/files/markup.h"
#include "host/manual/page_files.h"

namespace host {

namespace {

bool isShown(const ShownPicture& picture) { return !picture.file.empty(); }

/// A divider between two pictures needs them in one frame.
bool isComparable(const ShownExample& example) {
  const ShownPicture& before = example.before;
  const ShownPicture& after = example.after;
  return isShown(before) && isShown(after) && before.width == after.width &&
         before.height == after.height;
}

size_t countMembers(const std::vector<ShownGroup>& groups) {
  size_t count = 0;
  for (const ShownGroup& group : groups) count += group.members.size();
  return count;
}

/// Names of the page's own have an underscore, which the anchors of members have not.
std::string groupId(size_t index) { return "group_" + std::to_string(index + 1); }

bool isCapital(char c) { return c >= 'A' && c <= 'Z'; }

/// A name whose words may stand on lines of their own.
std::string breakable(std::string_view name) {
  std::string html;
  for (size_t i = 0; i < name.size(); ++i) {
    const bool startsWord = i > 0 && isCapital(name[i]) && !isCapital(name[i - 1]);
    if (startsWord) html += "<wbr>";
    html += escaped(name.substr(i, 1));
  }
  return html;
}

/// The first one that made a picture, or else the first one.
ShownExample exampleOfTile(const ShownMember& member) {
  for (const ShownExample& example : member.examples) {
    if (isShown(example.after)) return example;
  }
  return member.examples.empty() ? ShownExample() : member.examples.front();
}

bool hasOverloads(const ShownGroup& group, const ShownMember& member) {
  return std::ranges::count(group.members, member.name, &ShownMember::name) > 1;
}

std::string parametersOf(const ShownMember& member) {
  std::string names;
  for (const ShownArgument& argument : member.arguments) {
    names += (names.empty() ? "" : ", ") + argument.name;
  }
  return names;
}

class Page {
 public:
  std::string write(const std::vector<ShownGroup>& groups) {
    startDocument();
    writeBar(countMembers(groups));
    html_ += "<div class=\"columns\">\n";
    writeNavigation(groups);
    html_ += "<main id=\"page_members\" tabindex=\"-1\">\n";
    writeNothingFound();
    for (size_t i = 0; i < groups.size(); ++i) writeGroup(groups[i], groupId(i));
    html_ +=
        "</main>\n</div>\n"
        "<footer class=\"bottom\"><p>Every picture was made by the line beside it.</p></footer>\n"
        "<p id=\"page_said\" class=\"unseen\" role=\"status\"></p>\n</body>\n</html>\n";
    return std::move(html_);
  }

 private:
  void startDocument() {
    html_ +=
        "<!DOCTYPE html>\n<html lang=\"en\">\n<head>\n<meta charset=\"utf-8\">\n"
        "<meta name=\"viewport\" content=\"width=device-width, initial-scale=1\">\n"
        "<meta name=\"color-scheme\" content=\"light dark\">\n"
        "<title>PictureQRZ: every member at work</title>\n"
        "<link rel=\"icon\" href=\"data:,\">\n<style>\n";
    html_ += kPageStyle;
    html_ += "</style>\n<script>\n";
    html_ += kPageScript;
    html_ +=
        "</script>\n</head>\n<body>\n"
        "<a class=\"skip\" href=\"#page_members\">Skip to the members</a>\n"
        "<header class=\"top\">\n<h1>PictureQRZ</h1>\n"
        "<p class=\"lead\">Every member of the picture plug-in at work: the picture before and "
        "after, and the very line that made it, ready to copy.</p>\n</header>\n";
  }

  void writeBar(size_t memberCount) {
    html_ +=
        "<div class=\"bar\"><div class=\"bar-inside\">\n"
        "<form class=\"search\" role=\"search\">"
        "<label class=\"unseen\" for=\"page_search\">Search the members</label>"
        "<input id=\"page_search\" type=\"search\" placeholder=\"Search the members\" "
        "aria-keyshortcuts=\"/\" autocomplete=\"off\" autocapitalize=\"off\" "
        "spellcheck=\"false\"></form>\n"
        "<p id=\"page_count\" class=\"count\" role=\"status\">" +
        std::to_string(memberCount) +
        " members</p>\n"
        "<button id=\"page_theme\" class=\"theme button\" type=\"button\">Dark</button>\n"
        "</div></div>\n";
  }

  void writeNavigation(const std::vector<ShownGroup>& groups) {
    html_ += "<nav class=\"groups\" aria-label=\"Groups\">\n<ul>\n";
    for (size_t i = 0; i < groups.size(); ++i) {
      html_ += "<li><a href=\"#" + groupId(i) + "\">" + escaped(groups[i].title) + " <span>" +
               std::to_string(groups[i].members.size()) + "</span></a></li>\n";
    }
    html_ += "</ul>\n</nav>\n";
  }

  void writeNothingFound() {
    html_ +=
        "<div id=\"page_nothing\" class=\"nothing\" hidden>"
        "<p>No member matches “<span id=\"page_query\"></span>”. Try fewer words, or only the "
        "beginning of one.</p>"
        "<button id=\"page_clear\" class=\"button\" type=\"button\">Show all members</button>"
        "</div>\n";
  }

  void writeGroup(const ShownGroup& group, const std::string& id) {
    html_ += "<section id=\"" + id + "\" aria-labelledby=\"" + id + "_title\">\n<h2 id=\"" + id +
             "_title\">" + escaped(group.title) + "</h2>\n<ul class=\"sheet\">\n";
    for (const ShownMember& member : group.members) writeTile(member, hasOverloads(group, member));
    html_ += "</ul>\n";
    for (const ShownMember& member : group.members) writeMember(member);
    html_ += "</section>\n";
  }

  /// What an example made, as a link to the member; overloads with what they take.
  void writeTile(const ShownMember& member, bool isOverload) {
    html_ += "<li><a href=\"#" + escaped(member.anchor) + "\">";
    const ShownExample example = exampleOfTile(member);
    if (isShown(example.after)) {
      writePicture(example.after, "");
    } else {
      html_ += "<span class=\"text\">" + escaped(example.value) + "</span>";
    }
    html_ += "<span class=\"name\">" + breakable(member.name);
    if (isOverload && !member.arguments.empty()) {
      html_ += " <span class=\"parameters\">(" + escaped(parametersOf(member)) + ")</span>";
    }
    html_ += "</span></a></li>\n";
  }

  void writeMember(const ShownMember& member) {
    const std::string anchor = escaped(member.anchor);
    html_ += "<article id=\"" + anchor + "\">\n<h3><a href=\"#" + anchor + "\">" +
             breakable(member.name) + "</a></h3>\n";
    writeParagraph("summary", member.summary);
    html_ += "<p class=\"declaration\"><code>" + escaped(member.declaration) + "</code></p>\n";
    for (const ShownExample& example : member.examples) writeExample(example, member.name);
    writeArguments(member);
    html_ += "</article>\n";
  }

  void writeParagraph(std::string_view style, const std::string& text) {
    if (text.empty()) return;
    html_ += "<p class=\"" + std::string(style) + "\">" + escaped(text) + "</p>\n";
  }

  void writeExample(const ShownExample& example, const std::string& name) {
    html_ += "<div class=\"example\">\n";
    writeResult(example, name);
    html_ += "<div>\n";
    writeParagraph("note", example.note);
    writeLine("Program", example.program, name);
    writeLine("Command", example.command, name);
    html_ += "</div>\n</div>\n";
  }

  void writeResult(const ShownExample& example, const std::string& name) {
    if (isComparable(example)) {
      writeComparison(example, name);
      return;
    }
    html_ += isShown(example.before) ? "<div class=\"pictures pair\">" : "<div class=\"pictures\">";
    if (isShown(example.before)) writeFigure("Before", example.before, name);
    if (isShown(example.after)) {
      writeFigure(isShown(example.before) ? "After" : "Result", example.after, name);
    }
    if (!example.value.empty()) {
      html_ += "<figure class=\"value\"><figcaption>Result</figcaption><pre><samp>" +
               escaped(example.value) + "</samp></pre></figure>";
    }
    html_ += "</div>\n";
  }

  void writeComparison(const ShownExample& example, const std::string& name) {
    html_ += R"(<div class="pictures"><div class="compare">)";
    writeSide("before", "Before", example.before, name);
    writeSide("after", "After", example.after, name);
    html_ +=
        "<input type=\"range\" min=\"0\" max=\"100\" value=\"50\" step=\"any\" "
        "autocomplete=\"off\" aria-label=\"Divider between before and after " +
        escaped(name) + "\"><span class=\"divider\"></span></div></div>\n";
  }

  void writeSide(std::string_view style, const std::string& label, const ShownPicture& picture,
                 const std::string& name) {
    html_ += "<div class=\"side " + std::string(style) + "\">";
    writePicture(picture, label + " " + name);
    html_ += R"(<span class="label" aria-hidden="true">)" + label + "</span></div>";
  }

  void writeFigure(const std::string& caption, const ShownPicture& picture,
                   const std::string& name) {
    html_ += "<figure><figcaption>" + caption + "</figcaption>";
    writePicture(picture, caption + " " + name);
    html_ += "</figure>";
  }

  void writePicture(const ShownPicture& picture, const std::string& alternative) {
    html_ += "<img src=\"" + escaped(picture.file) + "\" width=\"" + std::to_string(picture.width) +
             "\" height=\"" + std::to_string(picture.height) + "\" alt=\"" + escaped(alternative) +
             R"(" loading="lazy">)";
  }

  /// Text to copy.
  void writeLine(const std::string& kind, const std::string& text, const std::string& name) {
    if (text.empty()) return;
    html_ += R"(<div class="line"><div class="line-top"><span>)" + kind +
             R"(</span><button class="copy" type="button" aria-label="Copy: )" + kind + " of " +
             escaped(name) + "\">Copy</button></div><pre><code>" + escaped(text) +
             "</code></pre></div>\n";
  }

  void writeArguments(const ShownMember& member) {
    if (member.arguments.empty()) {
      writeFailure(member.failure);
      return;
    }
    html_ += "<details><summary>";
    html_ += member.failure.empty() ? "Arguments" : "Arguments and failure";
    html_ += "</summary>\n<dl class=\"arguments\">\n";
    for (const ShownArgument& argument : member.arguments) {
      html_ += "<div><dt><code>" + escaped(argument.name) + "</code></dt><dd>" +
               escaped(argument.meaning) + "</dd><dd class=\"range\">" + escaped(argument.range) +
               "</dd></div>\n";
    }
    html_ += "</dl>\n";
    writeFailure(member.failure);
    html_ += "</details>\n";
  }

  void writeFailure(const std::string& text) {
    if (!text.empty()) {
      html_ += "<p class=\"failure\"><b>If it fails:</b> " + escaped(text) + "</p>\n";
    }
  }

  std::string html_;
};

}  // namespace

std::string manualPage(const std::vector<ShownGroup>& groups) { return Page().write(groups); }

}  // namespace host
