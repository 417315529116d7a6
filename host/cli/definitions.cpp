#include "host/cli/definitions.h"

#include <sstream>

namespace host {

std::vector<const CLI::App*> commandsOf(const CLI::App& app) {
  return app.get_subcommands([](const CLI::App*) { return true; });
}

Options optionsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->nonpositional(); });
}

Options argumentsOf(const CLI::App& app) {
  return app.get_options([](const CLI::Option* option) { return option->get_positional(); });
}

std::vector<std::string> namesOf(const CLI::Option& option) {
  std::vector<std::string> names;
  for (const std::string& name : option.get_snames()) names.push_back("-" + name);
  for (const std::string& name : option.get_lnames()) names.push_back("--" + name);
  return names;
}

bool takesValue(const CLI::Option& option) { return option.get_items_expected_max() > 0; }

bool takesMany(const CLI::Option& option) {
  return option.get_expected_max() >= CLI::detail::expected_max_vector_size;
}

std::vector<std::string> choicesOf(const std::string& typeName) {
  if (typeName.find('|') == std::string::npos) return {};
  return CLI::detail::split(typeName, '|');
}

std::string ownFooter(const CLI::App& command) {
  const std::string footer = command.get_footer();
  const CLI::App* program = command.get_parent();
  return program != nullptr && footer == program->get_footer() ? "" : footer;
}

std::vector<std::string> paragraphsOf(const std::string& text) {
  std::vector<std::string> paragraphs{""};
  for (const std::string& line : linesOf(text)) {
    if (line.empty()) {
      paragraphs.emplace_back();
    } else {
      paragraphs.back() += (paragraphs.back().empty() ? "" : "\n") + line;
    }
  }
  std::erase(paragraphs, "");
  return paragraphs;
}

bool isExample(const std::string& paragraph) {
  return paragraph.starts_with(' ') || paragraph.find("\n ") != std::string::npos;
}

std::vector<std::string> linesOf(const std::string& text) {
  std::vector<std::string> lines;
  std::istringstream stream(text);
  for (std::string line; std::getline(stream, line);) lines.push_back(line);
  return lines;
}

std::string joined(const std::vector<std::string>& parts, std::string_view separator) {
  std::string text;
  for (const std::string& part : parts) {
    if (&part != &parts.front()) text += separator;
    text += part;
  }
  return text;
}

}  // namespace host
