// What --help prints.
#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace host {

/// Breaks what the definitions say into lines of a terminal, and adds to the help of a command what
/// goes for all of them. Examples stay as they are.
class HelpFormatter : public CLI::Formatter {
 public:
  HelpFormatter();
  [[nodiscard]] std::string make_description(const CLI::App* app) const override;
  [[nodiscard]] std::string make_subcommand(const CLI::App* command) const override;
  [[nodiscard]] std::string make_option_opts(const CLI::Option* option) const override;
  [[nodiscard]] std::string make_option_desc(const CLI::Option* option) const override;
  [[nodiscard]] std::string make_footer(const CLI::App* app) const override;
};

}  // namespace host
