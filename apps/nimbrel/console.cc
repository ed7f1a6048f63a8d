#include "nimbrel/console.h"

#include <sys/ioctl.h>
#include <unistd.h>

#include <algorithm>
#include <cstdlib>
#include <string>

namespace nimbrel::cli {
namespace {

/// The locale that says how characters are written, as POSIX picks it: the first that is set.
std::string CharacterLocale() {
  for (const char* name : {"LC_ALL", "LC_CTYPE", "LANG"}) {
    const char* value = std::getenv(name);
    if (value != nullptr && *value != '\0') {
      return value;
    }
  }
  return "C";
}

bool SaysUtf8(std::string locale) {
  std::transform(locale.begin(), locale.end(), locale.begin(), [](char c) {
    return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
  });
  return locale.find("utf-8") != std::string::npos || locale.find("utf8") != std::string::npos;
}

}  // namespace

Terminal DetectTerminal() {
  Terminal terminal;
  terminal.out_is_terminal = ::isatty(STDOUT_FILENO) == 1;
  terminal.err_is_terminal = ::isatty(STDERR_FILENO) == 1;
  terminal.utf8 = SaysUtf8(CharacterLocale());
  const char* kind = std::getenv("TERM");
  const char* no_colour = std::getenv("NO_COLOR");
  terminal.colours = terminal.out_is_terminal && kind != nullptr && std::string(kind) != "dumb" &&
                     (no_colour == nullptr || *no_colour == '\0');
  winsize size{};
  if ((terminal.out_is_terminal && ::ioctl(STDOUT_FILENO, TIOCGWINSZ, &size) == 0) ||
      (terminal.err_is_terminal && ::ioctl(STDERR_FILENO, TIOCGWINSZ, &size) == 0)) {
    if (size.ws_col > 0) {
      terminal.columns = std::clamp<int>(size.ws_col, 40, 200);
    }
  }
  return terminal;
}

}  // namespace nimbrel::cli
