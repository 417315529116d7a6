#include "host/bench/report.h"

#include <array>
#include <cstdio>
#include <string_view>

namespace host {
namespace {

template <typename... Arguments>
std::string formatted(const char* format, Arguments... arguments) {
  std::array<char, 400> line{};
  snprintf(line.data(), line.size(), format, arguments...);
  return line.data();
}

/// Names hold no control characters: declarations with some cannot be parsed.
std::string quoted(std::string_view text) {
  std::string result = "\"";
  for (const char c : text) {
    if (c == '"' || c == '\\') result += '\\';
    result += c;
  }
  return result + '"';
}

std::string jsonOf(const BenchResult& result) {
  return R"({"member": )" + quoted(result.member) + R"(, "size": )" + quoted(textOf(result.size)) +
         R"(, "content": )" + quoted(result.content) + R"(, "level": )" + quoted(result.level) +
         formatted(R"(, "ns_per_pixel_min": %.6g, "ns_per_pixel_median": %.6g)",
                   result.time.fastest, result.time.median) +
         formatted(R"(, "copy_ns_per_pixel": %.6g, "ratio_to_copy": %.6g})", result.time.copy,
                   result.time.ratio());
}

}  // namespace

std::string tableHeader(size_t nameWidth) {
  return formatted("%-*s  %-9s  %-8s  %9s  %9s  %9s  %7s", static_cast<int>(nameWidth), "member",
                   "size", "content", "fastest", "median", "copy", "copies");
}

std::string tableLine(const BenchResult& result, size_t nameWidth) {
  return formatted("%-*s  %-9s  %-8s  %9.4f  %9.4f  %9.4f  %7.2f", static_cast<int>(nameWidth),
                   result.member.c_str(), textOf(result.size).c_str(), result.content.data(),
                   result.time.fastest, result.time.median, result.time.copy, result.time.ratio());
}

std::string jsonOf(const std::vector<BenchResult>& results) {
  std::string text = "{\"results\": [";
  for (const BenchResult& result : results) {
    text += (&result == results.data() ? "\n  " : ",\n  ") + jsonOf(result);
  }
  return text + "\n]}\n";
}

}  // namespace host
