#include "nimbrel/help_format.h"

#include <sstream>
#include <string>

namespace nimbrel::cli {

std::string HelpFormat::make_option_opts(const CLI::Option* option) const {
  const bool is_plain = option->get_positional() || option->get_type_size() == 0;
  return is_plain ? "" : " " + option->get_type_name();
}

std::string HelpFormat::make_option_desc(const CLI::Option* option) const {
  return Wrapped(option->get_description(), kTextColumns);
}

std::string HelpFormat::make_usage(const CLI::App* app, std::string name) const {
  return "\n" + CLI::Formatter::make_usage(app, std::move(name));
}

std::string Wrapped(const std::string& text, std::size_t columns) {
  std::istringstream words(text);
  std::string wrapped;
  std::size_t line = 0;
  for (std::string word; words >> word;) {
    if (line > 0 && line + 1 + word.size() > columns) {
      wrapped += '\n';
      line = 0;
    } else if (line > 0) {
      wrapped += ' ';
      ++line;
    }
    wrapped += word;
    line += word.size();
  }
  return wrapped;
}

}  // namespace nimbrel::cli
