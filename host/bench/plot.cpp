#include <algorithm>
#include <array>
#include <cstdio>
#include <string_view>

#include "host/bench/report.h"
#include "host/files/markup.h"

namespace host {
namespace {

// Lengths in the picture's own units, about a screen's pixels.
constexpr int32_t kMargin = 24;
constexpr int32_t kTop = 96;
constexpr int32_t kNameUnit = 7;  ///< a little more than the mean width of a character
constexpr int32_t kBarHeight = 11;
constexpr int32_t kRowGap = 8;
constexpr int32_t kCopyWidth = 60;  ///< one plain copy
constexpr int32_t kMostCopies = 4;  ///< longer bars are cut
constexpr int32_t kNumberWidth = 56;
constexpr int32_t kColumnWidth = kMostCopies * kCopyWidth + kNumberWidth;
constexpr int32_t kColumnGap = 24;

constexpr std::string_view kStyle = R"css(
  svg { color-scheme: light dark; --ground: #ffffff; --text: #1d1f24; --soft: #5a5e68;
    --line: #dfdcd5; --copy: #8a3b12; --first: #3b6fb5; --second: #b98a2f; }
  @media (prefers-color-scheme: dark) {
    svg { --ground: #14161a; --text: #eceae5; --soft: #a9aeb9; --line: #333842;
      --copy: #f0a76a; --first: #7aa7e0; --second: #d9b765; }
  }
  .ground { fill: var(--ground); }
  text { fill: var(--text); font: 12px system-ui, sans-serif; }
  .title { font-size: 18px; font-weight: 600; }
  .soft { fill: var(--soft); }
  .number { fill: var(--soft); font-size: 10px; font-variant-numeric: tabular-nums;
    paint-order: stroke; stroke: var(--ground); stroke-width: 3px; }
  .grid { stroke: var(--line); }
  .copy { stroke: var(--copy); stroke-width: 1.5; }
  .copy-name { fill: var(--copy); }
  .first { fill: var(--first); }
  .second { fill: var(--second); }
)css";

/// The elements that are drawn, as text.
class Drawing {
 public:
  template <typename... Arguments>
  void add(const char* format, Arguments... arguments) {
    std::array<char, 300> element{};
    snprintf(element.data(), element.size(), format, arguments...);
    text_ += element.data();
  }
  void addText(const char* kind, int32_t x, int32_t y, std::string_view text) {
    add(R"(<text class="%s" x="%d" y="%d">)", kind, x, y);
    text_ += escaped(text) + "</text>\n";
  }
  void addRaw(std::string_view text) { text_ += text; }
  [[nodiscard]] const std::string& text() const { return text_; }

 private:
  std::string text_;
};

std::string formatted(const char* format, double number) {
  std::array<char, 40> text{};
  snprintf(text.data(), text.size(), format, number);
  return text.data();
}

void addUnique(std::vector<std::string>& names, const std::string& name) {
  if (std::ranges::count(names, name) == 0) names.push_back(name);
}

/// Results that stand in one row and column.
using Cell = std::vector<const BenchResult*>;

class Plot {
 public:
  explicit Plot(const std::vector<BenchResult>& results) : results_(results) {
    for (const BenchResult& result : results) {
      addUnique(members_, result.member);
      addUnique(sizes_, textOf(result.asked));
    }
    size_t longest = 0;
    for (const std::string& member : members_) longest = std::max(longest, member.size());
    left_ = kMargin + kNameUnit * static_cast<int32_t>(longest);
    for (const std::string& member : members_) {
      size_t bars = 1;
      for (const std::string& size : sizes_) bars = std::max(bars, cell(member, size).size());
      tops_.push_back(bottom_);
      bottom_ += static_cast<int32_t>(bars) * kBarHeight + kRowGap;
    }
  }

  std::string draw() {
    const auto columns = static_cast<int32_t>(sizes_.size());
    const int32_t width = left_ + columns * (kColumnWidth + kColumnGap) + kMargin;
    const int32_t height = bottom_ + kMargin;
    drawing_.add(R"(<svg xmlns="http://www.w3.org/2000/svg" viewBox="0 0 %d %d" )", width, height);
    drawing_.add(R"(width="%d" height="%d" role="img">)", width, height);
    drawing_.addRaw("\n<title>Members against a plain copy</title>\n<style>");
    drawing_.addRaw(kStyle);
    drawing_.add(
        "</style>\n"
        R"(<rect class="ground" width="%d" height="%d"/>)"
        "\n",
        width, height);
    drawTitle();
    for (int32_t i = 0; i < columns; ++i) drawGrid(i);
    for (size_t i = 0; i < members_.size(); ++i) drawRow(i);
    drawing_.addRaw("</svg>\n");
    return drawing_.text();
  }

 private:
  [[nodiscard]] Cell cell(const std::string& member, const std::string& size) const {
    Cell found;
    for (const BenchResult& result : results_) {
      if (result.member == member && textOf(result.asked) == size) found.push_back(&result);
    }
    return found;
  }

  [[nodiscard]] int32_t columnLeft(int32_t column) const {
    return left_ + column * (kColumnWidth + kColumnGap);
  }

  void drawTitle() {
    const std::string level = results_.empty() ? "" : ", " + results_.front().level;
    drawing_.addText("title", kMargin, 34,
                     "Members against a plain copy of what they write" + level);
    drawing_.add(R"(<rect class="first" x="%d" y="47" width="18" height="9"/>)", kMargin);
    drawing_.addText("soft", kMargin + 24, 56, "photo, or the one content that there is");
    drawing_.add(R"(<rect class="second" x="%d" y="47" width="18" height="9"/>)", kMargin + 300);
    drawing_.addText("soft", kMargin + 324, 56, "noise");
  }

  void drawGrid(int32_t column) {
    const int32_t left = columnLeft(column);
    drawing_.addText("name", left, kTop - 22, sizes_[static_cast<size_t>(column)]);
    for (int32_t copies = 0; copies <= kMostCopies; ++copies) {
      const int32_t x = left + copies * kCopyWidth;
      drawing_.add(R"(<path class="%s" d="M%d %dV%d"/>)"
                   "\n",
                   copies == 1 ? "grid copy" : "grid", x, kTop - 4, bottom_);
      const std::string name = copies == 1 ? "copy" : std::to_string(copies);
      drawing_.addText(copies == 1 ? "number copy-name" : "number", x - (copies == 1 ? 11 : 3),
                       kTop - 8, name);
    }
  }

  void drawRow(size_t row) {
    const int32_t y = tops_[row];
    drawing_.addText("name", kMargin, y + kBarHeight, members_[row]);
    for (size_t column = 0; column < sizes_.size(); ++column) {
      const Cell bars = cell(members_[row], sizes_[column]);
      for (size_t i = 0; i < bars.size(); ++i) {
        drawBar(*bars[i], columnLeft(static_cast<int32_t>(column)),
                y + static_cast<int32_t>(i) * kBarHeight, i == 0 ? "first" : "second");
      }
    }
  }

  void drawBar(const BenchResult& result, int32_t x, int32_t y, const char* kind) {
    const double length = std::min<double>(result.time.ratio(), kMostCopies) * kCopyWidth;
    const int32_t end = x + static_cast<int32_t>(length);
    drawing_.add(R"(<g><rect class="%s" x="%d" y="%d" width="%.1f" height="%d"/>)", kind, x, y,
                 length, kBarHeight - 1);
    // A gap in a bar says that it is longer.
    if (result.time.ratio() > kMostCopies) {
      drawing_.add(R"(<path class="ground" d="M%d %dh4l-4 %dh-4z"/>)", end - 10, y, kBarHeight - 1);
    }
    drawing_.addRaw("<title>");
    drawing_.addRaw(escaped(result.member + ", " + std::string(result.content) + ": " +
                            formatted("%.4g ns per pixel, ", result.time.median) +
                            formatted("%.4g copies", result.time.ratio())));
    drawing_.addRaw("</title></g>");
    drawing_.addText("number", end + 4, y + kBarHeight - 1, formatted("%.2f", result.time.ratio()));
  }

  const std::vector<BenchResult>& results_;
  std::vector<std::string> members_, sizes_;
  std::vector<int32_t> tops_;  ///< of the rows
  int32_t left_ = 0;           ///< of the first column
  int32_t bottom_ = kTop;
  Drawing drawing_;
};

}  // namespace

std::string plotOf(const std::vector<BenchResult>& results) { return Plot(results).draw(); }

}  // namespace host
