#include "host/cli/help.h"

#include <sstream>

#include "host/cli/definitions.h"

namespace host {
namespace {

constexpr size_t kLineWidth = 79;

std::string wrapped(const std::string& text, size_t width) {
  std::string result;
  size_t used = 0;
  std::istringstream words(text);
  for (std::string word; words >> word;) {
    const bool fits = used + 1 + word.size() <= width;
    if (used > 0) result += fits ? ' ' : '\n';
    used = used > 0 && fits ? used + 1 + word.size() : word.size();
    result += word;
  }
  return result;
}

std::string wrappedParagraphs(const std::string& text) {
  std::vector<std::string> lines = linesOf(text);
  for (std::string& line : lines) {
    if (!line.starts_with(' ')) line = wrapped(line, kLineWidth);
  }
  return joined(lines, "\n");
}

}  // namespace

HelpFormatter::HelpFormatter() {
  label("SUBCOMMAND", "COMMAND");
  label("Positionals", "Arguments");
  column_width(24);
}

std::string HelpFormatter::make_description(const CLI::App* app) const {
  return wrappedParagraphs(app->get_description()) + "\n\n";
}

std::string HelpFormatter::make_subcommand(const CLI::App* command) const {
  std::ostringstream out;
  const std::string summary = paragraphsOf(command->get_description()).front();
  CLI::detail::format_help(out, command->get_name(),
                           wrapped(summary, kLineWidth - get_column_width()), get_column_width());
  return out.str();
}

/// The usage says which arguments must be there.
std::string HelpFormatter::make_option_opts(const CLI::Option* option) const {
  if (!takesValue(*option)) return "";
  return " " + option->get_type_name() + (takesMany(*option) ? " ..." : "");
}

std::string HelpFormatter::make_option_desc(const CLI::Option* option) const {
  std::string text = option->get_description();
  if (const std::string name = option->get_envname(); !name.empty()) {
    text += " (also by " + name + " in the environment)";
  }
  return wrapped(text, kLineWidth - get_column_width());
}

std::string HelpFormatter::make_footer(const CLI::App* app) const {
  std::string text = wrappedParagraphs(ownFooter(*app));
  const CLI::App* program = app->get_parent();
  if (program == nullptr) return text + "\n";
  if (!text.empty()) text += "\n\n";
  return text + "`" + program->get_name() + " --help` shows the options for every command.\n";
}

}  // namespace host
