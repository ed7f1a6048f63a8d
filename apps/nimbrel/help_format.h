#pragma once

#include <CLI/CLI.hpp>
#include <string>

namespace nimbrel::cli {

/// Help texts of at most 100 columns: descriptions are broken between words, and an option shows
/// its value's name and nothing else.
class HelpFormat : public CLI::Formatter {
 public:
  HelpFormat() { column_width(kNameColumns); }

  std::string make_option_opts(const CLI::Option* option) const override;
  std::string make_option_desc(const CLI::Option* option) const override;
  std::string make_usage(const CLI::App* app, std::string name) const override;

 private:
  static constexpr int kNameColumns = 26;
  static constexpr std::size_t kTextColumns = 100 - kNameColumns;
};

/// The text with line breaks between its words, so that no line is longer than `columns` unless a
/// single word is.
std::string Wrapped(const std::string& text, std::size_t columns);

}  // namespace nimbrel::cli
