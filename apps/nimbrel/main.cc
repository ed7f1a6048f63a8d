#include <csignal>
#include <iostream>
#include <string>
#include <vector>

#include "nimbrel/console.h"
#include "nimbrel/program.h"

int main(int argc, char** argv) {
  // A reader that closes our pipe shows as a failed write, which is reported like any other.
  std::signal(SIGPIPE, SIG_IGN);
  nimbrel::cli::Console console{std::cout, std::cerr, nimbrel::cli::DetectTerminal()};
  return nimbrel::cli::RunProgram(std::vector<std::string>(argv + 1, argv + argc), console);
}
