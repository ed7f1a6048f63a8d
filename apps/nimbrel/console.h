#pragma once

#include <ostream>

namespace nimbrel::cli {

/// What the streams of the program can show.
struct Terminal {
  bool out_is_terminal = false;
  bool err_is_terminal = false;
  bool utf8 = false;     // whether a terminal can show block characters
  bool colours = false;  // whether standard output shows colours
  int columns = 80;      // width of the terminal
};

/// Where a command writes. The streams stay the caller's.
struct Console {
  std::ostream& out;
  std::ostream& err;
  Terminal terminal;
};

/// What the process's own streams can show, by the environment as it is.
Terminal DetectTerminal();

}  // namespace nimbrel::cli
