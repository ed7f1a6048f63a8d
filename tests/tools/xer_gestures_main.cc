#include <fcntl.h>
#include <io.h>

#include <cstdio>
#include <exception>
#include <iostream>
#include <string>
#include <vector>

#include "tests/tools/xer_gestures.h"

int main(int argc, char** argv) {
  ::_setmode(::_fileno(stdout), _O_BINARY);  // the log is the same on every system
  try {
    const std::vector<std::string> arguments(argv + 1, argv + argc);
    return nimbrel::gestures::RunXerGestureTool(arguments, std::cout, std::cerr);
  } catch (const std::exception& error) {
    std::cerr << "nimbrel-gestures: " << error.what() << '\n';
    return 4;
  }
}
